#pragma once

#include <string_view>

class wxWindow;

/// The names that controls bear in the toolkit (wxWindow::GetName), by which they are found and spoken of. A
/// user neither sees nor hears them: what is read out is the accessible name (ui/Desktop.h).
namespace corvane {

struct ControlEntry {
    std::string_view form;  ///< The form, panel or control that it is part of; empty for a window of its own.
    std::string_view name;
    std::string_view what;
    int count = 1;  ///< How many of that name there are: those of one row share theirs.
};

inline constexpr ControlEntry kControls[] = {
    {"", "frmSplash", "what is seen while the program loads"},
    {"", "frmAboutUs", "the about box"},
    {"", "frmCLHelp", "the usage text of the command line"},
    {"", "frmBrowseNetFolder", "asks for the Network Connections folder"},
    {"frmBrowseNetFolder", "List1", "the folders of the Control Panel"},
    {"frmBrowseNetFolder", "Command1", "Select"},
    {"frmBrowseNetFolder", "Command2", "Cancel"},

    {"", "frmMain", "the main window"},
    {"frmMain", "List", "the connections"},
    {"frmMain", "Command5", "Release IP"},
    {"frmMain", "Command6", "Renew IP"},
    {"frmMain", "Command7", "Enable DHCP, Disable DHCP"},
    {"frmMain", "fDetails", "everything about the selected connection"},
    {"fDetails", "txtConnName", "the connection's name"},
    {"fDetails", "txtDevName", "the device's name"},
    {"fDetails", "txtHardID", "its hardware id"},
    {"fDetails", "txtConfigID", "the connection's id"},
    {"fDetails", "txtMAC", "the MAC address with its mark"},
    {"fDetails", "txtManufac", "the manufacturer"},
    {"fDetails", "labStatus", "the link's status"},
    {"fDetails", "labSpeed", "the link's speed"},
    {"fDetails", "labRecv", "bytes received"},
    {"fDetails", "labRecvSpeed", "the receiving rate"},
    {"fDetails", "labSent", "bytes sent"},
    {"fDetails", "labSentSpeed", "the sending rate"},
    {"fDetails", "labTCPIP", "whether TCP/IP is bound"},
    {"fDetails", "labDHCP", "whether DHCP is used"},
    {"fDetails", "labLeaseObtained", "since when there is a lease"},
    {"fDetails", "labLeaseExpires", "how long there is one"},
    {"fDetails", "ListIP", "IP addresses and their masks"},
    {"fDetails", "ListGateway", "gateways and their metrics"},
    {"fDetails", "ListDNS", "DNS servers in their order"},
    {"fDetails", "Command12", "one up DNS server priority"},
    {"fDetails", "Command13", "one down DNS server priority"},
    {"fDetails", "PresetsList", "the presets"},
    {"fDetails", "Command20", "Apply the preset"},
    {"fDetails", "Command22", "Delete the preset"},

    {"fDetails", "fChangeMAC", "the panel that changes a MAC address"},
    {"fChangeMAC", "MAC", "an octet", 6},
    {"fChangeMAC", "VendorList", "the vendor"},
    {"fChangeMAC", "Check1", "Automatically Restart Network Connection To Apply Changes"},
    {"fChangeMAC", "Command8", "Random MAC Address"},
    {"fChangeMAC", "Command9", "Change Now !"},
    {"fChangeMAC", "Command10", "Original MAC"},

    {"fDetails", "fAddIP", "the panel that adds an IP address"},
    {"fAddIP", "IPAddress", "the address"},
    {"IPAddress", "Text1", "an octet", 4},
    {"fAddIP", "SubnetMask", "its mask"},
    {"SubnetMask", "Text1", "an octet", 4},
    {"fAddIP", "txtCIDR", "the prefix length"},
    {"fAddIP", "Check2", "Persistant IP Address"},
    {"fAddIP", "Command16", "Add IP"},
    {"fAddIP", "Command17", "Close"},

    {"fDetails", "fAddGateway", "the panel that adds a gateway"},
    {"fAddGateway", "Gateway", "the gateway's address"},
    {"Gateway", "Text1", "an octet", 4},
    {"fAddGateway", "txtMetric", "its metric"},
    {"fAddGateway", "Check3", "Persistant Gateway"},
    {"fAddGateway", "Check4", "Auto Metric"},
    {"fAddGateway", "Command18", "Close"},
    {"fAddGateway", "Command19", "Add Gateway"},

    {"fDetails", "fAddDNS", "the panel that adds a DNS server"},
    {"fAddDNS", "DNSAddress", "the server's address"},
    {"DNSAddress", "Text1", "an octet", 4},
    {"fAddDNS", "Command14", "Close"},
    {"fAddDNS", "Command15", "Add DNS"},

    {"fDetails", "fCreatePreset", "the preset editor"},
    {"fCreatePreset", "txtPresetName", "the preset's name"},
    {"fCreatePreset", "ckCPMAC", "MAC Address"},
    {"fCreatePreset", "MAC", "an octet", 6},
    {"fCreatePreset", "ckCPRanMAC", "Random MAC"},
    {"fCreatePreset", "ckCPDefMAC", "Original MAC"},
    {"fCreatePreset", "ckCPDHCP", "DHCP"},
    {"fCreatePreset", "ckCPIP", "IP Addresses"},
    {"fCreatePreset", "ckCPGateway", "Gateways"},
    {"fCreatePreset", "ckCPDNS", "DNS Servers"},
    {"fCreatePreset", "Command23", "Leave"},
    {"fCreatePreset", "Command24", "Save Preset"},
};

/// A name of the table; a text that is none does not compile.
class ControlName {
 public:
    consteval ControlName(const char* name) : name_(name) {
        for (const ControlEntry& entry : kControls) {
            if (entry.name == name) return;
        }
        throw "the table has no control of that name";
    }

    [[nodiscard]] constexpr const char* Text() const { return name_; }

 private:
    const char* name_;
};

void SetControlName(wxWindow& control, ControlName name);

/// The same for a control that is being made.
template <class Control>
Control* Named(ControlName name, Control* control) {
    SetControlName(*control, name);
    return control;
}

}  // namespace corvane
