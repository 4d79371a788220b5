#include "sim/simulator.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ostream>
#include <sstream>
#include <system_error>

#include "base/errors.h"
#include "base/file_type.h"
#include "base/shown_text.h"
#include "platform/runtime_folder.h"
#include "sim/datalog_track.h"
#include "sim/firmware_file.h"
#include "sim/firmware_state_file.h"
#include "sim/identity_check.h"
#include "sim/memory_file.h"

namespace zentaq::sim {

namespace fs = std::filesystem;

namespace {

constexpr Delay unpluggedTime{1000};
// The engine goes on while nobody asks; in one piece at the next question, a night of it would delay the
// answer.
constexpr int longestRestMs = 1000;

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

fs::path linkOf(const SimulatorOptions& options) {
    if (options.link) return *options.link;
    return createRuntimePortsFolder() / unitName(options);
}

std::optional<fs::path> memoryFileOf(const SimulatorOptions& options) {
    std::error_code error;
    if (!options.memoryFile || !fs::is_directory(*options.memoryFile, error)) return options.memoryFile;
    return *options.memoryFile / (unitName(options) + ".mem");
}

void holdPin(SimulatedUnit& unit, const std::string& text) {
    int pin = 0;
    int value = -1;
    std::istringstream words(text);
    char equals = 0;
    const bool read = static_cast<bool>(words >> pin >> equals >> value) && equals == '=' && words.eof();
    const bool held = read && skipFailing([&] { unit.holdPin(pin, value); });
    if (held) return;
    throw Failure("\"" + text + "\" is no pin and value: pins are 1 to " +
                  std::to_string(unit.profile().inputs.gpio.size()) + ", values 0 to 255, such as \"3=128\"");
}

void lightCode(SimulatedUnit& unit, int code) {
    const bool known = skipFailing([&] { unit.setCode(code / 10, code % 10 - 1); });
    if (known) return;
    throw Failure("There is no check-engine code " + std::to_string(code) +
                  ": one is a row, 1 to 12, with a digit from 1 to 8 behind it, such as 21 or 128");
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

void takeNotice(int descriptor) {
    signalfd_siginfo notice;  // room for whatever a descriptor of this sort tells
    [[maybe_unused]] const auto taken = ::read(descriptor, &notice, sizeof notice);
}

bool isPipeOrSocket(int descriptor) {
    struct stat facts {};
    return ::fstat(descriptor, &facts) == 0 && (S_ISFIFO(facts.st_mode) || S_ISSOCK(facts.st_mode));
}

/// The streams whose other end goes when a user closes a terminal or the program that started this one dies.
/// An input that is no terminal tells nothing: services and scripts start programs with one that has ended.
std::vector<int> watchedStreams() {
    std::vector<int> streams;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // A terminal that has closed already is none any more, but cannot be read either.
        const bool terminal = ::isatty(standard) == 1 || errno == EIO;
        const bool heard = standard != STDIN_FILENO && isPipeOrSocket(standard);
        if (terminal || heard) streams.push_back(standard);
    }
    return streams;
}

/// A write to a pipe that nobody reads must not end the process with its link left behind.
void outliveClosedPipes() {
    ::signal(SIGPIPE, SIG_IGN);
}

void endWithParent() {
    const pid_t parent = ::getppid();
    if (::prctl(PR_SET_PDEATHSIG, SIGTERM) != 0) throw Failure("Cannot watch the parent process");
    if (::getppid() != parent) ::raise(SIGTERM);  // it has gone in between
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
      unit_(profileOf(options), identityOf(options), driveOf(options.engine)),
      faults_(faultsOf(options), options.faultSeed),
      wire_(options.baud),
      adapter_(options.adapter, now()),
      memoryFile_(memoryFileOf(options)),
      unitTime_(now()) {
    refuseOtherFiles();
    for (const int code : options.codes) lightCode(unit_, code);
    for (const std::string& pin : options.pins) holdPin(unit_, pin);
    unit_.setUpgradeMode(options.upgradeMode);
    unit_.setCalibrationName(unit_.profile().calibrationName);
    if (memoryFile_) restoreUnit();
    if (options.calibrationName) unit_.setCalibrationName(*options.calibrationName);
    saveMemory();
    connect();
}

// Before anybody can know of the unit: what cannot be written would else end it in the middle of a session.
void Simulator::refuseOtherFiles() const {
    if (options_.runningFile) refuseOtherThanFile(options_.runningFile->string());
    if (!memoryFile_) return;
    refuseOtherThanFile(memoryFile_->string());
    refuseOtherThanFile(firmwareStateFile(*memoryFile_).string());
}

// A start is a power cycle: firmware that waited for one runs.
void Simulator::restoreUnit() {
    const auto content = readMemoryFile(*memoryFile_, unit_.memory().size());
    if (content) unit_.loadMemory(*content);
    const auto firmware = readFirmwareState(firmwareStateFile(*memoryFile_));
    if (!firmware) return;
    unit_.installFirmware(*firmware);
    savedFirmware_ = unit_.firmware().revision();
    unit_.powerCycle();
}

std::string Simulator::portPath() const {
    return options_.link ? linkName().string() : terminal_.value().devicePath();
}

fs::path Simulator::linkName() const {
    fs::path name = linkOf(options_);
    if (options_.renames && connections_ > 1) name += "." + std::to_string(connections_);
    return name;
}

std::string Simulator::description() const {
    const bool missing = unit_.firmware().installed().state == FirmwareState::Missing;
    return std::string(unit_.profile().fullName) + ", serial number " +
           std::to_string(unit_.identity().serial) +
           (missing ? ", no firmware" : ", firmware " + unit_.identity().firmware);
}

void Simulator::run(const SimulatorControls& controls) {
    const FileDescriptor timer(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    if (!timer.valid()) throw Failure(std::string("Cannot make a timer: ") + std::strerror(errno));
    for (;;) {
        serve();
        // Setting the timer also takes back a firing that is still to be read.
        armTimer(timer.get(), nextDue());
        const int line = terminal_ ? terminal_->descriptor() : -1;  // a negative one is not watched
        std::vector<pollfd> watched{
            {controls.stop, POLLIN, 0},          {controls.power, POLLIN, 0}, {controls.unplug, POLLIN, 0},
            {controls.upgradeSwitch, POLLIN, 0}, {line, POLLIN, 0},           {timer.get(), POLLIN, 0}};
        // Of a stream only its end counts: what a user types there is not for the unit.
        const std::size_t firstStream = watched.size();
        for (const int stream : controls.streams) watched.push_back({stream, 0, 0});
        const int ready = ::poll(watched.data(), watched.size(), longestRestMs);
        if (ready < 0 && errno != EINTR) {
            throw Failure(std::string("Cannot wait for the line: ") + std::strerror(errno));
        }
        if (ready == 0 && !nextDue()) catchUp(now());
        const auto notified = [](const pollfd& row) { return row.revents != 0; };
        const auto streams = watched.begin() + static_cast<std::ptrdiff_t>(firstStream);
        if (notified(watched[0]) || std::any_of(streams, watched.end(), notified)) return;
        for (std::size_t i = 1; i < 4; ++i) {
            if (notified(watched[i])) act(controls, watched[i].fd);
        }
    }
}

void Simulator::act(const SimulatorControls& controls, int notified) {
    takeNotice(notified);
    if (notified == controls.power) powerCycle();
    if (notified == controls.unplug) unplug();
    if (notified == controls.upgradeSwitch) unit_.setUpgradeMode(!unit_.upgradeMode());
}

void Simulator::serve() {
    if (cableBack_ && *cableBack_ <= now()) connect();
    if (!terminal_) return;
    if (auto written = terminal_->read(); !written.empty()) hear(std::move(written));
    if (!terminal_) return;
    while (const auto arrival = wire_.takeArrival(now())) {
        answer(*arrival);
        if (!terminal_) return;
    }
    const Moment moment = now();
    adapter_.receive(moment, wire_.takeSent(moment));
    terminal_->write(adapter_.takeForProgram(moment));
}

void Simulator::hear(Bytes written) {
    auto passed = adapter_.written(std::move(written));
    if (!passed) return pullCable(now() + Adapter::vanishTime);
    wire_.receive(now(), std::move(*passed));
}

void Simulator::answer(const WirePacing::Arrival& arrival) {
    catchUp(arrival.complete);
    const FaultyReply reply = replyTo(arrival.burst);
    if (reply.resetFor) unit_.reset(std::chrono::duration<double>(*reply.resetFor).count());
    // Before the reply leaves, so that whoever has it finds the change in the file.
    saveMemory();
    for (const auto& piece : reply.pieces) wire_.send(arrival.complete + piece.after, piece.bytes);
    if (reply.cableOut) pullCable(arrival.complete + *reply.cableOut);
}

FaultyReply Simulator::replyTo(const Bytes& burst) {
    if (auto noise = faults_.mishear(burst)) return std::move(*noise);
    return faults_.apply(burst, unit_.feed(burst));
}

void Simulator::powerCycle() {
    catchUp(now());
    unit_.powerCycle();
    wire_ = WirePacing(options_.baud);  // what was on its way out or in is gone
    saveMemory();
}

void Simulator::unplug() {
    powerCycle();
    pullCable(now() + unpluggedTime);
}

void Simulator::connect() {
    cableBack_.reset();
    ++connections_;
    terminal_.emplace();
    adapter_ = Adapter(options_.adapter, now());
    announcement_.emplace(linkName(), terminal_->devicePath());
}

void Simulator::pullCable(Moment until) {
    announcement_.reset();
    terminal_.reset();
    wire_ = WirePacing(options_.baud);
    unit_.lineLost();
    cableBack_ = until;
}

std::optional<Moment> Simulator::nextDue() const {
    if (cableBack_) return cableBack_;
    const auto wire = wire_.nextDue();
    const auto adapter = adapter_.nextDue();
    return wire && adapter ? std::min(wire, adapter) : wire ? wire : adapter;
}

void Simulator::catchUp(Moment moment) {
    if (moment <= unitTime_) return;
    unit_.advance(std::chrono::duration<double>(moment - unitTime_).count());
    unitTime_ = moment;
}

void Simulator::saveMemory() {
    if (options_.runningFile && savedRunning_ != unit_.memoryRevision()) {
        writeMemoryFile(*options_.runningFile, unit_.memory());
        savedRunning_ = unit_.memoryRevision();
    }
    if (!memoryFile_) return;
    // The memory first: a firmware whose start erases it must not be seen started with the old one.
    if (savedMemory_ != unit_.permanentRevision()) {
        writeMemoryFile(*memoryFile_, unit_.permanentMemory());
        savedMemory_ = unit_.permanentRevision();
    }
    if (savedFirmware_ != unit_.firmware().revision()) {
        writeFirmwareState(firmwareStateFile(*memoryFile_), unit_.firmware().installed());
        savedFirmware_ = unit_.firmware().revision();
    }
}

int runSimulatorUntilSignal(const SimulatorOptions& options, std::ostream& out, std::ostream& errors) {
    // Looked at before anybody can know of the unit and close them.
    const std::vector<int> streams = watchedStreams();
    outliveClosedPipes();
    // Blocked before the link appears: a signal that comes early is kept and still removes it.
    const FileDescriptor ending = watchSignals({SIGTERM, SIGINT});
    const FileDescriptor power = watchSignals({SIGHUP});
    const FileDescriptor unplug = watchSignals({SIGUSR1});
    const FileDescriptor upgrade = watchSignals({SIGUSR2});
    const bool served = endOnFailure(
        [&] {
            const bool watching = ending.valid() && power.valid() && unplug.valid() && upgrade.valid();
            if (!watching) throw Failure("Cannot watch for signals");
            if (options.withParent) endWithParent();
            Simulator simulator(options);
            // In one piece: whoever waits for the first line has the second as well.
            out << "ready " + simulator.portPath() + "\n" + simulator.description() + "\n" << std::flush;
            simulator.run({ending.get(), power.get(), unplug.get(), upgrade.get(), streams});
        },
        [&](const std::string& reason) { errors << "zentaq-sim: " << shownError(reason) << std::endl; });
    return served ? 0 : 1;
}

int writeFirmwareFor(const SimulatorOptions& options, const fs::path& file, std::ostream& out,
                     std::ostream& errors) {
    const bool written = endOnFailure(
        [&] {
            const std::string firmware = identityOf(options).firmware;
            makeFirmwareFile(file, firmware);
            out << file.string() << ": firmware " << firmware << ", for simulated units only" << std::endl;
        },
        [&](const std::string& reason) { errors << "zentaq-sim: " << shownError(reason) << std::endl; });
    return written ? 0 : 1;
}

}  // namespace zentaq::sim
