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
#include "sim/memory_file.h"

namespace zentaq::sim {

namespace {

const UnitProfile& profileOf(const SimulatorOptions& options) {
    const UnitProfile* profile = findProfile(options.model);
    if (profile == nullptr) throw Failure("There is no unit \"" + options.model + "\"");
    return *profile;
}

UnitIdentity identityOf(const SimulatorOptions& options) {
    UnitIdentity identity = defaultIdentity(profileOf(options));
    identity.serial = options.serial.value_or(identity.serial);
    identity.firmware = options.firmware.value_or(identity.firmware);
    identity.logRecords = options.logRecords.value_or(identity.logRecords);
    return identity;
}

std::filesystem::path linkOf(const SimulatorOptions& options) {
    if (options.link) return *options.link;
    const std::string name =
        std::string(profileOf(options).linkStem) + "-" + std::to_string(identityOf(options).serial);
    return createRuntimePortsFolder() / name;
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

}  // namespace

Simulator::Simulator(const SimulatorOptions& options)
    : options_(options),
      unit_(profileOf(options), identityOf(options)),
      wire_(options.baud),
      unitTime_(now()) {
    for (const int code : options.codes) unit_.setCode(code / 10, code % 10 - 1);
    unit_.setCalibrationName("SIMULATED ORB");
    if (options.memoryFile) {
        if (const auto content = readMemoryFile(*options.memoryFile, unit_.memory().size())) {
            unit_.loadMemory(*content);
        }
    }
    if (options.calibrationName) unit_.setCalibrationName(*options.calibrationName);
    saveMemory();
    announcement_.emplace(linkOf(options), terminal_.devicePath());
}

std::string Simulator::portPath() const {
    return options_.link ? options_.link->string() : terminal_.devicePath();
}

void Simulator::run(int stopDescriptor) {
    const FileDescriptor timer(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    if (!timer.valid()) throw Failure(std::string("Cannot make a timer: ") + std::strerror(errno));
    for (;;) {
        serve();
        // Setting the timer also takes back a firing that is still to be read.
        armTimer(timer.get(), wire_.nextDue());
        pollfd watched[] = {
            {stopDescriptor, POLLIN, 0}, {terminal_.descriptor(), POLLIN, 0}, {timer.get(), POLLIN, 0}};
        if (::poll(watched, std::size(watched), -1) < 0 && errno != EINTR) {
            throw Failure(std::string("Cannot wait for the line: ") + std::strerror(errno));
        }
        if (watched[0].revents != 0) return;
    }
}

void Simulator::serve() {
    if (auto burst = terminal_.read(); !burst.empty()) wire_.receive(now(), std::move(burst));
    while (const auto arrival = wire_.takeArrival(now())) {
        catchUp(arrival->complete);
        const Bytes reply = unit_.feed(arrival->burst);
        // Before the reply leaves, so that whoever has it finds the change in the file.
        saveMemory();
        wire_.send(arrival->complete, reply);
    }
    terminal_.write(wire_.takeSent(now()));
}

void Simulator::catchUp(Moment moment) {
    unit_.advance(std::chrono::duration<double>(moment - unitTime_).count());
    unitTime_ = moment;
}

void Simulator::saveMemory() {
    if (!options_.memoryFile || savedRevision_ == unit_.memoryRevision()) return;
    writeMemoryFile(*options_.memoryFile, unit_.memory());
    savedRevision_ = unit_.memoryRevision();
}

int runSimulatorUntilSignal(const SimulatorOptions& options, std::ostream& out, std::ostream& errors) {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&ending, number);
    // Blocked before the link appears: a signal that comes early is kept and still removes it.
    ::pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    const FileDescriptor signals(::signalfd(-1, &ending, SFD_CLOEXEC));
    const bool served = endOnFailure(
        [&] {
            if (!signals.valid()) throw Failure("Cannot watch for signals");
            Simulator simulator(options);
            out << "ready " << simulator.portPath() << std::endl;
            simulator.run(signals.get());
        },
        [&](const std::string& reason) { errors << "zentaq-sim: " << reason << std::endl; });
    return served ? 0 : 1;
}

}  // namespace zentaq::sim
