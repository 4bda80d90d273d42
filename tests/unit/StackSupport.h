#pragma once

#include <string>

#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "tests/unit/CoreSupport.h"

/// What tests of addresses and gateways on the running stack look at alike.
namespace corvane::test {

/// The box of an IP Helper call that was refused.
inline FakeSeat::Box RefusalBox(int code, const std::string& apiName, const std::string& description) {
    return Critical("Orvella Corvane", "DLL : IphlpApi.dll\r\n\r\nError Code : " + std::to_string(code) +
                                           "\r\nAPI: " + apiName + "\r\nError Description : " + description +
                                           "\r\n\r\nClick OK To Continue");
}
inline FakeSeat::Box InvalidParameter(const std::string& apiName) {
    return RefusalBox(87, apiName, "The parameter is incorrect.");
}

/// A default route, every field of it.
inline void ExpectDefaultRoute(const IpForwardRow& row, const Ipv4Bytes& gateway, std::uint32_t ifIndex,
                               std::uint32_t metric) {
    EXPECT_EQ(row.destination, Ipv4Bytes());
    EXPECT_EQ(row.mask, Ipv4Bytes());
    EXPECT_EQ(row.nextHop, gateway);
    EXPECT_EQ(row.ifIndex, ifIndex);
    EXPECT_EQ(row.type, 4U);
    EXPECT_EQ(row.proto, 3U);
    EXPECT_EQ(row.metric1, metric);
}

}  // namespace corvane::test
