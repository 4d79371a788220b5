#include "unit/calibration.h"

#include <algorithm>
#include <cstring>

#include "unit/member_index.h"

namespace zentaq {

bool Calibration::operator==(const Calibration& other) const {
    return std::memcmp(cells.data(), other.cells.data(), sizeof cells) == 0 && control == other.control &&
           facts == other.facts;
}

void WatchedCalibration::control(int which, std::uint8_t value) {
    const std::uint8_t before = std::exchange(value_.control.at(static_cast<std::size_t>(which)), value);
    if (isWatched() && before != value) tellControl(which, before);
}

void WatchedCalibration::take(const Calibration& value) {
    value_ = value;
    tellAll();
}

void WatchedCalibration::tell(const CalibrationChange& change) const {
    if (isWatched()) hook_(change, value_);
}

void WatchedCalibration::tellCell(int index, float before) const {
    const auto [row, element] = writing_;
    const bool own = row != nullptr && !row->controlBit && row->hasCell() && row->cell(element) == index;
    const auto [member, place] = own ? MemberIndex::Place{row, element} : members_.atCell(index);
    tell({.what = CalibrationChange::What::Cell,
          .place = index,
          .before = before,
          .after = cell(index),
          .member = member,
          .element = place});
}

void WatchedCalibration::tellControl(int which, std::uint8_t before) const {
    tell({.what = CalibrationChange::What::ControlByte,
          .place = which,
          .before = static_cast<float>(before),
          .after = static_cast<float>(value_.control[static_cast<std::size_t>(which)]),
          .member = writing_.first,
          .element = writing_.second});
}

WatchedCalibration::Step::~Step() {
    if (ended_) return;
    --inHand_.steps_;
    inHand_.value_ = before_;
}

void WatchedCalibration::Step::cells(std::span<const float> all) {
    auto& cells = inHand_.value_.cells;
    const auto behind = std::ranges::copy(all.first(std::min(all.size(), cells.size())), cells.begin()).out;
    std::fill(behind, cells.end(), 0.0F);
}

void WatchedCalibration::Step::end() {
    ended_ = true;
    --inHand_.steps_;
    if (!inHand_.isWatched()) return;
    const Calibration& now = inHand_.value_;
    for (std::size_t i = 0; i < now.cells.size(); ++i)
        if (!sameBits(before_.cells[i], now.cells[i]))
            inHand_.tellCell(static_cast<int>(i), before_.cells[i]);
    for (std::size_t i = 0; i < now.control.size(); ++i)
        if (before_.control[i] != now.control[i])
            inHand_.tellControl(static_cast<int>(i), before_.control[i]);
    if (before_.facts != now.facts) inHand_.tell({.what = CalibrationChange::What::Facts});
}

void WatchedCalibration::Step::endAsWhole() {
    ended_ = true;
    --inHand_.steps_;
    inHand_.tellAll();
}

}  // namespace zentaq
