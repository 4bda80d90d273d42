#include <cstdint>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "base/Address.h"

namespace corvane {
namespace {

TEST(MacDigitsText, TwelveDigitsInEitherCaseAreParsed) {
    const MacBytes mac{0x00, 0x12, 0xAB, 0x34, 0xCD, 0xFF};
    EXPECT_EQ(ParseMacDigits("0012AB34CDFF"), mac);
    EXPECT_EQ(ParseMacDigits("0012ab34cdfF"), mac);
}

TEST(MacDigitsText, EveryOtherTextIsRefused) {
    for (const char* text :
         {"", "0012AB34CDF", "0012AB34CDFFF", "00-12-AB-34-CD-FF", "0012AB34CDFG", "0x12AB34CDFF",
          " 012AB34CDFF", "+012AB34CDFF", "-012AB34CDFF", "0012AB34CDF ", "0012AB34CD-1"}) {
        EXPECT_EQ(ParseMacDigits(text), std::nullopt) << text;
    }
    EXPECT_EQ(ParseMacDigits(std::string(12, '\0')), std::nullopt);
}

TEST(MacDigitsText, TextFormsAreUpperCase) {
    const MacBytes mac{0x00, 0x0A, 0xAB, 0x34, 0xCD, 0xFF};
    EXPECT_EQ(MacText(mac), "00-0A-AB-34-CD-FF");
    EXPECT_EQ(MacDigits(mac), "000AAB34CDFF");
}

TEST(MacRefusal, AnOrdinaryOrLocallyAdministeredAddressIsAllowed) {
    EXPECT_FALSE(MacRefusal({0x00, 0x0C, 0x29, 1, 2, 3}));
    EXPECT_FALSE(MacRefusal({0x02, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(MacRefusal({0, 0, 0, 0, 0, 1}));
}

TEST(MacRefusal, AllZerosAreRefused) { EXPECT_EQ(MacRefusal({}).Words(), "it is all zeros"); }

TEST(MacRefusal, GroupAndBroadcastAddressesAreRefused) {
    const std::string reason = "it is a multicast address (the first octet is odd)";
    EXPECT_EQ(MacRefusal({0x01, 0, 0x5E, 0, 0, 1}).Words(), reason);
    EXPECT_EQ(MacRefusal({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}).Words(), reason);
}

TEST(Ipv4Text, FourNumbersAreParsed) {
    EXPECT_EQ(ParseIpv4("192.168.0.1"), (Ipv4Bytes{192, 168, 0, 1}));
    EXPECT_EQ(ParseIpv4("0.0.0.0"), Ipv4Bytes{});
    EXPECT_EQ(ParseIpv4("255.255.255.255"), (Ipv4Bytes{255, 255, 255, 255}));
}

TEST(Ipv4Text, EveryOtherTextIsRefused) {
    for (const char* text : {"", ".", "...", "1.2.3", "1.2.3.", ".1.2.3", "1.2.3.4.", "1.2.3.4.5",
                             "1.2.3.256", "1.2.3.-4", "1.2.3.+4", "1.2.3.4 ", " 1.2.3.4", "1.2. 3.4",
                             "1.2.3.x", "1.2.3.0x4", "1.2.3.99999999999999999999"}) {
        EXPECT_EQ(ParseIpv4(text), std::nullopt) << text;
    }
    EXPECT_EQ(ParseIpv4(std::string("1.2.3.4\0", 8)), std::nullopt);
}

TEST(Ipv4Order, TheFirstByteIsTheHighestOfTheNumber) {
    EXPECT_EQ(HostOrder({192, 168, 0, 1}), 0xC0A80001U);
    EXPECT_EQ(FromHostOrder(0xC0A80001U), (Ipv4Bytes{192, 168, 0, 1}));
    EXPECT_EQ(FromHostOrder(0xFFFEFDFCU), (Ipv4Bytes{255, 254, 253, 252}));
}

TEST(Ipv4Mask, EveryPrefixLengthGoesToItsMaskAndBack) {
    for (unsigned prefix = 0; prefix <= 32; ++prefix) {
        const Ipv4Bytes mask = MaskFromPrefix(static_cast<std::uint8_t>(prefix));
        EXPECT_EQ(PrefixFromMask(mask), prefix);
        const std::uint64_t hosts = std::uint64_t{0xFFFFFFFFU} - HostOrder(mask) + 1;
        EXPECT_EQ(hosts, std::uint64_t{1} << (32 - prefix));
    }
}

TEST(Ipv4Mask, KnownMasks) {
    EXPECT_EQ(MaskFromPrefix(0), Ipv4Bytes{});
    EXPECT_EQ(MaskFromPrefix(20), (Ipv4Bytes{255, 255, 240, 0}));
    EXPECT_EQ(MaskFromPrefix(32), (Ipv4Bytes{255, 255, 255, 255}));
}

TEST(Ipv4Mask, APrefixAbove32CountsAs32) {
    EXPECT_EQ(MaskFromPrefix(33), (Ipv4Bytes{255, 255, 255, 255}));
    EXPECT_EQ(MaskFromPrefix(255), (Ipv4Bytes{255, 255, 255, 255}));
}

TEST(Ipv4Mask, MasksWithHolesHaveNoPrefix) {
    for (const Ipv4Bytes& mask : {Ipv4Bytes{255, 0, 255, 0}, Ipv4Bytes{0, 255, 255, 255},
                                  Ipv4Bytes{0, 0, 0, 1}, Ipv4Bytes{255, 255, 255, 253}}) {
        EXPECT_EQ(PrefixFromMask(mask), std::nullopt) << HostOrder(mask);
    }
}

TEST(HostAddress, OrdinaryAddressesAreAllowed) {
    for (const Ipv4Bytes& address :
         {Ipv4Bytes{1, 0, 0, 0}, Ipv4Bytes{10, 0, 0, 5}, Ipv4Bytes{126, 255, 255, 255},
          Ipv4Bytes{128, 0, 0, 0}, Ipv4Bytes{169, 254, 1, 1}, Ipv4Bytes{223, 255, 255, 255}}) {
        EXPECT_FALSE(HostAddressRefusal(address)) << HostOrder(address);
    }
}

TEST(HostAddress, EachReservedRangeHasItsReason) {
    const std::string thisNetwork = "addresses that begin with 0 mean 'this network'";
    const std::string loopback = "addresses that begin with 127 are the host's loopback";
    const std::string multicast = "addresses from 224.0.0.0 to 239.255.255.255 are multicast groups";
    const std::string reserved = "addresses from 240.0.0.0 up are reserved or broadcast";
    EXPECT_EQ(HostAddressRefusal({0, 0, 0, 0}).Words(), thisNetwork);
    EXPECT_EQ(HostAddressRefusal({0, 255, 255, 255}).Words(), thisNetwork);
    EXPECT_EQ(HostAddressRefusal({127, 0, 0, 1}).Words(), loopback);
    EXPECT_EQ(HostAddressRefusal({127, 255, 255, 255}).Words(), loopback);
    EXPECT_EQ(HostAddressRefusal({224, 0, 0, 0}).Words(), multicast);
    EXPECT_EQ(HostAddressRefusal({239, 255, 255, 255}).Words(), multicast);
    EXPECT_EQ(HostAddressRefusal({240, 0, 0, 0}).Words(), reserved);
    EXPECT_EQ(HostAddressRefusal({255, 255, 255, 255}).Words(), reserved);
}

}  // namespace
}  // namespace corvane
