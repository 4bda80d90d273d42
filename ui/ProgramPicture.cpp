#include "ui/ProgramPicture.h"

#include "platform/Seat.h"
#include "ui/Icons.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

/// Size of the drawing, and where in it the name stands.
const wxSize kSize(480, 200);
const wxPoint kNameAt(190, 62);
const wxColour kVersionColour(124, 192, 255);

}  // namespace

ProgramPicture::ProgramPicture() : picture_(OpaquePicture("splash", kSize)) {}

wxSize ProgramPicture::Size(const wxWindow& window) { return window.FromDIP(kSize); }

void ProgramPicture::Draw(wxDC& dc, const wxWindow& window) const {
    dc.DrawBitmap(picture_.GetBitmap(Size(window)), 0, 0);
    const wxPoint at = window.FromDIP(kNameAt);
    dc.SetTextForeground(*wxWHITE);
    dc.SetFont(wxFont(wxFontInfo(window.GetFont().GetFractionalPointSize() * 2).Bold()));
    dc.DrawText(Wx(kApplicationTitle), at);
    const int below = at.y + dc.GetCharHeight() + window.FromDIP(6);
    dc.SetFont(window.GetFont());
    dc.SetTextForeground(kVersionColour);
    dc.DrawText("Version 4.5, by Ollory", at.x, below);
}

}  // namespace corvane
