#include "app/options.h"

#include <algorithm>
#include <fstream>
#include <set>

#include "app/command_fixture.h"
#include "base/errors.h"
#include "base/text.h"

namespace zentaq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class OptionsTest : public ProgramTest {
 protected:
    /// What is stored and what is asked of the windows, in one order.
    std::vector<std::string>& trail = fake.windows.calls;
    TrailingSettings& settings = fake.settings;
    ScriptedDialogs& dialogs = fake.dialogs;

    OptionsTest() {
        stored("TemperatureToggle", "");  // as on a fresh installation
        settings.trail = &trail;
        session.console.logFile(fake.folder.path("zentaq.log"));
    }

    void stored(const std::string& key, const std::string& value) {
        settings.MemorySettings::set("System", key, value);
    }
    std::string read(const std::string& key) { return settings.get("System", key); }
    std::string lastLine(std::size_t back = 0) {
        const auto& lines = session.console.lines();
        return lines.at(lines.size() - 1 - back);
    }
};

// ---- The table

TEST(OptionTable, HoldsEveryControlOfTheWindow) {
    std::vector<std::string> names;
    for (const OptionRow& row : optionTable()) names.push_back(controlName(row));
    EXPECT_THAT(names,
                testing::UnorderedElementsAre(
                    "cmbCOMM", "cmdAutoDetectPort", "chkWireTrace", "chkAutoLog", "chkConsole", "chkCOMM",
                    "chkFileOpen", "optPrintButton(0)", "optPrintButton(1)", "chkShowCommDialog",
                    "txtPollRate", "chkTemperature", "chkGraphs", "chkColumnType", "txtCLTvalue",
                    "txtMATvalue", "sldDashAdjust", "chkAFRColors", "chkAutoMonitor", "chkAutoOutput",
                    "optCellColors(0)", "optCellColors(1)", "optMonitorMode(0)", "optMonitorMode(1)",
                    "txtNeedleColor", "txtDashLights", "txtLabelLights", "viewList"));
}

TEST(OptionTable, HoldsEverySettingOfTheSectionSystem) {
    std::set<std::string_view> keys;
    for (const OptionRow& row : optionTable()) {
        if (!row.key.empty()) keys.insert(row.key);
    }
    EXPECT_THAT(keys, testing::UnorderedElementsAre(
                          "CommPort", "AutoLog", "Cnsl", "CommCnsl", "MonitorMode", "NeedleColor",
                          "DashLights", "LabelLights", "ADUR", "Graphs", "FileOpen", "Print", "TableColor",
                          "CommDialog", "PollRate", "Column_Type", "AutoMonitor", "TemperatureToggle",
                          "CLTAlarmValue", "MATAlarmValue", "WireTrace", "CellScale"));
}

TEST(OptionTable, FourSettingsAreStoredAndShownAndChangeNothing) {
    std::set<std::string_view> idle;
    for (const OptionRow& row : optionTable()) {
        if (row.tip.starts_with("Remembered with the other")) idle.insert(row.key);
    }
    EXPECT_THAT(idle, ElementsAre("Cnsl", "CommCnsl", "LabelLights", "PollRate"));
}

TEST(OptionTable, HasATitleForEveryGroup) {
    for (const OptionRow& row : optionTable()) {
        EXPECT_NE(std::ranges::find(optionGroups(), row.help, &OptionGroupRow::help), optionGroups().end())
            << row.control;
    }
}

TEST(OptionTable, GivesEveryControlAHelpAndAnAccessKeyOfItsCaptionThatIsFreeOnItsPage) {
    std::set<std::pair<OptionPage, char>> taken;
    std::string pageKeys = "AFO";  // Apply, Find an option, OK
    for (const OptionPageRow& page : optionPages()) {
        for (std::size_t at = 0; at + 1 < page.title.size(); ++at) {
            if (page.title[at] != '&') continue;
            if (page.title[++at] != '&') pageKeys += static_cast<char>(std::toupper(page.title[at]));
        }
    }
    EXPECT_EQ(pageKeys.size(), 3u + optionPages().size());
    EXPECT_EQ(std::set<char>(pageKeys.begin(), pageKeys.end()).size(), pageKeys.size()) << pageKeys;
    for (const OptionRow& row : optionTable()) {
        const std::string name = controlName(row);
        EXPECT_FALSE(row.tip.empty()) << name;
        EXPECT_FALSE(row.help.empty()) << name;
        ASSERT_NE(row.caption.find('&'), std::string_view::npos) << name;
        const char key = static_cast<char>(std::toupper(row.caption.at(row.caption.find('&') + 1)));
        EXPECT_EQ(pageKeys.find(key), std::string::npos) << name;
        EXPECT_TRUE(taken.emplace(row.page, key).second) << name;
    }
}

TEST(OptionTable, NamesHelpTextsThatExist) {
    std::ifstream seeds(std::string(ZENTAQ_SOURCE_DIR) + "/data/seeds/fasthelp.tsv");
    std::set<std::string> keys;
    for (std::string line; std::getline(seeds, line);) keys.insert(split(line, '\t').back());
    ASSERT_GT(keys.size(), 1u);
    for (const OptionRow& row : optionTable()) EXPECT_TRUE(keys.contains(std::string(row.help))) << row.help;
    for (const OptionPageRow& page : optionPages())
        EXPECT_TRUE(keys.contains(std::string(page.help))) << page.help;
}

// ---- Search

std::vector<std::string> hits(std::string_view query) {
    std::vector<std::string> names;
    for (const OptionRow* row : findOptions(query)) names.push_back(controlName(*row));
    return names;
}

TEST(FindOptions, FindsNothingForNothing) {
    EXPECT_THAT(hits(""), IsEmpty());
    EXPECT_THAT(hits("   "), IsEmpty());
    EXPECT_THAT(hits("carburettor"), IsEmpty());
}

TEST(FindOptions, FindsByCaptionWhateverTheCase) {
    EXPECT_THAT(hits("comm port"), testing::Contains("cmbCOMM"));
    EXPECT_EQ(hits("COMM PORT").front(), "cmbCOMM");
    EXPECT_THAT(hits("needle c"), ElementsAre("txtNeedleColor"));
}

TEST(FindOptions, FindsByWordsThatStandInNoCaption) {
    EXPECT_THAT(hits("overheat"), ElementsAre("txtCLTvalue"));
    EXPECT_THAT(hits("celsius"), ElementsAre("chkTemperature"));
    EXPECT_THAT(hits("playback"), ElementsAre("viewList"));
}

TEST(FindOptions, FindsTheListByTheNameOfADataPoint) {
    EXPECT_THAT(hits("knock retard"), ElementsAre("viewList"));
}

TEST(FindOptions, PutsCaptionsBeforeOtherWords) {
    // "port" stands in the help of nothing else before these two, and "support" is a word of the log file.
    const auto found = hits("port");
    ASSERT_GE(found.size(), 3u);
    EXPECT_EQ(found[0], "cmbCOMM");
    EXPECT_EQ(found[1], "cmdAutoDetectPort");
}

TEST(FindOptions, WantsAllWords) {
    EXPECT_THAT(hits("alarm coolant"), ElementsAre("txtCLTvalue"));
    EXPECT_THAT(hits("alarm paper"), IsEmpty());
}

// ---- Load

TEST_F(OptionsTest, ShowWhatTheProgramDoesWhileNothingIsStored) {
    const Options options(session);
    // A start without these settings writes the log, asks for a file and shows the list; only "0" is Celsius.
    for (const char* control : {"chkAutoLog", "chkFileOpen", "chkShowCommDialog", "chkTemperature"})
        EXPECT_EQ(options.value(control), "1") << control;
    for (const char* control :
         {"chkConsole", "chkCOMM", "chkGraphs", "chkColumnType", "chkAFRColors", "chkAutoMonitor",
          "chkAutoOutput", "optPrintButton", "optMonitorMode", "optCellColors"}) {
        EXPECT_EQ(options.value(control), "0") << control;
    }
    const std::pair<const char*, const char*> others[] = {{"cmbCOMM", "1"},
                                                          {"sldDashAdjust", "125"},
                                                          {"txtPollRate", ""},
                                                          {"txtCLTvalue", "-"},
                                                          {"txtNeedleColor", ""}};
    for (const auto& [control, value] : others) EXPECT_EQ(options.value(control), value) << control;
    EXPECT_THAT(options.dataPoints(), IsEmpty());
    EXPECT_THAT(trail, IsEmpty());
}

TEST_F(OptionsTest, ShowWhatIsStored) {
    struct Setting {
        const char *key, *control, *value;
    };
    const Setting all[] = {{"CommPort", "cmbCOMM", "4"},
                           {"AutoLog", "chkAutoLog", "0"},
                           {"Cnsl", "chkConsole", "1"},
                           {"CommCnsl", "chkCOMM", "1"},
                           {"MonitorMode", "optMonitorMode", "1"},
                           {"NeedleColor", "txtNeedleColor", "255"},
                           {"DashLights", "txtDashLights", "65280"},
                           {"LabelLights", "txtLabelLights", "16711680"},
                           {"ADUR", "sldDashAdjust", "25"},
                           {"Graphs", "chkGraphs", "1"},
                           {"FileOpen", "chkFileOpen", "0"},
                           {"Print", "optPrintButton", "1"},
                           {"TableColor", "chkAFRColors", "1"},
                           {"CellScale", "optCellColors", "1"},
                           {"CommDialog", "chkShowCommDialog", "0"},
                           {"PollRate", "txtPollRate", "2.5"},
                           {"Column_Type", "chkColumnType", "1"},
                           {"AutoMonitor", "chkAutoMonitor", "1"}};
    for (const Setting& setting : all) stored(setting.key, setting.value);
    for (const auto& [key, place] : {std::pair("Datalog1", "1"), {"Datalog7", "65"}, {"Datalog11", "30"}})
        settings.set("Datalog", key, place);
    const Options options(session);
    for (const Setting& setting : all)
        EXPECT_EQ(options.value(setting.control), setting.value) << setting.control;
    EXPECT_THAT(options.dataPoints(), ElementsAre(1, 65));
}

TEST_F(OptionsTest, KeepDesignValuesWhereTheStoreHoldsNoNumber) {
    for (const OptionRow& row : optionTable()) {
        if (!row.key.empty() && row.key != "TemperatureToggle") stored(std::string(row.key), "abc");
    }
    const Options options(session);
    for (const OptionRow& row : optionTable())
        EXPECT_EQ(options.value(row.control), row.kind == FieldKind::Slider ? "125" : row.design)
            << row.control;
}

TEST_F(OptionsTest, ShowNoUpdateRateThatTheSliderCannotYieldAndNoColourThatIsNone) {
    struct Odd {
        const char* key;
        const char* stored;
        const char* control;
        const char* shown;
    };
    for (const Odd& odd : {Odd{"ADUR", "0", "sldDashAdjust", "125"},
                           {"ADUR", "-3", "sldDashAdjust", "125"},
                           {"ADUR", "0.2", "sldDashAdjust", "1"},
                           {"ADUR", "5000", "sldDashAdjust", "125"},
                           {"NeedleColor", "-1", "txtNeedleColor", ""},
                           {"NeedleColor", "16777216", "txtNeedleColor", ""},
                           {"NeedleColor", "12.5", "txtNeedleColor", ""},
                           {"NeedleColor", "red", "txtNeedleColor", ""},
                           {"NeedleColor", "16777215", "txtNeedleColor", "16777215"}}) {
        stored(odd.key, odd.stored);
        EXPECT_EQ(Options(session).value(odd.control), odd.shown) << odd.key << " " << odd.stored;
    }
}

TEST_F(OptionsTest, ShowAlarmsInCelsiusForAToggleOfZeroAndElseInFahrenheit) {
    stored("CLTAlarmValue", "100");
    stored("MATAlarmValue", "-40");
    for (const std::string toggle : {"0", "", "1", "2", "yes"}) {
        SCOPED_TRACE(toggle);
        stored("TemperatureToggle", toggle);
        const Options options(session);
        const bool celsius = toggle == "0";
        EXPECT_EQ(options.on("chkTemperature"), !celsius);
        EXPECT_EQ(options.value("txtCLTvalue"), celsius ? "100" : "212");
        EXPECT_EQ(options.value("txtMATvalue"), "-40");
        EXPECT_EQ(options.temperatureUnit(), celsius ? "\u00B0C" : "\u00B0F");
    }
}

// ---- Immediate writes

TEST_F(OptionsTest, WriteTheSimpleOnesOnTheClick) {
    Options options(session);
    options.change("chkAutoMonitor", "1");
    options.change("chkColumnType", "1");
    options.change("chkShowCommDialog", "0");
    options.change("optPrintButton", "1");
    options.change("sldDashAdjust", "40");
    EXPECT_THAT(trail, ElementsAre("AutoMonitor=1", "Column_Type=1", "CommDialog=0", "Print=1", "ADUR=40",
                                   "update rate"));
}

TEST_F(OptionsTest, WriteTheOthersNotBeforeApply) {
    Options options(session);
    for (const char* control :
         {"cmbCOMM", "chkAutoLog", "chkConsole", "chkCOMM", "chkFileOpen", "txtPollRate", "chkGraphs",
          "txtCLTvalue", "txtMATvalue", "chkAFRColors", "chkAutoOutput", "txtNeedleColor", "txtDashLights",
          "txtLabelLights", "chkWireTrace", "optCellColors"}) {
        options.change(control, "1");
    }
    options.checkDataPoint(5, true);
    EXPECT_THAT(trail, IsEmpty());
}

TEST_F(OptionsTest, ConvertTheAlarmsOnTheTemperatureClickAndTellTheWindows) {
    stored("TemperatureToggle", "0");
    stored("CLTAlarmValue", "100");
    Options options(session);
    options.change("txtMATvalue", "37,5");
    options.change("chkTemperature", "1");
    EXPECT_EQ(options.value("txtCLTvalue"), "212");
    EXPECT_EQ(options.value("txtMATvalue"), "99.5");
    EXPECT_EQ(options.temperatureUnit(), "\u00B0F");
    options.change("chkTemperature", "0");
    EXPECT_EQ(options.value("txtCLTvalue"), "100");
    EXPECT_EQ(options.value("txtMATvalue"), "37.5");
    EXPECT_THAT(trail,
                ElementsAre("TemperatureToggle=1", "temperatures", "TemperatureToggle=0", "temperatures"));
}

TEST_F(OptionsTest, LeaveAnAlarmFieldThatHoldsNoNumberOnTheTemperatureClick) {
    Options options(session);
    options.change("txtMATvalue", "hot");
    options.change("chkTemperature", "1");
    EXPECT_EQ(options.value("txtCLTvalue"), "-");
    EXPECT_EQ(options.value("txtMATvalue"), "hot");
}

TEST_F(OptionsTest, FillTheStoredColoursOnTheModeClickAndChooseNoneByDay) {
    stored("NeedleColor", "255");
    Options options(session);
    options.change("txtNeedleColor", "7");
    options.change("txtDashLights", "8");
    EXPECT_TRUE(options.coloursChoosable());
    options.change("optMonitorMode", "1");
    EXPECT_FALSE(options.coloursChoosable());
    EXPECT_EQ(options.value("txtNeedleColor"), "255");
    EXPECT_EQ(options.value("txtDashLights"), "");
    EXPECT_THAT(trail, ElementsAre("MonitorMode=1"));
    options.change("optMonitorMode", "0");
    EXPECT_TRUE(options.coloursChoosable());
}

// ---- Apply

TEST_F(OptionsTest, ApplyInTheFixedOrderWhileMonitoring) {
    stored("TemperatureToggle", "0");
    session.Monitoring = true;
    Options options(session);
    options.change("cmbCOMM", "3");
    options.change("chkConsole", "1");
    options.change("txtNeedleColor", "255");
    options.change("txtDashLights", "65535");
    options.change("txtLabelLights", "7");
    options.change("chkGraphs", "1");
    options.change("chkAFRColors", "1");
    options.change("txtPollRate", "2,5");
    options.change("txtCLTvalue", "98");
    options.change("txtMATvalue", "60");
    options.checkDataPoint(65, true);
    options.checkDataPoint(2, true);
    EXPECT_THAT(trail, IsEmpty());
    EXPECT_THAT(options.apply(), IsEmpty());
    EXPECT_THAT(
        trail,
        ElementsAre("CommPort=3", "CommPortIdentity=", "AutoLog=1", "Cnsl=1", "CommCnsl=0", "NeedleColor=255",
                    "DashLights=65535", "LabelLights=7", "Graphs=1", "FileOpen=1", "TableColor=1",
                    "CellScale=0", "PollRate=2.5", "AutoMonitor=0", "TemperatureToggle=0", "CLTAlarmValue=98",
                    "MATAlarmValue=60", "white table", "Datalog1=0", "Datalog2=0", "Datalog3=0", "Datalog4=0",
                    "Datalog5=0", "Datalog6=0", "Datalog7=0", "Datalog8=0", "Datalog9=0", "Datalog10=0",
                    "Datalog1=2", "Datalog2=65", "night", "colours 65535 255", "comm list on",
                    "recorder rows", "WireTrace=0"));
    EXPECT_THAT(lastLine(1), HasSubstr("Application Options Have Been Applied."));
    EXPECT_THAT(lastLine(), HasSubstr("**NOTE: Some changes require program restart before taking effect."));
}

TEST_F(OptionsTest, ApplyLeavesTheDashboardAloneWithoutMonitoring) {
    Options options(session);
    options.change("optMonitorMode", "1");
    options.apply();
    EXPECT_THAT(trail, Not(Contains("day")));
    EXPECT_THAT(trail, Not(Contains("night")));
    EXPECT_THAT(trail, Contains("comm list on"));
}

TEST_F(OptionsTest, ApplyTurnsARunningDashboardToDay) {
    session.Monitoring = true;
    Options options(session);
    options.change("optMonitorMode", "1");
    options.apply();
    const auto day = std::find(trail.begin(), trail.end(), "day");
    ASSERT_NE(day, trail.end());
    EXPECT_EQ(*(day + 1), "colours  ");
}

TEST_F(OptionsTest, ApplyTakesThePortIntoTheProcessAndOpensNothing) {
    Options options(session);
    options.change("cmbCOMM", "5");
    options.apply();
    EXPECT_EQ(session.link.commPort(), 5);
    EXPECT_EQ(fake.port.opens, 0);
}

TEST_F(OptionsTest, ApplySwitchesTheLogFileAndTheTableColoursAtOnce) {
    Options options(session);
    for (const char* on : {"1", "0"}) {
        options.change("chkAutoLog", on);
        options.change("chkAFRColors", on);
        options.apply();
        EXPECT_EQ(session.console.LogToFile(), *on == '1');
        EXPECT_EQ(session.TableColorMode, *on == '1' ? 1 : 0);
    }
}

TEST_F(OptionsTest, ApplyStoresAGroupOnceAndBeforeTheTablesAreColouredAnew) {
    Options options(session);
    options.change("optCellColors", "1");
    options.apply();
    EXPECT_EQ(std::ranges::count(trail, "CellScale=1"), 1);
    const auto stored = std::ranges::find(trail, "CellScale=1");
    EXPECT_NE(std::find(stored, trail.end(), "white table"), trail.end());
    options.change("optCellColors", "0");
    options.apply();
    EXPECT_EQ(read("CellScale"), "0");
}

TEST_F(OptionsTest, BeginAndEndTheWireTraceWithApply) {
    Options options(session);
    EXPECT_FALSE(options.on("chkWireTrace"));
    options.change("chkWireTrace", "1");
    EXPECT_FALSE(session.trace.running());
    options.apply();
    EXPECT_EQ(read("WireTrace"), "1");
    EXPECT_TRUE(session.trace.running());
    EXPECT_THAT(session.console.lines(), testing::Contains(HasSubstr("Wire trace begun: ")));
    options.change("chkWireTrace", "0");
    options.apply();
    EXPECT_FALSE(session.trace.running());
    EXPECT_THAT(TemporaryFolder::read(fake.folder.file("zentaq.trace")),
                HasSubstr("program: Application Options Have Been Applied."));
}

TEST_F(OptionsTest, EveryAppliedOptionSurvivesARestart) {
    {
        Options options(session);
        for (const OptionRow& row : optionTable()) {
            if (row.key.empty()) continue;
            const bool box = row.kind == FieldKind::Check;
            options.change(row.control, box ? (row.design == "1" ? "0" : "1") : "1");
        }
        options.change("sldDashAdjust", "33");
        options.change("cmbCOMM", "9");
        options.change("txtCLTvalue", "100");  // Celsius by now
        options.change("txtMATvalue", "0");
        EXPECT_THAT(options.apply(), IsEmpty());
    }
    const Options after(session);
    for (const OptionRow& row : optionTable()) {
        if (row.key.empty() || row.kind != FieldKind::Check) continue;
        EXPECT_EQ(after.value(row.control), row.design == "1" ? "0" : "1") << row.control;
    }
    EXPECT_EQ(after.value("sldDashAdjust"), "33");
    EXPECT_EQ(after.value("cmbCOMM"), "9");
    EXPECT_EQ(after.value("optPrintButton"), "1");
    EXPECT_EQ(after.value("optMonitorMode"), "1");
    EXPECT_EQ(after.value("txtPollRate"), "1");
    EXPECT_EQ(after.value("txtCLTvalue"), "100");
    EXPECT_EQ(read("CLTAlarmValue"), "100");
    EXPECT_EQ(read("MATAlarmValue"), "0");
}

TEST_F(OptionsTest, TheUnusedCheckBoxIsForgotten) {
    Options options(session);
    options.change("chkAutoOutput", "1");
    options.apply();
    EXPECT_FALSE(Options(session).on("chkAutoOutput"));
}

TEST_F(OptionsTest, AnApplyWithoutAChangeChangesNothingInTheProgram) {
    session.console.LogToFile(true);
    Options(session).apply();
    EXPECT_TRUE(session.console.LogToFile());
    EXPECT_EQ(read("FileOpen"), "1");
    EXPECT_EQ(read("CLTAlarmValue"), "");
    EXPECT_TRUE(session.fahrenheit());
    EXPECT_THAT(dialogs.boxes, IsEmpty());
}

// ---- Alarms

TEST_F(OptionsTest, AlarmsAreStoredInCelsiusAndShownInTheScaleInUse) {
    struct Entry {
        const char* typed;
        const char* stored;
        const char* shown;
    };
    const Entry celsius[] = {{"100", "100", "100"},    {"-40", "-40", "-40"}, {"150", "150", "150"},
                             {"95,5", "95.5", "95.5"}, {" 90 ", "90", "90"},  {"0", "0", "0"}};
    // (211 - 32) * 5 / 9 = 99.444..., kept as 99.44, which is 210.992 again.
    const Entry fahrenheit[] = {{"212", "100", "212"},
                                {"-40", "-40", "-40"},
                                {"302", "150", "302"},
                                {"99,5", "37.5", "99.5"},
                                {"211", "99.44", "210.99"}};
    const auto expectTaken = [&](const char* toggle, const char* control, const char* key, auto& entries) {
        stored("TemperatureToggle", toggle);
        Options options(session);
        for (const Entry& entry : entries) {
            options.change(control, entry.typed);
            EXPECT_THAT(options.apply(), IsEmpty()) << entry.typed;
            EXPECT_EQ(read(key), entry.stored);
            EXPECT_EQ(options.value(control), entry.shown);
        }
    };
    expectTaken("0", "txtCLTvalue", "CLTAlarmValue", celsius);
    expectTaken("1", "txtMATvalue", "MATAlarmValue", fahrenheit);
}

// ---- Refused entries: one box, what is stored stays, and so does what was typed

struct Refusal {
    const char* control;
    const char* key;
    const char* toggle;
    const char* typed;
    const char* told;
};

TEST_F(OptionsTest, RefusedEntriesAreToldAndLeaveTheStoredOnes) {
    const char* celsius = "Warning 1001: Data Input Error\n(-40 - 150\u00B0C) - Invalid Entry.";
    const char* fahrenheit = "Warning 1001: Data Input Error\n(-40 - 302\u00B0F) - Invalid Entry.";
    const char* colour = "Warning 1001: Data Input Error\n(0 - 16777215) - Invalid Entry.";
    const char* whole = "Warning 1002: Data Input Error\nEnter Whole Numbers Only";
    const char* noNumber = "Warning 1000: Data Input Error\nNon-numeric value detected.\nRetype Data";
    const char* empty = "Warning 1005: Data Input Error\nField CANNOT be NULL; please try again.";
    for (const Refusal& bad : {Refusal{"txtCLTvalue", "CLTAlarmValue", "0", "150.1", celsius},
                               {"txtCLTvalue", "CLTAlarmValue", "0", "-40,1", celsius},
                               {"txtCLTvalue", "CLTAlarmValue", "0", "1e300", celsius},
                               {"txtCLTvalue", "CLTAlarmValue", "1", "302.1", fahrenheit},
                               {"txtMATvalue", "MATAlarmValue", "1", "-41", fahrenheit},
                               {"txtMATvalue", "MATAlarmValue", "1", "  ", empty},
                               {"txtMATvalue", "MATAlarmValue", "0", "hot", noNumber},
                               {"txtPollRate", "PollRate", "0", "often", noNumber},
                               {"txtNeedleColor", "NeedleColor", "0", "16777216", colour},
                               {"txtDashLights", "DashLights", "0", "-1", colour},
                               {"txtLabelLights", "LabelLights", "0", "12.5", whole},
                               {"txtLabelLights", "LabelLights", "0", "1,5", whole},
                               {"txtNeedleColor", "NeedleColor", "0", "blue", noNumber}}) {
        SCOPED_TRACE(std::string(bad.control) + " " + bad.typed);
        stored("TemperatureToggle", bad.toggle);
        stored(bad.key, "98");
        Options options(session);
        options.change(bad.control, bad.typed);
        dialogs.boxes.clear();
        EXPECT_THAT(options.apply(), ElementsAre(bad.control));
        ASSERT_EQ(dialogs.boxes.size(), 1u);
        EXPECT_EQ(dialogs.boxes[0].title, "Data Input Error");
        EXPECT_EQ(dialogs.boxes[0].text, bad.told);
        EXPECT_EQ(read(bad.key), "98");
        EXPECT_EQ(options.value(bad.control), bad.typed);
    }
}

TEST_F(OptionsTest, WhatIsRefusedIsToldAlsoWhereAStepBehindItFails) {
    stored("CLTAlarmValue", "98");
    Options options(session);
    options.change("txtCLTvalue", "hot");
    fake.windows.meanwhile = [](const std::string& call) {
        if (call == "recorder rows") throw Failure("no rows");
    };
    EXPECT_THROW(options.apply(), Failure);
    ASSERT_EQ(dialogs.boxes.size(), 1u);
    EXPECT_EQ(dialogs.boxes[0].text,
              "Warning 1000: Data Input Error\nNon-numeric value detected.\nRetype Data");
    EXPECT_EQ(read("CLTAlarmValue"), "98");
}

TEST_F(OptionsTest, NothingIsAColourAndAPollingRateAndAHyphenKeepsTheStoredAlarm) {
    struct Taken {
        const char* control;
        const char* key;
        const char* typed;
        const char* stored;
    };
    for (const Taken& good : {Taken{"txtLabelLights", "LabelLights", "0", "0"},
                              {"txtNeedleColor", "NeedleColor", "16777215", "16777215"},
                              {"txtDashLights", "DashLights", "", ""},
                              {"txtPollRate", "PollRate", "0", "0"},
                              {"txtPollRate", "PollRate", "2,5", "2.5"},
                              {"txtPollRate", "PollRate", "", ""},
                              {"txtCLTvalue", "CLTAlarmValue", "-", "98"}}) {
        stored(good.key, "98");
        Options options(session);
        options.change(good.control, good.typed);
        EXPECT_THAT(options.apply(), IsEmpty()) << good.control << " " << good.typed;
        EXPECT_EQ(read(good.key), good.stored) << good.control << " " << good.typed;
    }
    EXPECT_THAT(dialogs.boxes, IsEmpty());
}

TEST_F(OptionsTest, ARefusedEntryHoldsNothingElseBack) {
    stored("TemperatureToggle", "0");
    Options options(session);
    options.change("txtPollRate", "often");
    options.change("txtNeedleColor", "16777216");
    options.change("txtCLTvalue", "151");
    options.change("txtMATvalue", "60");
    EXPECT_THAT(options.apply(), ElementsAre("txtNeedleColor", "txtPollRate", "txtCLTvalue"));
    EXPECT_EQ(read("MATAlarmValue"), "60");
    EXPECT_THAT(trail, Contains("recorder rows"));
    EXPECT_THAT(trail, Not(Contains("NeedleColor=16777216")));
    EXPECT_THAT(trail, Not(Contains("PollRate=often")));
}

TEST_F(OptionsTest, ARefusedColourLeavesTheStoredOneOnTheDashboard) {
    session.Monitoring = true;
    stored("DashLights", "65280");
    Options options(session);
    options.change("txtDashLights", "green");
    EXPECT_THAT(options.apply(), ElementsAre("txtDashLights"));
    EXPECT_THAT(trail, Contains("colours 65280 "));
}

// ---- The port and the device behind its number

TEST_F(OptionsTest, ApplyStoresTheDeviceBesideTheNumber) {
    Options options(session);
    options.change("cmbCOMM", "1");
    options.apply();
    EXPECT_EQ(read("CommPort"), "1");
    EXPECT_EQ(read("CommPortIdentity"), "fake");
    EXPECT_EQ(session.link.commIdentity(), "fake");
}

TEST_F(OptionsTest, TheNumberShownFollowsTheStoredDevice) {
    stored("CommPort", "1");
    stored("CommPortIdentity", "fake");
    fake.port.presentNumber = 3;
    Options options(session);
    EXPECT_EQ(options.value("cmbCOMM"), "3");
    options.apply();
    EXPECT_EQ(read("CommPort"), "3");
    EXPECT_EQ(read("CommPortIdentity"), "fake");
}

TEST_F(OptionsTest, AnApplyKeepsADeviceThatIsAwayThoughAnotherHasItsNumber) {
    stored("CommPort", "1");
    stored("CommPortIdentity", "usb:0403:6001:AB12");
    Options options(session);
    options.apply();
    EXPECT_EQ(read("CommPortIdentity"), "usb:0403:6001:AB12");
    options.choosePort(1, "fake");
    options.apply();
    EXPECT_EQ(read("CommPortIdentity"), "fake") << "the user chose the other one";
}

// ---- The port search, and other windows that store the same settings

TEST_F(OptionsTest, ASearchWithoutAUnitTellsAndKeepsThePort) {
    stored("CommPort", "4");
    fake.port.presentNumber = 0;
    session.link.commPort(4);
    Options options(session);
    EXPECT_EQ(options.detectPort(commands.unit), 0);
    EXPECT_EQ(session.notices.text(fake.clock.nowUs),
              "Could not Find ORB Unit.  Please check the serial connection.");
    EXPECT_EQ(options.value("cmbCOMM"), "4");
    EXPECT_EQ(read("CommPort"), "4");
}

TEST_F(OptionsTest, ASearchThatFindsAUnitShowsAndStoresItsPort) {
    fake.yield.passing = [this] { fake.clock.nowUs += 20'000; };
    fake.yield.meanwhile = [this] {
        ticks(1);
        answer(identifyReply(300000));
    };
    session.makeUnits();
    fake.port.presentNumber = 3;
    stored("CommPort", "1");
    Options options(session);
    options.change("txtPollRate", "5");
    EXPECT_EQ(options.detectPort(commands.unit), 3);
    EXPECT_EQ(options.value("cmbCOMM"), "3");
    EXPECT_EQ(options.value("txtPollRate"), "5");
    EXPECT_EQ(read("CommPort"), "3");
    EXPECT_EQ(read("CommPortIdentity"), session.link.commIdentity());
    EXPECT_EQ(session.linkDisplay.status().port, "3");
    EXPECT_THAT(dialogs.boxes, IsEmpty());
}

TEST_F(OptionsTest, TakeOverWhatOthersStoreAndKeepTheUsersEntries) {
    Options options(session);
    options.change("txtPollRate", "5");
    EXPECT_FALSE(options.refresh());
    stored("MonitorMode", "1");
    stored("TableColor", "1");
    EXPECT_TRUE(options.refresh());
    EXPECT_TRUE(options.on("optMonitorMode"));
    EXPECT_TRUE(options.on("chkAFRColors"));
    EXPECT_EQ(options.value("txtPollRate"), "5");
    EXPECT_FALSE(options.refresh());
}

TEST_F(OptionsTest, KnowNoOtherControls) {
    Options options(session);
    EXPECT_THROW(options.value("chkNone"), BoundsError);
    EXPECT_THROW(options.change("chkNone", "1"), BoundsError);
}

}  // namespace
}  // namespace zentaq
