#pragma once

#include <string>

#include <wx/string.h>

/// Text between the program (UTF-8, lines joined by CR LF) and wxWidgets.
namespace corvane {

inline wxString Wx(const std::string& text) {
    wxString result = wxString::FromUTF8(text);
    result.Replace("\r\n", "\n");
    return result;
}

inline std::string Utf8(const wxString& text) { return text.utf8_string(); }

}  // namespace corvane
