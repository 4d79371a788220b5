#include "unit/unit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "unit/member_index.h"

namespace zentaq {

// ---- Entry

std::string Entry::text() const {
    return isText_ ? text_ : numberText(static_cast<float>(number_));
}

bool Entry::isBlank() const {
    return isText_ && trimmed(text_).empty();
}

float Entry::number() const {
    return static_cast<float>(isText_ ? numberOf(text_) : number_);
}

// ---- Members

Unit::Unit(const UnitKind& kind, UnitHost& host) : kind_(&kind), host_(host), inHand_(*kind.members) {
    if (!kind_->hasCalibration) inHand_.facts([](Calibration::Facts& facts) { facts.binFile = "None."; });
}

void Unit::exchangeSlots(Unit& other) {
    if (!shareFiles(*kind_, *other.kind_)) throw Failure("Units of different classes exchange no slots");
    std::swap(kind_, other.kind_);
    inHand_.tellAll();
    other.inHand_.tellAll();
}

void Unit::calibration(const Calibration& value) {
    inHand_.take(value);
    if (facts().owedRelease != 0) onTheFly_ = false;
}

const Parameter* Unit::find(std::string_view member) const {
    return kind_->members->find(member);
}

namespace {

void checkElement(const Parameter& row, int element) {
    if (element < 0 || element >= row.count) {
        throw BoundsError("Subscript out of range: " + std::string(row.name) + " has " +
                          numberText(row.count) + " elements");
    }
}

/// Keeps a switch off for a while.
class QuietWhile {
 public:
    explicit QuietWhile(bool& flag) : flag_(flag), was_(std::exchange(flag, false)) {}
    ~QuietWhile() { flag_ = was_; }
    QuietWhile(const QuietWhile&) = delete;
    QuietWhile& operator=(const QuietWhile&) = delete;

 private:
    bool& flag_;
    bool was_;
};

}  // namespace

float Unit::get(std::string_view member, int element) {
    const Parameter* row = find(member);
    return row == nullptr ? 0 : read(*row, element);
}

float Unit::read(const Parameter& row, int element) {
    checkElement(row, element);
    if (indexPolling_ && row.polls()) return static_cast<float>(row.pollingAnswer(element));
    return row.read != nullptr ? row.read(*this, row, element) : cellAt(row.cell(element));
}

EntryOutcome Unit::set(std::string_view member, const Entry& value, int element) {
    const Parameter* row = find(member);
    return row == nullptr ? EntryOutcome::ignored() : write(*row, value, element);
}

EntryOutcome Unit::write(const Parameter& row, const Entry& value, int element) {
    checkElement(row, element);
    if (row.readOnly) return EntryOutcome::ignored();
    if (auto checked = checkEntry(*this, row, value, element); !checked) return checked;
    const float number = value.number();
    // A member without a range lets any number pass; what fits no cell must not get into a file.
    if (!std::isfinite(number)) throw Overflow();
    const WatchedCalibration::Writing writing(inHand_, row, element);
    After after = After::Send;
    if (row.write != nullptr) {
        after = row.write(*this, row, number, element);
    } else {
        put(row.cell(element), number);
    }
    if (onTheFly_ && after == After::Send && !(silent_ && row.obeysSilent)) send(row, element, number);
    return {};
}

void Unit::store(std::string_view member, float value, int element) {
    const Parameter* row = find(member);
    if (row == nullptr || row->readOnly) return;
    checkElement(*row, element);
    const WatchedCalibration::Writing writing(inHand_, *row, element);
    if (row->write == nullptr) return put(row->cell(element), value);
    const QuietWhile quiet(onTheFly_);
    row->write(*this, *row, value, element);
}

Limits Unit::limits(std::string_view member, int element) {
    const Parameter* row = find(member);
    if (row == nullptr) return Limits::none();
    checkElement(*row, element);
    return limitsOf(*this, *row, element, std::numeric_limits<float>::quiet_NaN());
}

// ---- Cells

void Unit::AssignDirectIndex(float value, int index) {
    inHand_.cell(index, kind_->hasCalibration ? value : cellAt(index));
}

// ---- Identity

void Unit::BinFile(const std::string& path) {
    if (!kind_->hasCalibration) return;
    BiName(path);
    inHand_.facts([&](Calibration::Facts& facts) { facts.binFile = path; });
}

void Unit::FW_Build(int build) {
    if (kind_->hasCalibration) inHand_.facts([&](Calibration::Facts& facts) { facts.build = build; });
}

void Unit::DefaultSplit(int split) {
    inHand_.facts([&](Calibration::Facts& facts) { facts.defaultSplit = split; });
}

void Unit::teeth(Teeth teeth) {
    inHand_.facts([&](Calibration::Facts& facts) { facts.teeth = teeth; });
}

bool Unit::ValidFirmware(std::string_view name) const {
    return name.substr(0, kind_->firmwarePrefix.size()) == kind_->firmwarePrefix;
}

// ---- Option bits

bool Unit::controlBit(int which, int bit) const {
    if (bit < 0 || bit > 7) return false;
    return (controlByte(which) & (1 << bit)) != 0;
}

void Unit::setControlBit(int which, int bit, bool on) {
    if (!kind_->hasCalibration) return;
    if (bit < 0 || bit > 7) throw Overflow();
    const int mask = 1 << bit;
    const int byte = controlByte(which);
    controlByte(which, static_cast<std::uint8_t>(on ? byte | mask : byte & (255 ^ mask)));
}

void Unit::storeControlBytes() {
    for (int i = 0; i < 3; ++i) put(i, controlByte(i));
}

}  // namespace zentaq
