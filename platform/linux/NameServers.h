#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/Platform.h"
#include "platform/linux/links/Machine.h"

namespace corvane {

/// The name servers role: the resolver's configuration follows the TCP/IP keys of the links that are up.
class NameServers : public NameServersApi {
 public:
    explicit NameServers(std::shared_ptr<Machine> machine) : machine_(std::move(machine)) {}

    Refusal PutInForce(const std::string& adapterId) override;

 private:
    std::shared_ptr<Machine> machine_;
};

}  // namespace corvane
