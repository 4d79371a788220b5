// Finds fields of the pages by what a tuner remembers of them: a word of the caption, the page, the member or
// the help.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

struct FoundField {
    int page = 0;
    std::string title;    ///< of the page
    std::string control;  ///< its first one for this member
    std::string caption;
    std::string member;
};

/// The help text of a key; empty for none.
using HelpOf = std::function<std::string(std::string_view key)>;

/// The fields that can be seen and have every word of the query, those first that have the words in their
/// caption or member. Compared without case; at most 30. Nothing for an empty query.
std::vector<FoundField> findFields(Unit& unit, std::string_view query, const HelpOf& helpOf);

}  // namespace zentaq
