#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/wine/tools/Json.h"
#include "tests/wine/tools/System.h"

/// What programs have told the taskbar of their icons.
namespace corvane::test {

struct TaskbarIcon {
    HWND Window = nullptr;  ///< Gets the icon's messages.
    UINT Id = 0;            ///< Together with the window the icon's name.
    UINT Message = 0;       ///< Number of those messages; 0 when none are wanted.
    std::wstring Tip;
    int Picture = -1;  ///< Number of the picture; -1 without one.
};

class TaskbarIcons {
 public:
    /// Takes what Shell_NotifyIcon hands over: one of the NIM_... numbers and Wine's record. False, as the
    /// real taskbar says it, when it makes no sense: an icon to add that is there, or to change or delete
    /// that is not, or another number.
    bool Take(ULONG_PTR what, const void* data, std::size_t size);

    /// A new taskbar knows no icons. The diary and the pictures are kept.
    void Forget();

    [[nodiscard]] const std::vector<TaskbarIcon>& All() const { return icons_; }

    /// The icons, as [{"window", "id", "message", "tip", "picture"}, ...].
    [[nodiscard]] Json Describe() const;

    /// The diary from this line on: one object for every call and every `Forget`, with "what" ("add",
    /// "modify", "delete", "restart" or the number), and for a call whether it was "accepted", its "flags"
    /// and the icon as it was after it, or before it was deleted, as in `Describe`.
    [[nodiscard]] Json Diary(std::size_t from) const;

    /// A picture, as {"width", "height", "pixels"}: rows from the top, blue, green, red and opacity of each
    /// pixel in hexadecimal digits; null for a number that no picture has. Equal pictures have one number.
    [[nodiscard]] Json Picture(std::size_t number) const;

 private:
    struct Pixels {
        UINT Width = 0;
        UINT Height = 0;
        std::vector<std::uint8_t> Bytes;

        bool operator==(const Pixels&) const = default;
    };

    int NumberOf(Pixels picture);

    std::vector<TaskbarIcon> icons_;
    Json diary_ = Json::array();
    std::vector<Pixels> pictures_;
};

}  // namespace corvane::test
