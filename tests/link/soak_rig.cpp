#include "link/soak_rig.h"

#include <algorithm>
#include <array>

#include "base/errors.h"

namespace zentaq {

namespace {

constexpr int unitPort = 3;
constexpr int lastPresentPort = 3;
constexpr int pollMs = 10;
constexpr std::int64_t byteUs = 260;  ///< ten bits at 38400 baud

constexpr int longestPatienceTicks = 5001;
constexpr int stallTicks = 1001;
constexpr int unitPatienceMs = 2000;
constexpr int exchangeMs = 40;  ///< the longest reply on the wire, and some
constexpr int slackMs = 1000;

constexpr std::size_t mostBytes = ReceiveGate::mostHeld;

bool endsOf(const std::string& key, int code) {
    if (key == "P1") return code == 1002 || code == 1003;
    if (key == "P3") return code == 1002 || code == 1004 || code == 1005 || code == 1009;
    return code == 1006 || code == 1007;
}

int patienceOf(const std::string& command) {
    if (command == "F" || command == "I") return 84;
    return command == "A" || command == "S" || command == "P3" ? longestPatienceTicks : 1001;
}

std::string textOf(const sim::Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

void SoakHost::sysLog(std::string_view text) {
    if (onLog) onLog(text);
}

void SoakHost::displayMessage(int code) {
    if (onMessage) onMessage(code);
}

void SoakHost::show(const Box& box) {
    if (onBox) onBox(box);
}

Soak::Soak(const SoakOptions& options)
    : options_(options),
      random_(options.seed),
      poller_(
          link_, host_.linkDisplay, [this] { link_.Send_ORB_Command("T"); }, [] {}),
      unit_(*sim::findProfile(options.model), sim::defaultIdentity(*sim::findProfile(options.model))),
      slot_(unitKindOfSerial(static_cast<std::int32_t>(unit_.identity().serial))->slot) {
    host_.unitHost.applicationFolder(folder_.path().string());
    host_.current = slot_;
    host_.fileCode = 4099;
    Unit& calibration = host_.unit(slot_);
    calibration.BinFile("car");
    for (int index = 0; index < Unit::cellCount; ++index) {
        skipFailing([&] { calibration.AssignDirectIndex(2, index); });
    }
    host_.onLog = [this](std::string_view line) { logged(line); };
    host_.onMessage = [this](int code) { transferEnded(code); };
    host_.onBox = [this](const Box& box) {
        count("box " + box.title);
        whileBoxShows();
    };
    port_.unitOnPort(unitPort);
    for (int number = lastPresentPort + 1; number <= 12; ++number) port_.refuse(number);
    port_.otherwise([this](const std::string& command) { return answer(command); });
    link_.commPort(unitPort);
    link_.load();
}

void Soak::run() {
    while (!done()) {
        storm();
        if (!done()) calm();
    }
}

// ---- Time

void Soak::millisecond() {
    if (done()) {
        // Whoever waits for the clock must see it move.
        clock_.advanceUs(1000);
        return;
    }
    port_.advanceUs(1000);
    for (const std::string& text : port_.takeWritten()) {
        ++writes_;
        (void)text;
    }
    const bool standing = link_.handling();
    link_.tick();
    ++counts_.ticks;
    if (counts_.ticks % pollMs == 0) poller_.fire({});
    if (storming_ && chance(noisePerMs_)) noise();
    if (storming_ && chance(1.0 / 900)) act();
    if (reopenAtMs_ >= 0 && counts_.ticks >= reopenAtMs_) {
        reopenAtMs_ = -1;
        link_.commPort(unitPort);
        link_.ORB_Initialize();
        note("port opened again");
    }
    if (!standing && !link_.handling()) check();
}

void Soak::whileYielding() {
    // A search waits by the clock; a line of a transfer lets in what is due, which is mostly nothing.
    if (!link_.handling() || chance(0.05)) millisecond();
}

void Soak::whileBoxShows() {
    if (depth_ > 0 || !chance(0.5)) return;
    ++depth_;
    const int ms = 1 + below(300);
    for (int i = 0; i < ms && !done(); ++i) millisecond();
    --depth_;
}

// ---- The line

void Soak::catchUp() {
    unit_.advance(static_cast<double>(clock_.monotonicUs() - unitTimeUs_) / 1e6);
    unitTimeUs_ = clock_.monotonicUs();
}

std::string Soak::spoiltCommand(const std::string& command) {
    std::string text = command;
    const auto at = static_cast<std::size_t>(below(static_cast<int>(text.size())));
    if (chance(0.5)) {
        text.erase(at, 1);
    } else {
        text.at(at) = static_cast<char>(text.at(at) ^ (1 << below(8)));
    }
    count("command spoilt");
    return text;
}

std::optional<ScriptedReply> Soak::answer(const std::string& command) {
    ++writes_;
    count("written " +
          (command.starts_with("S1") || command.starts_with("S9") ? "line" : command.substr(0, 1)));
    if (clock_.monotonicUs() < cableBackUs_) return std::nullopt;
    catchUp();
    const std::string heard = chance(commandFaults_) ? spoiltCommand(command) : command;
    const sim::Bytes burst(heard.begin(), heard.end());
    send(faults_.apply(burst, unit_.feed(burst)));
    return std::nullopt;
}

/// One line: bytes go out behind those that are on their way.
void Soak::put(const std::string& text, std::int64_t delayUs, std::int64_t perByteUs) {
    ScriptedReply reply;
    reply.bytes = text;
    reply.delayUs = std::max(delayUs, lineFreeUs_ - clock_.monotonicUs());
    reply.byteUs = perByteUs;
    port_.send(reply);
    lineFreeUs_ = clock_.monotonicUs() + reply.delayUs + static_cast<std::int64_t>(text.size()) * perByteUs;
}

void Soak::send(const sim::FaultyReply& reply) {
    for (const auto& piece : reply.pieces) {
        put(textOf(piece.bytes), 300 + std::chrono::microseconds(piece.after).count(), byteUs);
    }
    if (!reply.cableOut) return;
    count("hang-up");
    note("cable out");
    cableBackUs_ = clock_.monotonicUs() + std::chrono::microseconds(*reply.cableOut).count();
}

/// What a unit of another rate says, or a starter motor: bytes that nobody meant.
void Soak::noise() {
    if (!port_.isOpen()) return;
    std::string bytes;
    const int length = 1 + below(chance(0.02) ? 400 : 12);
    for (int i = 0; i < length; ++i) bytes += static_cast<char>(below(256));
    put(bytes, 0, chance(0.5) ? byteUs : 4 * byteUs);
    for (Transfer& transfer : open_) transfer.faultless = false;
    count("noise");
}

void Soak::powerCycle() {
    catchUp();
    unit_.powerCycle();
    count("unit reset");
    note("unit reset");
}

// ---- Storm and calm

void Soak::setFaults() {
    static constexpr std::array texts = {"lose-byte%",   "extra-byte%", "flip-bit%",    "wrong-sum%",
                                         "silence%",     "late=200%",   "late=1200%",   "split=30%",
                                         "split=400%",   "refuse%",     "hang-up=800%", "silence@line%",
                                         "refuse@line%", "silence@D%"};
    std::vector<sim::Fault> faults;
    // At most times a line that mostly works, so that much is in progress when it does not.
    const bool rough = chance(0.3);
    const int many = 1 + below(4);
    for (int i = 0; i < many; ++i) {
        const std::string text = texts.at(static_cast<std::size_t>(below(static_cast<int>(texts.size()))));
        faults.push_back(sim::parseFault(text + std::to_string(rough ? 5 + below(60) : 1 + below(4))));
    }
    faults_ = sim::FaultInjector(faults, static_cast<unsigned>(random_()));
    commandFaults_ = chance(0.5) ? 0 : rough ? 0.1 : 0.005;
    noisePerMs_ = chance(0.6) ? 0 : rough ? 0.01 : 0.0005;
}

void Soak::storm() {
    storming_ = true;
    for (Transfer& transfer : open_) transfer.faultless = false;
    setFaults();
    note("storm");
    const std::int64_t end = counts_.ticks + 3000 + below(30'000);
    while (counts_.ticks < end && !done()) millisecond();
    storming_ = false;
}

bool Soak::alive() const {
    return link_.linked().UnitIdentified && link_.linked().LinkedUnitKind == slot_ && open_.empty() &&
           link_.ring().count() <= 5;
}

bool Soak::misread() {
    const std::string& told = unit_.identity().firmware;
    return host_.unit(slot_).FirmWare() != told.substr(0, told.find_last_not_of(' ') + 1);
}

void Soak::recover() {
    if (reopenAtMs_ >= 0 || link_.commPort() != unitPort || !port_.isOpen()) {
        reopenAtMs_ = -1;
        link_.commPort(unitPort);
        link_.ORB_Initialize();
    }
    const int waiting = (link_.ring().tail() - link_.ring().head()) & (CommandRing::size - 1);
    const std::int64_t from = counts_.ticks;
    const std::int64_t bound =
        longestPatienceTicks + 2 * stallTicks + unitPatienceMs + 10 * pollMs + waiting * exchangeMs + slackMs;
    auto frames = live_.frames;
    while (!done() && !(alive() && live_.frames > frames + 2)) {
        if (!alive()) frames = live_.frames;
        if (counts_.ticks - from > bound) return breakWith("the link is not back in its told time");
        millisecond();
    }
    // A reply that tells the firmware wrong is believed like any other; the tuner asks again.
    if (misread()) {
        count("firmware misread");
        link_.Send_ORB_Command("E");
        link_.Send_ORB_Command("B");
        for (int i = 0; i < 500 && !done() && misread(); ++i) millisecond();
        if (!done() && misread()) return breakWith("the firmware is still misread");
    }
    counts_.longestRecoveryTicks = std::max(counts_.longestRecoveryTicks, counts_.ticks - from);
    count("recovered");
}

void Soak::calm() {
    faults_ = sim::FaultInjector();
    commandFaults_ = noisePerMs_ = 0;
    cableBackUs_ = 0;
    note("calm");
    recover();
    const std::int64_t end = counts_.ticks + 4000 + below(8000);
    while (!done() && (counts_.ticks < end || !open_.empty())) {
        if (open_.empty() && counts_.ticks < end && chance(1.0 / 600)) actInCalm();
        millisecond();
        if (broken_.empty() && !link_.linked().UnitIdentified)
            breakWith("a link is lost that nothing disturbs");
    }
}

// ---- The tuner

void Soak::queueMany(int count) {
    static constexpr std::array commands = {"W", "F", "T", "B", "E", "S", "I", "C"};
    for (int i = 0; i < count; ++i) {
        link_.Send_ORB_Command(
            commands.at(static_cast<std::size_t>(below(static_cast<int>(commands.size())))));
    }
}

void Soak::sendChange() {
    const int many = 1 + below(12);
    for (int i = 0; i < many; ++i) link_.SEND_ONFLY(Unit::onTheFlyRecord(34 + below(80), below(256), 1));
}

std::string Soak::firmwareFile() {
    std::string text;
    const int lines = below(30);
    for (int i = 0; i < lines; ++i) text += Unit::onTheFlyRecord(i, i, 1) + "\r\n";
    return folder_.write("new" + std::to_string(below(1000)) + ".nv3", text);
}

void Soak::program(TransferMode mode) {
    const bool calibration = mode == TransferMode::Calibration;
    // As the program's own command asks before it goes on.
    if (link_.transfer().active()) return;
    if (calibration && link_.linked().LinkedUnitKind != slot_) return;
    const std::string path =
        mode == TransferMode::Firmware && open_.empty() ? firmwareFile() : folder_.path("log.zql");
    link_.AutoPollSuspended(true);
    try {
        link_.Program_Unit(mode, path);
    } catch (const Failure& why) {
        const bool may = searching_ || link_.handling();
        if (open_.empty() && !may) breakWith(std::string("a transfer is refused: ") + why.what());
        // As the program's own command does.
        link_.AutoPollSuspended(false);
        return;
    }
    if (!open_.empty()) return breakWith("a second transfer has begun while one runs");
    const char* key = calibration ? "P1" : mode == TransferMode::Firmware ? "P3" : "D";
    constexpr int fewestRecords = 2;
    open_.push_back({key, !storming_, calibration ? host_.unit(slot_).memoryBytes() : sim::Bytes(),
                     unit_.logRecordsLeft() < fewestRecords});
    ++started_;
    count(std::string(key) + " begun");
    note(std::string(key) + " begun");
}

void Soak::search() {
    if (searching_ || link_.transfer().active() || link_.handling()) return;
    searching_ = true;
    note("search");
    const int former = link_.commPort();
    const int found = link_.Autodetect_COMM_Port();
    count(found == 0 ? "search in vain" : "search found");
    if (found == 0) {
        link_.commPort(former);
        link_.ORB_Initialize();
    }
    searching_ = false;
}

void Soak::movePort() {
    if (searching_) return;
    count("port moved");
    note("port moved");
    if (chance(0.4)) {
        link_.ORB_Initialize();
    } else if (chance(0.5)) {
        link_.ORB_Close();
    } else {
        link_.commPort(1 + below(5));
        link_.ORB_Initialize();
    }
    reopenAtMs_ = counts_.ticks + 1 + below(3000);
}

void Soak::act() {
    const int dice = below(100);
    if (dice < 8) return link_.Send_ORB_Command("K");
    if (dice < 16) return link_.Send_ORB_Command(chance(0.5) ? std::string("Z\xFF") : std::string("Z\0", 2));
    if (dice < 22) return link_.Send_ORB_Command("A");
    if (dice < 28) return link_.Send_ORB_Command("S");
    if (dice < 44) return sendChange();
    if (dice < 50) return link_.Send_ORB_Command("T");
    if (dice < 56) {
        link_.Send_ORB_Command("E");
        return link_.Send_ORB_Command("B");
    }
    if (dice < 68) return program(TransferMode::Calibration);
    if (dice < 74) return program(TransferMode::Firmware);
    if (dice < 82) return program(TransferMode::Datalog);
    if (dice < 85) return search();
    if (dice < 89) return movePort();
    if (dice < 91) return queueMany(chance(0.2) ? 700 : 20);
    if (dice < 93) return port_.raiseError();
    if (dice < 95) return port_.failWrites(1);
    if (dice < 96) return port_.failReads(1);
    powerCycle();
}

void Soak::actInCalm() {
    const int dice = below(100);
    if (dice < 30) return program(TransferMode::Calibration);
    if (dice < 40) return program(TransferMode::Firmware);
    if (dice < 60) return program(TransferMode::Datalog);
    if (dice < 80) return sendChange();
    if (dice < 90) return link_.Send_ORB_Command("S");
    link_.Send_ORB_Command("A");
}

// ---- What must always hold

void Soak::note(std::string what) {
    notes_.push_back(std::to_string(counts_.ticks) + ": " + std::move(what));
    if (notes_.size() > 200) notes_.erase(notes_.begin(), notes_.begin() + 100);
}

void Soak::breakWith(const std::string& what) {
    if (!broken_.empty()) return;
    broken_ =
        "seed " + std::to_string(options_.seed) + ", model " + std::string(options_.model) + ", tick " +
        std::to_string(counts_.ticks) + ": " + what + "\n  in flight \"" + link_.CurrentCommand() +
        "\", ring " + std::to_string(link_.ring().head()) + " to " + std::to_string(link_.ring().tail()) +
        ", queued " + std::to_string(link_.ring().count()) + ", ready " +
        std::to_string(link_.ResponseReady()) + ", active " + std::to_string(link_.transfer().active()) +
        ", suspended " + std::to_string(link_.AutoPollSuspended()) + ", kind " +
        std::to_string(link_.linked().LinkedUnitKind) + ", found " +
        std::to_string(link_.linked().UnitFound) + ", identified " +
        std::to_string(link_.linked().UnitIdentified) + ", threshold " + std::to_string(port_.threshold()) +
        ", held " + std::to_string(port_.bytesHeld()) + ", quiet " + std::to_string(quietTicks_) + ", port " +
        std::to_string(link_.commPort()) + (port_.isOpen() ? " open" : " closed") + "\n";
    const std::size_t from = notes_.size() > 25 ? notes_.size() - 25 : 0;
    for (std::size_t i = from; i < notes_.size(); ++i) broken_ += "  " + notes_[i] + "\n";
}

void Soak::transferEnded(int code) {
    if (code == 1008) return;  // what is left to do behind a firmware that ended well
    ++ended_;
    if (open_.empty()) return breakWith("message " + std::to_string(code) + " with no transfer");
    const Transfer transfer = std::exchange(open_, {}).front();
    count(transfer.key + " ended " + std::to_string(code));
    note(transfer.key + " ended " + std::to_string(code));
    if (!endsOf(transfer.key, code))
        return breakWith("message " + std::to_string(code) + " ends " + transfer.key);
    // A unit that is not in upgrade mode refuses every firmware; one with an empty log has nothing to give.
    const int good = transfer.key == "P1" ? 1002 : transfer.key == "D" ? 1006 : 1005;
    const bool emptyLog = transfer.key == "D" && transfer.shortLog;
    if (transfer.faultless && code != (emptyLog ? 1007 : good)) {
        breakWith(transfer.key + " fails on a line that nothing disturbs");
    }
    if (transfer.faultless && transfer.key == "P1" &&
        !std::equal(transfer.image.begin(), transfer.image.end(), unit_.memory().begin())) {
        breakWith("a programming that ended well left another image in the unit");
    }
    whileBoxShows();
}

void Soak::logged(std::string_view line) {
    if (line == "Automatic POLL/SYNC: ENABLED") count("polling enabled");
    if (line.ends_with("Verified!")) count("verified");
}

void Soak::check() {
    checkRing();
    checkTransfers();
    checkPatience();
    checkBuffers();
    const LinkedUnit& unit = link_.linked();
    if (unit.UnitIdentified && unit.LinkedUnitKind == 0) breakWith("a unit is identified that has no kind");
    if (unit.UnitIdentified && unit.LinkedUnitKind != slot_) count("ms with another kind");
}

void Soak::checkRing() {
    const int head = link_.ring().head(), tail = link_.ring().tail();
    if (head < 0 || head >= CommandRing::size || tail < 0 || tail >= CommandRing::size)
        breakWith("a ring index");
    const int length = (tail - head) & (CommandRing::size - 1);
    if (link_.ring().count() < length) breakWith("fewer commands counted than wait");
    const bool residue = length == 0 && link_.CurrentCommand().empty() && link_.ring().count() != 0;
    residueTicks_ = residue ? residueTicks_ + 1 : 0;
    if (residueTicks_ > 2) breakWith("an empty ring goes on counting commands");
}

void Soak::checkTransfers() {
    if (started_ - ended_ != static_cast<int>(open_.size())) breakWith("a transfer ended twice");
    if (!open_.empty()) return;
    if (link_.transfer().active()) breakWith("TransferActive with no transfer");
    if (link_.AutoPollSuspended()) breakWith("AutoPollSuspended with no transfer");
    if (link_.transfer().line() != 0) breakWith("lines sent with no transfer");
}

void Soak::checkPatience() {
    const bool changed = link_.CurrentCommand() != lastCommand_ || link_.ring().head() != lastHead_ ||
                         link_.ResponseReady() != lastReady_ || writes_ != lastWrites_;
    lastCommand_ = link_.CurrentCommand();
    lastHead_ = link_.ring().head();
    lastReady_ = link_.ResponseReady();
    lastWrites_ = writes_;
    quietTicks_ = changed ? 0 : quietTicks_ + 1;
    const bool idle = lastCommand_.empty();
    const bool waits = idle && link_.ring().head() != link_.ring().tail();
    waitingTicks_ = waits ? waitingTicks_ + 1 : 0;
    // Behind a frame that was too long the line rests, for 20 ticks on a quiet one and 100 at most.
    if (waitingTicks_ > 102) breakWith("a command waits and none is in flight");
    if (idle && open_.empty()) quietTicks_ = 0;
    const int limit = idle ? stallTicks : lastReady_ ? 12 : patienceOf(lastCommand_);
    if (quietTicks_ > limit + 1) breakWith("the link stands still");
    if (idle && link_.OnFlyBusy() && quietTicks_ > 2) breakWith("OnFlyBusy with nothing in flight");
}

void Soak::checkBuffers() {
    counts_.longestReply = std::max(counts_.longestReply, link_.RxBuffer().size());
    counts_.mostBytesHeld = std::max(counts_.mostBytesHeld, port_.bytesHeld());
    if (link_.RxBuffer().size() > mostBytes) breakWith("RxBuffer grows");
    if (port_.bytesHeld() > mostBytes) breakWith("the port's buffer grows");
}

}  // namespace zentaq
