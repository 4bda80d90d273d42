#pragma once

#include <string>
#include <vector>

#include "platform/windows/Windows.h"

namespace corvane::contract {

/// Writes the description that the tests' shell shows (tests/wine/shell/Description.h). Nothing is described
/// at first; all of it is removed at the end of the scope.
class ShellDescription {
 public:
    ShellDescription();
    ~ShellDescription();
    ShellDescription(const ShellDescription&) = delete;
    ShellDescription& operator=(const ShellDescription&) = delete;

    enum class Kind { kNoFolder, kFolder, kConnections };
    void AddPanelItem(const std::wstring& name, Kind kind);
    void AddConnection(const std::wstring& name, bool enabled, DWORD slow = 0);
    void SetTitle(const std::wstring& title);
    void RemoveSpace();
    void Fail(const std::wstring& method, HRESULT code);

    /// What the shell has done.
    [[nodiscard]] static std::vector<std::wstring> Diary();

 private:
    int panelItems_ = 0;
    int connections_ = 0;
};

}  // namespace corvane::contract
