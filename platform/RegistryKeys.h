#pragma once

#include <string>

/// Where the adapters, the time zone and the program's own setting stand in the registry, all under
/// HKEY_LOCAL_MACHINE. The class GUID keeps its mixed case.
namespace corvane {

inline constexpr char kAdaptersKey[] = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Adapters";
inline constexpr char kConnectionsKey[] =
    "SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}";
inline constexpr char kClassKey[] =
    "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002bE10318}";
inline constexpr char kLinkageKey[] = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Linkage";
inline constexpr char kInterfacesKey[] = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces";
inline constexpr char kTimeZoneKey[] = "SYSTEM\\CurrentControlSet\\Control\\TimeZoneInformation";
inline constexpr char kTimeZonesKey[] = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";
inline constexpr char kProgramKey[] = "SOFTWARE\\Orvella\\Corvane_v4";

inline std::string ConnectionKey(const std::string& id) {
    return kConnectionsKey + ("\\" + id) + "\\Connection";
}
inline std::string DriverKeyPath(const std::string& driverKey) { return kClassKey + ("\\" + driverKey); }
inline std::string TcpipKey(const std::string& id) { return kInterfacesKey + ("\\" + id); }

}  // namespace corvane
