#pragma once

#include <exception>

#include <wx/app.h>

/// Callbacks whose caller is a C library.
namespace corvane {

/// Runs a callback's body. Nothing may be thrown through a C library: what the body throws comes out of the
/// event loop instead, which tells the user.
template <class Body>
void RunCallback(const Body& body) noexcept {
    try {
        body();
    } catch (...) {
        wxTheApp->CallAfter([fault = std::current_exception()] { std::rethrow_exception(fault); });
    }
}

}  // namespace corvane
