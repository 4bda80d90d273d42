#include "ui/frmCLHelp.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/Icons.h"
#include "ui/WxText.h"

namespace corvane {

frmCLHelp::frmCLHelp(const std::string& text)
    : wxDialog(nullptr, wxID_ANY, "Command Line Help - Orvella Corvane v4", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
    SetControlName(*this, "frmCLHelp");
    SetIcons(ProgramIcons());
    auto* const usage = new wxTextCtrl(this, wxID_ANY, Wx(text), wxDefaultPosition, wxDefaultSize,
                                       wxTE_MULTILINE | wxTE_READONLY);
    usage->SetFont(
        wxFont(wxFontInfo(usage->GetFont().GetFractionalPointSize()).Family(wxFONTFAMILY_TELETYPE)));
    usage->SetMinSize(wxSize(GetCharWidth() * 70, GetCharHeight() * 18));
    usage->SetInsertionPoint(0);
    usage->ShowPosition(0);
    SetAccessibleName(usage, "Command line options");
    auto* const ok = new wxButton(this, wxID_OK, "&OK");
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(usage, 1, wxEXPAND | wxALL, 10);
    sizer->Add(ok, 0, wxALIGN_RIGHT | wxLEFT | wxRIGHT | wxBOTTOM, 10);
    SetSizerAndFit(sizer);
    SetSize(FromDIP(wxSize(900, 560)));
    CentreOnScreen();
    ok->SetDefault();
    ok->SetFocus();
}

}  // namespace corvane
