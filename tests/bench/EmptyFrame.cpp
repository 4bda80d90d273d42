// The peer of the window's start: a program that opens one empty frame of the same size and does nothing.
#include <wx/app.h>
#include <wx/frame.h>

namespace {

class EmptyFrame : public wxApp {
 public:
    bool OnInit() override {
        auto* const frame = new wxFrame(nullptr, wxID_ANY, "Empty frame");
        frame->SetSize(frame->FromDIP(wxSize(1120, 840)));
        return frame->Show();
    }
};

}  // namespace

wxIMPLEMENT_APP(EmptyFrame);
