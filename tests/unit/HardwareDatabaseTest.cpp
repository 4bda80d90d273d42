#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include <gtest/gtest.h>

#include "platform/linux/links/HardwareDatabase.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* kIntel = "pci:v00008086d000010D3sv0000FFFFsd0000FFFFbc02sc00i00";
constexpr const char* kVirtio = "virtio:d00000001v00001AF4";
constexpr const char* kVirtioPci = "pci:v00001AF4d00001041sv00001AF4sd00001100bc02sc00i00";
constexpr const char* kUsb = "usb:v0BDAp8153d3000dc00dsc00dp00icFFiscFFip00in00";

/// A database with these entries.
HardwareLookup Database(std::map<std::string, HardwareEntry> entries) {
    return [entries = std::move(entries)](const std::string& modalias) {
        const auto found = entries.find(modalias);
        return found == entries.end() ? HardwareEntry{} : found->second;
    };
}

const HardwareLookup kNoDatabase = [](const std::string&) { return HardwareEntry{}; };

TEST(NameHardware, VendorAndModelWithTheBusIds) {
    const DeviceName pci = NameHardware(
        {kIntel}, "e1000e", Database({{kIntel, {"Intel Corporation", "82574L Gigabit Network Connection"}}}));
    EXPECT_EQ(pci.description, "Intel Corporation 82574L Gigabit Network Connection");
    EXPECT_EQ(pci.componentId, "pci\\ven_8086&dev_10d3");
    const DeviceName usb =
        NameHardware({kUsb}, "r8152", Database({{kUsb, {"Realtek Semiconductor Corp.", "RTL8153"}}}));
    EXPECT_EQ(usb.description, "Realtek Semiconductor Corp. RTL8153");
    EXPECT_EQ(usb.componentId, "usb\\vid_0bda&pid_8153");
}

TEST(NameHardware, DeviceWithoutAnEntryIsNamedByItsParent) {
    const DeviceName name =
        NameHardware({kVirtio, kVirtioPci}, "virtio_net",
                     Database({{kVirtioPci, {"Red Hat, Inc.", "Virtio 1.0 network device"}}}));
    EXPECT_EQ(name.description, "Red Hat, Inc. Virtio 1.0 network device");
    EXPECT_EQ(name.componentId, "pci\\ven_1af4&dev_1041");
}

TEST(NameHardware, EntryWithOnlyAVendorOrOnlyAModel) {
    EXPECT_EQ(NameHardware({kIntel}, "x", Database({{kIntel, {"Intel Corporation", ""}}})).description,
              "Intel Corporation Network Adapter");
    EXPECT_EQ(NameHardware({kIntel}, "x", Database({{kIntel, {"", "82574L"}}})).description, "82574L");
    EXPECT_EQ(NameHardware({kVirtio, kVirtioPci}, "x",
                           Database({{kVirtio, {"Vendor", ""}}, {kVirtioPci, {"Red Hat, Inc.", "Device"}}}))
                  .description,
              "Red Hat, Inc. Device");
}

TEST(NameHardware, WithoutADatabaseTheDriverAndTheIds) {
    EXPECT_EQ(NameHardware({kIntel}, "e1000e", kNoDatabase).description, "e1000e (8086:10d3)");
    EXPECT_EQ(NameHardware({kIntel}, "", kNoDatabase).description, "Network Adapter (8086:10d3)");
    EXPECT_EQ(NameHardware({kVirtio}, "virtio_net", kNoDatabase).description, "virtio_net");
    EXPECT_EQ(NameHardware({}, "Fec", kNoDatabase).description, "Fec");
    EXPECT_EQ(NameHardware({}, "Fec", kNoDatabase).componentId, "fec");
    EXPECT_EQ(NameHardware({}, "", kNoDatabase).description, "Network Adapter");
    EXPECT_EQ(NameHardware({}, "", kNoDatabase).componentId, "");
}

TEST(NameHardware, OtherBusesAndOddModaliasesKeepTheirText) {
    EXPECT_EQ(NameHardware({kVirtio}, "virtio_net", kNoDatabase).componentId, "virtio\\d00000001v00001af4");
    EXPECT_EQ(NameHardware({"platform:fec"}, "fec", kNoDatabase).componentId, "platform\\fec");
    EXPECT_EQ(NameHardware({"pci:v0000"}, "x", kNoDatabase).componentId, "pci\\v0000");
    EXPECT_EQ(NameHardware({"pci:v0000ZZZZd00001041"}, "x", kNoDatabase).componentId,
              "pci\\v0000zzzzd00001041");
    EXPECT_EQ(NameHardware({"usb:v0BDAp81"}, "x", kNoDatabase).componentId, "usb\\v0bdap81");
    EXPECT_EQ(NameHardware({"noseparator"}, "x", kNoDatabase).componentId, "noseparator");
}

TEST(NameHardware, ByTheMachinesOwnDatabase) {
    const DeviceName intel = NameHardware({kIntel}, "e1000e", LookUpHardware);
    EXPECT_EQ(intel.description, "Intel Corporation 82574L Gigabit Network Connection");
    const DeviceName realtek = NameHardware({kUsb}, "r8152", LookUpHardware);
    EXPECT_NE(realtek.description.find("RTL8153 Gigabit Ethernet Adapter"), std::string::npos)
        << realtek.description;
    EXPECT_EQ(LookUpHardware(kVirtio), HardwareEntry{});
    const DeviceName virtio = NameHardware({kVirtio, kVirtioPci}, "virtio_net", LookUpHardware);
    EXPECT_EQ(virtio.description, "Red Hat, Inc. Virtio 1.0 network device");
    EXPECT_EQ(LookUpHardware("nosuchbus:v1"), HardwareEntry{});
}

TEST(NameKind, KnownKindsHaveWordsAndOthersTheirOwn) {
    EXPECT_EQ(NameKind("veth").description, "Virtual Ethernet");
    EXPECT_EQ(NameKind("veth").componentId, "veth");
    EXPECT_EQ(NameKind("bridge").componentId, "ms_bridgemp");
    EXPECT_EQ(NameKind("wireguard").description, "WireGuard Tunnel");
    EXPECT_EQ(NameKind("newkind").description, "newkind");
    EXPECT_EQ(NameKind("newkind").componentId, "newkind");
}

/// A sysfs tree in a folder of its own.
class Sysfs : public ::testing::Test {
 protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "sysfs.XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root_ = pattern;
        fs::create_directories(root_ / "class/net");
    }
    void TearDown() override { fs::remove_all(root_); }

    void Write(const std::string& path, const std::string& line) const {
        fs::create_directories((root_ / path).parent_path());
        std::ofstream(root_ / path) << line << "\n";
    }

    /// A link "eth0" with index 5 and this device below devices/.
    void MakeLink(const std::string& device) const {
        Write("devices/" + device + "/net/eth0/ifindex", "5");
        fs::create_directory_symlink("../..", root_ / ("devices/" + device + "/net/eth0/device"));
        fs::create_directory_symlink("../../devices/" + device + "/net/eth0", root_ / "class/net/eth0");
    }

    [[nodiscard]] std::vector<std::string> Read(std::uint32_t index = 5) const {
        return ReadModaliases(root_.string(), "eth0", index);
    }

    fs::path root_;
};

TEST_F(Sysfs, PciDeviceIsNotLookedPast) {
    Write("devices/pci0000:00/0000:00:1c.0/modalias", "pci:v00008086d0000A110bc06sc04");
    Write("devices/pci0000:00/0000:00:1c.0/0000:01:00.0/modalias", kIntel);
    MakeLink("pci0000:00/0000:00:1c.0/0000:01:00.0");
    EXPECT_EQ(Read(), std::vector<std::string>{kIntel});
}

TEST_F(Sysfs, UsbInterfaceIsNotLookedPast) {
    Write("devices/pci0000:00/0000:00:14.0/modalias", "pci:v00008086d0000A36Dbc0C");
    Write("devices/pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/modalias", kUsb);
    MakeLink("pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0");
    EXPECT_EQ(Read(), std::vector<std::string>{kUsb});
}

TEST_F(Sysfs, VirtioDeviceIsFollowedToThePciDevice) {
    Write("devices/pci0000:00/0000:00:03.0/modalias", kVirtioPci);
    Write("devices/pci0000:00/0000:00:03.0/virtio0/modalias", kVirtio);
    MakeLink("pci0000:00/0000:00:03.0/virtio0");
    EXPECT_EQ(Read(), (std::vector<std::string>{kVirtio, kVirtioPci}));
}

TEST_F(Sysfs, DeviceWithoutABusParentHasItsOwnModaliasOnly) {
    Write("devices/virtio-mmio.0/virtio0/modalias", kVirtio);
    MakeLink("virtio-mmio.0/virtio0");
    EXPECT_EQ(Read(), std::vector<std::string>{kVirtio});
}

TEST_F(Sysfs, LinkOfAnotherNamespaceWithTheSameNameIsNotBelieved) {
    Write("devices/pci0000:00/0000:01:00.0/modalias", kIntel);
    MakeLink("pci0000:00/0000:01:00.0");
    EXPECT_EQ(Read(6), std::vector<std::string>{});
    EXPECT_EQ(ReadModaliases(root_.string(), "eth1", 5), std::vector<std::string>{});
    EXPECT_EQ(ReadModaliases((root_ / "nowhere").string(), "eth0", 5), std::vector<std::string>{});
}

TEST_F(Sysfs, LinkWithoutADeviceHasNone) {
    Write("class/net/eth0/ifindex", "5");
    EXPECT_EQ(Read(), std::vector<std::string>{});
}

}  // namespace
}  // namespace corvane
