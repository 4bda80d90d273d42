#include "ui/Facts.h"

#include <wx/sizer.h>
#include <wx/stattext.h>

namespace corvane {

FactText* AddFact(wxWindow* parent, wxFlexGridSizer* grid, const char* label, const char* name) {
    grid->Add(new wxStaticText(parent, wxID_ANY, label), 0, wxALIGN_CENTER_VERTICAL);
    auto* const fact = new FactText(parent, *name == '\0' ? label : name);
    grid->Add(fact, 1, wxEXPAND);
    return fact;
}

}  // namespace corvane
