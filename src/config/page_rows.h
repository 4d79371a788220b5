// The pages of the workspace as lists: every member that has a field on the page, with what the calibration
// in hand holds. A window only puts the rows into a list.
#pragma once

#include <string>
#include <vector>

#include "config/display.h"

namespace zentaq {

/// A field by the name of its member. A member of several elements has them as `elements`, each with its stop
/// as caption.
struct PageRow : Field {
    std::vector<Field> elements;
};

/// The rows of a page; none without a calibration. `file` is the one in hand.
std::vector<PageRow> pageRows(Unit& unit, int page, const std::string& file);

/// A range as it stands in a column of its own.
std::string withoutParentheses(std::string limits);

}  // namespace zentaq
