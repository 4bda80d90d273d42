#pragma once

#include <string>

namespace corvane {

/// The report's data as one JSON object (RFC 8259, UTF-8, indented by two): "program", "version", "date"
/// (ISO 8601, local time without zone) and "connections", an array in list order of objects with
///   number, name, device, hardwareId, configurationId, interfaceIndex (0 = disabled),
///   mac, macText (as in the text report), originalMac, override, manufacturer, speed, status: text;
///   tcpip, dhcp: true or false; interfaceMetric: number (0 = automatic);
///   leaseObtained, leaseExpires: text, only with DHCP;
///   addresses: array of {address, mask}; gateways: array of {gateway, metric}; dnsServers: array of text.
/// A text that is not known is "".
std::string ReportJson();

}  // namespace corvane
