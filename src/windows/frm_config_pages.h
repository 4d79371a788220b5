// What the pages of frmConfig show, as data: which members of the unit belong to a page, and a page's rows
// with the values of the calibration in hand. A window only puts the rows into a list.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/session.h"

namespace zentaq {

/// The input/output manager's place among the pages.
constexpr int managerPage = -2;

/// One row of a page. A member of several elements has its elements as `elements`.
struct PageRow {
    std::string caption;
    std::string value;
    std::string unit;
    std::string range;
    std::string member;     ///< name in the parameter table; empty for a row that is no member
    std::string helpKey;    ///< key of its help text
    bool onTheFly = false;  ///< a change is sent to the running engine
    std::vector<PageRow> elements;
};

/// Members of a page in the order in which they are shown. A page number without members is empty.
std::span<const std::string_view> pageMembers(int page);

/// All pages that have members.
std::vector<int> pagesWithMembers();

/// The rows of a page for the calibration in hand. A member that the unit kind lacks is left out.
std::vector<PageRow> pageRows(Session& session, int page);

}  // namespace zentaq
