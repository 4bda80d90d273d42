#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/init.h>

#include "fakes/Fakes.h"
#include "ui/ControlNames.h"
#include "ui/MainMenu.h"
#include "ui/WxText.h"
#include "ui/frmAboutUs.h"
#include "ui/frmBrowseNetFolder.h"
#include "ui/frmCLHelp.h"
#include "ui/frmMain.h"
#include "ui/frmSplash.h"

namespace corvane {
namespace {

constexpr char kAdapterId[] = "{11111111-2222-3333-4444-555555555555}";

/// All windows of that name inside one, itself included.
std::vector<const wxWindow*> Bearers(const wxWindow& window, const wxString& name) {
    std::vector<const wxWindow*> found;
    if (window.GetName() == name) found.push_back(&window);
    for (const wxWindow* const child : window.GetChildren()) {
        const std::vector<const wxWindow*> inside = Bearers(*child, name);
        found.insert(found.end(), inside.begin(), inside.end());
    }
    return found;
}

/// Every form of the program, with all of the panels that are made when they are asked for.
class Forms {
 public:
    Forms() {
        machine_.AddAdapter(kAdapterId, "eth0", "0001");
        auto* const window = new frmMain({"/opt/nicx/", "System"});
        for (const int command :
             {mnuChangeMAC, mnuAddIPAddress, mnuAddGateway, mnuAddDNSServer, mnuCreatePreset}) {
            wxCommandEvent chosen(wxEVT_MENU, command);
            window->ProcessWindowEvent(chosen);
        }
        tops_ = {window, new frmSplash, new frmAboutUs(nullptr, "System"), new frmCLHelp("usage"),
                 new frmBrowseNetFolder(nullptr, "title", "heading", "instruction", {"folder"})};
    }
    ~Forms() {
        for (wxWindow* const top : tops_) delete top;
    }
    Forms(const Forms&) = delete;
    Forms& operator=(const Forms&) = delete;

    [[nodiscard]] std::vector<const wxWindow*> Find(std::string_view name) const {
        std::vector<const wxWindow*> found;
        for (const wxWindow* const top : tops_) {
            const std::vector<const wxWindow*> inside = Bearers(*top, Wx(std::string(name)));
            found.insert(found.end(), inside.begin(), inside.end());
        }
        return found;
    }

    FakeMachine machine_;

 private:
    std::vector<wxWindow*> tops_;
};

TEST(ControlNames, EveryNameIsBorneByAControlOfItsForm) {
    wxApp::SetInstance(new wxApp);
    const wxInitializer toolkit;
    ASSERT_TRUE(toolkit.IsOk());
    const Forms forms;
    EXPECT_THAT(forms.machine_.seat.boxes, testing::IsEmpty());
    for (const ControlEntry& entry : kControls) {
        SCOPED_TRACE(std::string(entry.form) + ": " + std::string(entry.name));
        if (entry.form.empty()) {
            const auto found = forms.Find(entry.name);
            ASSERT_EQ(found.size(), 1U);
            EXPECT_TRUE(found.front()->IsTopLevel());
            continue;
        }
        const auto form = forms.Find(entry.form);
        ASSERT_EQ(form.size(), 1U);
        const auto controls = Bearers(*form.front(), Wx(std::string(entry.name)));
        EXPECT_EQ(controls.size(), static_cast<std::size_t>(entry.count));
    }
}

}  // namespace
}  // namespace corvane
