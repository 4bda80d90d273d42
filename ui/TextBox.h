#pragma once

#include <string>

#include "ui/logic/VendorEntry.h"

class wxTextCtrl;
class wxWindow;

/// What the small entry boxes have in common.
namespace corvane {

/// A box of one line that has room for `characters` of its widest; 0 for the toolkit's width.
wxTextCtrl* MakeTextBox(wxWindow* parent, int characters, long style = 0);

/// A box that holds `digits` characters, in a font of equal widths.
wxTextCtrl* MakeDigitBox(wxWindow* parent, int digits, long style);

/// The selected part of a box's text, or the caret.
TextSelection SelectionOf(const wxTextCtrl& box);
void SelectIn(wxTextCtrl& box, TextSelection selection);

/// Whether a character is typed into a text or, as backspace, takes one away; 0 is none.
bool IsTyped(int character);

/// The text on the clipboard; empty when there is none.
std::string ClipboardText();

}  // namespace corvane
