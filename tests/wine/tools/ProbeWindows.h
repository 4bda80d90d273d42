#pragma once

#include "tests/wine/tools/Json.h"

/// The windows of the calling thread, as its own process sees them.
namespace corvane::test {

/// What the calling thread shows, as an array: its visible top-level windows, the topmost first. A window
/// has:
///   handle, class, text, rect [x, y, width, height] in screen coordinates, visible, enabled, focused (it has
///   the keyboard), id (of the control), style, name (what a screen reader calls it), children (in z-order,
///   which is the tab order); and where they apply: client (rect of the inner area of a top-level window),
///   active, modal (its owner is disabled), menu (items of the menu bar), popup (items of the pop-up menu
///   that the window shows), checked, default (push button of Enter), pushButton, icon ("error", "warning",
///   "information", "question" of a static control), readOnly, selection [from, to] (of an edit control),
///   choices and choice (of a combo box or list box), columns, rows, selected, focusedRow, rowRects (of a
///   list view), buttons (of a tool bar).
/// A menu item has: text, id, enabled, checked, separator, items (of its submenu), and rect when it can be
/// seen.
Json DescribeThread();

/// Whether keys or mouse buttons wait for the calling thread: true or false.
Json DescribeInput();

}  // namespace corvane::test
