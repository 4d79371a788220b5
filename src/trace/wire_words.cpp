#include "trace/wire_words.h"

#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "link/reply_decoding.h"
#include "live/check_engine.h"

namespace zentaq {

namespace {

/// The identification of all but the oldest units.
constexpr int serialBytes = 8;
/// The first word of the check-engine codes, behind the head of the reply.
constexpr std::size_t firstCodeWord = 3;
constexpr int mostCodesTold = 4;

struct ShortAnswer {
    std::string_view head;
    std::string_view meaning;
    std::string_view problem;
};

constexpr ShortAnswer shortAnswers[] = {
    {"AX", "accepted (AX)", {}},
    {"AR", "refused (AR)", trouble::refused},
    {"PN", "programming finished and verified (PN)", {}},
};

std::span<const std::uint8_t> asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string_view asText(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool isPrintable(std::string_view text) {
    return std::ranges::all_of(text, [](char each) { return each >= 0x20 && each < 0x7F; });
}

/// A command or a line as a reader sees it; "" for bytes that no reader sees.
std::string shown(std::string_view bytes) {
    while (bytes.ends_with('\n') || bytes.ends_with('\r')) bytes.remove_suffix(1);
    return isPrintable(bytes) ? std::string(bytes) : std::string();
}

}  // namespace

void WireWords::unit(int slot, bool oldFirmware) {
    const UnitKind* kind = unitKindOfSlot(slot);
    kind_ = kind == nullptr ? &nullKind() : kind;
    oldFirmware_ = oldFirmware;
}

std::string WireWords::unitText() const {
    if (!knowsUnit()) return {};
    return "; the unit on the link is of kind " + numberText(kind_->slot) + ", " + std::string(kind_->model);
}

// ---- Commands

bool WireWords::isLine(std::string_view bytes) const {
    return !bulk_.empty() && findCommand(commandKey(bytes)) == nullptr;
}

int WireWords::expected() const {
    if (row_ == nullptr) return 0;
    const bool told = knowsUnit() || row_->key == "E" || row_->checksum == ChecksumRule::Unchecked;
    return told ? replyLength(*row_, *kind_, oldFirmware_) : 0;
}

std::string WireWords::expectedText() const {
    if (row_ == nullptr) return ", unknown";
    return expected_ == 0 ? ", length of the reply not known yet"
                          : ", " + numberText(expected_) + " bytes expected";
}

void WireWords::command(TraceLine& line) {
    const std::string text = shown(line.bytes);
    if (isLine(line.bytes)) {
        line.command = key_ = bulk_;
        line.text = "line " + numberText(++line_) + (text.empty() ? "" : ", " + text) + expectedText();
        return;
    }
    const bool recordBefore = key_ == "D";
    row_ = findCommand(commandKey(line.bytes));
    line.command = key_ = row_ == nullptr ? "?" : std::string(row_->key);
    if (key_ == "D" && !recordBefore) records_ = 0;
    bulk_ = row_ != nullptr && row_->isBulk ? key_ : "";
    line_ = 0;
    expected_ = expected();
    line.text = row_ == nullptr ? "no command" : std::string(row_->meaning);
    const std::size_t known = row_ == nullptr ? 0 : row_->key.size();
    if (text.size() > known) line.text += " " + text.substr(known);
    if (key_ == "Z")
        line.text = line.bytes.ends_with('\xFF') ? "ignition timing to zero" : "ignition timing back";
    line.text += expectedText();
}

// ---- Replies

std::string WireWords::lineText() const {
    return bulk_.empty() || line_ == 0 ? std::string() : "line " + numberText(line_) + ", ";
}

std::string WireWords::countText(std::size_t count) const {
    const std::string number = numberText(static_cast<int>(count));
    return (expected_ == 0 ? number : number + " of " + numberText(expected_)) + " bytes";
}

std::string WireWords::shortAnswer(TraceLine& line, Bytes reply) {
    const std::string_view head = asText(reply).substr(0, 2);
    const auto* known = std::ranges::find(shortAnswers, head, &ShortAnswer::head);
    if (known == std::end(shortAnswers)) {
        line.problem = trouble::unclear;
        const std::string text = shown(asText(reply));
        return "neither accepted nor refused" + (text.empty() ? "" : " (" + text + ")");
    }
    line.problem = known->problem;
    if (head != "AX") bulk_.clear();
    return std::string(known->meaning);
}

std::string WireWords::identification(TraceLine& line, Bytes reply) {
    constexpr std::string_view unknown = "no identification";
    std::string text(unknown);
    // A reply that ends too early, or with a number beyond all, is told as it came.
    skipFailing([&] {
        const bool marked = hasMarker(reply);
        const auto told = decodeSerial(reply);
        if (!told) return;
        if (marked) expected_ = serialBytes;
        text = "serial " + formatNumber(told->serialNumber, "000000");
        const UnitKind* kind = unitKindOfSerial(told->serialNumber);
        text += kind == nullptr ? ", of no unit kind" : ", unit " + std::string(kind->label);
        if (told->oldFirmware) text += ", must be upgraded";
        if (kind != nullptr) unit(kind->slot, told->oldFirmware);
        oldFirmware_ = told->oldFirmware;
    });
    if (text == unknown) line.problem = trouble::unclear;
    return text;
}

bool WireWords::awaitsRest(std::string_view beginning) {
    const Bytes bytes = asBytes(beginning);
    const bool whole = bytes.size() >= static_cast<std::size_t>(serialBytes);
    if (key_ != "E" || whole || bytes.size() < static_cast<std::size_t>(expected_)) return false;
    if (bytes.size() < 2 || !hasMarker(bytes)) return false;
    expected_ = serialBytes;
    return true;
}

/// A cleared bit is a code.
std::string WireWords::codes(Bytes reply) const {
    int set = 0;
    std::string texts;
    for (int row = 1; row <= CheckEngineTexts::rowCount; ++row) {
        const std::size_t index = firstCodeWord + static_cast<std::size_t>(row) - 1;
        if (index >= reply.size()) return {};
        for (int bit = 0; bit < CheckEngineTexts::bitCount; ++bit) {
            if ((reply[index] >> bit) % 2 != 0) continue;
            const auto text = knowsUnit() ? trimmed(CheckEngineTexts::text(*kind_, row, bit)) : "";
            if (++set <= mostCodesTold && !text.empty())
                texts += (texts.empty() ? ": " : "; ") + std::string(text);
        }
    }
    if (set == 0) return "no codes";
    return numberText(set) + (set == 1 ? " code" : " codes") + texts + (set > mostCodesTold ? "; ..." : "");
}

std::string WireWords::record(Bytes reply) {
    bool last = false;
    skipFailing([&] { last = isEndOfLog(reply); });
    return last ? "end of the log" : "record " + numberText(++records_);
}

std::string WireWords::saying(TraceLine& line, Bytes reply) {
    if (row_ == nullptr) return {};
    if (row_->checksum == ChecksumRule::Unchecked) return shortAnswer(line, reply);
    if (key_ == "E") return identification(line, reply);
    if (key_ == "D") return record(reply);
    if (key_ == "T") return codes(reply);
    std::string text;
    if (key_ == "B") {
        skipFailing([&] {
            text = "firmware " + shownText(firmwareBytes(reply)) + ", calibration \"" +
                   std::string(trimmed(unitBinName(reply))) + "\"";
        });
    }
    return text;
}

/// The narrow frame of the ORB A has values up to its last byte, and so has the identification of the oldest
/// units.
bool WireWords::hasSum(Bytes reply) const {
    if (expected_ == 0 || reply.size() < static_cast<std::size_t>(expected_)) return false;
    if (row_ == nullptr || row_->checksum == ChecksumRule::Unchecked) return false;
    if (key_ == "E") return expected_ == serialBytes;
    return key_ != "F" || kind_->narrowFrameHasSum;
}

void WireWords::judge(TraceLine& line, Bytes reply) const {
    const auto length = static_cast<std::size_t>(expected_);
    line.text += (line.text.empty() ? "" : ", ") + countText(reply.size());
    const bool summed = hasSum(reply);
    const bool right = summed && frameSumIsRight(reply, expected_);
    if (summed) line.text += right ? ", sum right" : ", sum wrong";
    if (!line.problem.empty() || expected_ == 0) return;
    if (reply.size() < length) line.problem = trouble::tooShort;
    if (reply.size() > length) line.problem = trouble::surplus;
    if (summed && !right && reply.size() == length) line.problem = trouble::wrongSum;
}

void WireWords::reply(TraceLine& line) {
    const Bytes reply = asBytes(line.bytes);
    line.command = key_;
    line.text = saying(line, reply);
    judge(line, reply);
}

void WireWords::partOfReply(TraceLine& line) const {
    line.command = key_;
    line.problem = trouble::tooShort;
    line.text = lineText() + countText(line.bytes.size()) + ", never whole";
}

}  // namespace zentaq
