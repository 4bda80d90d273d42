#include "ui/Facts.h"

#include <wx/sizer.h>
#include <wx/stattext.h>

namespace corvane {

FactText* AddFact(wxWindow* parent, wxFlexGridSizer* grid, const char* label, const char* name) {
    grid->Add(new wxStaticText(parent, wxID_ANY, label), 0, wxALIGN_CENTER_VERTICAL);
    auto* const fact = FactText::Make(parent, *name == '\0' ? label : name);
    grid->Add(fact->Window(), 1, wxEXPAND);
    return fact;
}

}  // namespace corvane
