#include "config/database_host.h"

#include <cmath>
#include <variant>

#include "base/number_text.h"
#include "base/shown_text.h"
#include "config/basic_figures.h"
#include "config/engine_facts.h"

namespace zentaq {

namespace {

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

std::optional<EngineFacts> DatabaseHost::engine(int kind, int optionType) {
    const auto row = database_.get().engine(kind, optionType);
    if (!row) return {};
    return engineFacts(*row);
}

std::optional<SensorFacts> DatabaseHost::mapSensor(int id) {
    const auto row = database_.get().mapSensor(id);
    // A window shows which sensor is in use; here nobody would see that it is another one.
    if (!row) throw Failure("There is no such sensor in the reference database");
    return SensorFacts{row->scale, row->offset, row->units};
}

Refused::Refused(const Refusal& refusal) : Failure(refusal.line()) {}

void throwIfRefused(const EntryOutcome& outcome, std::string_view name, std::string_view value) {
    if (outcome) return;
    if (outcome.refusal().warning != 0) throw Refused(outcome.refusal());
    throw Refused(std::string(name) + " does not take " + shownBriefly(value));
}

void setOrThrow(Unit& unit, std::string_view member, const Entry& value, int element) {
    const Parameter* row = unit.find(member);
    const std::string name(member);
    if (row == nullptr) throw NoSuchMember(std::string(unit.kind().model) + " has no member " + name);
    if (row->readOnly) throw NoSuchMember(name + " follows from other members and cannot be set");
    // A text field tests its text when it is left; the Unit object takes numbers.
    throwIfRefused(checkFilled(value.text()));
    throwIfRefused(checkNumeric(value.text()));
    const float number = value.number();
    if (!std::isfinite(number)) throw Overflow(name + ": the number is too large");
    if (std::holds_alternative<NoRange>(row->range) && !holdsAlready(unit, *row, number, element)) {
        throwIfRefused(checkFigure(unit, row->name, number));
    }
    throwIfRefused(unit.write(*row, value, element), name, value.text());
}

}  // namespace zentaq
