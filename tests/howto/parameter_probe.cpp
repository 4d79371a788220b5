// What docs/how-to/add-a-parameter.md adds shows on its page; walk.py compiles and runs this on the edited
// sources.
#include <gtest/gtest.h>

#include <algorithm>

#include "config/page_rows.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

TEST(AddedParameter, StandsOnTheKnockPageOfEveryKindWithItsRangeAndUnit) {
    for (const UnitKind* kind : {&orbaKind(), &orbcKind(), &pzk2Kind()}) {
        RecordingHost host;
        Unit unit(*kind, host);
        unit.set("KNK_Hold", 12.5);
        const auto rows = pageRows(unit, 33, "tune");
        const auto row = std::ranges::find(rows, "KNK_Hold", &PageRow::member);
        ASSERT_NE(row, rows.end());
        EXPECT_EQ(row->caption, "Knock retard hold time");
        EXPECT_EQ(row->text, "12.5");
        EXPECT_EQ(row->limits, "0 to 25 Seconds");
        EXPECT_EQ(row->unit, "Seconds");
        EXPECT_EQ(row->help, "helpknock");
        EXPECT_TRUE(row->onTheFly);
    }
}

}  // namespace
}  // namespace zentaq
