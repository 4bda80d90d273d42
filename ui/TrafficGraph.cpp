#include "ui/TrafficGraph.h"

#include <memory>
#include <vector>

#include <wx/dcbuffer.h>
#include <wx/graphics.h>
#include <wx/settings.h>

#include "ui/Desktop.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

/// Two colours that differ in brightness too, readable on a light and on a dark ground.
const wxColour kReceivedColour(47, 125, 225);
const wxColour kSentColour(217, 138, 0);

using Rate = double TrafficRates::*;

/// The curve of one rate, from left to right; `area` closes it along the bottom.
wxGraphicsPath Curve(wxGraphicsContext& context, const TrafficHistory& history, Rate rate, const wxRect& plot,
                     bool area) {
    wxGraphicsPath path = context.CreatePath();
    const auto& ticks = history.Ticks();
    if (ticks.empty()) return path;
    const double top = history.ScaleTop();
    const double step = static_cast<double>(plot.width) / static_cast<double>(TrafficHistory::kTicks - 1);
    const double bottom = plot.GetBottom();
    double x = plot.GetRight() - step * static_cast<double>(ticks.size() - 1);
    if (area) path.MoveToPoint(x, bottom);
    bool first = !area;
    for (const TrafficRates& tick : ticks) {
        const double y = bottom - tick.*rate / top * plot.height;
        if (first) {
            path.MoveToPoint(x, y);
        } else {
            path.AddLineToPoint(x, y);
        }
        first = false;
        x += step;
    }
    if (area) {
        path.AddLineToPoint(plot.GetRight(), bottom);
        path.CloseSubpath();
    }
    return path;
}

void DrawFrame(wxGraphicsContext& context, const wxRect& plot, const wxColour& text) {
    wxColour line = text;
    line.Set(line.Red(), line.Green(), line.Blue(), 60);
    context.SetPen(wxPen(line, 1));
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const double y = plot.GetBottom() - plot.height * quarter / 4.0;
        context.StrokeLine(plot.GetLeft(), y, plot.GetRight(), y);
    }
}

/// A sample of a line and what it stands for; returns where the next one may begin.
double DrawKey(wxGraphicsContext& context, const wxString& text, const wxPen& pen, double x, double y,
               double height) {
    double width = 0;
    context.GetTextExtent(text, &width, nullptr, nullptr, nullptr);
    context.SetPen(pen);
    context.StrokeLine(x, y + height / 2, x + height * 1.2, y + height / 2);
    context.DrawText(text, x + height * 1.5, y);
    return x + height * 2.5 + width;
}

}  // namespace

TrafficGraph::TrafficGraph(wxWindow* parent) : wxPanel(parent) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    // There is nothing to do in it with keys.
    SetCanFocus(false);
    SetMinSize(wxSize(GetCharWidth() * 30, GetCharHeight() * 6));
    SetAccessibleName(this, "Traffic of the last two minutes");
    SetToolTip("Rates of the last two minutes: received (area) and sent (dashed line)");
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { OnPaint(); });
    Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        Refresh();
    });
}

void TrafficGraph::Add(const TrafficRates& rates) {
    history_.Add(rates);
    Refresh();
}

void TrafficGraph::Clear() {
    history_.Clear();
    Refresh();
}

void TrafficGraph::OnPaint() {
    wxAutoBufferedPaintDC dc(this);
    dc.SetBackground(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOW));
    dc.Clear();
    const std::unique_ptr<wxGraphicsContext> context(wxGraphicsContext::Create(dc));
    if (!context) return;
    const wxColour text = wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT);
    context->SetFont(GetFont().Smaller(), text);
    double lineHeight = 0;
    context->GetTextExtent("Mg", nullptr, &lineHeight, nullptr, nullptr);
    const int keyHeight = static_cast<int>(lineHeight) + 6;
    const wxSize size = GetClientSize();
    const wxRect plot(4, keyHeight, size.x - 8, size.y - keyHeight - 5);
    if (plot.width < 10 || plot.height < 10) return;

    DrawFrame(*context, plot, text);
    wxColour fill = kReceivedColour;
    fill.Set(fill.Red(), fill.Green(), fill.Blue(), 90);
    context->SetBrush(wxBrush(fill));
    context->FillPath(Curve(*context, history_, &TrafficRates::received, plot, true));
    const wxPen receivedPen(kReceivedColour, 2);
    const wxPen sentPen(kSentColour, 2, wxPENSTYLE_SHORT_DASH);
    context->SetPen(receivedPen);
    context->StrokePath(Curve(*context, history_, &TrafficRates::received, plot, false));
    context->SetPen(sentPen);
    context->StrokePath(Curve(*context, history_, &TrafficRates::sent, plot, false));

    double x = DrawKey(*context, "Received", receivedPen, plot.GetLeft(), 2, lineHeight);
    x = DrawKey(*context, "Sent", sentPen, x, 2, lineHeight);
    const wxString top = Wx(FormatBytes(history_.ScaleTop()) + "/s");
    double width = 0;
    context->GetTextExtent(top, &width, nullptr, nullptr, nullptr);
    if (plot.GetRight() - width > x) context->DrawText(top, plot.GetRight() - width, 2);
}

}  // namespace corvane
