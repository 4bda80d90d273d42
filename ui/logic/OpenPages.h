#pragma once

#include <string>

/// Opening the help page and the maker's pages with the user's own programs. What cannot be opened is shown
/// in a box with what the system says.
namespace corvane {

/// The menu items for help: "help.html" in the program folder, which ends in the separator.
void OpenHelp(const std::string& programFolder);
/// The menu item for the web site; the picture and the web-site label of the about box; the splash window's
/// picture.
void OpenWebsite();
/// The menu item that looks for updates.
void OpenUpdates();
/// The menu item for donations.
void OpenDonations();
/// A new mail to the maker.
void OpenMail();

}  // namespace corvane
