#pragma once

#include <utility>

#include "inventory/NicInfo.h"
#include "inventory/Stages.h"

/// What the tests of single stages of a refresh share.
namespace corvane {

/// Runs one stage on Nics as it is, and publishes what comes of it.
inline void RunStage(void (*stage)(Discovery&)) {
    Discovery found{Nics, {}};
    stage(found);
    Publish(std::move(found));
}

}  // namespace corvane
