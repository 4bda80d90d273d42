#include "ui/frmAboutUs.h"

#include <wx/button.h>
#include <wx/dcbuffer.h>
#include <wx/hyperlink.h>
#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/ProgramPicture.h"
#include "ui/Spacing.h"
#include "ui/WxText.h"
#include "ui/logic/Maker.h"
#include "ui/logic/OpenPages.h"

namespace corvane {

namespace {

/// A label that looks and works like a link; opened by `open`, so that every page goes the same way.
wxWindow* Link(wxWindow* parent, const wxString& label, void (*open)()) {
    auto* const link = new wxHyperlinkCtrl(parent, wxID_ANY, label, label);
    link->Bind(wxEVT_HYPERLINK, [open](wxHyperlinkEvent&) { open(); });
    return link;
}

/// The program's picture; a click opens the maker's web site.
class PictureBox : public wxPanel {
 public:
    explicit PictureBox(wxWindow* parent) : wxPanel(parent) {
        SetBackgroundStyle(wxBG_STYLE_PAINT);
        SetCanFocus(false);
        SetMinSize(ProgramPicture::Size(*this));
        SetCursor(wxCursor(wxCURSOR_HAND));
        SetToolTip("Open the maker's web site");
        SetAccessibleName(this, "Orvella Corvane 4.5");
        Bind(wxEVT_PAINT, [this](wxPaintEvent&) {
            wxAutoBufferedPaintDC dc(this);
            picture_.Draw(dc, *this);
        });
        Bind(wxEVT_LEFT_UP, [](wxMouseEvent&) { OpenWebsite(); });
    }

    /// The link below it does the same for the keyboard.
    [[nodiscard]] bool AcceptsFocus() const override { return false; }
    [[nodiscard]] bool AcceptsFocusFromKeyboard() const override { return false; }

 private:
    ProgramPicture picture_;
};

}  // namespace

frmAboutUs::frmAboutUs(wxWindow* parent, const std::string& osDescription)
    : wxDialog(parent, wxID_ANY, "About Orvella Corvane", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
    SetControlName(*this, "frmAboutUs");
    auto* const picture = new PictureBox(this);
    auto* const system = new wxStaticText(this, wxID_ANY, "");
    system->SetLabelText(Wx("System: " + osDescription));
    auto* const links = new wxBoxSizer(wxHORIZONTAL);
    links->Add(Link(this, kMakerWebsite, OpenWebsite), 0, wxRIGHT, 2 * kWideGap);
    links->Add(Link(this, kMakerMail, OpenMail));
    auto* const disclaimer = new wxTextCtrl(this, wxID_ANY, Wx(kDisclaimer), wxDefaultPosition, wxDefaultSize,
                                            wxTE_MULTILINE | wxTE_READONLY);
    disclaimer->SetMinSize(wxSize(GetCharWidth() * 78, GetCharHeight() * 11));
    SetAccessibleName(disclaimer, "Disclaimer");
    auto* const close = new wxButton(this, wxID_CANCEL, "&Close");

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(picture, 0, wxALIGN_CENTER | wxALL, kWideGap);
    sizer->Add(system, 0, wxLEFT | wxRIGHT, kWideGap);
    sizer->Add(links, 0, wxALL, kWideGap);
    sizer->Add(disclaimer, 1, wxEXPAND | wxLEFT | wxRIGHT, kWideGap);
    sizer->Add(close, 0, wxALIGN_RIGHT | wxALL, kWideGap);
    SetSizerAndFit(sizer);
    close->SetDefault();
    close->SetFocus();
    CentreOnParent();
}

}  // namespace corvane
