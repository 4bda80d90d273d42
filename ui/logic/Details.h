#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "inventory/NicInfo.h"

/// What the details panel shows of one connection.
namespace corvane {

/// The address text of a connection of which no address is known.
inline constexpr char kNotActive[] = "(Network Connection Not Active)";

/// A row of the panel's own lists: an address and its mask, a gateway and its metric, a DNS server alone.
/// `tag` is the position of the entry in the record's list; empty entries get no row.
struct DetailsRow {
    std::string text;
    std::string subItem;
    std::size_t tag = 0;

    bool operator==(const DetailsRow&) const = default;
};

/// The controls of the details panel by name. The defaults are the cleared panel.
struct Details {
    std::string title = "Network Connection Details";
    std::string txtConnName;
    std::string txtDevName;
    std::string txtHardID;
    std::string txtConfigID;
    std::string txtMAC;  ///< The address with its mark.
    std::string txtManufac;
    std::string labSpeed;
    std::string labStatus;
    std::string labTCPIP;
    std::string labDHCP;
    std::string labLeaseObtained;
    std::string labLeaseExpires;
    std::string labSent = "0 Bytes";
    std::string labRecv = "0 Bytes";
    std::string labSentSpeed = "0 Bytes/s";
    std::string labRecvSpeed = "0 Bytes/s";
    bool enables = true;         ///< The enable command enables the connection; else it disables it.
    bool switchesDhcpOn = true;  ///< The DHCP command switches DHCP on; else off.
    std::string enableButton = "&Enable";
    std::string mnuEnable = "&Enable Network Connection";
    std::string mnuEnableDHCP = "Enable DHC&P";  ///< Of the menu item and the button.
    std::string headerIP = "IP Address (0)";
    std::string headerGateway = "Gateway (0)";
    std::string headerDNS = "DNS Server (0)";
    std::vector<DetailsRow> ListIP;
    std::vector<DetailsRow> ListGateway;
    std::vector<DetailsRow> ListDNS;

    bool operator==(const Details&) const = default;
};

/// Titles of the first columns of the panel's own lists, without the number of rows.
inline constexpr char kIpTitle[] = "IP Address";
inline constexpr char kGatewayTitle[] = "Gateway";
inline constexpr char kDnsTitle[] = "DNS Server";

/// A title with the number of rows, such as "IP Address (2)".
std::string ListHeader(const std::string& title, std::size_t rows);

/// Rows of the texts that are not empty, each with its neighbour in a parallel list (which may be shorter).
std::vector<DetailsRow> ListRows(const std::vector<std::string>& texts,
                                 const std::vector<std::string>& subItems = {});

/// The panel filled for a record. The traffic texts are those of the cleared panel.
Details FillDetails(const NicInfo& nic);

/// The address with its mark, such as "00-0C-29-4F-8E-35 (Original)".
std::string DetailsMacText(const NicInfo& nic);

/// The vendor; fixed words for the network bridge, whatever its vendor and in any letter case of its
/// component id.
std::string ManufacturerText(const NicInfo& nic);

}  // namespace corvane
