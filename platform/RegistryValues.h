#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"

/// The names of the registry's values, and what their bytes mean. RegistryKeys.h says where they stand.
namespace corvane {

// ---- names: the TCP/IP key of an adapter (TcpipKey)

inline constexpr char kEnableDhcpValue[] = "EnableDHCP";                      ///< A flag.
inline constexpr char kIpAddressValue[] = "IPAddress";                        ///< A list.
inline constexpr char kSubnetMaskValue[] = "SubnetMask";                      ///< In step with the addresses.
inline constexpr char kDefaultGatewayValue[] = "DefaultGateway";              ///< A list.
inline constexpr char kDefaultGatewayMetricValue[] = "DefaultGatewayMetric";  ///< In step with the gateways.
inline constexpr char kNameServerValue[] = "NameServer";                      ///< Text, separated by ",".
inline constexpr char kInterfaceMetricValue[] = "InterfaceMetric";            ///< A number; 0 is automatic.

// What a DHCP server gave. Times are seconds since 1970, UTC.
inline constexpr char kDhcpIpAddressValue[] = "DhcpIPAddress";                        ///< Text.
inline constexpr char kDhcpSubnetMaskValue[] = "DhcpSubnetMask";                      ///< Text.
inline constexpr char kDhcpDefaultGatewayValue[] = "DhcpDefaultGateway";              ///< A list.
inline constexpr char kDhcpDefaultGatewayMetricValue[] = "DhcpDefaultGatewayMetric";  ///< A list.
inline constexpr char kDhcpNameServerValue[] = "DhcpNameServer";            ///< Text, separated by blanks.
inline constexpr char kDhcpServerValue[] = "DhcpServer";                    ///< Text.
inline constexpr char kDhcpDomainValue[] = "DhcpDomain";                    ///< Text.
inline constexpr char kLeaseValue[] = "Lease";                              ///< A number of seconds.
inline constexpr char kLeaseObtainedTimeValue[] = "LeaseObtainedTime";      ///< A time.
inline constexpr char kLeaseRenewTimeValue[] = "T1";                        ///< A time.
inline constexpr char kLeaseRebindTimeValue[] = "T2";                       ///< A time.
inline constexpr char kLeaseTerminatesTimeValue[] = "LeaseTerminatesTime";  ///< A time.

// ---- names: the driver key of an adapter (DriverKeyPath); all are text

inline constexpr char kDriverDescValue[] = "DriverDesc";
inline constexpr char kComponentIdValue[] = "ComponentId";
inline constexpr char kNetCfgInstanceIdValue[] = "NetCfgInstanceId";
inline constexpr char kNetworkAddressValue[] = "NetworkAddress";                  ///< The MAC override.
inline constexpr char kOriginalNetworkAddressValue[] = "OriginalNetworkAddress";  ///< The manufacturer's MAC.

// ---- names: other keys

inline constexpr char kConnectionNameValue[] = "Name";              ///< Text, of ConnectionKey.
inline constexpr char kBindValue[] = "Bind";                        ///< A list of devices, of kLinkageKey.
inline constexpr char kStandardNameValue[] = "StandardName";        ///< Text, of kTimeZoneKey.
inline constexpr char kZoneDisplayValue[] = "Display";              ///< Text, of a key below kTimeZonesKey.
inline constexpr char kNetworkFolderValue[] = "NetworkFolderName";  ///< Text, of kProgramKey.

// ---- bytes

using RegistryBytes = std::vector<std::uint8_t>;

/// A text in the single-byte code page, without a terminator; a NUL inside stays.
RegistryBytes TextBytes(std::string_view text);

/// A REG_SZ: the text and one NUL.
RegistryValue TextValue(std::string_view text);

// Three ways to read a text from its bytes, whatever their type and terminators.

/// Everything but the last byte, whatever that is: of well-formed bytes the terminator. Empty for no bytes.
std::string TextBeforeLastByte(const RegistryBytes& bytes);
/// What stands before the first NUL; everything when there is none.
std::string TextBeforeNul(const RegistryBytes& bytes);
/// Everything but the NULs, those inside included.
std::string TextWithoutNuls(const RegistryBytes& bytes);

/// A REG_MULTI_SZ: each entry and one NUL, and one NUL more; for no entries that one NUL alone.
RegistryValue ListValue(const std::vector<std::string>& entries);

/// The entries whatever terminators the bytes have. Positions are kept: an empty entry stays, unless only
/// empty ones follow. None for no bytes and for NULs alone.
std::vector<std::string> ListFrom(const RegistryBytes& bytes);

// A list on its way through RegSetString and RegQueryString, as a text with NULs in it.

/// The entries joined by NUL, and two NULs at the end; no entries give the two NULs.
std::string ListText(const std::vector<std::string>& entries);
/// What RegSetString takes for a list without entries: one NUL.
inline const std::string kEmptyListText(1, '\0');
/// The pieces of what RegQueryString gave, at least one. It leaves of a well-formed list all but its last
/// NUL, so that one empty piece follows the entries.
std::vector<std::string> ListPieces(std::string_view text);
/// The same without that one empty piece: at least one entry, which is empty for an empty list.
std::vector<std::string> ListEntries(std::string_view text);

/// The four little-endian bytes of a REG_DWORD.
RegistryBytes DwordBytes(std::uint32_t value);
RegistryValue DwordValue(std::uint32_t value);

/// A number from its bytes, which are cut or zero-filled to four: no bytes are 0.
std::uint32_t DwordFrom(const RegistryBytes& bytes);

/// A flag: whether there is a first byte and it is not zero.
bool FlagFrom(const RegistryBytes& bytes);

}  // namespace corvane
