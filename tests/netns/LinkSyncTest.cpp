#include <algorithm>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "base/Address.h"
#include "netns/NetnsSupport.h"
#include "platform/Registry.h"
#include "platform/RegistryKeys.h"
#include "platform/linux/links/LinkSync.h"
#include "platform/linux/links/OriginalNote.h"
#include "platform/linux/links/TcpipKey.h"

namespace corvane {
namespace {

constexpr MacBytes kMac{0x02, 0x00, 0x5e, 0x00, 0x53, 0x01};
constexpr MacBytes kOtherMac{0x02, 0x00, 0x5e, 0x00, 0x53, 0x02};
constexpr MacBytes kPermanent{0x00, 0x0c, 0x29, 0x4f, 0x8e, 0x35};

KernelLink Link(std::uint32_t index, const std::string& name, const MacBytes& mac = kMac, bool up = true) {
    KernelLink link;
    link.index = index;
    link.name = name;
    link.arpType = 1;
    link.flags = up ? 0x41U : 0U;  // IFF_UP | IFF_RUNNING
    link.kind = "veth";
    link.hasAddress = true;
    link.address = mac;
    return link;
}

KernelAddress Address(std::uint32_t index, const Ipv4Bytes& address, std::uint32_t validSeconds = kForever) {
    KernelAddress record;
    record.index = index;
    record.address = address;
    record.prefix = 24;
    record.validSeconds = validSeconds;
    return record;
}

KernelRoute DefaultRoute(std::uint32_t index, const Ipv4Bytes& gateway, std::uint32_t metric) {
    KernelRoute route;
    route.index = index;
    route.gateway = gateway;
    route.metric = metric;
    return route;
}

class LinkSync : public testing::Test {
 protected:
    ~LinkSync() override { std::filesystem::remove_all(folder_); }

    void Sync() { ASSERT_EQ(SyncLinks(store_, picture_, zone_, ethtool_, rows_), Win32Error::kSuccess); }

    const LinkRow& Row(const std::string& name) {
        const auto row =
            std::find_if(rows_.begin(), rows_.end(), [&](const LinkRow& r) { return r.name == name; });
        EXPECT_TRUE(row != rows_.end()) << name;
        static const LinkRow kNone;
        return row == rows_.end() ? kNone : *row;
    }
    std::string Bytes(const std::string& key, const std::string& name) {
        const RegistryRead read = store_.ReadValue(kHkeyLocalMachine, key, name);
        return Ok(read.code) ? std::string(read.value.data.begin(), read.value.data.end()) : "missing";
    }
    std::string Tcpip(const std::string& link, const std::string& name) {
        return Bytes(TcpipKey(Row(link).id), name);
    }
    bool Listed(const std::string& id) {
        return store_.ReadValue(kHkeyLocalMachine, kAdaptersKey + ("\\" + id), "").keyOpened;
    }
    void UserSets(const std::string& key, const std::string& name, const std::string& bytes) {
        ASSERT_EQ(store_.WriteValue(kHkeyLocalMachine, key, name, {kRegSz, {bytes.begin(), bytes.end()}}),
                  Win32Error::kSuccess);
    }

    std::string folder_ = "/run/" + netns::NewLinkName("sync");
    RegistryStore store_{folder_ + "/registry.db"};
    Ethtool ethtool_;
    TimeZone zone_{"Europe/Berlin", "(GMT+01:00) Europe/Berlin"};
    KernelPicture picture_{{}, {}, {}, "boot:1"};
    std::vector<LinkRow> rows_;
};

using namespace std::string_literals;

TEST_F(LinkSync, ANewLinkHasAllItsKeys) {
    picture_.links = {Link(3, "eth0")};
    Sync();
    const LinkRow& row = Row("eth0");
    EXPECT_TRUE(Listed(row.id));
    EXPECT_EQ(Bytes(ConnectionKey(row.id), "Name"), "eth0\0"s);
    EXPECT_EQ(Bytes(DriverKeyPath(row.driverKey), "NetCfgInstanceId"), row.id + '\0');
    EXPECT_EQ(Bytes(DriverKeyPath(row.driverKey), "ComponentId"), "veth\0"s);
    EXPECT_EQ(Bytes(kLinkageKey, "Bind"), "\\Device\\" + row.id + "\0\0"s);
    EXPECT_EQ(row.id.size(), 38U);
    EXPECT_EQ(row.id.front(), '{');
    EXPECT_EQ(row.driverKey, "0000");
}

TEST_F(LinkSync, TheTimeZoneIsKeptThere) {
    Sync();
    EXPECT_EQ(Bytes(kTimeZoneKey, "StandardName"), "Europe/Berlin\0"s);
    EXPECT_EQ(Bytes(kTimeZonesKey + "\\Europe/Berlin"s, "Display"), "(GMT+01:00) Europe/Berlin\0"s);
    zone_.display = "(GMT+02:00) Europe/Berlin";
    Sync();
    EXPECT_EQ(Bytes(kTimeZonesKey + "\\Europe/Berlin"s, "Display"), "(GMT+02:00) Europe/Berlin\0"s);
}

TEST_F(LinkSync, ThePresentSetUpIsRecordedAndRefreshed) {
    picture_.links = {Link(3, "eth0")};
    picture_.addresses = {Address(3, {10, 0, 0, 5}), Address(3, {10, 0, 0, 6})};
    picture_.routes = {DefaultRoute(3, {10, 0, 0, 1}, 7)};
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "10.0.0.5\00010.0.0.6\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "SubnetMask"), "255.255.255.0\000255.255.255.0\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "DefaultGateway"), "10.0.0.1\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "DefaultGatewayMetric"), "7\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "EnableDHCP"), "\0\0\0\0"s);
    picture_.addresses.pop_back();
    picture_.routes.clear();
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "10.0.0.5\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "DefaultGateway"), "\0"s);
}

TEST_F(LinkSync, ALinkWithoutAddressHoldsThePlaceholder) {
    picture_.links = {Link(3, "eth0")};
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "0.0.0.0\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "SubnetMask"), "0.0.0.0\0\0"s);
}

TEST_F(LinkSync, AnAddressWithALifetimeMeansDhcp) {
    picture_.links = {Link(3, "eth0")};
    picture_.addresses = {Address(3, {10, 0, 0, 5}, 120)};
    Sync();
    EXPECT_EQ(Tcpip("eth0", "EnableDHCP"), "\1\0\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "0.0.0.0\0\0"s);
}

TEST_F(LinkSync, AnAddressThatTheProgramAddedAtRunTimeIsNotRecordedAsLongAsTheLinkLives) {
    picture_.links = {Link(3, "eth0", kPermanent)};
    picture_.links[0].permanent = kPermanent;
    picture_.addresses = {Address(3, {10, 0, 0, 5})};
    Sync();
    const KernelAddress added = Address(3, {10, 0, 0, 6});
    ASSERT_EQ(store_.Transact([&](RegistryStore::Editor& editor) {
        return NoteRunTimeAddress(editor, Row("eth0").id, added);
    }),
              Win32Error::kSuccess);
    // A look at the kernel from before the addition does not end the note.
    picture_.addresses = {Address(3, {10, 0, 0, 5}), Address(3, {10, 0, 0, 7})};
    Sync();
    picture_.addresses.push_back(added);
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "10.0.0.5\00010.0.0.7\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "SubnetMask"), "255.255.255.0\000255.255.255.0\0\0"s);
    KernelAddress otherPrefix = added;
    otherPrefix.prefix = 16;
    picture_.addresses = {otherPrefix};
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "10.0.0.6\0\0"s);
    picture_.addresses = {added};
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "0.0.0.0\0\0"s);
    picture_.incarnationBase = "boot:2";
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "10.0.0.6\0\0"s);
    EXPECT_EQ(Tcpip("eth0", kRunTimeAddresses), "missing");
}

TEST_F(LinkSync, WhatTheUserWroteRules) {
    picture_.links = {Link(3, "eth0")};
    picture_.addresses = {Address(3, {10, 0, 0, 5})};
    Sync();
    UserSets(TcpipKey(Row("eth0").id), "IPAddress", "192.168.1.9\0\0"s);
    picture_.addresses = {Address(3, {10, 0, 0, 7})};
    picture_.routes = {DefaultRoute(3, {10, 0, 0, 1}, 0)};
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "192.168.1.9\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "DefaultGateway"), "10.0.0.1\0\0"s);
}

TEST_F(LinkSync, ALinkThatWentDownKeepsWhatItHad) {
    picture_.links = {Link(3, "eth0")};
    picture_.addresses = {Address(3, {10, 0, 0, 5})};
    picture_.routes = {DefaultRoute(3, {10, 0, 0, 1}, 0)};
    Sync();
    picture_.links[0].flags = 0;
    picture_.addresses.clear();
    picture_.routes.clear();
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "10.0.0.5\0\0"s);
    EXPECT_EQ(Tcpip("eth0", "DefaultGateway"), "10.0.0.1\0\0"s);
}

TEST_F(LinkSync, AHeldLinkKeepsWhatItHadEvenWhenItIsUp) {
    picture_.links = {Link(3, "eth0")};
    picture_.addresses = {Address(3, {10, 0, 0, 5})};
    Sync();
    LinkRow row = Row("eth0");
    row.held = true;
    ASSERT_EQ(store_.Transact([&](RegistryStore::Editor& editor) { return editor.SaveLink(row); }),
              Win32Error::kSuccess);
    picture_.addresses.clear();
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "10.0.0.5\0\0"s);
    row = Row("eth0");
    row.held = false;
    ASSERT_EQ(store_.Transact([&](RegistryStore::Editor& editor) { return editor.SaveLink(row); }),
              Win32Error::kSuccess);
    Sync();
    EXPECT_EQ(Tcpip("eth0", "IPAddress"), "0.0.0.0\0\0"s);
}

TEST_F(LinkSync, ThePermanentAddressIsTheOriginal) {
    picture_.links = {Link(3, "eth0", kOtherMac)};
    picture_.links[0].permanent = kPermanent;
    Sync();
    EXPECT_EQ(Row("eth0").original, "000C294F8E35");
}

TEST_F(LinkSync, TheFirstSeenAddressIsTheOriginalOfAVirtualLinkForAsLongAsItLives) {
    picture_.links = {Link(3, "veth0", kMac)};
    Sync();
    picture_.links[0].address = kOtherMac;
    picture_.links[0].flags = 0;
    Sync();
    EXPECT_EQ(Row("veth0").original, MacDigits(kMac));
}

TEST_F(LinkSync, ZerosAreNeverTheOriginal) {
    picture_.links = {Link(3, "veth0", MacBytes{})};
    Sync();
    EXPECT_EQ(Row("veth0").original, "");
}

TEST_F(LinkSync, ANewVirtualLinkOfAKnownNameBringsItsOwnOriginal) {
    picture_.links = {Link(3, "veth0", kMac)};
    Sync();
    UserSets(DriverKeyPath(Row("veth0").driverKey), "NetworkAddress", "02AABBCCDDEE");
    picture_.incarnationBase = "boot:2";
    picture_.links = {Link(7, "veth0", kOtherMac)};
    Sync();
    EXPECT_EQ(Row("veth0").original, MacDigits(kOtherMac));
    EXPECT_EQ(Bytes(DriverKeyPath(Row("veth0").driverKey), "NetworkAddress"), "02AABBCCDDEE\0"s);
}

TEST_F(LinkSync, ANewLinkThatShowsTheOverrideKeepsTheFormerOriginal) {
    picture_.links = {Link(3, "veth0", kMac)};
    Sync();
    LinkRow row = Row("veth0");
    row.applied = MacDigits(kOtherMac);
    ASSERT_EQ(store_.Transact([&](RegistryStore::Editor& editor) { return editor.SaveLink(row); }),
              Win32Error::kSuccess);
    picture_.incarnationBase = "boot:2";
    picture_.links = {Link(7, "veth0", kOtherMac)};
    Sync();
    EXPECT_EQ(Row("veth0").original, MacDigits(kMac));
}

TEST_F(LinkSync, ALostStoreDoesNotMakeTheProgramsAddressTheOriginal) {
    picture_.incarnationBase = "boot:" + folder_.substr(5);
    picture_.links = {Link(3, "veth0", kOtherMac)};
    NoteOriginal(picture_.incarnationBase + ":3", MacDigits(kMac));
    Sync();
    EXPECT_EQ(Row("veth0").original, MacDigits(kMac));
    EXPECT_EQ(Bytes(DriverKeyPath(Row("veth0").driverKey), "OriginalNetworkAddress"), MacText(kMac) + '\0');
    ForgetOriginal(picture_.incarnationBase + ":3");
    EXPECT_EQ(NotedOriginal(picture_.incarnationBase + ":3"), "");
}

TEST_F(LinkSync, ACardThatShowsAnotherAddressAtFirstSightHasItsPermanentOneSaved) {
    picture_.links = {Link(3, "eth0", kOtherMac)};
    picture_.links[0].permanent = kPermanent;
    Sync();
    EXPECT_EQ(Bytes(DriverKeyPath(Row("eth0").driverKey), "OriginalNetworkAddress"),
              MacText(kPermanent) + '\0');
}

TEST_F(LinkSync, TheGuidIsTheSameForAnotherStore) {
    picture_.links = {Link(3, "eth0")};
    Sync();
    RegistryStore other(folder_ + "/other.db");
    std::vector<LinkRow> rows;
    picture_.incarnationBase = "boot:2";
    ASSERT_EQ(SyncLinks(other, picture_, zone_, ethtool_, rows), Win32Error::kSuccess);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].id, Row("eth0").id);
}

TEST_F(LinkSync, ARenamedLinkKeepsItsGuidAndSettings) {
    picture_.links = {Link(3, "eth0")};
    Sync();
    const std::string id = Row("eth0").id;
    UserSets(TcpipKey(id), "NameServer", "8.8.8.8");
    picture_.links[0].name = "lan0";
    Sync();
    EXPECT_EQ(Row("lan0").id, id);
    EXPECT_EQ(Bytes(ConnectionKey(id), "Name"), "lan0\0"s);
    EXPECT_EQ(Tcpip("lan0", "NameServer"), "8.8.8.8\0"s);
}

TEST_F(LinkSync, ANameThatARenamedLinkLeftFreeGetsAnotherGuid) {
    picture_.links = {Link(3, "eth0")};
    Sync();
    const std::string id = Row("eth0").id;
    picture_.links = {Link(3, "lan0"), Link(4, "eth0", kOtherMac)};
    Sync();
    EXPECT_EQ(Row("lan0").id, id);
    EXPECT_NE(Row("eth0").id, id);
    EXPECT_NE(Row("eth0").driverKey, Row("lan0").driverKey);
}

TEST_F(LinkSync, ACardIsKnownByItsPermanentAddressUnderAnotherNameAfterAReboot) {
    picture_.links = {Link(3, "eth0", kPermanent)};
    picture_.links[0].permanent = kPermanent;
    Sync();
    const std::string id = Row("eth0").id;
    picture_.incarnationBase = "boot:2";
    picture_.links[0].name = "enp3s0";
    picture_.links[0].index = 2;
    Sync();
    EXPECT_EQ(Row("enp3s0").id, id);
    EXPECT_EQ(rows_.size(), 1U);
}

TEST_F(LinkSync, AnotherCardUnderTheSameNameIsAnotherAdapter) {
    picture_.links = {Link(3, "eth0", kPermanent)};
    picture_.links[0].permanent = kPermanent;
    Sync();
    const std::string id = Row("eth0").id;
    picture_.incarnationBase = "boot:2";
    picture_.links[0].permanent = kOtherMac;
    picture_.links[0].address = kOtherMac;
    Sync();
    const auto present =
        std::find_if(rows_.begin(), rows_.end(), [](const LinkRow& row) { return row.present; });
    ASSERT_NE(present, rows_.end());
    EXPECT_NE(present->id, id);
    EXPECT_EQ(present->original, MacDigits(kOtherMac));
}

TEST_F(LinkSync, AVanishedLinkIsNotListedAndFindsItsSettingsWhenItComesBack) {
    picture_.links = {Link(3, "eth0")};
    Sync();
    const std::string id = Row("eth0").id;
    UserSets(TcpipKey(id), "NameServer", "8.8.8.8");
    const std::vector<KernelLink> links = picture_.links;
    picture_.links.clear();
    Sync();
    EXPECT_FALSE(Listed(id));
    EXPECT_EQ(Bytes(kLinkageKey, "Bind"), "\0"s);
    EXPECT_EQ(Bytes(TcpipKey(id), "NameServer"), "8.8.8.8\0"s);
    picture_.links = {Link(9, "eth0", kOtherMac)};
    Sync();
    EXPECT_EQ(Row("eth0").id, id);
    EXPECT_TRUE(Listed(id));
    EXPECT_EQ(Tcpip("eth0", "NameServer"), "8.8.8.8\0"s);
}

TEST_F(LinkSync, AVanishedVirtualLinkWithoutUserSettingsLeavesNothing) {
    picture_.links = {Link(3, "veth0"), Link(4, "veth1", kOtherMac)};
    Sync();
    const LinkRow gone = Row("veth0");
    picture_.links.erase(picture_.links.begin());
    Sync();
    EXPECT_EQ(rows_.size(), 1U);
    EXPECT_FALSE(store_.ReadValue(kHkeyLocalMachine, TcpipKey(gone.id), "").keyOpened);
    EXPECT_FALSE(store_.ReadValue(kHkeyLocalMachine, DriverKeyPath(gone.driverKey), "").keyOpened);
    EXPECT_FALSE(store_.ReadValue(kHkeyLocalMachine, ConnectionKey(gone.id), "").keyOpened);
}

TEST_F(LinkSync, NothingIsWrittenWhenEverythingIsInStep) {
    picture_.links = {Link(3, "eth0")};
    picture_.addresses = {Address(3, {10, 0, 0, 5}, 100)};
    Sync();
    const auto before = std::filesystem::last_write_time(folder_ + "/registry.db");
    std::filesystem::last_write_time(folder_ + "/registry.db", before - std::chrono::hours(1));
    picture_.addresses = {Address(3, {10, 0, 0, 5}, 90)};  // a lifetime that runs is no change
    Sync();
    EXPECT_EQ(std::filesystem::last_write_time(folder_ + "/registry.db"), before - std::chrono::hours(1));
}

TEST_F(LinkSync, KeysStandEvenWithoutAnyLink) {
    Sync();
    std::vector<std::string> names{"untouched"};
    EXPECT_EQ(store_.EnumSubkeys(kHkeyLocalMachine, kAdaptersKey, names), Win32Error::kSuccess);
    EXPECT_EQ(names, std::vector<std::string>{"untouched"});
    EXPECT_EQ(store_.EnumSubkeys(kHkeyLocalMachine, kClassKey, names), Win32Error::kSuccess);
}

TEST(IsAdapterTest, LoopbackTunnelsAndLinksWithoutAddressAreNone) {
    EXPECT_TRUE(IsAdapter(Link(1, "eth0")));
    KernelLink link = Link(1, "lo");
    link.arpType = 772;
    EXPECT_FALSE(IsAdapter(link));
    link.arpType = 65534;
    EXPECT_FALSE(IsAdapter(link));
    link = Link(1, "odd");
    link.hasAddress = false;
    EXPECT_FALSE(IsAdapter(link));
}

TEST(TimeZoneTest, TheDisplayHoldsTheOffset) {
    EXPECT_EQ(TimeZoneDisplay("Etc/UTC", 0), "(GMT) Etc/UTC");
    EXPECT_EQ(TimeZoneDisplay("Europe/Berlin", 3600), "(GMT+01:00) Europe/Berlin");
    EXPECT_EQ(TimeZoneDisplay("Asia/Kolkata", 19800), "(GMT+05:30) Asia/Kolkata");
    EXPECT_EQ(TimeZoneDisplay("America/St_Johns", -12600), "(GMT-03:30) America/St_Johns");
}

}  // namespace
}  // namespace corvane
