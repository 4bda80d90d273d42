#include "ui/TrayIcon.h"

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
    explicit TaskBarTrayIcon(TrayIconHost& host) : host_(host) {
        Bind(wxEVT_TASKBAR_LEFT_DOWN, [this](wxTaskBarIconEvent&) { host_.ShowOrHide(); });
    }
    ~TaskBarTrayIcon() override { RemoveIcon(); }

    [[nodiscard]] int PictureSize() const override { return kPictureSize; }
    void Show(const wxIcon& picture, const std::string& tip) override { SetIcon(picture, Wx(tip)); }

 private:
    wxMenu* CreatePopupMenu() override { return host_.MakeMenu(); }

    TrayIconHost& host_;
};

}  // namespace

std::unique_ptr<TrayIcon> TrayIcon::Make(const wxWindow&, TrayIconHost& host) {
    if (!wxTaskBarIcon::IsAvailable()) return nullptr;
    return std::make_unique<TaskBarTrayIcon>(host);
}

}  // namespace corvane
