#include "platform/linux/dhcp/DhcpSupervisor.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <optional>
#include <span>
#include <thread>
#include <utility>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "base/Text.h"
#include "platform/Files.h"
#include "platform/linux/dhcp/DhcpControl.h"

namespace corvane {

namespace {

// Below the 15 seconds that a controller waits; udhcpc reports a failure after eight.
constexpr std::int64_t kRenewMilliseconds = 12000;
constexpr std::int64_t kReleaseMilliseconds = 3000;
constexpr std::int64_t kRepeatMilliseconds = 500;
constexpr std::int64_t kEndMilliseconds = 2000;
constexpr std::int64_t kFirstPause = 1000;
constexpr std::int64_t kLongestPause = 30000;

int OpenSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&set, number);
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

/// Half a second is the limit.
void AwaitLeaseFile(const DhcpClientPlan& plan, const Ipv4Bytes& address) {
    for (int turn = 0; turn < 250 && !HasWrittenLease(plan, address); ++turn) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

}  // namespace

DhcpSupervisor::DhcpSupervisor(DhcpOptions options, DhcpListener& listener)
    : options_(std::move(options)),
      watch_(options_.linkIndex),
      controllers_(listener),
      lease_(options_.linkIndex, options_.linkId, options_.say),
      signals_(OpenSignals()) {}

void DhcpSupervisor::Run() {
    lease_.Adopt();
    if (watch_.Get() < 0) options_.say("changes of the link cannot be watched");
    LookAtLink(false);
    MakePlan();
    for (;;) {
        DoTasks();
        if (state_ == DhcpState::kEnded) break;
        Wait();
        CheckDeadlines();
    }
    lease_.Drop();
    for (const std::string& file : plan_.files) unlink(file.c_str());
    controllers_.StopListening();
    controllers_.AnswerAll(kAskStop, {});
    // Other questions end with their connections: nobody answers them any more.
}

bool DhcpSupervisor::Happen(DhcpEvent event) {
    const std::optional<DhcpState> next = DhcpStateAfter(state_, event);
    if (next) state_ = *next;
    return next.has_value();
}

bool DhcpSupervisor::WantsLease() const {
    return state_ == DhcpState::kKeeping || state_ == DhcpState::kRenewing;
}

int DhcpSupervisor::WaitMilliseconds() const {
    std::int64_t next = BootMilliseconds() + 60000;
    const bool lasts = state_ == DhcpState::kKeeping || state_ == DhcpState::kReleased;
    if (!lasts) next = std::min(next, stateEnd_);
    const bool repeats = state_ == DhcpState::kReleasing && plan_.repeatsRelease;
    if (repeats && stage_ != ClientStage::kStarting) next = std::min(next, repeatAt_);
    if (const std::optional<Milliseconds> end = lease_.End()) next = std::min(next, *end);
    if (WantsLease() && LinkRuns() && !client_.Running()) next = std::min(next, startAt_);
    return static_cast<int>(std::max<std::int64_t>(next - BootMilliseconds(), 0));
}

void DhcpSupervisor::Wait() {
    std::vector<pollfd> waits;
    for (const int descriptor :
         {signals_.Get(), watch_.Get(), client_.HookDescriptor(), client_.EndDescriptor()}) {
        waits.push_back({descriptor, POLLIN, 0});
    }
    controllers_.AddWaits(waits);
    // poll skips negative descriptors, and an interrupted one is a turn without events.
    if (poll(waits.data(), waits.size(), WaitMilliseconds()) < 0) return;

    enum : std::size_t { kSignals, kWatch, kHook, kEnd, kControllers };
    signalfd_siginfo signal{};
    if (waits[kSignals].revents != 0 && read(signals_.Get(), &signal, sizeof signal) > 0) endAsked_ = true;
    // A hook that waits for its answer keeps its client from ending: reports come before the end.
    if (waits[kHook].revents != 0) TakeReports();
    if (waits[kEnd].revents != 0) {
        if (const std::optional<std::string> words = client_.Collect()) ClientEnded(*words);
    }
    if (waits[kWatch].revents != 0) {
        const LinkWatch::Events events = watch_.Take();
        if (events.changed) LookAtLink(events.wasDown);
    }
    // A supervisor that is ending lets the question for its state wait until its end, which is the answer.
    const bool ending = state_ == DhcpState::kEnding;
    controllers_.Take(std::span(waits).subspan(kControllers),
                      ending ? std::nullopt : std::optional<DhcpAnswer>(Status()));
}

// ---- the link
// ------------------------------------------------------------------------------------------------

void DhcpSupervisor::LookAtLink(bool wasDown) {
    if (linkGone_) return;
    KernelLink link;
    const KernelAnswer answer = netlink_.GetLink(options_.linkIndex, link);
    if (answer.errnoValue == ENODEV) {
        options_.say("the link is gone");
        linkGone_ = true;
        return;
    }
    if (!answer.Ok()) {
        options_.say("the link cannot be looked at: " + answer.Words());
        return;
    }
    const bool wasRunning = LinkRuns() && !wasDown;
    link_ = link;
    const bool otherLink = link.name != clientLink_.name || link.address != clientLink_.address;
    if (client_.Running() && otherLink && state_ != DhcpState::kEnding) {
        // It would go on with its former hardware address, and with the client id made of it, for all its
        // life.
        options_.say("name or hardware address changed; asking for a lease anew");
        ReplaceClient();
        return;
    }
    const bool settled = state_ == DhcpState::kKeeping || state_ == DhcpState::kReleased;
    if (LinkRuns() && !wasRunning && lease_.Get() && settled) {
        // The link's routes went when it went down, and it may be plugged into another network now.
        lease_.PutBack();
        if (stage_ != ClientStage::kStarting && !plan_.endsToRenew) client_.Signal(plan_.renewSignal);
    }
}

// ---- the client
// ----------------------------------------------------------------------------------------------

void DhcpSupervisor::MakePlan() {
    const std::string socketPath = DhcpSocketPath(options_.linkIndex);
    plan_ = PlanDhcpClient(options_.client, link_.name, options_.hookPath,
                           socketPath.substr(0, socketPath.rfind('.')));
}

void DhcpSupervisor::StartClient() {
    MakePlan();
    if (!plan_.configurationPath.empty()) {
        if (const auto error = ReplaceFileContents(plan_.configurationPath, plan_.configurationText)) {
            options_.say(plan_.configurationPath + ": " + error.message());
        }
    }
    clientLink_ = link_;
    stage_ = ClientStage::kStarting;
    RunClient(plan_.run);
}

void DhcpSupervisor::RunClient(const std::vector<std::string>& arguments) {
    if (const Refusal refusal = client_.Start(arguments, options_.talk)) ClientEnded(refusal.Words());
}

void DhcpSupervisor::ClientEnded(const std::string& words) {
    switch (state_) {
        case DhcpState::kEnding:
        case DhcpState::kEnded:
            return;
        case DhcpState::kReleasing:
            if (plan_.release.empty() || stage_ == ClientStage::kGivingBack || !lease_.Get()) {
                FinishRelease();
            } else {
                stage_ = ClientStage::kGivingBack;
                RunClient(plan_.release);
            }
            return;
        case DhcpState::kRenewing:
            if (!plan_.endsToRenew) break;
            startAt_ = BootMilliseconds();
            return;
        case DhcpState::kKeeping:
        case DhcpState::kReleased:
            break;
    }
    options_.say(std::string(NameOf(options_.client.kind)) + " ended: " + words);
    pause_ = pause_ == 0 ? kFirstPause : std::min(pause_ * 2, kLongestPause);
    startAt_ = BootMilliseconds() + pause_;
}

void DhcpSupervisor::ReplaceClient() {
    client_.End(kEndMilliseconds);
    lease_.Drop();
    startAt_ = BootMilliseconds();
    FinishRelease();
}

void DhcpSupervisor::SignalWithLease(int number) const {
    if (lease_.Get()) AwaitLeaseFile(plan_, lease_.Get()->address);
    client_.Signal(stage_ == ClientStage::kStarting ? SIGTERM : number);
}

void DhcpSupervisor::TakeReports() {
    HookReport report;
    while (client_.TakeReport(report)) client_.Answer(report, Heard(report));
}

bool DhcpSupervisor::Heard(const HookReport& report) {
    if (stage_ == ClientStage::kStarting) stage_ = ClientStage::kReady;
    const LeaseReading reading = ReadReport(report);
    if (!reading.problem.empty()) options_.say(reading.problem);
    bool usable = reading.event != LeaseEvent::kFailed;
    if (reading.event == LeaseEvent::kBound) {
        usable = lease_.Take(reading.lease);
        if (usable) {
            pause_ = 0;
            FinishRenewal(Status());
        }
    }
    if (state_ == DhcpState::kReleasing) lease_.AwaitNextHops();
    if (reading.event == LeaseEvent::kLost || !usable) lease_.Drop();
    if (!usable) {
        FinishRenewal(
            {Win32Error::kSemTimeout, reading.problem.empty() ? "no DHCP server answered" : reading.problem});
    }
    if (reading.event == LeaseEvent::kLost && state_ == DhcpState::kReleasing && plan_.staysAfterRelease) {
        stage_ = ClientStage::kIdle;
        FinishRelease();
    }
    return usable;
}

DhcpAnswer DhcpSupervisor::Status() const {
    if (const std::optional<Lease>& lease = lease_.Get()) {
        return {Win32Error::kSuccess,
                "bound " + DottedQuad(lease->address.data()) + "/" + std::to_string(lease->prefix)};
    }
    if (!WantsLease()) return {Win32Error::kSuccess, "released"};
    return {Win32Error::kSuccess, LinkRuns() ? "asking" : "no carrier"};
}

// ---- states
// --------------------------------------------------------------------------------------------------

void DhcpSupervisor::DoTasks() {
    if (controllers_.Asked(kAskStop) || linkGone_) endAsked_ = true;
    if (endAsked_) {
        const bool canRelease = client_.Running() && lease_.Get() && LinkRuns();
        if (linkGone_) {
            if (Happen(DhcpEvent::kLinkGone)) BeginEnd();
        } else if (canRelease) {
            if (Happen(DhcpEvent::kEndAsked)) BeginRelease();
        } else {
            if (Happen(DhcpEvent::kEndAskedBare)) BeginEnd();
        }
    }
    if (controllers_.Asked(kAskRelease) && Happen(DhcpEvent::kReleaseAsked)) BeginRelease();
    if (controllers_.Asked(kAskRenew) && Happen(DhcpEvent::kRenewAsked)) BeginRenewal();
    if (!client_.Running()) Happen(DhcpEvent::kClientGone);
    // On a link that is down udhcpc asks for ever; it is started anew when carrier comes.
    const bool settled = state_ == DhcpState::kKeeping || state_ == DhcpState::kReleased;
    const bool asksInVain = client_.Running() && !LinkRuns() && !lease_.Get() && stage_ != ClientStage::kIdle;
    if (settled && asksInVain) client_.End(kEndMilliseconds);
    if (WantsLease() && LinkRuns() && !client_.Running() && BootMilliseconds() >= startAt_) StartClient();
}

void DhcpSupervisor::BeginRenewal() {
    if (!LinkRuns()) {
        FinishRenewal({Win32Error::kSemTimeout, "the link has no carrier"});
        return;
    }
    stateEnd_ = BootMilliseconds() + kRenewMilliseconds;
    if (!client_.Running()) {
        startAt_ = BootMilliseconds();
    } else if (stage_ != ClientStage::kStarting) {
        stage_ = ClientStage::kReady;
        SignalWithLease(plan_.renewSignal);
    }
    // A client that has just been started is asking already.
}

void DhcpSupervisor::FinishRenewal(const DhcpAnswer& answer) {
    if (Happen(DhcpEvent::kRenewalOver)) controllers_.AnswerAll(kAskRenew, answer);
}

void DhcpSupervisor::BeginRelease() {
    stateEnd_ = BootMilliseconds() + kReleaseMilliseconds;
    repeatAt_ = BootMilliseconds() + kRepeatMilliseconds;
    if (!client_.Running() || stage_ == ClientStage::kIdle) {
        FinishRelease();
    } else {
        SignalWithLease(plan_.releaseSignal);
    }
}

void DhcpSupervisor::FinishRelease() {
    if (!Happen(DhcpEvent::kReleaseOver)) return;
    if (lease_.Get()) lease_.Drop();
    controllers_.AnswerAll(kAskRelease, {Win32Error::kSuccess, "released"});
}

void DhcpSupervisor::BeginEnd() {
    stateEnd_ = BootMilliseconds() + kEndMilliseconds;
    client_.Signal(SIGTERM);
}

void DhcpSupervisor::CheckDeadlines() {
    const Milliseconds now = BootMilliseconds();
    if (now >= lease_.End().value_or(now + 1)) {
        options_.say("the lease ran out");
        lease_.Drop();
    }
    switch (state_) {
        case DhcpState::kRenewing:
            if (now >= stateEnd_) FinishRenewal({Win32Error::kSemTimeout, "no DHCP server answered"});
            break;
        case DhcpState::kReleasing:
            if (now >= stateEnd_) {
                // A client that does not even let go of its lease is of no more use.
                client_.End(0);
                FinishRelease();
            } else if (now >= repeatAt_ && plan_.repeatsRelease && stage_ != ClientStage::kStarting) {
                client_.Signal(plan_.releaseSignal);
                repeatAt_ = now + kRepeatMilliseconds;
            }
            break;
        case DhcpState::kEnding:
            if (now >= stateEnd_) {
                client_.Signal(SIGKILL);
                stateEnd_ = now + kEndMilliseconds;
            }
            break;
        case DhcpState::kKeeping:
        case DhcpState::kReleased:
        case DhcpState::kEnded:
            break;
    }
}

}  // namespace corvane
