#include "platform/linux/dhcp/DhcpSupervisor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <thread>
#include <utility>

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
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
// Descriptors stay below kHookDescriptor.
constexpr std::size_t kMostConnections = 32;

int OpenSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&set, number);
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

}  // namespace

DhcpSupervisor::DhcpSupervisor(DhcpOptions options, DhcpListener& listener)
    : options_(std::move(options)),
      listener_(listener),
      watch_(options_.linkIndex),
      installer_(options_.linkIndex, options_.linkId, options_.say),
      signals_(OpenSignals()) {}

void DhcpSupervisor::Run() {
    installer_.Adopt();
    if (watch_.Get() < 0) options_.say("changes of the link cannot be watched");
    LookAtLink(false);
    MakePlan();
    while (!finished_) {
        DoTasks();
        if (finished_) break;
        Wait();
        CheckDeadlines();
    }
    DropLease();
    for (const std::string& file : plan_.files) unlink(file.c_str());
    listener_.Close();
    AnswerAll(kAskStop, {});
    // Other questions end with their connections: nobody answers them any more.
}

/// Time that goes on while the machine sleeps, as leases do.
DhcpSupervisor::Milliseconds DhcpSupervisor::Now() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1000000;
}

int DhcpSupervisor::WaitMilliseconds() const {
    std::int64_t next = Now() + 60000;
    if (task_ != Task::kNone) next = std::min(next, taskEnd_);
    if (task_ == Task::kReleasing) next = std::min(next, repeatAt_);
    if (lease_ && leaseEnd_ != 0) next = std::min(next, leaseEnd_);
    const bool startsLater = wanted_ && linkRunning_ && !client_.Running() && task_ != Task::kEnding;
    if (startsLater) next = std::min(next, startAt_);
    return static_cast<int>(std::max<std::int64_t>(next - Now(), 0));
}

void DhcpSupervisor::Wait() {
    // Only here: everywhere else connections keep their places.
    std::erase_if(connections_, [](const Connection& connection) { return !connection.socket.IsOpen(); });
    std::vector<pollfd> waits;
    for (const int descriptor :
         {signals_.Get(), watch_.Get(), client_.HookDescriptor(), client_.EndDescriptor(), listener_.Get()}) {
        waits.push_back({descriptor, POLLIN, 0});
    }
    if (connections_.size() >= kMostConnections) waits.back().fd = -1;
    for (const Connection& connection : connections_) waits.push_back({connection.socket.Get(), POLLIN, 0});
    // poll skips negative descriptors, and an interrupted one is a turn without events.
    if (poll(waits.data(), waits.size(), WaitMilliseconds()) < 0) return;

    enum : std::size_t { kSignals, kWatch, kHook, kEnd, kListener, kFirstConnection };
    signalfd_siginfo signal{};
    if (waits[kSignals].revents != 0 && read(signals_.Get(), &signal, sizeof signal) > 0) endAsked_ = true;
    // A hook that waits for its answer keeps its client from ending: reports come before the end.
    if (waits[kHook].revents != 0) TakeReports();
    std::string words;
    if (waits[kEnd].revents != 0 && client_.Collect(words)) ClientEnded(words);
    if (waits[kWatch].revents != 0) {
        const LinkWatch::Events events = watch_.Take();
        if (events.changed) LookAtLink(events.wasDown);
    }
    for (std::size_t i = 0; i < connections_.size(); ++i) {
        if (waits[kFirstConnection + i].revents != 0) Listen(connections_[i]);
    }
    if (waits[kListener].revents != 0) AcceptControllers();
}

// ---- the link
// ------------------------------------------------------------------------------------------------

void DhcpSupervisor::LookAtLink(bool wasDown) {
    KernelLink link;
    const KernelAnswer answer = netlink_.GetLink(options_.linkIndex, link);
    if (answer.errnoValue == ENODEV) {
        if (!linkGone_) options_.say("the link is gone");
        linkGone_ = true;
        linkRunning_ = false;
        return;
    }
    if (!answer.Ok()) {
        options_.say("the link cannot be looked at: " + answer.Words());
        return;
    }
    const bool wasRunning = linkRunning_ && !wasDown;
    link_ = link;
    linkRunning_ = link.Running();
    const bool otherLink = link.name != clientLink_.name || link.address != clientLink_.address;
    if (client_.Running() && otherLink && task_ != Task::kEnding) {
        // It would go on with its former hardware address, and with the client id made of it, for all its
        // life.
        options_.say("name or hardware address changed; asking for a lease anew");
        ReplaceClient();
        return;
    }
    if (linkRunning_ && !wasRunning && lease_ && task_ == Task::kNone) {
        // The link's routes went when it went down, and it may be plugged into another network now.
        const std::int64_t left = leaseEnd_ == 0 ? 0 : std::max<std::int64_t>((leaseEnd_ - Now()) / 1000, 1);
        installer_.PutOnLink(*lease_, leaseEnd_ == 0 ? kInfiniteLease : static_cast<std::uint32_t>(left));
        if (clientReady_ && plan_.renewSignal != 0) client_.Signal(plan_.renewSignal);
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
    clientReady_ = false;
    clientIdle_ = false;
    RunClient(plan_.run);
}

void DhcpSupervisor::RunClient(const std::vector<std::string>& arguments) {
    std::string failure;
    if (client_.Start(arguments, options_.talk, failure)) return;
    ClientEnded(failure);
}

void DhcpSupervisor::ClientEnded(const std::string& words) {
    if (task_ == Task::kEnding) return;
    if (task_ == Task::kReleasing) {
        if (plan_.release.empty() || releaseRun_ || !lease_) {
            FinishRelease();
        } else {
            releaseRun_ = true;
            RunClient(plan_.release);
        }
        return;
    }
    if (task_ == Task::kRenewing && plan_.renewSignal == 0) {
        startAt_ = Now();
        return;
    }
    options_.say(std::string(NameOf(options_.client.kind)) + " ended: " + words);
    pause_ = pause_ == 0 ? kFirstPause : std::min(pause_ * 2, kLongestPause);
    startAt_ = Now() + pause_;
}

void DhcpSupervisor::ReplaceClient() {
    client_.End(kEndMilliseconds);
    DropLease();
    startAt_ = Now();
    if (task_ == Task::kReleasing) FinishRelease();
}

/// dhclient writes its lease down when the hook that reported it has ended. Half a second is the limit.
void DhcpSupervisor::AwaitLeaseFile() const {
    if (!lease_ || plan_.leaseFile.empty()) return;
    const std::string line = "fixed-address " + DottedQuad(lease_->address.data()) + ";";
    for (int turn = 0; turn < 250; ++turn) {
        std::string text;
        if (!ReadFileContents(plan_.leaseFile, text) && text.find(line) != std::string::npos) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void DhcpSupervisor::TakeReports() {
    HookReport report;
    while (client_.TakeReport(report)) client_.Answer(report, Heard(report));
}

bool DhcpSupervisor::Heard(const HookReport& report) {
    clientReady_ = true;
    LeaseReading reading = ReadReport(report);
    if (!reading.problem.empty()) options_.say(reading.problem);
    bool usable = reading.event != LeaseEvent::kFailed;
    if (reading.event == LeaseEvent::kBound) {
        const Lease& lease = reading.lease;
        usable = installer_.PutOnLink(lease, lease.seconds);
        if (usable) {
            pause_ = 0;
            leaseEnd_ = lease.seconds == kInfiniteLease ? 0 : Now() + std::int64_t{lease.seconds} * 1000;
            lease_ = lease;
            installer_.Record(lease);
            noLeaseRecorded_ = false;
            if (task_ == Task::kRenewing) FinishRenewal(Status());
        }
    }
    if (task_ == Task::kReleasing && lease_) installer_.AwaitNextHops(*lease_);
    if (reading.event == LeaseEvent::kLost || !usable) DropLease();
    if (!usable && task_ == Task::kRenewing) {
        FinishRenewal(
            {Win32Error::kSemTimeout, reading.problem.empty() ? "no DHCP server answered" : reading.problem});
    }
    if (reading.event == LeaseEvent::kLost && task_ == Task::kReleasing && plan_.staysAfterRelease) {
        clientIdle_ = true;
        FinishRelease();
    }
    return usable;
}

void DhcpSupervisor::DropLease() {
    installer_.TakeFromLink();
    lease_.reset();
    leaseEnd_ = 0;
    // A client without a server reports its failure every few seconds.
    if (!noLeaseRecorded_) installer_.RecordNoLease();
    noLeaseRecorded_ = true;
}

// ---- controllers
// ---------------------------------------------------------------------------------------------

void DhcpSupervisor::AcceptControllers() {
    while (connections_.size() < kMostConnections) {
        Descriptor socket = listener_.Accept();
        if (!socket.IsOpen()) return;
        connections_.push_back({std::move(socket), {}});
    }
}

void DhcpSupervisor::Listen(Connection& connection) {
    std::array<char, 64> text{};
    const ssize_t size = recv(connection.socket.Get(), text.data(), text.size(), MSG_DONTWAIT);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (size <= 0) {
        connection = {};
        return;
    }
    connection.question.assign(text.data(), static_cast<std::size_t>(size));
    const bool waits = connection.question == kAskRenew || connection.question == kAskRelease ||
                       connection.question == kAskStop;
    if (waits) return;
    // A supervisor that is ending lets the question for its state wait until its end, which is the answer.
    const bool status = connection.question == kAskStatus;
    if (status && task_ == Task::kEnding) return;
    SendDhcpAnswer(connection.socket,
                   status ? Status() : DhcpAnswer{Win32Error::kInvalidParameter, "unknown request"});
    connection = {};
}

void DhcpSupervisor::AnswerAll(const std::string& question, const DhcpAnswer& answer) {
    for (Connection& connection : connections_) {
        if (connection.question != question) continue;
        SendDhcpAnswer(connection.socket, answer);
        connection = {};
    }
}

bool DhcpSupervisor::Asked(const char* question) const {
    return std::any_of(connections_.begin(), connections_.end(),
                       [&](const Connection& connection) { return connection.question == question; });
}

DhcpAnswer DhcpSupervisor::Status() const {
    if (lease_) {
        return {Win32Error::kSuccess,
                "bound " + DottedQuad(lease_->address.data()) + "/" + std::to_string(lease_->prefix)};
    }
    if (!wanted_) return {Win32Error::kSuccess, "released"};
    return {Win32Error::kSuccess, linkRunning_ ? "asking" : "no carrier"};
}

// ---- tasks
// ---------------------------------------------------------------------------------------------------

void DhcpSupervisor::DoTasks() {
    if (Asked(kAskStop) || linkGone_) endAsked_ = true;
    if (endAsked_ && linkGone_ && task_ != Task::kEnding) BeginEnd();
    if (endAsked_ && (task_ == Task::kNone || task_ == Task::kRenewing)) {
        if (client_.Running() && lease_ && linkRunning_) {
            BeginRelease();
        } else {
            BeginEnd();
        }
    }
    if (task_ == Task::kNone && Asked(kAskRelease)) BeginRelease();
    if (task_ == Task::kNone && Asked(kAskRenew)) BeginRenewal();
    if (task_ == Task::kEnding) {
        finished_ = !client_.Running();
        return;
    }
    // On a link that is down udhcpc asks for ever; it is started anew when carrier comes.
    const bool asksInVain = client_.Running() && !linkRunning_ && !lease_ && !clientIdle_;
    if (asksInVain && task_ == Task::kNone) client_.End(kEndMilliseconds);
    const bool starts = wanted_ && linkRunning_ && !client_.Running() && Now() >= startAt_;
    if (starts && task_ != Task::kReleasing) StartClient();
}

void DhcpSupervisor::BeginRenewal() {
    wanted_ = true;
    if (!linkRunning_) {
        AnswerAll(kAskRenew, {Win32Error::kSemTimeout, "the link has no carrier"});
        return;
    }
    task_ = Task::kRenewing;
    taskEnd_ = Now() + kRenewMilliseconds;
    clientIdle_ = false;
    if (!client_.Running()) {
        startAt_ = Now();
    } else if (clientReady_) {
        AwaitLeaseFile();
        client_.Signal(plan_.renewSignal != 0 ? plan_.renewSignal : SIGTERM);
    }
    // A client that has just been started is asking already.
}

void DhcpSupervisor::FinishRenewal(const DhcpAnswer& answer) {
    task_ = Task::kNone;
    AnswerAll(kAskRenew, answer);
}

void DhcpSupervisor::BeginRelease() {
    wanted_ = false;
    task_ = Task::kReleasing;
    taskEnd_ = Now() + kReleaseMilliseconds;
    repeatAt_ = Now() + kRepeatMilliseconds;
    releaseRun_ = false;
    if (!client_.Running() || clientIdle_) {
        FinishRelease();
    } else if (clientReady_ && plan_.releaseSignal != 0) {
        client_.Signal(plan_.releaseSignal);
    } else {
        AwaitLeaseFile();
        client_.Signal(SIGTERM);
    }
}

void DhcpSupervisor::FinishRelease() {
    task_ = Task::kNone;
    if (lease_) DropLease();
    AnswerAll(kAskRelease, {Win32Error::kSuccess, "released"});
}

void DhcpSupervisor::BeginEnd() {
    task_ = Task::kEnding;
    taskEnd_ = Now() + kEndMilliseconds;
    client_.Signal(SIGTERM);
}

void DhcpSupervisor::CheckDeadlines() {
    const std::int64_t now = Now();
    if (lease_ && leaseEnd_ != 0 && now >= leaseEnd_) {
        options_.say("the lease ran out");
        DropLease();
    }
    if (task_ == Task::kReleasing && now >= repeatAt_ && clientReady_ && plan_.releaseSignal != 0) {
        // dhcpcd forgets a signal that comes while it waits for its hook's end (9.4, privilege separation).
        client_.Signal(plan_.releaseSignal);
        repeatAt_ = now + kRepeatMilliseconds;
    }
    if (task_ == Task::kNone || now < taskEnd_) return;
    switch (task_) {
        case Task::kRenewing:
            FinishRenewal({Win32Error::kSemTimeout, "no DHCP server answered"});
            break;
        case Task::kReleasing:
            // A client that does not even let go of its lease is of no more use.
            client_.End(0);
            FinishRelease();
            break;
        case Task::kEnding:
            client_.Signal(SIGKILL);
            taskEnd_ = now + kEndMilliseconds;
            break;
        case Task::kNone:
            break;
    }
}

}  // namespace corvane
