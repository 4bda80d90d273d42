#pragma once

#include <cstdint>

#include "platform/linux/system/Descriptor.h"

namespace corvane {

/// Tells of changes to one link, and whether it was down in between: a link that was down for a moment has
/// lost its routes, which its state afterwards does not show.
class LinkWatch {
 public:
    explicit LinkWatch(std::uint32_t linkIndex);

    struct Events {
        bool changed = false;  ///< The link is to be looked at.
        bool wasDown = false;  ///< It was administratively down at some moment.
    };
    /// Reads all pending events without waiting. Events that the kernel had to drop count as both.
    Events Take();

    /// The socket (RTMGRP_LINK, rtnetlink(7)), to wait on for readability; -1 when there is none to be had.
    [[nodiscard]] int Get() const { return socket_.Get(); }

 private:
    std::uint32_t linkIndex_;
    Descriptor socket_;
};

}  // namespace corvane
