#pragma once

#include <cstddef>
#include <string>

/// The restart that ends every command whose changes take effect when the connection starts anew.
namespace corvane {

/// Asks with Yes, No and Cancel whether to restart the connection of Nics[adapter]. Restarts it on Yes, and
/// says so when that worked; a failed restart shows nothing more than its own progress. Refreshes the window
/// whatever the answer. Nics must be current; the restart may read the adapters anew.
void OfferRestart(std::size_t adapter, const std::string& title, const std::string& question);

/// The same with the question that warns of the loss of connectivity. `purpose` completes "You must restart
/// the selected network connection in order to ".
void OfferRestartTo(const std::string& purpose, std::size_t adapter);

}  // namespace corvane
