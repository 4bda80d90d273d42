#pragma once

#include "platform/Platform.h"

namespace corvane {

/// The changes role of this system, for an event loop that can wait on a descriptor.
class DescribedChanges : public ChangesApi {
 public:
    /// A descriptor that becomes readable when there are changes to take; -1 when there is none to wait on.
    /// It lives as long as the role.
    virtual int Descriptor() = 0;
};

}  // namespace corvane
