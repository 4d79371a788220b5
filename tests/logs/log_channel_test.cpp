#include <gtest/gtest.h>

#include "live/datalog_reader.h"
#include "logs/log_channel.h"

namespace zentaq {
namespace {

TEST(LogChannel, TheNamesOfTheOlderFormatMeanThoseOfTheNewer) {
    EXPECT_EQ(newerChannelName("VOLT"), "BATTV");
    EXPECT_EQ(newerChannelName("KNKR"), "KNKRET");
    EXPECT_EQ(newerChannelName("RPM"), "RPM");
    EXPECT_EQ(newerChannelName("rpm"), "RPM");
    EXPECT_EQ(newerChannelName("Boost"), "Boost");
}

TEST(LogChannel, EveryColumnOfTheOlderFormatHasAPlaceInTheNewerButItsTime) {
    const auto newer = datalogColumns(DatalogFormat::Newest);
    for (const std::string& name : datalogColumns(DatalogFormat::Oldest)) {
        if (name == "Seconds") continue;
        EXPECT_GE(columnOfChannel(newer, name), 0) << name;
    }
}

TEST(LogChannel, IsFoundUnderBothNamesInAnyCase) {
    EXPECT_EQ(columnOfChannel({"Frame", "BATTV"}, "volt"), 1);
    EXPECT_EQ(columnOfChannel({"Seconds", "VOLT"}, " BattV "), 1);
    EXPECT_EQ(columnOfChannel({"Frame"}, "RPM"), -1);
}

TEST(LogChannel, TellsCaptionUnitAndDigits) {
    EXPECT_EQ(channelCaption("PPW"), "Primary Injector ON Time");
    EXPECT_EQ(channelCaption("GPIO3"), "GPIO3");
    EXPECT_EQ(channelUnit("MAP", "PSIA"), "PSIA");
    EXPECT_EQ(channelUnit("CLT", "kPa"), "C");
    EXPECT_EQ(channelUnit("IPP", "kPa"), "ms");
    EXPECT_EQ(channelUnit("GPIO1", "kPa"), "");
    EXPECT_EQ(channelDecimals("RPM"), 0);
    EXPECT_EQ(channelDecimals("AAFR"), 2);
    EXPECT_EQ(channelDecimals("SEN_MAP"), 3);
}

}  // namespace
}  // namespace zentaq
