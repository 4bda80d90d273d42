#include "ui/EntryPanel.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include "ui/Icons.h"
#include "ui/Spacing.h"

namespace corvane {

EntryPanel::EntryPanel(wxWindow* parent, EntryPanelHost& host, const EntryPanelKind& kind)
    : wxPanel(parent),
      host_(host),
      caption_(new wxStaticText(this, wxID_ANY, kind.caption)),
      content_(new wxBoxSizer(wxVERTICAL)),
      add_(Named(kind.add, new wxButton(this, wxID_ANY, kind.addLabel))),
      close_(Named(kind.close, new wxButton(this, wxID_ANY, "Close"))) {
    SetControlName(*this, kind.panel);
    caption_->SetFont(caption_->GetFont().Bold());
    add_->SetBitmap(Icon("add"));
    add_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { host_.Run([this] { Add(host_.Target()); }); });
    close_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
    Bind(wxEVT_CHILD_FOCUS, [this](wxChildFocusEvent& event) {
        event.Skip();
        MakeDefault();
    });
    auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
    buttons->Add(add_, 0, wxRIGHT, kGap);
    buttons->Add(close_);
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(caption_, 0, wxBOTTOM, kGap);
    sizer->Add(content_, 0, wxEXPAND | wxBOTTOM, kGap);
    sizer->Add(buttons);
    SetSizer(sizer);
    Hide();
}

EntryPanel::~EntryPanel() {
    // The entry boxes report a lost focus even now.
    DestroyChildren();
}

void EntryPanel::MakeDefault() { add_->SetDefault(); }

void EntryPanel::Open() {
    // The buttons come after the boxes in the tab order, whenever those were made.
    add_->MoveAfterInTabOrder(GetChildren().GetLast()->GetData());
    close_->MoveAfterInTabOrder(add_);
    host_.PanelOpens(*this);
    Show();
    host_.PanelShown(*this);
}

void EntryPanel::Dismiss() {
    if (!IsShown()) return;
    Hide();
    host_.PanelShown(*this);
}

void EntryPanel::Close() {
    Dismiss();
    host_.PanelClosed(*this);
}

}  // namespace corvane
