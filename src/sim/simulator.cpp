#include "sim/simulator.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ostream>

#include "base/errors.h"
#include "platform/runtime_folder.h"
#include "sim/identity_check.h"
#include "sim/memory_file.h"

namespace zentaq::sim {

namespace {

const UnitProfile& profileOf(const SimulatorOptions& options) {
    const UnitProfile* profile = findProfile(options.model);
    if (profile == nullptr) {
        throw Failure("There is no unit \"" + options.model + "\": the models are " + modelList());
    }
    return *profile;
}

UnitIdentity identityOf(const SimulatorOptions& options) {
    const UnitProfile& profile = profileOf(options);
    UnitIdentity identity = defaultIdentity(profile);
    identity.serial = options.serial.value_or(identity.serial);
    identity.firmware = options.firmware.value_or(identity.firmware);
    identity.logRecords = options.logRecords.value_or(identity.logRecords);
    identity.serialFormat = options.serialFormat;
    identity.hasPic18 = identity.hasPic18 || options.hasPic18;
    if (!options.anyIdentity) checkIdentity(profile, identity);
    return identity;
}

std::vector<Fault> faultsOf(const SimulatorOptions& options) {
    std::vector<Fault> faults;
    for (const std::string& text : options.faults) faults.push_back(parseFault(text));
    return faults;
}

std::string unitName(const SimulatorOptions& options) {
    return std::string(profileOf(options).linkStem) + "-" + std::to_string(identityOf(options).serial);
}

std::filesystem::path linkOf(const SimulatorOptions& options) {
    if (options.link) return *options.link;
    return createRuntimePortsFolder() / unitName(options);
}

std::optional<std::filesystem::path> memoryFileOf(const SimulatorOptions& options) {
    if (!options.memoryFile || !std::filesystem::is_directory(*options.memoryFile)) return options.memoryFile;
    return *options.memoryFile / (unitName(options) + ".mem");
}

Moment now() {
    return std::chrono::steady_clock::now();
}

// steady_clock counts from the same zero as CLOCK_MONOTONIC, so its moments are absolute deadlines.
void armTimer(int timer, std::optional<Moment> due) {
    itimerspec setting{};
    if (due) {
        // A zero time would disarm the timer.
        const auto nanoseconds = std::max<std::int64_t>(1, due->time_since_epoch().count());
        setting.it_value.tv_sec = static_cast<time_t>(nanoseconds / 1'000'000'000);
        setting.it_value.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
    }
    ::timerfd_settime(timer, TFD_TIMER_ABSTIME, &setting, nullptr);
}

FileDescriptor watchSignals(std::initializer_list<int> numbers) {
    sigset_t watched;
    sigemptyset(&watched);
    for (const int number : numbers) sigaddset(&watched, number);
    ::pthread_sigmask(SIG_BLOCK, &watched, nullptr);
    return FileDescriptor(::signalfd(-1, &watched, SFD_CLOEXEC));
}

}  // namespace

Simulator::Simulator(const SimulatorOptions& options)
    : options_(options),
      unit_(profileOf(options), identityOf(options)),
      faults_(faultsOf(options), options.faultSeed),
      wire_(options.baud),
      memoryFile_(memoryFileOf(options)),
      unitTime_(now()) {
    for (const int code : options.codes) unit_.setCode(code / 10, code % 10 - 1);
    unit_.setCalibrationName(unit_.profile().calibrationName);
    if (memoryFile_) {
        if (const auto content = readMemoryFile(*memoryFile_, unit_.memory().size())) {
            unit_.loadMemory(*content);
        }
    }
    if (options.calibrationName) unit_.setCalibrationName(*options.calibrationName);
    saveMemory();
    connect();
}

std::string Simulator::portPath() const {
    return options_.link ? options_.link->string() : terminal_.value().devicePath();
}

std::string Simulator::description() const {
    return std::string(unit_.profile().fullName) + ", serial number " +
           std::to_string(unit_.identity().serial) + ", firmware " + unit_.identity().firmware;
}

void Simulator::run(int stopDescriptor, int powerDescriptor) {
    const FileDescriptor timer(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    if (!timer.valid()) throw Failure(std::string("Cannot make a timer: ") + std::strerror(errno));
    for (;;) {
        serve();
        // Setting the timer also takes back a firing that is still to be read.
        armTimer(timer.get(), nextDue());
        const int line = terminal_ ? terminal_->descriptor() : -1;  // a negative one is not watched
        pollfd watched[] = {{stopDescriptor, POLLIN, 0},
                            {powerDescriptor, POLLIN, 0},
                            {line, POLLIN, 0},
                            {timer.get(), POLLIN, 0}};
        if (::poll(watched, std::size(watched), -1) < 0 && errno != EINTR) {
            throw Failure(std::string("Cannot wait for the line: ") + std::strerror(errno));
        }
        if (watched[0].revents != 0) return;
        if (watched[1].revents != 0) {
            signalfd_siginfo notice;  // room for whatever a descriptor of this sort tells
            if (::read(powerDescriptor, &notice, sizeof notice) > 0) powerCycle();
        }
    }
}

void Simulator::serve() {
    if (cableBack_ && *cableBack_ <= now()) connect();
    if (!terminal_) return;
    if (auto burst = terminal_->read(); !burst.empty()) wire_.receive(now(), std::move(burst));
    while (const auto arrival = wire_.takeArrival(now())) {
        answer(*arrival);
        if (!terminal_) return;
    }
    terminal_->write(wire_.takeSent(now()));
}

void Simulator::answer(const WirePacing::Arrival& arrival) {
    catchUp(arrival.complete);
    const FaultyReply reply = faults_.apply(arrival.burst, unit_.feed(arrival.burst));
    // Before the reply leaves, so that whoever has it finds the change in the file.
    saveMemory();
    for (const auto& piece : reply.pieces) wire_.send(arrival.complete + piece.after, piece.bytes);
    if (reply.cableOut) pullCable(arrival.complete + *reply.cableOut);
}

void Simulator::powerCycle() {
    catchUp(now());
    unit_.powerCycle();
    wire_ = WirePacing(options_.baud);  // what was on its way out or in is gone
    saveMemory();
}

void Simulator::connect() {
    cableBack_.reset();
    terminal_.emplace();
    announcement_.emplace(linkOf(options_), terminal_->devicePath());
}

void Simulator::pullCable(Moment until) {
    announcement_.reset();
    terminal_.reset();
    wire_ = WirePacing(options_.baud);
    cableBack_ = until;
}

std::optional<Moment> Simulator::nextDue() const {
    return cableBack_ ? cableBack_ : wire_.nextDue();
}

void Simulator::catchUp(Moment moment) {
    unit_.advance(std::chrono::duration<double>(moment - unitTime_).count());
    unitTime_ = moment;
}

void Simulator::saveMemory() {
    if (!memoryFile_ || savedRevision_ == unit_.memoryRevision()) return;
    writeMemoryFile(*memoryFile_, unit_.memory());
    savedRevision_ = unit_.memoryRevision();
}

int runSimulatorUntilSignal(const SimulatorOptions& options, std::ostream& out, std::ostream& errors) {
    // Blocked before the link appears: a signal that comes early is kept and still removes it.
    const FileDescriptor ending = watchSignals({SIGTERM, SIGINT, SIGHUP});
    // kept: a hang-up ends the program, as its terminal's end should; so the power has a signal of its own.
    const FileDescriptor power = watchSignals({SIGUSR1});
    const bool served = endOnFailure(
        [&] {
            if (!ending.valid() || !power.valid()) throw Failure("Cannot watch for signals");
            Simulator simulator(options);
            // In one piece: whoever waits for the first line may go away behind it.
            out << "ready " + simulator.portPath() + "\n" + simulator.description() + "\n" << std::flush;
            simulator.run(ending.get(), power.get());
        },
        [&](const std::string& reason) { errors << "zentaq-sim: " << reason << std::endl; });
    return served ? 0 : 1;
}

}  // namespace zentaq::sim
