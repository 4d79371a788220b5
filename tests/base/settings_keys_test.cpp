#include "base/settings_keys.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

TEST(SettingsKeys, TheRecorderHasTenSlotsWithoutABlankInTheirNames) {
    EXPECT_EQ(settings::datalogKey(1), "Datalog1");
    EXPECT_EQ(settings::datalogKey(settings::datalogSlots), "Datalog10");
}

}  // namespace
}  // namespace zentaq
