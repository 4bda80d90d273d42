#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "ui/logic/Maker.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

TEST(Maker, DisclaimerHasItsLinesWithTheBlanksAtTheirEnds) {
    EXPECT_THAT(
        Split(kDisclaimer, '\n'),
        ElementsAre("Disclaimer-\r", "Orvella Corvane v4.5 is a FREEWARE, and provided 'as is' with no \r",
                    "warranty what-so-ever. Orvella is not responsible in any way for damage to users \r",
                    "computer hardware/software or any data loss while/by using this software. This \r",
                    "software must not be used for any illegal or unethical purposes. User of this \r",
                    "software is responsible for any deed done using the software and hence must use \r",
                    "it at his/her own risk. By downloading/copying/using this software, you agrees upon \r",
                    "this disclaimer. Software distribution by anyone is unlimited."));
}

TEST(Maker, PagesLieBelowTheWebsiteAndTheMailAddressInItsDomain) {
    const std::string site = kMakerWebsite;
    EXPECT_THAT(site, StartsWith("https://"));
    EXPECT_THAT(site, EndsWith("/"));
    EXPECT_THAT(kMakerUpdates, StartsWith(site));
    EXPECT_THAT(kMakerDonations, StartsWith(site));
    EXPECT_STRNE(kMakerUpdates, kMakerDonations);
    const std::string domain = Without(site.substr(std::string("https://").size()), '/');
    EXPECT_THAT(kMakerMail, EndsWith("@" + domain));
}

}  // namespace
}  // namespace corvane
