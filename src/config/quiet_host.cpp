#include "config/quiet_host.h"

#include <cmath>
#include <variant>

#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "config/basic_figures.h"
#include "config/engine_facts.h"

namespace zentaq {

namespace {

constexpr int nonNumeric = 1000;
constexpr int outOfRange = 1001;
constexpr int notWhole = 1002;
constexpr int notEmpty = 1003;
constexpr int nullValue = 1005;
constexpr int notAscending = 1006;

/// The words of the numbered warnings on one line, as the boxes of the windows have them.
std::string warningLine(int code, std::string_view text) {
    const std::string head = "Warning " + numberText(code) + ": Data Input Error: ";
    switch (code) {
        case nonNumeric:
            return head + "Non-numeric value detected. " + std::string(text);
        case outOfRange:
            return head + std::string(text) + " - Invalid Entry.";
        case notWhole:
            return head + "Enter Whole Numbers Only";
        case notAscending:
            return head + "The value you entered must be higher than that of the one to the left. " +
                   std::string(text);
        case nullValue:
            return head + "Field CANNOT be NULL; please try again.";
        default:
            return "Warning " + numberText(code) + ": " + std::string(text);
    }
}

/// A figure may lie outside its limits, as where they follow from others: to enter what its cell holds
/// changes nothing. A writer of its own would put it into other cells as well.
bool holdsAlready(const Unit& unit, const Parameter& row, float value, int element) {
    return row.write == nullptr && row.hasCell() && element >= 0 && element < row.count &&
           unit.DirectIndex(row.cell(element)) == value;
}

}  // namespace

const Database& DatabaseSource::get() const {
    if (find_) return find_();
    if (database_ == nullptr) throw Failure("There is no reference database");
    return *database_;
}

bool QuietHost::refuse(int code, std::string_view text) {
    refusals_.push_back(warningLine(code, text));
    return true;
}

bool QuietHost::checkInput(int code, std::string_view value) {
    if (code == nonNumeric && !isNumeric(value)) return refuse(nonNumeric, "Retype Data");
    // Kept: the pair ".," is refused, neither character alone.
    if (code == notWhole && value.find(".,") != std::string_view::npos) return refuse(notWhole, {});
    if (code == notEmpty && trimmed(value).empty()) return refuse(nullValue, {});
    return false;
}

bool QuietHost::checkRange(float value, float minimum, float maximum, std::string_view rangeText) {
    // What is no number lies in no range.
    if (value <= maximum && value >= minimum) return false;
    return refuse(outOfRange, rangeText);
}

void QuietHost::sysLog(std::string_view text) {
    lastLogLine_ = text;
}

void QuietHost::displayWarning(int code, std::string_view text) {
    refuse(code, text);
}

std::optional<EngineFacts> QuietHost::engine(int kind, int optionType) {
    const auto row = database_.get().engine(kind, optionType);
    if (!row) return {};
    return engineFacts(*row);
}

std::optional<SensorFacts> QuietHost::mapSensor(int id) {
    const auto row = database_.get().mapSensor(id);
    // A window shows which sensor is in use; here nobody would see that it is another one.
    if (!row) throw Failure("There is no such sensor in the reference database");
    return SensorFacts{row->scale, row->offset, row->units};
}

float QuietHost::programVersion() const {
    constexpr std::size_t majorPart = 2;  // file headers leave out "4."
    return static_cast<float>(numberOf(std::string(ZENTAQ_VERSION).substr(majorPart)));
}

void setOrThrow(Unit& unit, QuietHost& host, std::string_view member, const Entry& value, int element) {
    const Parameter* row = unit.find(member);
    const std::string name(member);
    if (row == nullptr) throw NoSuchMember(std::string(unit.kind().model) + " has no member " + name);
    if (row->readOnly) throw NoSuchMember(name + " follows from other members and cannot be set");
    const std::size_t before = host.refusals().size();
    // A text field tests its text when it is left; the Unit object takes numbers.
    if (!host.checkInput(notEmpty, value.text()) && !host.checkInput(nonNumeric, value.text())) {
        if (!std::isfinite(value.number())) throw Overflow(name + ": the number is too large");
        const bool refused = std::holds_alternative<NoRange>(row->range) &&
                             !holdsAlready(unit, *row, value.number(), element) &&
                             figureRefused(unit, row->name, value.number());
        if (!refused && unit.write(*row, value, element)) return;
    }
    if (host.refusals().size() == before)
        throw Refused(name + " does not take " + shownBriefly(value.text()));
    throw Refused(host.refusals().back());
}

}  // namespace zentaq
