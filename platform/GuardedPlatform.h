#pragma once

#include "platform/Platform.h"

namespace corvane {

/// The platform with roles that never throw: each hands its calls on to the role that it was given, and turns
/// what flies out of it into the call's way to fail. Error numbers: kNotEnoughMemory or kGenFailure. Refusals
/// say the exception's words. A table is kFailed with the number. A call that cannot fail gives what a
/// Platform() gives.
///
/// Both back-ends hand out their platforms through this. `changes` stays the role that was given, as the
/// event loop may know more of it than the seam: it guards itself.
Platform GuardedPlatform(Platform platform);

}  // namespace corvane
