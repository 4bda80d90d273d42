#include "ui/frmSplash.h"

#include <wx/dcbuffer.h>

#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/WxText.h"
#include "ui/logic/OpenPages.h"

namespace corvane {

frmSplash::frmSplash()
    : wxFrame(nullptr, wxID_ANY, "Orvella Corvane - Loading", wxDefaultPosition, wxDefaultSize,
              wxBORDER_SIMPLE | wxFRAME_NO_TASKBAR) {
    SetControlName(*this, "frmSplash");
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    SetClientSize(picture_.Size(*this));
    SetCursor(wxCursor(wxCURSOR_HAND));
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { OnPaint(); });
    Bind(wxEVT_LEFT_UP, [](wxMouseEvent&) { OpenWebsite(); });
    CentreOnScreen();
}

void frmSplash::SetSystem(const wxString& text) { Set(labSystem_, text); }
void frmSplash::SetStatus(const wxString& text) { Set(labStatus_, text); }
void frmSplash::SetProgress(const wxString& text) { Set(labProgress_, text); }

void frmSplash::Set(wxString& label, const wxString& text) {
    label = text;
    SetAccessibleName(this, labSystem_ + "\n" + labStatus_ + "\n" + labProgress_);
    Refresh();
}

void frmSplash::OnPaint() {
    painted_ = true;
    wxAutoBufferedPaintDC dc(this);
    picture_.Draw(dc, *this);
    dc.SetFont(GetFont());
    dc.SetTextForeground(*wxWHITE);
    const wxSize size = GetClientSize();
    const int margin = FromDIP(12);
    const int lower = size.y - margin - dc.GetCharHeight();
    dc.DrawText(labSystem_, margin, lower - dc.GetCharHeight() - FromDIP(4));
    dc.DrawText(" " + labStatus_, margin, lower);
    dc.DrawText(labProgress_, size.x - margin - dc.GetTextExtent(labProgress_).x, lower);
}

}  // namespace corvane
