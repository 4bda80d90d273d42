#include "ui/Facts.h"

#include <wx/sizer.h>
#include <wx/stattext.h>

namespace corvane {

FactText* AddFact(wxWindow* parent, wxFlexGridSizer* grid, ControlName control, const char* label,
                  const char* name) {
    grid->Add(new wxStaticText(parent, wxID_ANY, label), 0, wxALIGN_CENTER_VERTICAL);
    auto* const fact = FactText::Make(parent, *name == '\0' ? label : name);
    SetControlName(*fact->Window(), control);
    grid->Add(fact->Window(), 1, wxEXPAND);
    return fact;
}

}  // namespace corvane
