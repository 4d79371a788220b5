#include "unit/unit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
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

Unit::Unit(const UnitKind& kind, UnitHost& host) : kind_(&kind), host_(host) {
    if (!kind_->hasCalibration) binFile_ = "None.";
}

void Unit::exchangeSlots(Unit& other) {
    if (!shareFiles(*kind_, *other.kind_)) throw Failure("Units of different classes exchange no slots");
    std::swap(kind_, other.kind_);
}

bool Unit::has(std::string_view member) const {
    return find(member) != nullptr;
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
    After after = After::Send;
    if (row.write != nullptr) {
        after = row.write(*this, row, number, element);
    } else {
        cellAt(row.cell(element)) = number;
    }
    if (onTheFly_ && after == After::Send && !(silent_ && row.obeysSilent)) send(row, element, number);
    return {};
}

void Unit::store(std::string_view member, float value, int element) {
    const Parameter* row = find(member);
    if (row == nullptr || row->readOnly) return;
    checkElement(*row, element);
    if (row->write == nullptr) {
        cellAt(row->cell(element)) = value;
        return;
    }
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

float& Unit::cellAt(int index) {
    if (index < 0 || index >= cellCount) throw BoundsError();
    return cells_[static_cast<std::size_t>(index)];
}

float Unit::cellAt(int index) const {
    if (index < 0 || index >= cellCount) throw BoundsError();
    return cells_[static_cast<std::size_t>(index)];
}

float Unit::DirectIndex(int index) const {
    return cellAt(index);
}

void Unit::AssignDirectIndex(float value, int index) {
    float& cell = cellAt(index);
    if (kind_->hasCalibration) cell = value;
}

// ---- Identity

void Unit::BinFile(const std::string& path) {
    if (!kind_->hasCalibration) return;
    BiName(path);
    binFile_ = path;
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
    for (std::size_t i = 0; i < control_.size(); ++i) cells_[i] = control_[i];
}

// ---- Check-engine words

void Unit::Set_ECData(std::span<const std::uint8_t> reply) {
    constexpr std::size_t firstWord = 3;  // behind the reply's head
    if (reply.size() < firstWord + errorCodeWords_.size()) throw BoundsError();
    std::copy_n(reply.begin() + firstWord, errorCodeWords_.size(), errorCodeWords_.begin());
}

int Unit::Get_ECData(int index) const {
    if (index < 0 || index >= static_cast<int>(errorCodeWords_.size())) throw BoundsError();
    return errorCodeWords_[static_cast<std::size_t>(index)];
}

}  // namespace zentaq
