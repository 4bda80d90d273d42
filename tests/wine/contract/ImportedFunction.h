#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <stdexcept>
#include <utility>

#include "platform/windows/Windows.h"

namespace corvane::contract {

/// The place in this program's import table through which all of its own code calls a system function. Other
/// modules have tables of their own. The system's function is put back at the end of the scope. Throws
/// std::runtime_error when the program imports no function of that name, or when the place cannot be written.
class ImportSlot {
 public:
    explicit ImportSlot(const char* function);
    ~ImportSlot();
    ImportSlot(const ImportSlot&) = delete;
    ImportSlot& operator=(const ImportSlot&) = delete;

    void Put(ULONG_PTR function);
    [[nodiscard]] ULONG_PTR System() const { return system_; }

 private:
    ULONG_PTR* slot_;
    ULONG_PTR system_;
};

/// The name of a function as an argument of a template.
template <std::size_t kSize>
struct FunctionName {
    constexpr FunctionName(const char (&name)[kSize]) { std::copy_n(name, kSize, text); }
    char text[kSize];
};

/// Stands in the place of a system function, until the end of the scope: what this program calls by that name
/// reaches `answer`. Only one object may stand in a function's place at a time.
///
///     ImportedFunction<"DeleteIPAddress", decltype(DeleteIPAddress)> deleting([](ULONG context) { ... });
template <FunctionName kName, class Function>
class ImportedFunction;

template <FunctionName kName, class Result, class... Arguments>
class ImportedFunction<kName, Result WINAPI(Arguments...)> {
 public:
    using Answer = std::function<Result(Arguments...)>;

    explicit ImportedFunction(Answer answer) : slot_(kName.text) {
        if (answer_) throw std::logic_error("another object stands in this function's place");
        answer_ = std::move(answer);
        slot_.Put(reinterpret_cast<ULONG_PTR>(&Call));
    }
    ~ImportedFunction() { answer_ = nullptr; }
    ImportedFunction(const ImportedFunction&) = delete;
    ImportedFunction& operator=(const ImportedFunction&) = delete;

    /// Calls the system's own function.
    Result System(Arguments... arguments) const {
        return reinterpret_cast<Result(WINAPI*)(Arguments...)>(slot_.System())(arguments...);
    }

 private:
    static Result WINAPI Call(Arguments... arguments) { return answer_(arguments...); }

    static inline Answer answer_;
    ImportSlot slot_;
};

}  // namespace corvane::contract
