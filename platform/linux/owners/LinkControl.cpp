#include "platform/linux/owners/LinkControl.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <utility>

#include <poll.h>

#include "base/Address.h"
#include "base/Text.h"
#include "platform/RegistryKeys.h"
#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/kernel/Announce.h"
#include "platform/linux/links/OriginalNote.h"
#include "platform/linux/links/TcpipKey.h"
#include "platform/linux/resolver/Dns.h"
#include "platform/linux/system/Errors.h"
#include "platform/linux/system/FileLock.h"
#include "platform/linux/system/RuntimeFolder.h"

namespace corvane {

namespace {

/// Takes the lock that lets one program at a time disable or enable a link of this name; the others wait.
/// Only root may open its file: without the right there is no lock, and nothing that the kernel would let the
/// program do.
void LockLink(const std::string& name, FileLock& lock) {
    std::error_code ignored;
    std::filesystem::create_directories(RuntimeFolder(), ignored);
    static_cast<void>(lock.Take(RuntimeFolder() + "/link-" + name + ".lock", FileLock::kNoLimit));
}

/// One disabling or enabling of one link.
class Operation {
 public:
    Operation(Machine& machine, std::string name) : machine_(machine), name_(std::move(name)) {
        LockLink(name_, lock_);
        // Find tells of a link that the picture lacks.
        static_cast<void>(machine_.Update());
        if (const LinkRow* row = machine_.RowOfName(name_)) row_ = *row;
    }

    Refusal Disable() {
        if (!Find()) return Problems();
        if (machine_.Store().ReadOnly()) {
            Problem(kNotKept + Trim(Win32Text(Win32Error::kAccessDenied)));
            return Problems();
        }
        const bool held = row_.held;
        if (!SetHeld(true)) return Problems();
        if (const DhcpAnswer stopped = StopDhcp(link_.index); !Ok(stopped.code)) {
            Problem(stopped.words);
            if (!held) SetHeld(false);
            return Problems();
        }
        const KernelAnswer down = machine_.Kernel().SetLinkUp(link_.index, false);
        if (!down.Ok()) {
            Problem("the link could not be taken down: " + down.Words());
            if (!held) SetHeld(false);
            return Problems();
        }
        // Read back at once: later on somebody else may have taken it up again.
        KernelLink now;
        if (machine_.Kernel().GetLink(link_.index, now).Ok() && now.Up()) Problem("the link is still up");
        RemoveAddressesBut({});
        ApplyResolver();
        return Problems();
    }

    Refusal Enable() {
        if (!Find()) return Problems();
        // What is up by half must not be taken for the link's set-up, also when this program is ended
        // meanwhile.
        const bool held = row_.held;
        if (!held && !SetHeld(true)) return Problems();
        const bool dhcp = UsesDhcp(machine_.Store(), row_.id);
        const StaticSetup setup = ReadStaticSetup(machine_.Store(), row_.id, link_.index);
        if (!SetAddress() || !BringUp()) {
            if (!held) SetHeld(false);
            return Problems();
        }
        if (dhcp) {
            RemoveAddressesBut({});
            const DhcpAnswer started = StartDhcp(link_.index, name_, row_.id);
            if (!Ok(started.code)) Problem(started.words);
        } else {
            ApplyStatic(setup);
        }
        RestoreHeld();
        ReleaseHold();
        ApplyResolver();
        ReadBack();
        return Problems();
    }

 private:
    /// All that did not come out as asked for.
    [[nodiscard]] Refusal Problems() const { return Refusal(Join(problems_, "; ")); }
    void Problem(const std::string& sentence) { problems_.push_back("'" + name_ + "': " + sentence); }

    bool Find() {
        const KernelAnswer answer = machine_.Kernel().GetLinkByName(name_, link_);
        if (!answer.Ok()) {
            Problem("the link is gone: " + answer.Words());
            return false;
        }
        if (row_.id.empty() || row_.index != link_.index) {
            Problem("the link is not in the registry; it appeared or was replaced just now, try again");
            return false;
        }
        return true;
    }

    /// Marks the link as disabled by the program, together with what it is going to lose; or takes the mark
    /// off. A link that has the mark was enabled by half only: what was kept then counts too.
    bool SetHeld(bool held) {
        std::vector<HeldMessage> saved;
        std::vector<HeldMessage> messages;
        if (held) {
            const KernelAnswer answer = machine_.Kernel().SaveLinkState(link_.index, saved);
            if (!answer.Ok()) Problem("its routes could not be read: " + answer.Words());
            if (row_.held) static_cast<void>(machine_.Store().LoadHeld(row_.id, messages));
        }
        for (HeldMessage& message : saved) {
            const bool known = std::find(messages.begin(), messages.end(), message) != messages.end();
            if (!known) messages.push_back(std::move(message));
        }
        row_.held = held;
        const Win32Error code = machine_.Store().Transact([&](RegistryStore::Editor& editor) {
            const Win32Error kept = editor.SaveHeld(row_.id, messages);
            return Ok(kept) ? editor.SaveLink(row_) : kept;
        });
        if (Ok(code)) return true;
        Problem(kNotKept + Trim(Win32Text(code)));
        return false;
    }

    void RemoveAddressesBut(const std::vector<KernelAddress>& wanted) {
        std::vector<KernelAddress> present;
        if (!machine_.Kernel().DumpAddresses(present).Ok()) return;
        // Last first: with a primary address the kernel takes its secondary ones.
        for (auto address = present.rbegin(); address != present.rend(); ++address) {
            if (address->index != link_.index || Contains(wanted, *address)) continue;
            const KernelAnswer answer = machine_.Kernel().DeleteAddress(*address);
            if (!answer.Ok()) {
                Problem("address " + DottedQuad(address->address.data()) +
                        " could not be removed: " + answer.Words());
            }
        }
    }

    static bool Contains(const std::vector<KernelAddress>& addresses, const KernelAddress& address) {
        return std::any_of(addresses.begin(), addresses.end(), [&](const KernelAddress& other) {
            return SamePlace(other, address) && address.validSeconds == kForever;
        });
    }

    std::optional<MacBytes> Original() const { return ParseMacDigits(row_.original); }

    /// The address that the link should get; nothing when it should keep what it has.
    std::optional<MacBytes> WantedAddress() {
        const std::optional<std::string> text = ReadOverride(machine_.Store(), row_.driverKey);
        if (text && !text->empty()) {
            const std::optional<MacBytes> mac = ParseMacDigits(*text);
            const Refusal refusal =
                mac ? MacRefusal(*mac) : Refusal("it is not made of twelve hexadecimal digits");
            if (!refusal) {
                overrides_ = true;
                return mac;
            }
            Problem("MAC address '" + *text + "' cannot be used: " + refusal.Words() +
                    "; the original address was given back");
        }
        // A bridge takes its address from its ports as long as nobody sets one.
        if (link_.kind == "bridge" && row_.applied.empty()) return std::nullopt;
        return Original();
    }

    bool SetAddress() {
        wanted_ = WantedAddress();
        if (overrides_ && row_.permanent.empty() && !row_.original.empty()) {
            NoteOriginal(row_.incarnation, row_.original);
        }
        if (!wanted_ || *wanted_ == link_.address) return true;
        const KernelAnswer answer = machine_.Kernel().SetLinkAddress(link_.index, *wanted_);
        if (answer.Ok()) return true;
        if (!overrides_) {
            Problem("the original MAC address could not be given back: " + answer.Words());
            wanted_.reset();
            return true;
        }
        FallBack(answer);
        return true;
    }

    /// The kernel or the driver refused the override: gives the original back, says why.
    void FallBack(const KernelAnswer& answer) {
        Problem("MAC address " + MacText(*wanted_) + " was refused: " + answer.Words() +
                "; the link has its original address");
        overrides_ = false;
        wanted_ = Original();
        if (!wanted_ || *wanted_ == link_.address) return;
        const KernelAnswer again = machine_.Kernel().SetLinkAddress(link_.index, *wanted_);
        if (!again.Ok()) Problem("the original MAC address could not be given back: " + again.Words());
    }

    /// Address conflicts with sibling links show only here.
    bool BringUp() {
        KernelAnswer up = machine_.Kernel().SetLinkUp(link_.index, true);
        if (!up.Ok() && overrides_) {
            link_.address = *wanted_;
            FallBack(up);
            up = machine_.Kernel().SetLinkUp(link_.index, true);
        }
        if (up.Ok()) return true;
        Problem("the link could not be taken up: " + up.Words());
        return false;
    }

    void ApplyStatic(const StaticSetup& setup) {
        for (const std::string& sentence : setup.refused) Problem(sentence);
        RemoveAddressesBut(setup.addresses);
        for (const KernelAddress& address : setup.addresses) {
            const KernelAnswer answer = machine_.Kernel().AddAddress(address, true);
            if (answer.Ok()) {
                given_.addresses.push_back(address);
            } else {
                Problem("IP address " + DottedQuad(address.address.data()) +
                        " was refused: " + answer.Words());
            }
        }
        std::vector<KernelRoute> present;
        static_cast<void>(machine_.Kernel().DumpRoutes(present));
        for (const KernelRoute& route : present) {
            if (route.index == link_.index && route.prefix == 0 && route.gateway) {
                static_cast<void>(machine_.Kernel().DeleteRoute(route));
            }
        }
        for (const KernelRoute& route : setup.defaultRoutes) {
            const KernelAnswer answer = machine_.Kernel().AddRoute(route);
            if (answer.Ok()) {
                given_.defaultRoutes.push_back(route);
            } else {
                Problem("gateway " + DottedQuad(route.gateway->data()) + " was refused: " + answer.Words());
            }
        }
    }

    void RestoreHeld() {
        std::vector<HeldMessage> messages;
        if (!Ok(machine_.Store().LoadHeld(row_.id, messages))) return;
        for (const HeldMessage& message : messages) {
            // What depends on an address that is no longer wanted cannot come back, and need not.
            static_cast<void>(machine_.Kernel().Restore(message));
        }
    }

    void ReleaseHold() {
        row_.held = false;
        row_.applied = overrides_ ? MacDigits(*wanted_) : std::string();
        if (!overrides_ && wanted_) ForgetOriginal(row_.incarnation);
        const Win32Error code = machine_.Store().Transact([&](RegistryStore::Editor& editor) {
            Win32Error forgotten = editor.SaveHeld(row_.id, {});
            if (Ok(forgotten)) forgotten = editor.DeleteValue(TcpipKey(row_.id), kRunTimeAddresses);
            return Ok(forgotten) ? editor.SaveLink(row_) : forgotten;
        });
        if (!Ok(code)) Problem("the registry could not be brought up to date: " + Trim(Win32Text(code)));
    }

    void ApplyResolver() {
        if (const Refusal refusal = ApplyDns(machine_.Store(), machine_.Kernel())) {
            problems_.push_back(refusal.Words());
        }
    }

    /// The kernel is the witness of what it said that it took.
    void ReadBack() {
        KernelLink now;
        const KernelAnswer answer = machine_.Kernel().GetLink(link_.index, now);
        if (!answer.Ok()) {
            Problem("the link is gone: " + answer.Words());
            return;
        }
        if (!now.Up()) Problem("the link is down again");
        if (wanted_ && now.address != *wanted_) {
            Problem("the MAC address is " + MacText(now.address) + ", not " + MacText(*wanted_));
        }
        std::vector<KernelAddress> addresses;
        std::vector<KernelRoute> routes;
        static_cast<void>(machine_.Kernel().DumpAddresses(addresses));
        static_cast<void>(machine_.Kernel().DumpRoutes(routes));
        std::vector<Ipv4Bytes> announced;
        for (const KernelAddress& address : given_.addresses) {
            if (Contains(addresses, address)) {
                announced.push_back(address.address);
            } else {
                Problem("IP address " + DottedQuad(address.address.data()) +
                        " is not there although it was accepted");
            }
        }
        for (const KernelRoute& route : given_.defaultRoutes) {
            const bool there = std::any_of(routes.begin(), routes.end(), [&](const KernelRoute& other) {
                return other.index == route.index && other.prefix == 0 && other.gateway == route.gateway &&
                       other.metric == route.metric;
            });
            if (!there) {
                Problem("gateway " + DottedQuad(route.gateway->data()) +
                        " is not there although it was accepted");
            }
        }
        if (announced.empty()) return;
        if (!now.Running()) AwaitCarrier();
        AnnounceAddresses(link_.index, now.address, announced);
    }

    /// A cable's ends need a moment to agree before the first frame gets through. A link without one is not
    /// waited for any longer than that.
    void AwaitCarrier() {
        using Clock = std::chrono::steady_clock;
        static constexpr std::chrono::milliseconds kLongest(3000);
        LinkMonitor monitor;
        const Clock::time_point end = Clock::now() + kLongest;
        KernelLink now;
        while (machine_.Kernel().GetLink(link_.index, now).Ok() && !now.Running()) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
            pollfd wait{monitor.Descriptor(), POLLIN, 0};
            if (left.count() <= 0 || poll(&wait, 1, static_cast<int>(left.count())) <= 0) return;
            static_cast<void>(monitor.TakeChanges());
        }
    }

    static constexpr char kNotKept[] = "what it would lose could not be kept in the registry: ";

    Machine& machine_;
    std::string name_;
    FileLock lock_;
    LinkRow row_;
    KernelLink link_;
    std::optional<MacBytes> wanted_;
    StaticSetup given_;  ///< What the kernel accepted.
    bool overrides_ = false;
    std::vector<std::string> problems_;
};

}  // namespace

Refusal LinkControl::Disable(const std::string& linkName) { return Operation(*machine_, linkName).Disable(); }

Refusal LinkControl::Enable(const std::string& linkName) { return Operation(*machine_, linkName).Enable(); }

}  // namespace corvane
