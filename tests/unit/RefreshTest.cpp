#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "fakes/Fakes.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST(Refresh, RunsTheFourStagesInTheirOrder) {
    FakeMachine machine;
    machine.AddAdapter("{A}", "eth0", "0001");
    machine.ipHelper->AddInterface(3, "{A}");
    RefreshNicInfo();
    EXPECT_THAT(machine.ipHelper->diary,
                ElementsAre("GetInterfaceInfo", "GetIfEntry 3", "GetIpAddrTable", "GetIpForwardTable"));
    EXPECT_EQ(machine.registry->diary.front(),
              "enum SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Adapters");
    EXPECT_EQ(machine.registry->diary.back(), "read " + TcpipKey("{A}") + "\\DhcpNameServer");
}

std::vector<std::string> ListedIds() {
    std::vector<std::string> ids;
    for (const NicInfo& nic : Nics) ids.push_back(nic.Id);
    return ids;
}

/// The API or the registry path that each box names.
std::vector<std::string> Culprits(const std::vector<FakeSeat::Box>& boxes) {
    std::vector<std::string> culprits;
    for (const FakeSeat::Box& box : boxes) {
        for (const std::string& line : Split(Without(box.text, '\r'), '\n')) {
            if (line.starts_with("API: ") || line.starts_with("Registry Path: ")) culprits.push_back(line);
        }
    }
    return culprits;
}

/// A machine of which the class key, and the rows of its three live adapters {A}, {B} and {C}, cannot be
/// read.
class FailingRefresh : public testing::Test {
 protected:
    FailingRefresh() {
        for (std::uint32_t i = 0; i < 3; ++i) {
            const std::string letter(1, static_cast<char>('A' + i));
            machine_.AddAdapter("{" + letter + "}", "eth" + letter, "000" + std::to_string(i));
            machine_.ipHelper->AddInterface(i + 1, "{" + letter + "}");
            machine_.ipHelper->entryFailures[i + 1] = Win32Error::kGenFailure;
        }
        machine_.registry->fail = [this](const std::string& operation, const std::string& key,
                                         const std::string&) -> std::optional<Win32Error> {
            if (onRegistryCall_) onRegistryCall_();
            if (operation == "enum" && key == kClassKey) return Win32Error::kAccessDenied;
            return std::nullopt;
        };
    }

    const std::vector<std::string> culprits_ = {
        "Registry Path: HKEY_LOCAL_MACHINE\\" + std::string(kClassKey), "API: GetIfEntry", "API: GetIfEntry",
        "API: GetIfEntry"};
    std::function<void()> onRegistryCall_;
    FakeMachine machine_;
};

/// Does in a box what a timer may do while a real one is open.
class ReenteringSeat : public FakeSeat {
 public:
    std::function<void()> onBox;

    BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                      BoxButtons buttons) override {
        const BoxAnswer answer = FakeSeat::ShowBox(title, text, icon, buttons);
        if (onBox) onBox();
        return answer;
    }
};

TEST_F(FailingRefresh, ShowsItsFailuresInTheirOrder) {
    RefreshNicInfo();
    EXPECT_EQ(Culprits(machine_.seat.boxes), culprits_);
}

TEST_F(FailingRefresh, ShowsItsBoxesWhenTheAdaptersAreComplete) {
    machine_.registry->SetText(TcpipKey("{C}"), "NameServer", "10.0.0.53");
    ReenteringSeat seat;
    const ScopedSeat installed(seat);
    std::vector<std::string> serversOfTheLast;
    seat.onBox = [&] {
        EXPECT_THAT(ListedIds(), ElementsAre("{A}", "{B}", "{C}"));
        serversOfTheLast.push_back(Nics.back().DnsServers.front());
    };
    RefreshNicInfo();
    EXPECT_THAT(serversOfTheLast, ElementsAre("10.0.0.53", "10.0.0.53", "10.0.0.53", "10.0.0.53"));
}

TEST_F(FailingRefresh, MayBeStartedAnewInEachOfItsBoxes) {
    ReenteringSeat seat;
    const ScopedSeat installed(seat);
    int depth = 0;
    seat.onBox = [&] {
        if (depth > 0) return;
        ++depth;
        machine_.AddAdapter("{Z" + std::to_string(seat.boxes.size()) + "}", "later", "0100");
        RefreshNicInfo();
        --depth;
    };
    RefreshNicInfo();
    // Its own four boxes, and as many in each refresh that they started.
    EXPECT_THAT(seat.boxes, SizeIs(4 + 4 * 4));
    EXPECT_THAT(ListedIds(), ElementsAre("{A}", "{B}", "{C}", "{Z11}", "{Z16}", "{Z1}", "{Z6}"));
}

TEST_F(FailingRefresh, LeavesTheFormerAdaptersVisibleUntilItIsComplete) {
    Nics.assign(1, test::NicRecord("{former}", "former", "0009"));
    std::set<std::vector<std::string>> seen;
    onRegistryCall_ = [&] { seen.insert(ListedIds()); };
    RefreshNicInfo();
    EXPECT_THAT(seen, ElementsAre(ElementsAre("{former}")));
    EXPECT_THAT(ListedIds(), ElementsAre("{A}", "{B}", "{C}"));
}

TEST_F(FailingRefresh, ThatIsBrokenOffLeavesTheFormerAdapters) {
    Nics.assign(1, test::NicRecord("{former}", "former", "0009"));
    int calls = 0;
    onRegistryCall_ = [&] {
        if (++calls == 6) throw std::runtime_error("no more");
    };
    EXPECT_THROW(RefreshNicInfo(), std::runtime_error);
    EXPECT_THAT(ListedIds(), ElementsAre("{former}"));
    EXPECT_THAT(machine_.seat.boxes, testing::IsEmpty());
}

/// Registry steps of a refresh of this many live DHCP adapters, each with its own override and address.
std::size_t StepsOfARefresh(std::size_t adapters) {
    FakeMachine machine;
    for (std::size_t i = 0; i < adapters; ++i) {
        const std::string number = std::to_string(1000 + i);
        const std::string id = "{" + number + "}";
        const auto index = static_cast<std::uint32_t>(i + 1);
        machine.AddAdapter(id, "eth" + number, number, {{"NetworkAddress", "00112233" + number}});
        machine.registry->SetBinary(TcpipKey(id), "EnableDHCP", {1});
        machine.ipHelper->AddInterface(index, id);
        machine.ipHelper->addresses.push_back({{10, 0, 0, 1}, {255, 0, 0, 0}, index, 1});
    }
    RefreshNicInfo();
    EXPECT_THAT(Nics, SizeIs(adapters));
    for (const char* table : {"GetInterfaceInfo", "GetIpAddrTable", "GetIpForwardTable"})
        EXPECT_THAT(machine.ipHelper->diary, testing::Contains(table).Times(1));
    EXPECT_THAT(machine.ipHelper->diary, SizeIs(3 + adapters));
    return machine.registry->diary.size();
}

TEST(Refresh, RegistryReadsGrowByTheSameSmallNumberPerAdapterAndTablesAreReadOnce) {
    const std::size_t one = StepsOfARefresh(1);
    const std::size_t hundred = StepsOfARefresh(100);
    const std::size_t twoHundred = StepsOfARefresh(200);
    const std::size_t perAdapter = (hundred - one) / 99;
    EXPECT_EQ(hundred, one + 99 * perAdapter);
    EXPECT_EQ(twoHundred, one + 199 * perAdapter);
    EXPECT_LE(perAdapter, 16U);
    EXPECT_LE(one, 20U);
}

}  // namespace
}  // namespace corvane
