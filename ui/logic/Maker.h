#pragma once

/// The maker's pages and address, and the fixed texts about the product. The domain is a reserved one (RFC
/// 2606) until the maker's own is registered: change it here and nowhere else.
namespace corvane {

inline constexpr char kMakerWebsite[] = "https://orvella.example/";
inline constexpr char kMakerUpdates[] = "https://orvella.example/corvane/updates";
inline constexpr char kMakerDonations[] = "https://orvella.example/corvane/donate";
inline constexpr char kMakerMail[] = "corvane@orvella.example";

/// The disclaimer of the about box; lines joined by CR LF, the blanks at their ends belong to them.
inline constexpr char kDisclaimer[] =
    "Disclaimer-\r\n"
    "Orvella Corvane v4.5 is a FREEWARE, and provided 'as is' with no \r\n"
    "warranty what-so-ever. Orvella is not responsible in any way for damage to users \r\n"
    "computer hardware/software or any data loss while/by using this software. This \r\n"
    "software must not be used for any illegal or unethical purposes. User of this \r\n"
    "software is responsible for any deed done using the software and hence must use \r\n"
    "it at his/her own risk. By downloading/copying/using this software, you agrees upon \r\n"
    "this disclaimer. Software distribution by anyone is unlimited.";

}  // namespace corvane
