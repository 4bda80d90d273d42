#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/linux/registry/RegistryStore.h"

/// What nicx-registry does: the store from a shell, with the arguments and the layout of reg.exe.
namespace corvane {

inline constexpr int kRegistryToolDone = 0;
inline constexpr int kRegistryToolFailed = 1;  ///< Not found, no rights, store damaged or busy, refused.
inline constexpr int kRegistryToolWrongArguments = 2;

/// Larger files are not imported, in bytes.
inline constexpr std::uintmax_t kLargestRegFile = 64U << 20U;

struct RegistryConsole {
    std::istream& in;
    std::ostream& out;  ///< Data only.
    std::ostream& err;  ///< Messages and questions.
    bool interactive;   ///< `in` is a terminal: questions are asked there. Otherwise the action is refused.
};

/// Runs one command. `store` is called, once, only when the arguments are right and the command needs it.
/// Returns the exit code.
int RunRegistryTool(const std::vector<std::string>& arguments, const std::function<RegistryStore&()>& store,
                    RegistryConsole& console);

}  // namespace corvane
