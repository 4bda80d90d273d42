#include "ui/frmBrowseNetFolder.h"

#include <wx/button.h>
#include <wx/listbox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/Spacing.h"
#include "ui/WxText.h"

namespace corvane {

frmBrowseNetFolder::frmBrowseNetFolder(wxWindow* parent, const std::string& title, const std::string& heading,
                                       const std::string& instruction, const std::vector<std::string>& names)
    : wxDialog(parent, wxID_ANY, Wx(title), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
    SetControlName(*this, "frmBrowseNetFolder");
    auto* const text = new wxStaticText(this, wxID_ANY, Wx(instruction));
    text->Wrap(GetCharWidth() * 60);
    auto* const label = new wxStaticText(this, wxID_ANY, Wx(heading));
    folders_ = Named("List1", new wxListBox(this, wxID_ANY));
    for (const std::string& name : names) folders_->Append(Wx(name));
    folders_->SetMinSize(wxSize(GetCharWidth() * 60, GetCharHeight() * 12));
    LabelFor(label, folders_);
    auto* const select = Named("Command1", new wxButton(this, wxID_OK, "&Select"));
    auto* const cancel = Named("Command2", new wxButton(this, wxID_CANCEL, "&Cancel"));

    auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
    buttons->Add(select, 0, wxRIGHT, kWideGap);
    buttons->Add(cancel);
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(text, 0, wxALL, kWideGap);
    sizer->Add(label, 0, wxLEFT | wxRIGHT, kWideGap);
    sizer->Add(folders_, 1, wxEXPAND | wxALL, kWideGap);
    sizer->Add(buttons, 0, wxALIGN_RIGHT | wxLEFT | wxRIGHT | wxBOTTOM, kWideGap);
    SetSizerAndFit(sizer);
    CentreOnParent();
    select->SetDefault();
    select->Enable(false);
    folders_->Bind(wxEVT_LISTBOX, [select, this](wxCommandEvent&) { select->Enable(Choice().has_value()); });
    folders_->Bind(wxEVT_LISTBOX_DCLICK, [this](wxCommandEvent&) { EndModal(wxID_OK); });
    folders_->SetFocus();
}

std::optional<std::size_t> frmBrowseNetFolder::Choice() const {
    const int selected = folders_->GetSelection();
    if (selected == wxNOT_FOUND) return std::nullopt;
    return static_cast<std::size_t>(selected);
}

}  // namespace corvane
