#include "tests/wine/tools/TaskbarIcons.h"

// Wants <windows.h> before it.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include <shellapi.h>

namespace corvane::test {

namespace {

constexpr UINT kBitsPerPixel = 32;

/// What Wine's Shell_NotifyIcon sends with WM_COPYDATA, the same for programs of 32 and 64 bits. Behind it
/// come, when the call had a picture, one bit per pixel of its mask, up to the next multiple of 16 bits, and
/// the pixels themselves.
struct Record {
    LONG Window;
    UINT Id;
    UINT Flags;
    UINT CallbackMessage;
    wchar_t Tip[128];
    DWORD State;
    DWORD StateMask;
    wchar_t Info[256];
    UINT TimeoutOrVersion;
    wchar_t InfoTitle[64];
    DWORD InfoFlags;
    GUID Item;
    UINT Width;
    UINT Height;
    UINT Planes;
    UINT BitsPerPixel;
};

std::string Name(ULONG_PTR what) {
    switch (what) {
        case NIM_ADD:
            return "add";
        case NIM_MODIFY:
            return "modify";
        case NIM_DELETE:
            return "delete";
        default:
            return std::to_string(what);
    }
}

void AddFacts(Json& object, const TaskbarIcon& icon) {
    object["window"] = HandleToLong(icon.Window);
    object["id"] = icon.Id;
    object["message"] = icon.Message;
    object["tip"] = Utf8(icon.Tip);
    object["picture"] = icon.Picture;
}

}  // namespace

bool TaskbarIcons::Take(ULONG_PTR what, const void* data, std::size_t size) {
    Record record{};
    if (size < sizeof record) return false;
    std::memcpy(&record, data, sizeof record);

    TaskbarIcon icon;
    icon.Window = static_cast<HWND>(LongToHandle(record.Window));
    icon.Id = record.Id;
    const auto known = std::find_if(icons_.begin(), icons_.end(), [&](const TaskbarIcon& other) {
        return other.Window == icon.Window && other.Id == icon.Id;
    });
    const bool isKnown = known != icons_.end();
    if (isKnown) icon = *known;
    const bool accepted = what == NIM_ADD ? !isKnown : isKnown && (what == NIM_MODIFY || what == NIM_DELETE);
    if (accepted && what != NIM_DELETE) {
        if ((record.Flags & NIF_MESSAGE) != 0) icon.Message = record.CallbackMessage;
        if ((record.Flags & NIF_TIP) != 0) {
            icon.Tip.assign(record.Tip, std::find(std::begin(record.Tip), std::end(record.Tip), L'\0'));
        }
        if ((record.Flags & NIF_ICON) != 0) {
            const std::size_t mask = (std::size_t{record.Width} * record.Height + 15) / 16 * 2;
            const std::size_t bytes = std::size_t{record.Width} * record.Height * (kBitsPerPixel / 8);
            icon.Picture = -1;
            if (bytes != 0 && record.BitsPerPixel == kBitsPerPixel && size >= sizeof record + mask + bytes) {
                const auto* const first = static_cast<const std::uint8_t*>(data) + sizeof record + mask;
                icon.Picture = NumberOf({record.Width, record.Height, {first, first + bytes}});
            }
        }
        if (isKnown) {
            *known = icon;
        } else {
            icons_.push_back(icon);
        }
    }
    if (accepted && what == NIM_DELETE) icons_.erase(known);

    Json line = Json::object({{"what", Name(what)}, {"accepted", accepted}, {"flags", record.Flags}});
    AddFacts(line, icon);
    diary_.push_back(std::move(line));
    return accepted;
}

void TaskbarIcons::Forget() {
    icons_.clear();
    diary_.push_back(Json::object({{"what", "restart"}}));
}

Json TaskbarIcons::Describe() const {
    Json icons = Json::array();
    for (const TaskbarIcon& icon : icons_) AddFacts(icons.emplace_back(), icon);
    return icons;
}

Json TaskbarIcons::Diary(std::size_t from) const {
    const std::size_t begin = std::min(from, diary_.size());
    return Json(diary_.begin() + static_cast<std::ptrdiff_t>(begin), diary_.end());
}

Json TaskbarIcons::Picture(std::size_t number) const {
    if (number >= pictures_.size()) return nullptr;
    const Pixels& picture = pictures_[number];
    return Json::object(
        {{"width", picture.Width}, {"height", picture.Height}, {"pixels", Hexadecimal(picture.Bytes)}});
}

int TaskbarIcons::NumberOf(Pixels picture) {
    const auto known = std::find(pictures_.begin(), pictures_.end(), picture);
    const auto number = std::distance(pictures_.begin(), known);
    if (known == pictures_.end()) pictures_.push_back(std::move(picture));
    return static_cast<int>(number);
}

}  // namespace corvane::test
