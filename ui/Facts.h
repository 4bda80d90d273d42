#pragma once

#include "ui/ControlNames.h"
#include "ui/FactText.h"

class wxFlexGridSizer;

namespace corvane {

/// A fact with its label in front of it, in a grid of two columns; `name` is the accessible name where the
/// label does not say enough.
FactText* AddFact(wxWindow* parent, wxFlexGridSizer* grid, ControlName control, const char* label,
                  const char* name = "");

}  // namespace corvane
