#include "sim/faults.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "base/errors.h"

namespace zentaq::sim {

namespace {

constexpr FaultOption faultTable[] = {
    {"lose-byte", "A byte of the reply is missing", FaultKind::LoseByte},
    {"extra-byte", "A byte of the reply is one too many", FaultKind::ExtraByte},
    {"flip-bit", "A bit of the reply is wrong", FaultKind::FlipBit},
    {"wrong-sum", "The checksum of the reply is wrong", FaultKind::WrongSum},
    {"silence", "No reply", FaultKind::Silence},
    {"late", "The reply begins later", FaultKind::Late, Delay(200)},
    {"split", "The reply pauses in its middle", FaultKind::Split, Delay(30)},
    {"refuse", "\"AR\" in place of the reply", FaultKind::Refuse},
    {"hang-up", "No reply, and the cable is out for a while", FaultKind::HangUp, Delay(1000)},
    {"reset", "The unit resets in the middle of its reply and boots for a while", FaultKind::Reset,
     Delay(400)},
    {"noise", "The unit is at another rate: it understands nothing and answers with random bytes",
     FaultKind::Noise},
};

constexpr std::size_t longestNoise = 64;

constexpr std::string_view lineCommand = "line";
constexpr std::uint8_t headFirst = 0xFA;

[[noreturn]] void refuseText(std::string_view text) {
    throw Failure("\"" + std::string(text) +
                  "\" is no fault: one is KIND[=MILLISECONDS][@COMMAND[#N]][%PERCENT], " + "KIND out of " +
                  faultList());
}

/// Cuts what follows the last `mark` off `rest`. Nothing without the mark.
std::optional<std::string_view> cutBehind(std::string_view& rest, char mark) {
    const std::size_t at = rest.rfind(mark);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view behind = rest.substr(at + 1);
    rest = rest.substr(0, at);
    return behind;
}

template <typename Number>
bool readNumber(std::string_view text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

bool isCommand(std::string_view command) {
    constexpr std::string_view known[] = {"A",  "B",  "C",  "D", "E", "F", "I", "K",
                                          "P1", "P2", "P3", "S", "T", "W", "Z", lineCommand};
    return std::ranges::find(known, command) != std::end(known);
}

void split(FaultyReply& reply, Delay pause) {
    FaultyReply::Piece& first = reply.pieces.front();
    if (first.bytes.size() < 2) return;
    const auto middle = std::next(first.bytes.begin(), static_cast<std::ptrdiff_t>(first.bytes.size() / 2));
    FaultyReply::Piece second{first.after + pause, Bytes(middle, first.bytes.end())};
    first.bytes.erase(middle, first.bytes.end());
    reply.pieces.insert(reply.pieces.begin() + 1, std::move(second));
}

/// What a unit has sent when it stops half way.
void cutInTheMiddle(FaultyReply& reply) {
    Bytes& bytes = reply.pieces.front().bytes;
    bytes.resize(bytes.size() / 2);
    reply.pieces.resize(bytes.empty() ? 0 : 1);
}

/// "line" for an S-record, else the letter, with its digit for P.
std::string commandOf(const Bytes& burst) {
    std::string start;
    for (const std::uint8_t byte : burst) {
        if (byte == '\r' || byte == '\n') continue;
        start += static_cast<char>(byte);
        if (start.size() == 2) break;
    }
    if (start.size() == 2 && start[0] == 'S' && start[1] >= '0' && start[1] <= '9')
        return std::string(lineCommand);
    return start.starts_with('P') ? start : start.substr(0, 1);
}

}  // namespace

std::string faultList() {
    std::string list;
    for (const FaultOption& row : faultTable) {
        if (!list.empty()) list += ", ";
        list += row.name;
    }
    return list;
}

std::span<const FaultOption> faultOptions() {
    return faultTable;
}

std::string faultText(std::string_view name, std::string_view words) {
    const bool beginsWithTime = !words.empty() && words[0] >= '0' && words[0] <= '9';
    return std::string(name) + (beginsWithTime ? "=" : "") + std::string(words);
}

Fault parseFault(std::string_view text) {
    Fault fault;
    std::string_view rest = text;
    if (const auto percent = cutBehind(rest, '%')) {
        const bool valid = readNumber(*percent, fault.percent) && fault.percent >= 0 && fault.percent <= 100;
        if (!valid) refuseText(text);
    }
    if (auto command = cutBehind(rest, '@')) {
        if (const auto occurrence = cutBehind(*command, '#')) {
            if (!readNumber(*occurrence, fault.occurrence) || fault.occurrence < 1) refuseText(text);
        }
        if (!isCommand(*command)) refuseText(text);
        fault.command = *command;
    }
    const auto delay = cutBehind(rest, '=');
    const auto* row = std::ranges::find(faultTable, rest, &FaultOption::name);
    if (row == std::end(faultTable)) refuseText(text);
    fault.kind = row->kind;
    fault.delay = row->usualDelay;
    if (delay) {
        int milliseconds = 0;
        const bool valid =
            row->usualDelay.count() > 0 && readNumber(*delay, milliseconds) && milliseconds >= 0;
        if (!valid) refuseText(text);
        fault.delay = Delay(milliseconds);
    }
    return fault;
}

FaultInjector::FaultInjector(std::vector<Fault> faults, unsigned seed)
    : faults_(std::move(faults)), random_(seed) {}

FaultyReply FaultInjector::apply(const Bytes& burst, const Bytes& reply) {
    FaultyReply result;
    if (reply.empty()) return result;
    result.pieces.push_back({Delay(0), reply});
    if (faults_.empty()) return result;
    const std::string command = commandOf(burst);
    const int occurrence = count(answered_, command);
    for (const Fault& fault : faults_) {
        if (fault.kind != FaultKind::Noise && strikes(fault, command, occurrence)) spoil(fault, result);
    }
    return result;
}

std::optional<FaultyReply> FaultInjector::mishear(const Bytes& burst) {
    const std::string command = commandOf(burst);
    const int occurrence = count(heard_, command);
    for (const Fault& fault : faults_) {
        if (fault.kind != FaultKind::Noise || !strikes(fault, command, occurrence)) continue;
        Bytes noise(1 + anyBelow(longestNoise));
        for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(anyBelow(256));
        FaultyReply reply;
        reply.pieces.push_back({Delay(0), std::move(noise)});
        return reply;
    }
    return std::nullopt;
}

// Lines are counted from the start of their transfer.
int FaultInjector::count(Counts& seen, const std::string& command) {
    using Row = std::pair<std::string, int>;
    const bool beginsTransfer = command == "P1" || command == "P3";
    if (beginsTransfer) std::erase_if(seen, [](const Row& row) { return row.first == lineCommand; });
    auto row = std::ranges::find(seen, command, &Row::first);
    if (row == seen.end()) row = seen.insert(seen.end(), {command, 0});
    return ++row->second;
}

bool FaultInjector::strikes(const Fault& fault, const std::string& command, int occurrence) {
    if (!fault.command.empty() && fault.command != command) return false;
    if (fault.occurrence > 0 && fault.occurrence != occurrence) return false;
    // Drawn by hand: the library's distributions differ between its versions, a seed should not.
    constexpr double wholeRange = 4294967296.0;
    return static_cast<double>(random_()) / wholeRange * 100 < fault.percent;
}

std::size_t FaultInjector::anyBelow(std::size_t limit) {
    return random_() % limit;
}

void FaultInjector::spoil(const Fault& fault, FaultyReply& reply) {
    if (reply.pieces.empty()) return;
    switch (fault.kind) {
        case FaultKind::HangUp:
            reply.cableOut = fault.delay;
            reply.pieces.clear();
            return;
        case FaultKind::Silence:
            reply.pieces.clear();
            return;
        case FaultKind::Late:
            for (FaultyReply::Piece& piece : reply.pieces) piece.after += fault.delay;
            return;
        case FaultKind::Split:
            return split(reply, fault.delay);
        case FaultKind::Refuse:
            reply.pieces = {{reply.pieces.front().after, Bytes{'A', 'R'}}};
            return;
        case FaultKind::WrongSum:
            if (reply.pieces.front().bytes.front() == headFirst) ++reply.pieces.back().bytes.back();
            return;
        case FaultKind::Reset:
            cutInTheMiddle(reply);
            reply.resetFor = fault.delay;
            return;
        case FaultKind::LoseByte:
        case FaultKind::ExtraByte:
        case FaultKind::FlipBit:
        case FaultKind::Noise:
            break;
    }
    damage(fault.kind, reply.pieces.front().bytes);
    if (reply.pieces.front().bytes.empty()) reply.pieces.erase(reply.pieces.begin());
}

/// One byte somewhere: gone, too many, or with a wrong bit.
void FaultInjector::damage(FaultKind kind, Bytes& bytes) {
    const auto byte = std::next(bytes.begin(), static_cast<std::ptrdiff_t>(anyBelow(bytes.size())));
    if (kind == FaultKind::LoseByte) bytes.erase(byte);
    if (kind == FaultKind::ExtraByte) bytes.insert(byte, static_cast<std::uint8_t>(anyBelow(256)));
    if (kind == FaultKind::FlipBit) *byte ^= static_cast<std::uint8_t>(1u << anyBelow(8));
}

}  // namespace zentaq::sim
