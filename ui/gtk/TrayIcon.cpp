#include "ui/TrayIcon.h"

#include <utility>

#include <wx/icon.h>
#include <wx/menu.h>
#include <wx/taskbar.h>

#include "ui/WxText.h"

namespace corvane {

namespace {

constexpr int kPictureSize = 24;

/// The toolkit's icon.
class TaskBarTrayIcon : public TrayIcon, private wxTaskBarIcon {
 public:
    explicit TaskBarTrayIcon(TrayEvents events) : events_(std::move(events)) {
        Bind(wxEVT_TASKBAR_LEFT_DOWN, [this](wxTaskBarIconEvent&) { events_.onClick(); });
    }
    ~TaskBarTrayIcon() override { RemoveIcon(); }

    [[nodiscard]] int PictureSize() const override { return kPictureSize; }
    void Show(const wxIcon& picture, const std::string& tip) override { SetIcon(picture, Wx(tip)); }

 private:
    wxMenu* CreatePopupMenu() override { return events_.makeMenu(); }

    TrayEvents events_;
};

}  // namespace

std::unique_ptr<TrayIcon> TrayIcon::Make(const wxWindow&, TrayEvents events) {
    if (!wxTaskBarIcon::IsAvailable()) return nullptr;
    return std::make_unique<TaskBarTrayIcon>(std::move(events));
}

}  // namespace corvane
