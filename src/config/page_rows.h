// The pages of the workspace that only tell, as lists: the overview of the calibration, and its pins. A
// window only puts the rows into a list. Pages of fields are `app/page_editor.h`.
#pragma once

#include <string>
#include <vector>

#include "config/display.h"

namespace zentaq {

/// A line of a list, with the lines below it.
struct PageRow : Field {
    std::vector<Field> elements;
};

/// The rows of a page; none for one of fields, and without a calibration. `file` is the one in hand.
std::vector<PageRow> pageRows(Unit& unit, int page, const std::string& file);

/// A range as it stands in a column of its own.
std::string withoutParentheses(std::string limits);

}  // namespace zentaq
