#include "ui/Icons.h"

#include <algorithm>
#include <utility>

#include <wx/image.h>
#include <wx/settings.h>

namespace corvane {

namespace {

/// The drawings' neutral stroke colour, which stands for the theme's text colour.
constexpr std::string_view kNeutral = "#3b4252";

/// Whether this toolkit draws half-transparent parts of a drawing too dark: wxWidgets before 3.2.3 gives
/// their colours multiplied by their opacity where the desktop wants them plain (wxWidgets issue 24064).
bool MultipliesByOpacity() {
    static const bool multiplies = [] {
        const char* const probe =
            "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 4 4'>"
            "<rect width='4' height='4' fill='#ff0000' fill-opacity='0.5'/></svg>";
        const wxSize size(4, 4);
        const wxImage image = wxBitmapBundle::FromSVG(probe, size).GetBitmap(size).ConvertToImage();
        return image.GetRed(1, 1) < 200;
    }();
    return multiplies;
}

/// Divides the colours by the opacity again.
void Unmultiply(wxImage& image) {
    if (!image.HasAlpha()) return;
    const std::size_t pixels =
        static_cast<std::size_t>(image.GetWidth()) * static_cast<std::size_t>(image.GetHeight());
    unsigned char* colour = image.GetData();
    const unsigned char* const opacity = image.GetAlpha();
    for (std::size_t i = 0; i < pixels; ++i) {
        const int alpha = opacity[i];
        for (int channel = 0; channel < 3; ++channel, ++colour) {
            if (alpha == 0 || alpha == 255) continue;
            *colour = static_cast<unsigned char>(std::min(255, (*colour * 255 + alpha / 2) / alpha));
        }
    }
}

/// A drawing whose renderings are put right before they are handed out.
class CorrectedDrawing : public wxBitmapBundleImpl {
 public:
    explicit CorrectedDrawing(wxBitmapBundle drawing) : drawing_(std::move(drawing)) {}

    wxSize GetDefaultSize() const override { return drawing_.GetDefaultSize(); }
    wxSize GetPreferredBitmapSizeAtScale(double scale) const override {
        return drawing_.GetPreferredBitmapSizeAtScale(scale);
    }
    wxBitmap GetBitmap(const wxSize& size) override {
        if (!rendered_.IsOk() || rendered_.GetSize() != size) {
            wxImage image = drawing_.GetBitmap(size).ConvertToImage();
            Unmultiply(image);
            rendered_ = wxBitmap(image);
        }
        return rendered_;
    }

 private:
    wxBitmapBundle drawing_;
    wxBitmap rendered_;  ///< The latest one.
};

wxBitmapBundle Drawing(const std::string& name, const wxSize& size) {
    std::string source(IconSource(name));
    const std::string colour =
        wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT).GetAsString(wxC2S_HTML_SYNTAX).ToStdString();
    for (std::size_t at = source.find(kNeutral); at != std::string::npos; at = source.find(kNeutral, at)) {
        source.replace(at, kNeutral.size(), colour);
    }
    return wxBitmapBundle::FromSVG(source.c_str(), size);
}

}  // namespace

wxBitmapBundle Icon(const std::string& name, int size) {
    wxBitmapBundle drawing = Drawing(name, wxSize(size, size));
    if (!drawing.IsOk() || !MultipliesByOpacity()) return drawing;
    return wxBitmapBundle::FromImpl(new CorrectedDrawing(drawing));
}

wxBitmapBundle OpaquePicture(const std::string& name, const wxSize& size) { return Drawing(name, size); }

wxIconBundle ProgramIcons() {
    wxIconBundle icons;
    for (const int size : {16, 32, 48, 64}) icons.AddIcon(Icon("app", size).GetIcon(wxSize(size, size)));
    return icons;
}

}  // namespace corvane
