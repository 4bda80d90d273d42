#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/Win32Error.h"

/// An adapter's TCP/IP key in the registry, for the writers and commands of this folder. Failures are thrown
/// as RegistryFailure and end in the box of the routine, through RunOnKey; they never leave this folder.
namespace corvane {

/// Stands for "no static address".
inline const std::string kNoAddress = "0.0.0.0";

/// A failed read, write or deletion, on its way to the routine's box.
struct RegistryFailure {
    std::string valueName;
    Win32Error code = Win32Error::kSuccess;
};

class InterfaceKey {
 public:
    /// The key of Nics[adapter].
    explicit InterfaceKey(std::size_t adapter);

    [[nodiscard]] const std::string& Path() const { return path_; }

    void WriteDword(const std::string& name, std::uint32_t value) const;
    /// Writes the text as it is; terminators are the caller's.
    void WriteText(const std::string& name, const std::string& text, std::uint32_t type) const;
    void WriteList(const std::string& name, const std::vector<std::string>& entries) const;
    [[nodiscard]] std::string ReadText(const std::string& name) const;
    /// The pieces of a list (ListPieces); `placeholder` alone for an empty list.
    [[nodiscard]] std::vector<std::string> ReadList(const std::string& name,
                                                    const std::string& placeholder) const;
    void Delete(const std::string& name) const;

    /// DHCP on or off, and no address, mask or gateway. Name servers stay.
    void SwitchDhcpAndReset(bool enable) const;

 private:
    std::string path_;
};

using FailureReport = std::function<void(const InterfaceKey& key, const RegistryFailure& failure)>;

/// Runs a routine; a registry failure ends it, and is reported. True when there was none.
bool RunOnKey(const InterfaceKey& key, const std::function<void(const InterfaceKey&)>& routine,
              const FailureReport& report);

/// The box of a failed write.
void ReportWrite(const InterfaceKey& key, const RegistryFailure& failure);

}  // namespace corvane
