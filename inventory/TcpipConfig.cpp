#include <chrono>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/Text.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "inventory/ReadText.h"
#include "inventory/Stages.h"
#include "platform/Registry.h"
#include "platform/RegistryValues.h"

namespace corvane {

namespace {

std::vector<std::uint8_t> ReadBytes(const std::string& key, const std::string& name) {
    std::vector<std::uint8_t> data;
    std::uint32_t type = 0;
    static_cast<void>(RegQueryBinary(kHkeyLocalMachine, key, name, data, type));
    return data;
}

std::vector<std::string> ReadList(const std::string& key, const std::string& name) {
    return ListEntries(ReadText(key, name));
}

/// Rows of a table by interface index, in table order; nothing when the table was not fetched.
template <class Row>
class RowsByInterface {
 public:
    RowsByInterface(TableRead<Row> table, std::uint32_t Row::*index) : table_(std::move(table)) {
        for (const Row& row : table_.rows) rows_[row.*index].push_back(&row);
    }

    [[nodiscard]] bool Fetched() const { return table_.outcome == TableRead<Row>::Outcome::kRows; }

    [[nodiscard]] const std::vector<const Row*>& Of(std::uint32_t index) const {
        static const std::vector<const Row*> kNoRows;
        const auto found = rows_.find(index);
        return found == rows_.end() ? kNoRows : found->second;
    }

 private:
    TableRead<Row> table_;
    std::unordered_map<std::uint32_t, std::vector<const Row*>> rows_;
};

/// Seconds of a zone offset's text, such as 19800 for "05:30" and 18000 for "5"; 0 for a text that is no time
/// of day.
std::int64_t OffsetSeconds(const std::string& text) {
    const std::vector<std::string> parts = Split(text, ':');
    const double hours = NumericValue(parts[0]);
    const double minutes = parts.size() > 1 ? NumericValue(parts[1]) : 0;
    if (hours < 0 || hours >= 24 || minutes < 0 || minutes >= 60) return 0;
    return static_cast<std::int64_t>(hours) * 3600 + static_cast<std::int64_t>(minutes) * 60;
}

DateTime DateFromSeconds(std::int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds time{std::chrono::seconds(seconds)};
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(weekday(day).c_encoding()),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
}

std::string LeaseTime(const std::string& key, const std::string& name, const std::string& offset) {
    std::int64_t seconds = DwordFrom(ReadBytes(key, name));
    if (offset.starts_with('+')) seconds += OffsetSeconds(offset.substr(1));
    if (offset.starts_with('-')) seconds -= OffsetSeconds(offset.substr(1));
    const std::string text = CurrentPlatform().host->GeneralDate(DateFromSeconds(seconds));
    return offset.empty() ? text + " GMT" : text;
}

void LiveAddresses(NicInfo& nic, const std::vector<const IpAddrRow*>& rows) {
    if (rows.empty()) return;
    nic.IpAddresses.clear();
    nic.SubnetMasks.clear();
    nic.IpRowFlags.clear();
    for (const IpAddrRow* row : rows) {
        nic.IpAddresses.push_back(DottedQuad(row->address.data()));
        nic.SubnetMasks.push_back(DottedQuad(row->mask.data()));
        nic.IpRowFlags.push_back(row->nteContext);
    }
}

void StoredAddresses(NicInfo& nic, const std::string& key) {
    nic.IpAddresses = ReadList(key, nic.DhcpEnabled ? kDhcpIpAddressValue : kIpAddressValue);
    nic.SubnetMasks = ReadList(key, nic.DhcpEnabled ? kDhcpSubnetMaskValue : kSubnetMaskValue);
    if (nic.IpAddresses.size() == 1 && nic.IpAddresses[0].empty()) nic.TcpipBound = false;
    nic.SubnetMasks.resize(nic.IpAddresses.size());
    nic.IpRowFlags.resize(nic.IpAddresses.size());
}

void LiveGateways(NicInfo& nic, const std::vector<const IpForwardRow*>& rows) {
    static constexpr Ipv4Bytes kAny{};
    std::vector<std::string> gateways;
    std::vector<std::string> metrics;
    for (const IpForwardRow* row : rows) {
        if (row->destination != kAny || row->mask != kAny) continue;
        gateways.push_back(DottedQuad(row->nextHop.data()));
        metrics.push_back(std::to_string(row->metric1));
    }
    if (gateways.empty()) return;
    nic.Gateways = std::move(gateways);
    nic.GatewayMetrics = std::move(metrics);
}

void StoredGateways(NicInfo& nic, const std::string& key) {
    std::vector<std::string> gateways =
        ReadList(key, nic.DhcpEnabled ? kDhcpDefaultGatewayValue : kDefaultGatewayValue);
    if (gateways.size() == 1 && gateways[0].empty()) return;
    nic.Gateways = std::move(gateways);
    nic.GatewayMetrics =
        ReadList(key, nic.DhcpEnabled ? kDhcpDefaultGatewayMetricValue : kDefaultGatewayMetricValue);
    nic.GatewayMetrics.resize(nic.Gateways.size());
    for (std::string& metric : nic.GatewayMetrics) {
        if (NumericValue(metric) != 0) continue;
        metric = nic.InterfaceMetric != 0 ? std::to_string(nic.InterfaceMetric) : "Automatic";
    }
}

void ReadDnsServers(NicInfo& nic, const std::string& key) {
    std::string servers = ReadText(key, kNameServerValue);
    char separator = ',';
    if (servers.empty()) {
        servers = ReadText(key, kDhcpNameServerValue);
        separator = ' ';
    }
    if (!servers.empty()) nic.DnsServers = Split(servers, separator);
}

}  // namespace

std::string GetTimeZoneOffsetText() {
    const std::string zone = TextWithoutNuls(ReadBytes(kTimeZoneKey, kStandardNameValue));
    if (zone.empty()) return {};
    const std::string display = TextWithoutNuls(ReadBytes(kTimeZonesKey + ("\\" + zone), kZoneDisplayValue));
    static constexpr std::size_t kStart = 4;  // character 5: behind "(GMT"
    const std::size_t end = display.find(')', kStart);
    return end == std::string::npos ? std::string() : display.substr(kStart, end - kStart);
}

void ReadTcpipConfig(Discovery& found) {
    IpHelperApi& ipHelper = *CurrentPlatform().ipHelper;
    const RowsByInterface<IpAddrRow> addresses(ipHelper.GetIpAddrTable(), &IpAddrRow::index);
    const RowsByInterface<IpForwardRow> routes(ipHelper.GetIpForwardTable(), &IpForwardRow::ifIndex);
    const RegistryReading reading;
    for (NicInfo& nic : found.adapters) {
        const std::string key = TcpipKey(nic.Id);
        nic.InterfaceMetric = DwordFrom(ReadBytes(key, kInterfaceMetricValue));
        nic.DhcpEnabled = FlagFrom(ReadBytes(key, kEnableDhcpValue));
        if (nic.DhcpEnabled) {
            const std::string offset = GetTimeZoneOffsetText();
            nic.LeaseObtained = LeaseTime(key, kLeaseObtainedTimeValue, offset);
            nic.LeaseTerminates = LeaseTime(key, kLeaseTerminatesTimeValue, offset);
        }
        if (nic.IfIndex != 0 && addresses.Fetched()) {
            LiveAddresses(nic, addresses.Of(nic.IfIndex));
        } else {
            StoredAddresses(nic, key);
        }
        if (nic.IfIndex != 0 && routes.Fetched()) {
            LiveGateways(nic, routes.Of(nic.IfIndex));
        } else {
            StoredGateways(nic, key);
        }
        ReadDnsServers(nic, key);
    }
}

}  // namespace corvane
