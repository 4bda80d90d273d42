#include "ui/ControlNames.h"

#include <wx/window.h>

namespace corvane {

void SetControlName(wxWindow& control, ControlName name) { control.SetName(name.Text()); }

}  // namespace corvane
