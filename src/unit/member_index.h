// Finds a member's row by its name in one hash look-up ("KNK_MIN", "VE", "Get_VE", "Set_VE") or by its cell.
// Built once for each unit kind.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "unit/parameter.h"

namespace zentaq {

class MemberIndex {
 public:
    explicit MemberIndex(std::span<const Parameter> rows);
    const Parameter* find(std::string_view name) const;

    /// Row and element; nullptr for a cell that is no member's.
    using Place = std::pair<const Parameter*, int>;
    /// Of members that share a cell the first one, which is the cell itself.
    Place atCell(int cell) const;

 private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    std::unordered_map<std::string, const Parameter*, Hash, std::equal_to<>> rows_;
    std::vector<Place> cells_;
};

}  // namespace zentaq
