#include "ui/logic/VendorEntry.h"

#include <cmath>
#include <string_view>

#include "base/RunTimeError.h"
#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/Platform.h"
#include "platform/Seat.h"
#include "ui/logic/MacEntry.h"
#include "vendors/RandomMac.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

constexpr int kFirstRandomBox = 3;
constexpr int kLastRandomBox = 5;
constexpr std::size_t kEntriesOfProgressStep = 500;
constexpr char kSearching[] = "Searching Wait ...";
constexpr char kEmptyListTitle[] = "Vendor List Is Empty";

std::string JoinPrefix(const MacBoxesView& boxes, const std::string& separator) {
    return boxes.Text(0) + separator + boxes.Text(1) + separator + boxes.Text(2);
}

std::string ProgressText(std::size_t entry, std::size_t last) {
    const double share = static_cast<double>(entry) / static_cast<double>(last) * 100;
    return std::to_string(static_cast<int>(std::nearbyint(share))) + "% Done";
}

}  // namespace

void VendorEntry::PrefixChanged() {
    if (!busy_) vendorList_.SetVendorText("");
}

void VendorEntry::LookUpTypedVendor() {
    if (!vendorList_.VendorText().empty()) return;
    if (JoinPrefix(boxes_, "").empty()) return;
    NormaliseOctets(boxes_, 0, kFirstRandomBox - 1);
    vendorList_.SetVendorText(kSearching);
    CurrentSeat().LetEventsRun();
    // Another prefix or another choice since then: this search is not wanted any more.
    if (vendorList_.VendorText() != kSearching) return;

    if (const std::optional<std::size_t> found = FindVendor(JoinPrefix(boxes_, ""))) {
        Choose(*found);
    } else {
        vendorList_.SetVendorText("Unknown Vendor (" + JoinPrefix(boxes_, "-") + ")");
    }
}

void VendorEntry::Choose(std::size_t entry) {
    if (Vendors().IsPlaceholder() || entry >= Vendors().Size()) return;
    vendorList_.SetVendorText(VendorText(Vendors(), entry));
    vendorList_.MarkChosen(entry);
    busy_ = true;
    FillPrefix(entry);
    UniformRandom random(CurrentPlatform().clock->Seed());
    FillRandomOctets(random);
    busy_ = false;
}

void VendorEntry::RandomAddress() {
    if (Vendors().IsPlaceholder()) {
        CurrentSeat().ShowBox(
            kEmptyListTitle,
            std::string("A random address begins with the prefix of a vendor, and no vendor "
                        "list was loaded.") +
                kCrLf + "Put back the file " + kVendorFileName +
                " that came with the program and start it again.",
            BoxIcon::kExclamation, BoxButtons::kOk);
        return;
    }
    UniformRandom random(CurrentPlatform().clock->Seed());
    const std::size_t entry = DrawVendorIndex(random, Vendors().Size() - 1);
    FillPrefix(entry);
    vendorList_.SetVendorText(VendorText(Vendors(), entry));
    FillRandomOctets(random);
}

void VendorEntry::FillPrefix(std::size_t entry) {
    const std::string_view prefix = Vendors().Prefix(entry);
    for (int box = 0; box < kFirstRandomBox; ++box)
        boxes_.SetText(box, FromCodePage(prefix.substr(static_cast<std::size_t>(box) * 2, 2)));
}

void VendorEntry::FillRandomOctets(UniformRandom& random) {
    for (int box = kFirstRandomBox; box <= kLastRandomBox; ++box)
        boxes_.SetText(box, CutToOctetBox(RandomOctetText(random)));
}

void FillVendorBox() {
    Seat& seat = CurrentSeat();
    seat.SplashStatus("Loading Vendor List ... ");
    seat.SplashProgress("0% Done");
    seat.LetEventsRun();
    if (Vendors().IsPlaceholder()) return;
    const std::size_t last = Vendors().Size() - 1;
    if (last == 0) {
        throw RunTimeError(RunTimeError::kOverflow,
                           std::string("The vendor list ") + kVendorFileName +
                               " has one record only, which is 0 of 0 and makes no percentage. Put back the "
                               "file that came with the program.");
    }
    for (std::size_t entry = 0; entry <= last; entry += kEntriesOfProgressStep) {
        seat.SplashProgress(ProgressText(entry, last));
        seat.LetEventsRun();
    }
}

}  // namespace corvane
