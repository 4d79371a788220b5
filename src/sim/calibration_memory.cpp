#include "sim/calibration_memory.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace zentaq::sim {

CalibrationMemory::CalibrationMemory(int base, int size)
    : base_(base), running_(static_cast<std::size_t>(size)), permanent_(running_) {}

void CalibrationMemory::keepForGood(Bytes content) {
    running_ = permanent_ = std::move(content);
    ++runningRevision_;
    ++permanentRevision_;
    ++wholeRevision_;
}

void CalibrationMemory::keepText(int offset, std::string_view text, int width) {
    placeText(running_, offset, text, width);
    placeText(permanent_, offset, text, width);
    ++runningRevision_;
    ++permanentRevision_;
}

bool CalibrationMemory::change(const SRecord& record) {
    const bool oneOrTwoBytes = record.data.size() == 1 || record.data.size() == 2;
    if (!oneOrTwoBytes || !fitsIn(static_cast<int>(running_.size()), record)) return false;
    write(running_, record);
    ++runningRevision_;
    return true;
}

void CalibrationMemory::store() {
    permanent_ = running_;
    ++permanentRevision_;
}

void CalibrationMemory::cyclePower() {
    running_ = permanent_;
    ++runningRevision_;
    programming_.reset();
}

void CalibrationMemory::beginProgramming() {
    programming_ = Programming{running_, std::vector<bool>(running_.size())};
}

bool CalibrationMemory::program(const SRecord& record, int size) {
    if (!programming_ || !fitsIn(size, record)) return false;
    write(programming_->staging, record);
    const auto first = programming_->covered.begin() + (record.address - base_);
    std::fill_n(first, record.data.size(), true);
    return true;
}

bool CalibrationMemory::finishProgramming(int size) {
    if (!programming_) return false;
    const auto first = programming_->covered.begin();
    const bool whole = std::all_of(first, first + size, [](bool covered) { return covered; });
    if (!whole) return false;
    keepForGood(std::move(programming_->staging));
    programming_.reset();
    return true;
}

bool CalibrationMemory::fitsIn(int size, const SRecord& record) const {
    const std::int64_t first = record.address - base_;
    const auto length = static_cast<std::int64_t>(record.data.size());
    return record.type == '1' && length > 0 && first >= 0 && first + length <= size;
}

void CalibrationMemory::write(Bytes& target, const SRecord& record) const {
    std::copy(record.data.begin(), record.data.end(), target.begin() + (record.address - base_));
}

void placeText(Bytes& target, int at, std::string_view text, int width) {
    const std::string field = fixedWidth(text, static_cast<std::size_t>(width));
    std::transform(field.begin(), field.end(), target.begin() + at,
                   [](char c) { return static_cast<std::uint8_t>(c); });
}

}  // namespace zentaq::sim
