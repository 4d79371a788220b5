#include "app/overview.h"

#include <utility>

#include "app/unit_copy.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "calibration/calibration_diff.h"
#include "config/tree.h"

namespace zentaq {

namespace {

/// More is told by its number: nobody reads them one by one.
constexpr std::size_t mostRows = 300;

std::string contentOf(Session& session, const Calibration& calibration) {
    UnitCopy copy(session, calibration);
    return copy.unit().fileContent().bytes;
}

std::vector<Difference> changesInHand(Session& session) {
    std::vector<Difference> changes;
    if (session.opened == nullptr) return changes;
    const Calibration& now = session.currentUnitObject().calibration();
    if (now == *session.opened) return changes;
    changes = differences(contentOf(session, *session.opened), contentOf(session, now));
    std::erase_if(changes, [](const Difference& one) { return one.information; });
    return changes;
}

Field rowOf(Session& session, const Difference& change) {
    Field row;
    row.member = change.member + change.element;
    const Parameter* parameter = session.currentUnitObject().find(change.member);
    row.caption = parameter == nullptr ? change.member : std::string(parameter->meaning);
    if (!change.place.empty()) row.caption += ", " + change.place;
    row.text = change.second;
    row.unit = change.unit;
    row.limits = "opened: " + (change.first.empty() ? "empty" : change.first);
    return row;
}

Field rowOf(const Doubt& doubt) {
    Field row;
    row.member = doubt.member;
    row.caption = doubt.why;
    row.text = doubt.value;
    row.limits = doubt.advice;
    return row;
}

/// A heading with its rows below it.
template <typename Each, typename Make>
PageRow group(const std::string& caption, const std::vector<Each>& all, const Make& make) {
    PageRow heading;
    heading.caption = caption;
    heading.text = all.empty() ? "none" : numberText(static_cast<int>(all.size()));
    for (std::size_t i = 0; i < std::min(all.size(), mostRows); ++i) heading.elements.push_back(make(all[i]));
    if (all.size() > mostRows) {
        Field& rest = heading.elements.emplace_back();
        rest.caption = "and " + numberText(static_cast<int>(all.size() - mostRows)) + " more";
    }
    return heading;
}

}  // namespace

std::vector<Doubt> doubtsInHand(Session& session) {
    std::vector<Doubt> doubts;
    if (!session.currentUnitObject().kind().hasCalibration) return doubts;
    skipFailing([&] {
        UnitCopy copy(session, session.currentUnitObject().calibration());
        doubts = doubtsOf(copy.unit());
    });
    return doubts;
}

std::vector<PageRow> overview(Session& session) {
    std::vector<PageRow> rows = pageRows(session.currentUnitObject(), overviewPage, session.CurrentFile);
    if (rows.empty()) return rows;
    std::vector<Difference> changes;
    skipFailing([&] { changes = changesInHand(session); });
    rows.push_back(group("Changes since it was opened", changes,
                         [&](const Difference& one) { return rowOf(session, one); }));
    rows.push_back(group("To look at before programming", doubtsInHand(session),
                         [](const Doubt& one) { return rowOf(one); }));
    return rows;
}

}  // namespace zentaq
