#include "base/settings_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace zentaq {
namespace {

using testing::ElementsAre;

std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const settings::Key& key : settings::systemKeys) names.emplace_back(key.name);
    return names;
}

TEST(SettingsKeys, AreTheTwentyPreferencesTheDeviceOfThePortAndTheWireTrace) {
    EXPECT_THAT(names(),
                ElementsAre("CommPort", "CommPortIdentity", "AutoLog", "Cnsl", "CommCnsl", "MonitorMode",
                            "NeedleColor", "DashLights", "LabelLights", "ADUR", "Graphs", "FileOpen", "Print",
                            "TableColor", "CommDialog", "PollRate", "Column_Type", "AutoMonitor",
                            "TemperatureToggle", "CLTAlarmValue", "MATAlarmValue", "WireTrace"));
}

TEST(SettingsKeys, OnlyThePortReadsAsSomethingWhenItWasNeverWritten) {
    for (const settings::Key& key : settings::systemKeys) {
        EXPECT_STREQ(key.fallback, std::string(key.name) == "CommPort" ? "1" : "") << key.name;
    }
}

TEST(SettingsKeys, FourAreStoredAndShownAndChangeNothing) {
    std::set<std::string> idle;
    for (const settings::Key& key : settings::systemKeys) {
        if (!key.used) idle.insert(key.name);
    }
    EXPECT_THAT(idle, ElementsAre("Cnsl", "CommCnsl", "LabelLights", "PollRate"));
}

TEST(SettingsKeys, TheRecorderHasTenSlotsWithoutABlankInTheirNames) {
    EXPECT_EQ(settings::datalogKey(1), "Datalog1");
    EXPECT_EQ(settings::datalogKey(settings::datalogSlots), "Datalog10");
}

}  // namespace
}  // namespace zentaq
