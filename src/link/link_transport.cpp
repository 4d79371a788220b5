// The physical end of the link: opening and closing, writing, receiving, the port search.
#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "link/flag_scope.h"
#include "link/link.h"
#include "link/link_commands.h"

namespace zentaq {

namespace {

constexpr int highestSearchedPort = 12;
constexpr std::int64_t searchWaitUs = 50'000;
/// A little more than the line's own patience, should the ticks stand still.
constexpr std::int64_t longestRestUs = 150'000;

}  // namespace

Link::Link(SerialPort& port, LinkHost& host, FrameDecoder& decoder, LiveValues& live, Clock& clock,
           Yield& yield)
    : port_(port), host_(host), decoder_(decoder), live_(live), clock_(clock), yield_(yield) {
    port_.onEvent([this](CommEvent event) { onComm(event); });
    port_.watch(*this);
}

Link::~Link() {
    port_.unwatch(*this);
    port_.onEvent(nullptr);
}

void Link::load() {
    tell(LinkEvent::Initialized, numberText(commPort_));
    ORB_Initialize();
    ring_.rewind();
}

void Link::unload() {
    tell(LinkEvent::Terminated);
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
    tellPort(commPort_, commIdentity_);
    port_.followsNumber(commIdentity_.empty());
    port_.open(commPort_);
}

void Link::tellPort(int number, std::string_view identity) {
    tell(LinkEvent::PortNamed, numberText(number), identity);
}

bool Link::openChosenPort() {
    if (commPort_ < 1) {
        commPort(1, {});
        skipFailing([&] { tell(LinkEvent::PortForced); });
    }
    if (port_.isOpen()) skipFailing([&] { port_.close(); });
    adapterAway_ = false;
    adapterNews_ = AdapterNews::None;
    firmware_.lineBroke();
    restTicks_ = 0;
    skipFailing([&] { port_.setReceiveThreshold(0); });
    std::string trouble;
    if (endOnFailure([&] { openByIdentity(); }, [&](const std::string& why) { trouble = why; })) {
        tellNumber(LinkEvent::Opened, linked_.SerialNumber);
        return true;
    }
    tell(LinkEvent::NotOpened, numberText(commPort_), trouble);
    tellTrouble(trouble);
    tell(LinkEvent::NoPort);
    return false;
}

// A port that is there tells why it cannot be opened, and what to do about it; an absent one is told above.
void Link::tellTrouble(const std::string& why) {
    if (searching_) return;
    skipFailing([&] {
        const std::vector<PortInfo> ports = port_.list();
        const bool present = std::ranges::find(ports, commPort_, &PortInfo::number) != ports.end();
        if (present || !commIdentity_.empty()) tell(LinkEvent::PortTrouble, why);
    });
}

void Link::RS232_Close() {
    if (port_.isOpen()) skipFailing([&] { port_.close(); });
    adapterAway_ = false;
    adapterNews_ = AdapterNews::None;
    firmware_.lineBroke();
    tell(LinkEvent::Closed);
}

void Link::RS232_OUTPUT(std::string_view command) {
    if (!port_.isOpen()) return;
    tell(LinkEvent::Writing);
    port_.write(command);
    ring_.written();
}

void Link::ORB_Initialize() {
    tell(LinkEvent::Opening);
    openChosenPort();
}

void Link::ORB_Close() {
    // kept: the port closes before a tick can write the "K", which stays in the queue.
    Send_ORB_Command("K");
    RS232_Close();
}

int Link::Autodetect_COMM_Port() {
    if (transfer_.pending() || searching_) return 0;
    const FlagScope scope(searching_);
    return searchPorts();
}

int Link::searchPorts() {
    searchStopped_ = false;
    for (int number = 1; number <= highestSearchedPort && !searchStopped_; ++number) {
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
    ring_.pushInFront("E");
    const std::int64_t quiet = clock_.monotonicUs() + longestRestUs;
    while (restTicks_ > 0 && clock_.monotonicUs() < quiet) yield_.yield();
    const std::int64_t end = clock_.monotonicUs() + searchWaitUs;
    while (clock_.monotonicUs() < end && !searchStopped_) yield_.yield();
    if (searchStopped_) return false;
    // Once a tick has found the unit, RxBuffer holds an answer that has been handled; taken for that of the
    // command now in flight it would pass for a frame or a configuration.
    if (linked_.SerialNumber == 0) PROCESS_RESPONSE();
    return linked_.SerialNumber != 0;
}

void Link::onComm(CommEvent event) {
    tell(LinkEvent::PortStirs);
    if (event != CommEvent::DataReceived) return;
    tell(LinkEvent::BytesCame);
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
    tell(LinkEvent::ReplyCame, commandKey(currentCommand_));
}

void Link::discardInput() {
    skipFailing([&] { port_.read(); });
}

void Link::drainPort() {
    if (port_.isOpen()) discardInput();
}

}  // namespace zentaq
