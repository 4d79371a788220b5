// Finds a member's row by its name in one hash look-up: "KNK_MIN", "VE", "Get_VE", "Set_VE".
// Built once for each unit kind.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "unit/parameter.h"

namespace zentaq {

class MemberIndex {
 public:
    explicit MemberIndex(std::span<const Parameter> rows);
    const Parameter* find(std::string_view name) const;

 private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    std::unordered_map<std::string, const Parameter*, Hash, std::equal_to<>> rows_;
};

}  // namespace zentaq
