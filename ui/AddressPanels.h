#pragma once

#include <string>

#include "ui/EntryPanel.h"
#include "ui/logic/DnsEditing.h"
#include "ui/logic/GatewayEditing.h"
#include "ui/logic/IpEditing.h"

class wxCheckBox;
class wxTextCtrl;

/// The panels in which IP addresses, gateways and DNS servers are entered.
namespace corvane {

class IPAddress;

/// `fAddIP`.
class AddIPPanel : public EntryPanel, private IpPanelView {
 public:
    AddIPPanel(wxWindow* parent, EntryPanelHost& host, AddressListView& listIp);
    ~AddIPPanel() override;

    IpEditing& Editing() { return editing_; }

 private:
    void Add(const EditingTarget& target) override { editing_.Add(target); }
    void ShowPanel() override { Open(); }
    void MakeDefault() override { EntryPanel::MakeDefault(); }
    IPAddressEntry& IPAddress() override;
    IPAddressEntry& SubnetMask() override;
    void FocusIPAddress() override;
    std::string Cidr() const override;
    void SetCidr(const std::string& text) override;
    bool PersistentTicked() const override;
    void Beep() override;

    /// The mask, whose prefix length is shown too.
    class MaskEvents : public IPAddressEvents {
     public:
        explicit MaskEvents(IpEditing& editing) : editing_(editing) {}
        void Change() override { editing_.MaskChanged(); }
        void Focus() override { editing_.MaskFocused(); }

     private:
        IpEditing& editing_;
    };

    corvane::IPAddress* ipAddress_;
    corvane::IPAddress* subnetMask_;
    wxTextCtrl* txtCIDR_;
    wxCheckBox* persistent_;
    IpEditing editing_;
    MaskEvents maskEvents_{editing_};
};

/// `fAddGateway`.
class AddGatewayPanel : public EntryPanel, private GatewayPanelView {
 public:
    AddGatewayPanel(wxWindow* parent, EntryPanelHost& host, AddressListView& listGateway);

    GatewayEditing& Editing() { return editing_; }

 private:
    void Add(const EditingTarget& target) override { editing_.Add(target); }
    void ShowPanel() override { Open(); }
    void MakeDefault() override { EntryPanel::MakeDefault(); }
    IPAddressEntry& Gateway() override;
    void FocusGateway() override;
    std::string Metric() const override;
    void SetMetric(const std::string& text) override;
    void EnableMetric(bool enable) override;
    void FocusMetric() override;
    bool AutoMetricTicked() const override;
    void TickAutoMetric(bool ticked) override;
    bool PersistentTicked() const override;

    corvane::IPAddress* gateway_;
    wxTextCtrl* txtMetric_;
    wxCheckBox* autoMetric_;
    wxCheckBox* persistent_;
    GatewayEditing editing_;
};

/// `fAddDNS`.
class AddDNSPanel : public EntryPanel, private DnsPanelView {
 public:
    AddDNSPanel(wxWindow* parent, EntryPanelHost& host, AddressListView& listDns);

    DnsEditing& Editing() { return editing_; }

 private:
    void Add(const EditingTarget& target) override { editing_.Add(target); }
    void ShowPanel() override { Open(); }
    void MakeDefault() override { EntryPanel::MakeDefault(); }
    IPAddressEntry& DNSAddress() override;
    void FocusDNSAddress() override;

    corvane::IPAddress* dnsAddress_;
    DnsEditing editing_;
};

}  // namespace corvane
