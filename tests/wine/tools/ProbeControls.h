#pragma once

#include <string>

#include "tests/wine/tools/Json.h"
#include "tests/wine/tools/System.h"

/// What single kinds of windows hold, for their own process. Members are those that ProbeWindows.h lists.
namespace corvane::test {

/// Rectangle [x, y, width, height].
Json JsonRect(const RECT& rect);

/// The items of a menu. `owner` is the window that shows it, for the places of the items.
Json MenuItems(HMENU menu, HWND owner);

/// Adds what the control of class `name` holds beyond its text.
void AddControl(Json& object, HWND window, const std::wstring& name);

}  // namespace corvane::test
