#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/unit/AddressListSupport.h"
#include "tests/unit/QuadBoxesSupport.h"
#include "tests/unit/StackSupport.h"
#include "tests/unit/WindowCommandSupport.h"
#include "ui/logic/DnsEditing.h"
#include "ui/logic/GatewayEditing.h"
#include "ui/logic/IpEditing.h"

/// What the tests of the panels for addresses, gateways and DNS servers share.
namespace corvane::test {

inline constexpr std::uint32_t kLabIndex = 3;
inline const std::string kLabKey =
    "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + std::string(kSecondId);

inline const EditingTarget kLab{.adapter = 1, .live = true};
inline const EditingTarget kNoConnection{.adapter = std::nullopt, .live = true};
/// A preset is edited, whatever connection is selected.
inline const EditingTarget kPreset{.adapter = 1, .live = false};

/// Refuses changes when it is told to.
class RefusingIpHelper : public FakeIpHelper {
 public:
    std::optional<Win32Error> refusal;

    Win32Error AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                            std::uint32_t& nteContext) override {
        return refusal ? *refusal : FakeIpHelper::AddIPAddress(address, mask, ifIndex, nteContext);
    }
    Win32Error DeleteIPAddress(std::uint32_t nteContext) override {
        return refusal ? *refusal : FakeIpHelper::DeleteIPAddress(nteContext);
    }
    Win32Error CreateIpForwardEntry(const IpForwardRow& row) override {
        return refusal ? *refusal : FakeIpHelper::CreateIpForwardEntry(row);
    }
    Win32Error DeleteIpForwardEntry(const IpForwardRow& row) override {
        return refusal ? *refusal : FakeIpHelper::DeleteIpForwardEntry(row);
    }
};

/// Lab has the live interface 3 with the interface metric 25.
class AddressEditingTest : public WindowCommandTest {
 protected:
    AddressEditingTest() {
        CurrentPlatform().ipHelper = ipHelper;
        ipHelper->AddInterface(kLabIndex, kSecondId);
        ipHelper->texts[Win32Error::kInvalidParameter] = "The parameter is incorrect.";
        Nics[1].IfIndex = kLabIndex;
        Nics[1].InterfaceMetric = 25;
    }

    /// The connection has no live interface, for instance while it is disabled.
    static void TakeLabDown() { Nics[1].IfIndex = 0; }

    /// The bytes of a value of Lab's key.
    [[nodiscard]] RegistryValue Stored(const std::string& valueName) const {
        return machine.registry->Value(kLabKey, valueName).value_or(RegistryValue());
    }
    static RegistryValue List(const std::vector<std::string>& entries) {
        std::string bytes;
        for (const std::string& entry : entries) bytes += entry + kNul;
        return MultiSz(bytes + kNul);
    }
    /// Neither the running stack nor the registry was asked for anything.
    void ExpectMachineUntouched() const {
        EXPECT_THAT(ipHelper->diary, testing::IsEmpty());
        EXPECT_THAT(machine.registry->diary, testing::IsEmpty());
    }

    std::shared_ptr<RefusingIpHelper> ipHelper = std::make_shared<RefusingIpHelper>();
    FakeAddressList list;
};

/// `fAddIP` in memory, and a user who types into it. The diary tells of what the rules do with the panel.
class IpPanel : public IpPanelView {
 public:
    IpPanel(std::vector<std::string>& userDiary, AddressListView& list)
        : diary(userDiary), editing(*this, list) {
        mask.listener.change = [this] { editing.MaskChanged(); };
    }

    std::vector<std::string>& diary;
    QuadBoxes address;
    QuadBoxes mask;
    std::string cidr;
    bool persistent = false;
    int beeps = 0;
    std::vector<std::string> cidrSet;  ///< What the rules put into `txtCIDR`.
    IpEditing editing;

    // The user.

    /// Focus and keys.
    void TypeMask(const std::string& keys) {
        editing.MaskFocused();
        mask.MoveTo(0);
        mask.Type(keys);
        mask.MoveTo(kNowhere);
    }
    /// Focus, which selects the whole text, and keys.
    void TypeCidr(const std::string& keys) {
        editing.CidrFocused();
        std::string kept;
        for (const char key : keys) {
            ChangeCidr(kept + key);
            kept = cidr;
        }
    }
    /// Focus and a key that deletes the selected text.
    void DeleteCidr() {
        editing.CidrFocused();
        ChangeCidr("");
    }
    /// The texts of the boxes: address, mask, prefix length.
    [[nodiscard]] std::vector<std::string> Texts() const {
        return {address.entry.Text(), mask.entry.Text(), cidr};
    }
    void SetAddressAndMask(const std::string& addressText, const std::string& maskText) {
        address.entry.SetText(addressText);
        mask.entry.SetText(maskText);
    }

    // What the rules see.

    void ShowPanel() override {
        const std::vector<std::string> texts = Texts();
        diary.push_back("show [" + texts[0] + "] [" + texts[1] + "] [" + texts[2] + "]");
    }
    void MakeDefault() override { diary.emplace_back("default Add IP"); }
    IPAddressEntry& IPAddress() override { return address.entry; }
    IPAddressEntry& SubnetMask() override { return mask.entry; }
    void FocusIPAddress() override { diary.emplace_back("focus IPAddress"); }
    [[nodiscard]] std::string Cidr() const override { return cidr; }
    void SetCidr(const std::string& text) override {
        cidrSet.push_back(text);
        ASSERT_LT(cidrSet.size(), 100U) << "changes without end";
        ChangeCidr(text);
    }
    [[nodiscard]] bool PersistentTicked() const override { return persistent; }
    void Beep() override { ++beeps; }

 private:
    void ChangeCidr(const std::string& text) {
        if (text == cidr) return;
        cidr = text;
        editing.CidrChanged();
    }
};

inline const std::vector<std::string> kAddressWrites = {"write IPAddress", "write SubnetMask"};

/// Lab has two static addresses.
class LabAddressesTest : public AddressEditingTest {
 protected:
    LabAddressesTest() {
        machine.registry->SetMulti(kLabKey, "IPAddress", {"10.0.0.5", "10.0.0.6"});
        machine.registry->SetMulti(kLabKey, "SubnetMask", {"255.0.0.0", "255.255.0.0"});
        Nics[1].IpAddresses = {"10.0.0.5", "10.0.0.6"};
        Nics[1].IpRowFlags = {65531, 12};
        list.rows = {{"10.0.0.5", "255.0.0.0", 0}, {"10.0.0.6", "255.255.0.0", 1}};
        list.header = "IP Address (2)";
    }

    void ExpectStored(const std::vector<std::string>& addresses,
                      const std::vector<std::string>& masks) const {
        EXPECT_EQ(Stored("IPAddress"), List(addresses));
        EXPECT_EQ(Stored("SubnetMask"), List(masks));
    }
    /// The list is for the refresh to fill.
    void ExpectListAsBefore() const {
        EXPECT_THAT(list.rows, testing::ElementsAre(DetailsRow{"10.0.0.5", "255.0.0.0", 0},
                                                    DetailsRow{"10.0.0.6", "255.255.0.0", 1}));
        EXPECT_EQ(list.header, "IP Address (2)");
    }

    IpPanel panel{diary, list};
};

/// `fAddGateway` in memory. The diary tells of what the rules do with the panel.
class GatewayPanel : public GatewayPanelView {
 public:
    explicit GatewayPanel(std::vector<std::string>& userDiary) : diary(userDiary) {}

    std::vector<std::string>& diary;
    QuadBoxes gateway;
    std::string metric;
    bool metricEnabled = true;
    bool persistent = false;
    bool autoMetric = false;

    void ShowPanel() override { diary.emplace_back("show"); }
    void MakeDefault() override { diary.emplace_back("default Add Gateway"); }
    IPAddressEntry& Gateway() override { return gateway.entry; }
    void FocusGateway() override { diary.emplace_back("focus Gateway"); }
    [[nodiscard]] std::string Metric() const override { return metric; }
    void SetMetric(const std::string& text) override { metric = text; }
    void EnableMetric(bool enable) override { metricEnabled = enable; }
    void FocusMetric() override {
        EXPECT_TRUE(metricEnabled) << "a box that is not enabled cannot have the focus";
        diary.emplace_back("focus txtMetric");
    }
    [[nodiscard]] bool AutoMetricTicked() const override { return autoMetric; }
    void TickAutoMetric(bool ticked) override { autoMetric = ticked; }
    [[nodiscard]] bool PersistentTicked() const override { return persistent; }
};

/// `fAddDNS` in memory. The diary tells of what the rules do with the panel.
class DnsPanel : public DnsPanelView {
 public:
    explicit DnsPanel(std::vector<std::string>& userDiary) : diary(userDiary) {}

    std::vector<std::string>& diary;
    QuadBoxes address;

    void ShowPanel() override { diary.emplace_back("show"); }
    void MakeDefault() override { diary.emplace_back("default Add DNS"); }
    IPAddressEntry& DNSAddress() override { return address.entry; }
    void FocusDNSAddress() override { diary.emplace_back("focus DNSAddress"); }
};

}  // namespace corvane::test
