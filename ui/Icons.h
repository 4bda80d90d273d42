#pragma once

#include <string>
#include <string_view>

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>

/// The program's own drawings (ui/icons), in the colours of the desktop's theme.
namespace corvane {

/// The SVG text of a drawing of ui/icons by its file name without suffix; empty when there is none.
std::string_view IconSource(std::string_view name);

/// A drawing as a square picture that is `size` pixels wide at the normal scale; neutral strokes have the
/// theme's text colour.
wxBitmapBundle Icon(const std::string& name, int size = 16);

/// Same for a picture that covers its whole area.
wxBitmapBundle OpaquePicture(const std::string& name, const wxSize& size);

/// The program's own icon in the sizes that desktops ask for.
wxIconBundle ProgramIcons();

}  // namespace corvane
