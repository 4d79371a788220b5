// What docs/how-to/add-a-parameter.md adds shows on its page; walk.py compiles and runs this on the edited
// sources.
#include <gtest/gtest.h>

#include <algorithm>

#include "config/display.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

TEST(AddedParameter, StandsOnTheKnockPageOfEveryKindWithItsRangeAndUnit) {
    for (const UnitKind* kind : {&orbaKind(), &orbcKind(), &pzk2Kind()}) {
        RecordingHost host;
        Unit unit(*kind, host);
        unit.set("KNK_Hold", 12.5);
        const auto fields = displayOfPage(unit, 33).fields;
        const auto row = std::ranges::find(fields, "KNK_Hold", &Field::member);
        ASSERT_NE(row, fields.end());
        EXPECT_EQ(row->caption, "Knock retard hold time");
        EXPECT_EQ(row->text, "12.5");
        EXPECT_EQ(row->limits, "(0 to 25 Seconds)");
        EXPECT_EQ(row->unit, "Seconds");
        EXPECT_EQ(row->help, "helpknock");
        EXPECT_TRUE(row->onTheFly);
    }
}

}  // namespace
}  // namespace zentaq
