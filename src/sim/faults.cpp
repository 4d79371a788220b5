#include "sim/faults.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "base/errors.h"

namespace zentaq::sim {

namespace {

struct FaultName {
    std::string_view name;
    FaultKind kind;
    Delay usualDelay{};
};

constexpr FaultName faultNames[] = {
    {"lose-byte", FaultKind::LoseByte},
    {"extra-byte", FaultKind::ExtraByte},
    {"flip-bit", FaultKind::FlipBit},
    {"wrong-sum", FaultKind::WrongSum},
    {"silence", FaultKind::Silence},
    {"late", FaultKind::Late, Delay(200)},
    {"split", FaultKind::Split, Delay(30)},
    {"refuse", FaultKind::Refuse},
    {"hang-up", FaultKind::HangUp, Delay(1000)},
};

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

/// "line" for an S-record, else the letter, with its digit for P.
std::string commandOf(const Bytes& burst) {
    std::string start;
    for (const std::uint8_t byte : burst) {
        if (byte == '\r' || byte == '\n') continue;
        start += static_cast<char>(byte);
        if (start.size() == 2) break;
    }
    if (start == "S1" || start == "S9") return std::string(lineCommand);
    return start.starts_with('P') ? start : start.substr(0, 1);
}

}  // namespace

std::string faultList() {
    std::string list;
    for (const FaultName& row : faultNames) {
        if (!list.empty()) list += ", ";
        list += row.name;
    }
    return list;
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
    const auto* row = std::ranges::find(faultNames, rest, &FaultName::name);
    if (row == std::end(faultNames)) refuseText(text);
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
    // Lines are counted from the start of their transfer.
    if (command == "P1") std::erase_if(seen_, [](const auto& row) { return row.first == lineCommand; });
    auto row = std::ranges::find(seen_, command, &std::pair<std::string, int>::first);
    if (row == seen_.end()) row = seen_.insert(seen_.end(), {command, 0});
    ++row->second;
    for (const Fault& fault : faults_) {
        if (strikes(fault, command)) spoil(fault, result);
    }
    return result;
}

bool FaultInjector::strikes(const Fault& fault, const std::string& command) {
    if (!fault.command.empty() && fault.command != command) return false;
    if (fault.occurrence > 0) {
        const auto row = std::ranges::find(seen_, command, &std::pair<std::string, int>::first);
        if (row->second != fault.occurrence) return false;
    }
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
        case FaultKind::LoseByte:
        case FaultKind::ExtraByte:
        case FaultKind::FlipBit:
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
