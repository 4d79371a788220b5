// The physical end of the link: opening and closing, writing, receiving, the port search, the status display.
#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "link/flag_scope.h"
#include "link/link.h"
#include "link/link_commands.h"

namespace zentaq {

namespace {

constexpr int highestSearchedPort = 12;
constexpr std::int64_t searchWaitUs = 50'000;
/// A little more than the line's own patience, should the ticks stand still.
constexpr std::int64_t longestRestUs = 150'000;

struct StateRow {
    std::string_view state;
    LinkImage image;
};

constexpr StateRow stateRows[] = {
    {"Connected", LinkImage::Connected}, {"NoConnect", LinkImage::NoConnect},
    {"Transfer", LinkImage::Transfer},   {"Firmware", LinkImage::Transfer},
    {"Monitor", LinkImage::Monitor},     {"Warning", LinkImage::Warning},
};

LinkImage imageOf(std::string_view state) {
    const auto row = std::ranges::find(stateRows, state, &StateRow::state);
    return row == std::end(stateRows) ? LinkImage::None : row->image;
}

}  // namespace

Link::Link(SerialPort& port, LinkHost& host, FrameDecoder& decoder, LiveValues& live, SettingsStore& settings,
           Clock& clock, Yield& yield)
    : port_(port),
      host_(host),
      decoder_(decoder),
      live_(live),
      settings_(settings),
      clock_(clock),
      yield_(yield) {
    port_.onEvent([this](CommEvent event) { onComm(event); });
    port_.watch(*this);
}

Link::~Link() {
    port_.unwatch(*this);
    port_.onEvent(nullptr);
}

void Link::load() {
    log("COMM. Initialized.");
    show(&LinkStatus::port, numberText(commPort_));
    ORB_Initialize();
    queueHead_ = 0;
    queueTail_ = 0;
}

void Link::unload() {
    log("COMM. Terminated.");
}

void Link::commPort(int number) {
    std::string identity;
    skipFailing([&] {
        const std::vector<PortInfo> ports = port_.list();
        const auto port = std::ranges::find(ports, number, &PortInfo::number);
        if (port != ports.end()) identity = port->identity;
    });
    commPort(number, std::move(identity));
}

void Link::commPort(int number, std::string identity) {
    commPort_ = number;
    commIdentity_ = std::move(identity);
}

std::optional<PortInfo> Link::chosenPort() const {
    const std::vector<PortInfo> ports = port_.list();
    const auto port = commIdentity_.empty() ? std::ranges::find(ports, commPort_, &PortInfo::number)
                                            : std::ranges::find(ports, commIdentity_, &PortInfo::identity);
    return port == ports.end() ? std::nullopt : std::optional(*port);
}

bool Link::RS232_Initialize(int portNumber) {
    commPort(portNumber);
    return openChosenPort();
}

// Another device may have the number by now: a port that is known by its identity is opened as that or not at
// all.
void Link::openByIdentity() {
    if (!commIdentity_.empty()) {
        const auto port = chosenPort();
        if (!port) throw Failure("The port is not plugged in (" + commIdentity_ + ")");
        commPort_ = port->number;
    }
    show(&LinkStatus::port, numberText(commPort_));
    show(&LinkStatus::portIdentity, commIdentity_);
    port_.followsNumber(commIdentity_.empty());
    port_.open(commPort_);
}

void Link::showPort(const PortInfo& port) {
    show(&LinkStatus::port, numberText(port.number));
    show(&LinkStatus::portIdentity, port.identity);
}

bool Link::openChosenPort() {
    if (commPort_ < 1) {
        commPort(1, {});
        skipFailing([&] { settings_.set("System", "CommPort", "1"); });
    }
    if (port_.isOpen()) skipFailing([&] { port_.close(); });
    adapterAway_ = false;
    adapterNews_ = AdapterNews::None;
    lineBroke_ = true;
    restTicks_ = 0;
    skipFailing([&] { port_.setReceiveThreshold(0); });
    openTrouble_.clear();
    const bool opened =
        endOnFailure([&] { openByIdentity(); }, [&](const std::string& why) { openTrouble_ = why; });
    if (!opened) {
        log("COMM Port:" + numberText(commPort_) + " Not Available, Cannot Open Connection.");
        tellTrouble();
        showNoConnection();
        return false;
    }
    COMM_StatusMessage("Connected", "RS232 Connection Initialized!", "", "Connected");
    log("Connection with ORB Established.");
    if (linked_.SerialNumber != 0) removeProgress();
    return true;
}

// A port that is there tells why it cannot be opened, and what to do about it; an absent one is told above.
void Link::tellTrouble() {
    if (searching_) return;
    skipFailing([&] {
        const std::vector<PortInfo> ports = port_.list();
        const bool present = std::ranges::find(ports, commPort_, &PortInfo::number) != ports.end();
        if (present || !commIdentity_.empty()) log("  - " + openTrouble_);
    });
}

// Also when a command in the void runs out of patience: no unit has failed to answer.
void Link::showNoConnection() {
    COMM_StatusMessage("No Connection Mode", "Port is Currently Not Available.",
                       "Please Check your Serial Connection and try again", "NoConnect");
}

void Link::RS232_Close() {
    if (port_.isOpen()) skipFailing([&] { port_.close(); });
    openTrouble_.clear();
    adapterAway_ = false;
    adapterNews_ = AdapterNews::None;
    lineBroke_ = true;
    log("COMM: Connection with ORB terminated.");
}

void Link::RS232_OUTPUT(std::string_view command) {
    if (!port_.isOpen()) return;
    show(&LinkStatus::send, Lamp::Sending);
    port_.write(command);
    --queuedCommands_;
}

void Link::ORB_Initialize() {
    log("Initializing Communication with ORB");
    openChosenPort();
}

void Link::ORB_Close() {
    // kept: the port closes before a tick can write the "K", which stays in the queue.
    Send_ORB_Command("K");
    RS232_Close();
}

int Link::Autodetect_COMM_Port() {
    if (transferPending() || searching_) return 0;
    const FlagScope scope(searching_);
    return searchPorts();
}

int Link::searchPorts() {
    for (int number = 1; number <= highestSearchedPort; ++number) {
        // What an earlier session or port has told must not pass for an answer of this port.
        linked_.SerialNumber = 0;
        rxBuffer_.clear();
        if (!RS232_Initialize(number)) continue;
        const int opened = commPort_;
        const std::string identity = commIdentity_;
        if (!waitForUnit()) continue;
        // The search lets events in, which may have named another port for the next opening. An adapter that
        // came back under another number is still the one that answered.
        if (identity.empty() || commIdentity_ != identity) commPort(opened, identity);
        return commPort_;
    }
    return 0;
}

bool Link::waitForUnit() {
    // The port was reopened: a frame in flight will not be answered, and those that the pollers queued would
    // outlast the 50 ms. The search asks first, behind what may still be on its way of that frame.
    if (!std::exchange(currentCommand_, {}).empty()) restLine();
    queueInFront("E");
    const std::int64_t quiet = clock_.monotonicUs() + longestRestUs;
    while (restTicks_ > 0 && clock_.monotonicUs() < quiet) yield_.yield();
    const std::int64_t end = clock_.monotonicUs() + searchWaitUs;
    while (clock_.monotonicUs() < end) yield_.yield();
    // Once a tick has found the unit, RxBuffer holds an answer that has been handled; taken for that of the
    // command now in flight it would pass for a frame or a configuration.
    if (linked_.SerialNumber == 0) PROCESS_RESPONSE();
    return linked_.SerialNumber != 0;
}

void Link::COMM_StatusMessage(std::string_view title, std::string_view line1, std::string_view line2,
                              std::string_view state) {
    show(&LinkStatus::image, imageOf(state));
    if (state == "Connected") show(&LinkStatus::connected, true);
    if (state == "NoConnect") show(&LinkStatus::connected, false);
    if (state == "Monitor") removeProgress();
    show(&LinkStatus::title, title);
    show(&LinkStatus::line1, line1);
    show(&LinkStatus::line2, line2);
    show(&LinkStatus::trouble, state == "NoConnect" ? openTrouble_ : std::string());
}

LinkStatus& Link::editStatus() {
    ++status_.changes;
    return status_;
}

void Link::showNoConnectPanel(std::string_view text) {
    show(&LinkStatus::noConnectText, text);
    show(&LinkStatus::noConnectPanel, true);
}

void Link::hideNoConnectPanel() {
    show(&LinkStatus::noConnectPanel, false);
}

void Link::onComm(CommEvent event) {
    show(&LinkStatus::send, Lamp::Rest);
    show(&LinkStatus::receive, Lamp::Rest);
    if (event != CommEvent::DataReceived) return;
    show(&LinkStatus::receive, Lamp::Received);
    // The rest of an E reply joins its beginning; every other reply is a new one.
    if (tailTicks_ == 0) rxBuffer_.clear();
    skipFailing([&] {
        const std::vector<std::uint8_t> bytes = port_.read();
        rxBuffer_.insert(rxBuffer_.end(), bytes.begin(), bytes.end());
    });
    if (awaitsTail()) return;
    if (longFrame()) restLine();
    // Bytes behind the reply are no new one: a line that never goes quiet would hold a transfer for good.
    if (!responseReady_) replySeenUs_ = clock_.monotonicUs();
    responseReady_ = true;
    showReplyStatus();
}

void Link::showReplyStatus() {
    const std::string_view key = commandKey(currentCommand_);
    const std::string_view activity = statusRow(key).activity;
    // The link console tells each change of activity, not each frame.
    if (status_.activity != activity) skipFailing([&] { host_.commLog(activity); });
    show(&LinkStatus::activity, activity);
    showCommandStatus(key);
}

void Link::showCommandStatus(std::string_view key) {
    const ActivityStatus& status = statusRow(key).status;
    if (status.state.empty()) return;
    const std::string line1 = status.line1 == portLine ? "Using COM Port: " + status_.port + " @ 38400 Baud."
                                                       : std::string(status.line1);
    COMM_StatusMessage(status.title, line1, status.line2, status.state);
}

void Link::discardInput() {
    skipFailing([&] { port_.read(); });
}

void Link::drainPort() {
    if (port_.isOpen()) discardInput();
}

void Link::log(std::string_view text) {
    // A log that cannot be written stops no transfer.
    skipFailing([&] { host_.sysLog(text); });
}

void Link::startProgress() {
    constexpr double full = 100;
    progress_.Init(full, 0, "Processing . . . Please Wait!");
    showProgress();
}

void Link::stepProgress(int current, int total) {
    if (total <= 0) return;
    // A frame that was still in flight when the transfer began has hidden the bar by its status.
    if (!progress_.state().visible) startProgress();
    const double full = progress_.state().maximum;
    progress_.Active(std::min(truncate(static_cast<double>(current) / total * full), full), full);
    showProgress();
}

void Link::removeProgress() {
    progress_.Remove();
    showProgress();
}

void Link::showProgress() {
    const Progress::State& state = progress_.state();
    show(&LinkStatus::progressPercent, static_cast<int>(state.value));
    show(&LinkStatus::progressText, state.percentage);
    show(&LinkStatus::progressVisible, state.visible);
}

}  // namespace zentaq
