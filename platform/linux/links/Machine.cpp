#include "platform/linux/links/Machine.h"

#include <algorithm>
#include <utility>

namespace corvane {

Machine::Machine(std::string storePath, std::unique_ptr<Netlink> kernel)
    : store_(std::move(storePath)), netlink_(std::move(kernel)), zone_(CurrentTimeZone()) {
    picture_.incarnationBase = IncarnationBase();
}

Machine::~Machine() = default;

KernelAnswer Machine::Update() {
    const bool changed = monitor_.TakeChanges();
    if (known_ && !changed) return {};
    KernelPicture picture;
    picture.incarnationBase = picture_.incarnationBase;
    KernelAnswer answer = netlink_->DumpLinks(picture.links);
    if (answer.Ok()) answer = netlink_->DumpAddresses(picture.addresses);
    if (answer.Ok()) answer = netlink_->DumpRoutes(picture.routes);
    known_ = answer.Ok();
    // A picture with holes must not make the store forget links: the former one stands until the next try.
    if (!known_) return answer;
    std::erase_if(picture.links, [](const KernelLink& link) { return !IsAdapter(link); });
    picture_ = std::move(picture);
    known_ = Ok(SyncLinks(store_, picture_, zone_, ethtool_, rows_));
    return {};
}

const LinkRow* Machine::RowOfIndex(std::uint32_t index) const {
    const auto row = std::find_if(rows_.begin(), rows_.end(), [&](const LinkRow& candidate) {
        return candidate.present && candidate.index == index;
    });
    return row == rows_.end() ? nullptr : &*row;
}

const LinkRow* Machine::RowOfName(const std::string& name) const {
    const auto row = std::find_if(rows_.begin(), rows_.end(), [&](const LinkRow& candidate) {
        return candidate.present && candidate.name == name;
    });
    return row == rows_.end() ? nullptr : &*row;
}

}  // namespace corvane
