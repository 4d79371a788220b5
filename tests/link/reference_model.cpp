#include "link/reference_model.h"

#include <map>

namespace zentaq::reference {

namespace {

struct Lengths {
    int f, i, e, b, misc, t, c, d, w;
};

/// By unit kind; every other kind answers as no unit does.
Lengths lengthsOf(int kind) {
    static const std::map<int, Lengths> rows = {
        {3, {35, 21, 8, 39, 2, 16, 39, 33, 65}}, {4, {28, 21, 8, 38, 2, 16, 39, 36, 66}},
        {5, {28, 21, 8, 38, 2, 16, 39, 34, 23}}, {6, {28, 21, 8, 38, 2, 16, 39, 40, 70}},
        {7, {28, 21, 8, 38, 2, 16, 39, 34, 62}}, {8, {28, 21, 8, 38, 2, 16, 39, 34, 62}},
    };
    const auto row = rows.find(kind);
    return row == rows.end() ? Lengths{1, 1, 1, 1, 2, 1, 1, 1, 1} : row->second;
}

std::string keyOf(const std::string& command) {
    if (!command.empty() && command[0] == 'Z') return "Z";
    if (!command.empty() && command[0] == 'P') return command.substr(0, 2);
    return command;
}

int kindOfSerial(std::int32_t n) {
    if ((n >= 10 && n <= 9999) || (n >= 200000 && n <= 209999)) return 3;
    if (n >= 300000 && n <= 309999) return 4;
    if (n >= 350000 && n <= 359999) return 6;
    if (n >= 500000 && n <= 509999) return 5;
    if (n >= 700000 && n <= 709999) return 7;
    if (n >= 750000 && n <= 759999) return 8;
    return 0;
}

/// Bytes above 127 are characters of their own, which the program's texts hold in two bytes.
std::string asCharacters(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        const int code = static_cast<unsigned char>(c);
        if (code > 127) {
            text += static_cast<char>(192 + code / 64);
            text += static_cast<char>(128 + code % 64);
        } else {
            text += c;
        }
    }
    return text;
}

std::string withoutOuterBlanks(std::string text) {
    while (!text.empty() && text.back() == ' ') text.pop_back();
    while (!text.empty() && text.front() == ' ') text.erase(0, 1);
    return text;
}

constexpr int imageConnected = 2, imageMonitor = 3, imageNoConnect = 4, imageTransfer = 5, imageWarning = 6;

}  // namespace

Model::Model() {
    // These have it, whatever their configuration says.
    now_.pic18.at(6) = now_.pic18.at(7) = now_.pic18.at(8) = true;
}

// ---- From outside

void Model::send(const std::string& command) {
    ring_.at(static_cast<std::size_t>(now_.tail)) = command;
    ++now_.queued;
    now_.tail = (now_.tail + 1) & 0x1FF;
    if (now_.tail == now_.head) now_.head = (now_.head + 1) & 0x1FF;
}

/// Decided: a transfer whose command is neither in flight nor waiting has the patience of an unanswered one.
void Model::watchTransfer() {
    bool gone = false;
    if (pending()) {
        const bool still = now_.head == now_.tail || ring_.at(static_cast<std::size_t>(now_.head)).empty();
        gone = now_.command.empty() && still;
        if (!gone && !transfer_.empty() && keyOf(now_.command) != transfer_) gone = !queued(transfer_);
    }
    stall_ = gone ? stall_ + 1 : 0;
    if (stall_ <= 1000 || !now_.command.empty()) return;
    stall_ = 0;
    end(false);
    lost(false);
    drop();
}

void Model::tick() {
    watchTransfer();
    if (now_.command.empty()) {
        idle();
    } else if (now_.ready) {
        replied();
    } else {
        waiting();
    }
}

void Model::deliver(const std::string& bytes) {
    inPort_ += bytes;
    now_.sending = false;
    now_.received = true;
    if (tail_ == 0) now_.rx.clear();
    now_.rx.insert(now_.rx.end(), inPort_.begin(), inPort_.end());
    inPort_.clear();
    const int size = static_cast<int>(now_.rx.size());
    // Decided: a first identify asks for six bytes of eight, and the last two may come in a lump of their
    // own.
    const bool marked = size >= 2 && now_.rx[0] == 0xFA && now_.rx[1] == 0xA5;
    if (now_.command == "E" && marked && size >= asked_ && size < 8) {
        if (tail_ == 0) tail_ = 40;
        now_.threshold = 8 - size;
        return;
    }
    tail_ = 0;
    // Decided: behind a frame that is too long the line has to be quiet for a while.
    if ((now_.command == "F" || now_.command == "I") && size > asked_) quiet_ = 20, impatient_ = 100;
    now_.ready = true;
    status(keyOf(now_.command));
}

void Model::arrive(const std::string& bytes) {
    inPort_ += bytes;
}

void Model::otherEvent() {
    now_.sending = now_.received = false;
}

void Model::open() {
    now_.open = true;
    away_ = true;
    failWrite_ = false;
    inPort_.clear();
    quiet_ = 0;
    now_.threshold = 0;
    message("Connected", imageConnected);
    now_.connected = true;
    log("Connection with ORB Established.");
    if (now_.serial != 0) now_.progress = false;
}

void Model::close() {
    now_.open = false;
    away_ = true;
    failWrite_ = false;
    inPort_.clear();
    log("COMM: Connection with ORB terminated.");
}

void Model::closeWithKill() {
    send("K");
    close();
}

bool Model::beginLines(const std::string& key, std::vector<std::string> lines, int total,
                       const std::vector<std::string>& logLines) {
    if (pending()) return false;
    for (const std::string& line : logLines) log(line);
    now_.progress = true;
    transfer_ = key;
    if (key == "P3" && (now_.kind != 0 || !broken_)) firmwareKind_ = now_.kind;
    meant_ = now_.kind == 0 ? 0 : now_.serial;
    if (key == "P3") unknown_ = 0, away_ = !now_.open;
    // Decided: a firmware goes to nobody who has not been asked, unless that one is silent.
    ask_ = key == "P3" && now_.kind == 0;
    lines_ = std::move(lines);
    next_ = 0;
    send(key);
    now_.lines = total;
    return true;
}

bool Model::beginDatalog(const std::vector<std::string>& logLines) {
    return beginLines("D", {}, 0, logLines);
}

Observed Model::take() {
    now_.waiting = inPort_.size();
    Observed seen = now_;
    now_.written.clear();
    now_.calls.clear();
    now_.locks.clear();
    return seen;
}

// ---- The machine

int Model::lengthOf(const std::string& key) const {
    const Lengths is = lengthsOf(now_.kind);
    if (key == "E") return now_.kind == 0 || (now_.kind == 3 && now_.oldFirmware) ? 6 : is.e;
    if (key == "B") return is.b;
    if (key == "C") return is.c;
    if (key == "D") return is.d;
    if (key == "F") return is.f;
    if (key == "I") return is.i;
    if (key == "T") return is.t;
    if (key == "W") return is.w;
    for (const char* short2 : {"A", "K", "P1", "P2", "P3", "S", "Z"}) {
        if (key == short2) return is.misc;
    }
    return now_.threshold;
}

void Model::output(const std::string& command) {
    if (!now_.open) return;
    now_.sending = true;
    if (failWrite_) {
        failWrite_ = false;
        return;  // a statement that fails is skipped
    }
    now_.written.push_back(command);
    --now_.queued;
}

void Model::idle() {
    std::string key;
    const std::string& first = ring_.at(static_cast<std::size_t>(now_.head));
    if (first.empty() || now_.head == now_.tail) {
        if (quiet_ > 0) lineIsQuiet();
        // Decided: nobody waits in an empty ring, whatever the count says.
        if (now_.head == now_.tail) now_.queued = 0;
    } else if (lineIsQuiet()) {
        if (ask_ && first == "P3") push("E");
        now_.command = ring_.at(static_cast<std::size_t>(now_.head));
        key = keyOf(now_.command);
        now_.threshold = asked_ = lengthOf(key);
        tail_ = 0;
        if (key == "D") now_.transferActive = true;
        if (key == "P1" || key == "P3") {
            pace_ = 0;
            now_.tail = (now_.head + 1) & 0x1FF;
            now_.queued = 1;  // decided: what was thrown away no longer counts
            now_.transferActive = true;
        }
        output(now_.command);
        now_.head = (now_.head + 1) & 0x1FF;
        now_.ready = false;
        tick_ = 0;
    }
    now_.onFlyBusy = key == "A" || key == "P2" || key == "S";
    now_.locks.push_back(now_.onFlyBusy);
}

/// Decided: what is there before a command is written answers nothing.
bool Model::lineIsQuiet() {
    const bool some = now_.open && !inPort_.empty();
    inPort_.clear();
    if (quiet_ == 0) return true;
    if (some) quiet_ = 20;
    --impatient_;
    if (impatient_ > 0) --quiet_;
    if (impatient_ > 0 && quiet_ > 0) return false;
    quiet_ = 0;
    return true;
}

void Model::replied() {
    const std::string key = keyOf(now_.command);
    if (key == "P1" || key == "P3") {
        if (pace_ == 10) {
            nextLine();
            if (now_.command.empty()) return;
        } else {
            ++pace_;
        }
    }
    tick_ = retry_ = 0;
    // Decided: of frames that are too long, one behind the other, only the first is believed.
    if (key == "F" || key == "I") {
        const bool tooLong = static_cast<int>(now_.rx.size()) > asked_;
        const bool again = tooLong && long_;
        long_ = tooLong;
        if (again) {
            now_.command.clear();
            return;
        }
    }
    handle();
}

void Model::nextLine() {
    status(keyOf(now_.command) + " line");
    if (next_ >= lines_.size()) {
        end(true);
        now_.transferActive = false;
        now_.command.clear();
        return;
    }
    now_.progress = true;
    std::string line = lines_.at(next_++);
    // Decided: a firmware whose unit went silent before its first line is still written as that kind wants
    // it.
    const int kind = now_.kind == 0 && transfer_ == "P3" ? firmwareKind_ : now_.kind;
    if (kind != 3) line += "\r\n";
    ++now_.line;
    push(line);
    inPort_.clear();
    output(line);
    now_.head = (now_.head + 1) & 0x1FF;
    now_.ready = false;
    pace_ = tick_ = 0;
}

/// Decided: a line goes in front of what a user queued meanwhile; in a full ring the oldest gives way.
void Model::push(const std::string& command) {
    const int front = (now_.head - 1) & 0x1FF;
    if (front != now_.tail) now_.head = front;
    ring_.at(static_cast<std::size_t>(now_.head)) = command;
    ++now_.queued;
}

bool Model::queued(const std::string& command) const {
    for (int i = now_.head; i != now_.tail; i = (i + 1) & 0x1FF) {
        if (ring_.at(static_cast<std::size_t>(i)) == command) return true;
    }
    return false;
}

void Model::waiting() {
    if (tail_ > 0 && --tail_ == 0) now_.ready = true;
    ++tick_;
    const std::string key = keyOf(now_.command);
    if (key == "F" || key == "I") {
        if (tick_ < 21) return;
        tick_ = 0;
        if (++retry_ <= 3) return;
        lost(true);
        drop();
        return;
    }
    const bool patient = key == "P3" || key == "S" || key == "A";
    if (tick_ > 5000 || (!patient && tick_ > 1000)) timedOut(key);
}

void Model::timedOut(const std::string& key) {
    if (key != "B" && key != "C") {
        if (key == "P1" || key == "P3" || key == "D") end(false);
        lost(false);
    }
    drop();
}

void Model::lost(bool always) {
    // Decided: a transfer that still waits in the ring goes with it, but for a firmware, which stays.
    const bool stays = transfer_ == "P3" && keyOf(now_.command) != "P3" && queued("P3");
    if (!transfer_.empty() && !stays) end(false);
    // decided: not without a word
    if (now_.command == "K") {
        log("Kill Engine was not answered: look at the engine.");
    } else if (queued("K")) {
        log("Kill Engine was not sent: the link is lost.");
    }
    now_.tail = now_.head;
    tick_ = retry_ = 0;
    if ((always || now_.kind != 0) && now_.kind != 0) {
        // Decided: an object that is not in hand gets back what it had, and a file without a number counts
        // as when it is opened.
        const std::map<int, int> unknown = {{3, 5099}, {4, 7099}, {5, 5099}, {6, 3099}, {7, 5099}, {8, 5099}};
        const int ofFile = fileFirmware_ == 0 ? unknown.at(now_.kind) : fileFirmware_;
        const int number = currentUnit_ == now_.kind ? ofFile : before_;
        if (told_ || currentUnit_ == now_.kind) {
            now_.release.at(static_cast<std::size_t>(now_.kind)) = number / 1000;
            now_.build.at(static_cast<std::size_t>(now_.kind)) = number % 1000;
        }
    }
    told_ = false;
    now_.kind = 0;
    now_.found = now_.identified = false;
    now_.queued = 0;
    warned_ = {};
    if (stays) {
        send("P3");
        ask_ = now_.command != "E";  // decided: silence to that question is an answer
    }
    now_.calls.push_back("onfly: off");
    if (now_.open) {
        message("Connecting...", imageWarning);
    } else {  // decided: without a port no unit has failed to answer
        message("No Connection Mode", imageNoConnect);
        now_.connected = false;
    }
    now_.sending = now_.received = false;
}

void Model::drop() {
    tail_ = 0;
    if (now_.open) inPort_.clear();
    now_.transferActive = false;
    now_.command.clear();
}

// ---- Ends of transfers

void Model::end(bool success) {
    const std::string key = transfer_.empty() ? keyOf(now_.command) : transfer_;
    transfer_.clear();
    ask_ = false;
    if (success) {
        now_.calls.push_back("add: SUCCESS!");
        if (key == "P1") message("Program ORB Successful", imageConnected);
        if (key == "P3") message("Program Firmware Successful", imageConnected);
        if (key == "D") message("Download of Datalog Complete", imageConnected);
        if (key == "P1" || key == "P3" || key == "D") now_.connected = true;
        if (key == "P1" || key == "P3") now_.calls.push_back("message: 1002");
        if (key == "P3") now_.calls.push_back("message: 1008");
        if (key == "P3" && now_.line > 0) broken_ = linesOut_ = false, silent_ = 0;
        if (key == "D") now_.calls.push_back("message: 1006");
    } else {
        now_.calls.push_back("add: FAIL!");
        log("PROCESS FAILED - EXITED ABNORMALLY.");
        message("Transfer failed", imageWarning);  // decided: the display no longer asks for patience
        now_.calls.push_back("message: " + std::to_string(failureCode(key)));
    }
    now_.progress = false;
    now_.lines = now_.line = 0;
    now_.suspended = false;
    log("Automatic POLL/SYNC: ENABLED");
}

int Model::failureCode(const std::string& key) {
    if (key != "P3") return key == "P1" ? 1003 : 1007;
    const bool inFlight = keyOf(now_.command) == "P3";
    const bool answered = inFlight && now_.ready;
    const bool refused = answered && now_.rx.size() > 1 && now_.rx[0] == 'A' && now_.rx[1] == 'R';
    // Decided: 1005 for a start that was refused, 1004 for one that was not answered and for a run that broke
    // off; 1009 for the third start without an answer behind a run of which lines had gone out.
    if (answered || now_.line > 0) silent_ = 0;
    if (now_.line > 0 || (answered && !refused)) {
        broken_ = true;
        if (now_.line > 0) linesOut_ = true;
        return 1004;
    }
    if (answered) return 1005;
    if (!inFlight) return broken_ ? 1004 : 1005;
    if (linesOut_ && !away_ && ++silent_ >= 3) return 1009;
    return 1004;
}

// ---- Status

void Model::message(const std::string& title, int image) {
    now_.title = title;
    now_.image = image;
    if (image == imageMonitor) now_.progress = false;
}

void Model::status(const std::string& key) {
    struct Shown {
        const char* activity;
        const char* title;
        int image;
    };
    static const Shown monitoring{"{Monitoring}", "Monitoring...", imageMonitor};
    static const std::map<std::string, Shown> rows = {
        {"D", {"{Datalog}", "Retrieving Datalog...", imageTransfer}},
        {"E", {"{Polling}", "Polling...", imageTransfer}},
        {"F", monitoring},
        {"I", monitoring},
        {"W", monitoring},
        {"P1", {"{BinFile}", "Programming ORB...", imageTransfer}},
        {"P2", {"{Transfer ONFLY}", "ONFLY TRANSFER...", imageConnected}},
        {"P3", {"{Firmware}", "Programming Firmware...", imageTransfer}}};
    const bool line = key.size() > 2;  // a line sent changes the display only, not the activity
    const std::string base = line ? key.substr(0, 2) : key;
    if (base == "A" || base == "T") {
        now_.activity = base == "A" ? "{Clear Codes}" : "{Check Engine}";
        return;
    }
    const auto row = rows.find(base);
    const Shown is = row == rows.end() ? Shown{"{Info}", "Active ORB...", imageConnected} : row->second;
    if (!line) now_.activity = is.activity;
    if (is.image == imageConnected) now_.connected = true;
    message(is.title, is.image);
}

// ---- Replies

int Model::byte(int index) const {
    if (index >= static_cast<int>(now_.rx.size())) throw Fault{};
    return now_.rx[static_cast<std::size_t>(index)];
}

std::uint32_t Model::number(int first) const {
    std::uint32_t n = 0;
    for (int i = 0; i < 4; ++i) n = n * 256 + static_cast<std::uint32_t>(byte(first + i));
    return n;
}

std::string Model::text(int first, int count) const {
    std::string is;
    for (int i = 0; i < count; ++i) is += static_cast<char>(byte(first + i));
    return is;
}

void Model::processResponse() {
    handle();
}

void Model::handle() {
    try {
        const std::string header = text(0, 2);
        const std::string key = keyOf(now_.command);
        const std::string whole = now_.command;
        if (key == "P1" || key == "P3") {
            if (header != "AR" && header != "PN") return;
            end(header == "PN");
            const bool firmwareFile = key == "P3";
            if (header == "PN") {
                log(firmwareFile ? "ORB: Firmware Upload Successful, Verified!"
                                 : "ORB: Upload Successful, Program Verified!");
            } else {
                log(firmwareFile ? "Firmware Upload to ORB Unit FAILED!" : "Data Upload to ORB Unit FAILED!");
            }
            now_.transferActive = false;
        } else if (key == "E") {
            identify();
        } else if (key == "B") {
            firmware();
        } else if (key == "C") {
            const auto kind = static_cast<std::size_t>(now_.kind);
            const bool always = kind >= 6;
            now_.pic18.at(kind) = always;
            const int version = now_.release.at(kind) * 1000 + now_.build.at(kind);
            if ((kind == 4 && version >= 7000) || (kind == 5 && version >= 4006)) {
                now_.pic18.at(kind) = (byte(18) & 1) == 1;
            }
        } else if (key == "D") {
            record();
        } else if (key == "W") {
            const int length = lengthsOf(now_.kind).w;
            int sum = 0;
            for (int i = 2; i <= length - 2; ++i) sum += byte(i);
            if (sum % 256 == byte(length - 1)) ++now_.frames;
        } else if (key == "F") {
            ++now_.frames;
        } else if (key == "T") {
            byte(14);
            ++now_.codesReceived;
        } else if (key == "A" && header == "AX") {
            log("ORB CheckEngine Codes Successfully Cleared.");
            ++now_.codesCleared;
        } else if (key == "Z") {
            log(whole.back() == '\xFF' ? "ORB: Ignition Timing set to Zero"
                                       : "ORB: Restored Ignition Timing");
        } else if (key == "S") {
            log("ORB: ONFLY changes saved");
        } else if (key == "P2" && header == "AR") {
            log("ONFLY: Change Failed!");
        }
    } catch (const Fault&) {
        // Nothing else is undone.
    }
    now_.command.clear();
}

void Model::identify() {
    const int b0 = byte(0), b1 = byte(1), b2 = byte(2);
    const bool marked = b0 == 0xFA && b1 == 0xA5;
    const auto octal = [&](std::uint32_t n) {
        double value = 0, place = 1;
        for (int i = 0; i <= 10; ++i, n /= 8, place *= 10) value += static_cast<double>(n & 7) * place;
        if (value > 2147483647.0) throw Fault{};
        return static_cast<std::int32_t>(value);
    };
    bool known = true;
    const std::int32_t before = now_.serial;
    if (marked && b2 == 0x55) {
        now_.serial = static_cast<std::int32_t>(number(3));
        now_.oldFirmware = false;
    } else if (marked && b2 == 0x54) {
        now_.serial = octal(number(3));
        now_.oldFirmware = false;
    } else if (byte(4) == 'A' && byte(5) == 'X') {
        now_.serial = octal(number(0));
        if (!now_.oldFirmware) now_.calls.push_back("box: Old ORBA Firmware");
        now_.oldFirmware = true;
    } else {
        known = false;
    }
    now_.upgradeEnabled = !now_.oldFirmware;
    if (!known) return unknownAnswer();  // decided: noise is no unit, so no "B" follows it
    {
        const int kind = now_.serial == 0 ? now_.kind : kindOfSerial(now_.serial);
        if (kind == 0 && now_.serial != 0) {
            inPort_.clear();
            now_.serial = 0;
            return unknownAnswer();  // decided: and no "B" follows; the poller asks again
        }
        // Decided: another kind in the place of an identified one, or a unit with the oldest firmware, ends
        // what was agreed with that one, or changes on the fly would go to a unit of which the warning says
        // that none will.
        const bool otherNumber = before != 0 && now_.serial != 0 && before != now_.serial;
        const bool former = now_.identified && (kind != now_.kind || now_.oldFirmware || otherNumber);
        if (former || anotherUnit(kind)) newcomer();
        now_.kind = kind;
    }
    if (now_.kind == 0) {
        unknownAnswer();
    } else {
        ask_ = false;
    }
    if (now_.kind != 0) ++now_.kindsFound;
    inPort_.clear();
    message("CONNECTED!", imageConnected);
    now_.connected = true;
    now_.found = true;
    if (marked) {
        send("B");
    } else {
        now_.oldFirmware = true;
    }
}

/// Decided: what waits for one unit does not go to another.
bool Model::anotherUnit(int kind) const {
    if (transfer_.empty() || now_.transferActive) return false;
    if (meant_ != 0 && meant_ != now_.serial) return true;
    if (transfer_ != "P3") return false;
    const auto family = [](int is) { return is == 8 ? 7 : is; };
    return now_.oldFirmware || (kind != 0 && firmwareKind_ != 0 && family(firmwareKind_) != family(kind));
}

void Model::unknownAnswer() {
    if (!ask_ || ++unknown_ < 3) return;
    log("Who answers does not say what it is.");
    newcomer();
}

void Model::newcomer() {
    if (pending()) {
        now_.calls.push_back("box: Another Unit");
        end(false);
    }
    now_.transferActive = false;
    lost(false);
}

void Model::firmware() {
    if (now_.kind == 0) return;  // decided: who has no kind is not identified
    const auto kind = static_cast<std::size_t>(now_.kind);
    now_.binName = asCharacters(text(3, 24));
    const std::string label = withoutOuterBlanks(text(27, 10));
    log("ORB :: Firmware: " + asCharacters(label));
    const auto digits = [&](std::size_t first, std::size_t count) {
        int n = 0;
        if (label.size() <= first) throw Fault{};
        for (const char c : label.substr(first, count)) {
            if (c < '0' || c > '9') throw Fault{};
            n = n * 10 + (c - '0');
        }
        return n;
    };
    const int build = digits(7, 3), release = digits(5, 2);
    broken_ = linesOut_ = false;
    silent_ = 0;
    if (!told_) before_ = now_.release.at(kind) * 1000 + now_.build.at(kind);
    told_ = true;
    now_.build.at(kind) = build;
    now_.release.at(kind) = release;
    const int isRelease = now_.release.at(kind), isBuild = now_.build.at(kind);
    const bool told = now_.identified;  // decided: told once per connect
    if (currentUnit_ != 0 && currentUnit_ != now_.kind && !told) {
        now_.calls.push_back("box: Unit Type Mismatch");
    }
    if (known_[0] < isRelease || (known_[0] == isRelease && known_[1] < isBuild)) {
        const std::array<int, 3> unit{now_.serial, isRelease, isBuild};
        if (warned_ != unit) now_.calls.push_back("box: ");  // decided: once
        warned_ = unit;
    }
    if (kind == 3) now_.subType = byte(37) + 1;
    log("ORB :: BinFile : " + now_.binName);
    now_.identified = true;
    if (currentUnit_ == now_.kind) now_.calls.push_back("onfly: on");
    const std::map<int, int> wideFrom = {{3, 5}, {4, 7}, {6, 3}, {7, 5}, {8, 5}};
    const auto rule = wideFrom.find(now_.kind);
    now_.wide = rule != wideFrom.end() && isRelease >= rule->second;
    if (now_.wide || (kind == 5 && isRelease >= 5)) send("C");
}

void Model::record() {
    const bool marked = byte(0) == 0xFA && byte(1) == 0xA5;
    if (marked && byte(3) > 82) {
        const bool whole = now_.lines >= 2;
        end(whole);
        if (whole) log("ORB: Datalog download complete!");
        now_.transferActive = false;
        return;
    }
    ++now_.lines;
    if (!marked) return;                       // stalls into its time-out
    if (now_.kind != 5) now_.progress = true;  // that kind has no length of its log to set it against
    send("D");
}

// ---- Checksums

bool Model::checkSum(const std::string& command) const {
    const std::string key = keyOf(command);
    for (const char* unchecked : {"A", "K", "P1", "P2", "P3", "S", "Z"}) {
        if (key == unchecked) return true;
    }
    const Lengths is = lengthsOf(now_.kind);
    const std::map<std::string, int> lastOf = {{"B", is.b - 2}, {"C", is.c - 2}, {"D", is.d - 2}, {"E", 6},
                                               {"F", is.f - 2}, {"I", is.i - 2}, {"T", is.t - 2}};
    const auto row = lastOf.find(key);
    const int last = row == lastOf.end() ? 0 : row->second;
    if (last + 1 < 0 || last + 1 >= static_cast<int>(now_.rx.size())) return false;
    int sum = 0;
    for (int i = 2; i <= last; ++i) sum += now_.rx[static_cast<std::size_t>(i)];
    return sum % 256 == now_.rx[static_cast<std::size_t>(last) + 1];
}

// ---- To read

std::string printable(const std::string& raw) {
    static constexpr const char* digits = "0123456789ABCDEF";
    std::string clean;
    for (const char c : raw) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= ' ' && byte <= '~') {
            clean += c;
        } else {
            clean += std::string("<") + digits[byte / 16] + digits[byte % 16] + ">";
        }
    }
    return clean;
}

std::string describe(const Observed& seen) {
    std::string text;
    const auto shown = [](const std::string& raw) { return "\"" + printable(raw) + "\""; };
    const auto field = [&](const char* name, const std::string& value) {
        text += std::string("  ") + name + " " + value + "\n";
    };
    const auto number = [&](const char* name, long long value) { field(name, std::to_string(value)); };
    field("command", shown(seen.command));
    number("head", seen.head), number("tail", seen.tail), number("queued", seen.queued);
    number("ready", seen.ready), number("transferActive", seen.transferActive);
    number("onFlyBusy", seen.onFlyBusy), number("suspended", seen.suspended);
    number("line", seen.line), number("lines", seen.lines);
    field("rx", shown(std::string(seen.rx.begin(), seen.rx.end())));
    number("open", seen.open), number("threshold", seen.threshold);
    number("waiting", static_cast<long long>(seen.waiting));
    number("serial", seen.serial), number("kind", seen.kind), number("found", seen.found);
    number("identified", seen.identified), number("wide", seen.wide), number("old", seen.oldFirmware);
    number("subType", seen.subType), field("binName", shown(seen.binName));
    for (const std::size_t kind : {3u, 4u, 5u, 6u, 7u, 8u}) {
        field("firmware", std::to_string(kind) + ": " + std::to_string(seen.release.at(kind)) + "." +
                              std::to_string(seen.build.at(kind)) + (seen.pic18.at(kind) ? " pic18" : ""));
    }
    field("activity", seen.activity), field("title", seen.title), number("image", seen.image);
    number("connected", seen.connected), number("progress", seen.progress);
    number("upgradeEnabled", seen.upgradeEnabled);
    number("sending", seen.sending), number("received", seen.received);
    for (const std::string& line : seen.written) field("written", shown(line));
    for (const std::string& line : seen.calls) field("call", shown(line));
    for (const bool lock : seen.locks) number("lock", lock);
    number("frames", seen.frames), number("codesReceived", seen.codesReceived);
    number("codesCleared", seen.codesCleared), number("kindsFound", seen.kindsFound);
    return text;
}

}  // namespace zentaq::reference
