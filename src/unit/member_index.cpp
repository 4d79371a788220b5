#include "unit/member_index.h"

namespace zentaq {

namespace {

std::string withoutPrefix(std::string_view name) {
    if (name.starts_with("Get_") || name.starts_with("Set_")) name.remove_prefix(4);
    return std::string(name);
}

}  // namespace

MemberIndex::MemberIndex(std::span<const Parameter> rows) {
    rows_.reserve(rows.size() * 4);
    for (const Parameter& row : rows) {
        if (row.controlBit || !row.hasCell()) continue;
        const auto end = static_cast<std::size_t>(row.cell(row.count - 1)) + 1;
        if (cells_.size() < end) cells_.resize(end);
        for (int i = 0; i < row.count; ++i) {
            Place& place = cells_[static_cast<std::size_t>(row.cell(i))];
            if (place.first == nullptr) place = {&row, i};
        }
    }
    // Indexed members first: "Get_AFR" is the table, though "AFR" is the scalar.
    for (const bool indexed : {true, false}) {
        for (const Parameter& row : rows) {
            if ((row.count > 1) != indexed) continue;
            for (const std::string_view name : {row.name, row.alias}) {
                if (name.empty()) continue;
                rows_.emplace(std::string(name), &row);
                if (!indexed) continue;
                // Only indexed members have a reader and a writer of two names.
                const std::string bare = withoutPrefix(name);
                rows_.emplace("Get_" + bare, &row);
                rows_.emplace("Set_" + bare, &row);
            }
        }
    }
}

const Parameter* MemberIndex::find(std::string_view name) const {
    const auto found = rows_.find(name);
    return found == rows_.end() ? nullptr : found->second;
}

MemberIndex::Place MemberIndex::atCell(int cell) const {
    const auto i = static_cast<std::size_t>(cell);
    return i < cells_.size() ? cells_[i] : Place{};
}

}  // namespace zentaq
