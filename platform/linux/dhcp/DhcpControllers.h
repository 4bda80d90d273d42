#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include <poll.h>

#include "platform/linux/dhcp/DhcpSocket.h"
#include "platform/linux/system/Descriptor.h"

namespace corvane {

/// The controllers that a supervisor talks to: their connections and the questions that wait for an answer.
class DhcpControllers {
 public:
    /// `listener` is listening.
    explicit DhcpControllers(DhcpListener& listener) : listener_(listener) {}

    /// Adds what is to be waited for to `waits`, for poll(2).
    void AddWaits(std::vector<pollfd>& waits);

    /// Takes questions and connections. `waits` are those of the last AddWaits, polled. `status` answers the
    /// question for the supervisor's state; without one the question waits until the connection ends.
    void Take(std::span<const pollfd> waits, const std::optional<DhcpAnswer>& status);

    /// True while somebody waits for an answer to `question`.
    [[nodiscard]] bool Asked(const char* question) const;
    /// Answers everybody who asked `question`.
    void AnswerAll(const std::string& question, const DhcpAnswer& answer);

    /// No controller can connect any more.
    void StopListening() { listener_.Close(); }

 private:
    struct Connection {
        Descriptor socket;
        std::string question;  ///< Empty until it has asked.
    };

    static void Hear(Connection& connection, const std::optional<DhcpAnswer>& status);
    void Accept();

    DhcpListener& listener_;
    std::vector<Connection> connections_;
};

}  // namespace corvane
