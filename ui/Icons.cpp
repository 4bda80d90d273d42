#include "ui/Icons.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
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

std::string TextColour() {
    return wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT).GetAsString(wxC2S_HTML_SYNTAX).ToStdString();
}

wxBitmapBundle Drawing(const std::string& name, const wxSize& size, const std::string& colour) {
    std::string source(IconSource(name));
    for (std::size_t at = source.find(kNeutral); at != std::string::npos; at = source.find(kNeutral, at)) {
        source.replace(at, kNeutral.size(), colour);
    }
    return wxBitmapBundle::FromSVG(source.c_str(), size);
}

/// A square drawing in one text colour. Keeps its latest rendering, not the drawing: that is read anew for
/// another size.
class RenderedDrawing : public wxBitmapBundleImpl {
 public:
    RenderedDrawing(std::string name, int size, std::string colour)
        : name_(std::move(name)), size_(size, size), colour_(std::move(colour)) {}

    wxSize GetDefaultSize() const override { return size_; }
    wxSize GetPreferredBitmapSizeAtScale(double scale) const override { return size_ * scale; }
    wxBitmap GetBitmap(const wxSize& size) override {
        if (rendered_.IsOk() && rendered_.GetSize() == size) return rendered_;
        rendered_ = Drawing(name_, size_, colour_).GetBitmap(size);
        if (MultipliesByOpacity()) {
            wxImage image = rendered_.ConvertToImage();
            Unmultiply(image);
            rendered_ = wxBitmap(image);
        }
        return rendered_;
    }

 private:
    std::string name_;
    wxSize size_;
    std::string colour_;
    wxBitmap rendered_;  ///< The latest one.
};

}  // namespace

wxBitmapBundle Icon(const std::string& name, int size) {
    // Several controls show the same drawing.
    static auto& known = *new std::map<std::tuple<std::string, int, std::string>, wxBitmapBundle>;
    if (IconSource(name).empty()) return {};
    const std::string colour = TextColour();
    const auto [place, isNew] = known.try_emplace({name, size, colour});
    if (isNew) place->second = wxBitmapBundle::FromImpl(new RenderedDrawing(name, size, colour));
    return place->second;
}

wxBitmapBundle OpaquePicture(const std::string& name, const wxSize& size) {
    return Drawing(name, size, TextColour());
}

wxIconBundle ProgramIcons() {
    wxIconBundle icons;
    for (const int size : {16, 32, 48, 64}) icons.AddIcon(Icon("app", size).GetIcon(wxSize(size, size)));
    return icons;
}

}  // namespace corvane
