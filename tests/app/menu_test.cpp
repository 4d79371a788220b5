#include "app/menu.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>

#include "app/fake_platform.h"
#include "app/main_commands.h"

namespace zentaq {
namespace {

std::map<std::string, const MenuEntry*> byName() {
    std::map<std::string, const MenuEntry*> result;
    for (const MenuEntry& entry : menuTree()) result[std::string(entry.name)] = &entry;
    return result;
}

/// A caption as it is read.
std::string spoken(std::string_view caption) {
    std::string text(caption);
    std::erase(text, '&');
    return text;
}

TEST(MenuTree, EveryEntryStandsUnderItsMenuWithItsCaption) {
    struct Row {
        const char *name, *parent, *caption;
    };
    const Row rows[] = {
        {"mnuNew", "mnuFile", "Create a New Calibration File"},
        {"mnuOpen", "mnuFile", "Open an Existing Calibration File"},
        {"mnuSave", "mnuFile", "Save"},
        {"mnuSaveAs", "mnuFile", "Save As"},
        {"mnuConvertBINFile", "mnuFile", "Convert BIN File"},
        {"mnuConvertORBA", "mnuConvertBINFile", "ORB A"},
        {"mnuConvertORBALite", "mnuConvertBINFile", "ORB A-Lite"},
        {"mnuPrint", "mnuFile", "Print"},
        {"mnuPrintBIN", "mnuPrint", "Calibration File"},
        {"mnuPrintCurrentForm", "mnuPrint", "Current Form"},
        {"mnuClose", "mnuFile", "Close"},
        {"mnuExit", "mnuFile", "Exit Program"},
        {"mnuEdit_Undo", "mnuEdit", "Undo"},
        {"mnuEdit_Cut", "mnuEdit", "Cut"},
        {"mnuEdit_Copy", "mnuEdit", "Copy"},
        {"mnuEdit_Paste", "mnuEdit", "Paste"},
        {"mnuEdit_Delete", "mnuEdit", "Delete"},
        {"mnuEdit_SelectAll", "mnuEdit", "Select All"},
        {"mnuProgramORB", "mnuTools", "Program ORB"},
        {"mnuMonitor_KillEngine", "mnuTools", "Kill Engine"},
        {"mnuZeroAdv", "mnuTools", "Set Zero Advance"},
        {"mnuClearDashCodes", "mnuTools", "Refresh Codes"},
        {"mnuORB_ClearCodes", "mnuTools", "Clear Error Codes"},
        {"mnuMonitor_DayMode", "mnuTools", "Day Mode"},
        {"mnuMonitor_NightMode", "mnuTools", "Night Mode"},
        {"mnuMonitor_ChangeColors", "mnuTools", "Change DashBoard Colors"},
        {"mnuOptions", "mnuTools", "Options..."},
        {"mnuControlPanel", "mnuTools", "Control Panel"},
        {"mnuFirmwareUpgrade", "mnuTools", "Firmware Upgrade"},
        {"mnuAdvTbl", "mnuWindow", "&Advance Table"},
        {"mnuVETbl", "mnuWindow", "&VE Table"},
        {"mnuStgTbl", "mnuWindow", "&Staging Table"},
        {"mnuEGOTbl", "mnuWindow", "&EGO Table"},
        {"mnuHelpContents", "mnuHelp", "Contents..."},
        {"mnuFastHelp", "mnuHelp", "Fast Help (Press F2)"},
        {"mnuAbout", "mnuHelp", "About Zentaq"},
        {"mnuGraphTable", "mnuPopupTable", "Graph"},
        {"mnuInterpolate", "mnuPopupTable", "Interpolate"},
        {"mnuNewCol", "mnuPopupTable", "Add Column"},
        {"mnuNewRow", "mnuPopupTable", "Add Row"},
        {"mnuRmvCol", "mnuPopupTable", "Remove Column"},
        {"mnuRmvRow", "mnuPopupTable", "Remove Row"},
    };
    const auto entries = byName();
    for (const Row& row : rows) {
        ASSERT_TRUE(entries.count(row.name)) << row.name;
        EXPECT_EQ(spoken(entries.at(row.name)->caption), spoken(row.caption));
        EXPECT_EQ(entries.at(row.name)->parent, row.parent);
    }
    for (int i = 1; i <= 5; ++i) EXPECT_TRUE(entries.count("mnuSmooth_" + std::to_string(i)));
}

TEST(MenuTree, ParentsStandBeforeTheirChildrenAndNamesAreUnique) {
    std::set<std::string> seen;
    for (const MenuEntry& entry : menuTree()) {
        if (!entry.parent.empty()) {
            EXPECT_TRUE(seen.count(std::string(entry.parent))) << entry.name;
        }
        EXPECT_TRUE(seen.insert(std::string(entry.name)).second) << entry.name;
    }
}

TEST(MenuTree, EveryEntryHasALetterThatNoOtherOfItsMenuHas) {
    std::map<std::string_view, std::set<char>> letters;
    for (const MenuEntry& entry : menuTree()) {
        if (entry.caption.empty()) continue;
        const std::size_t sign = entry.caption.find('&');
        ASSERT_LT(sign, entry.caption.size() - 1) << entry.caption;
        const auto letter = static_cast<char>(std::toupper(entry.caption[sign + 1]));
        EXPECT_TRUE(letters[entry.parent].insert(letter).second) << entry.caption;
    }
}

TEST(MenuTree, LinesPartTheGroupsOfAMenu) {
    std::vector<std::string_view> groups;
    for (const MenuEntry& entry : menuTree()) {
        if (entry.group && entry.parent == "mnuFile") groups.push_back(entry.name);
    }
    EXPECT_EQ(groups, (std::vector<std::string_view>{"mnuSave", "mnuConvertBINFile", "mnuClose", "mnuExit"}));
    std::string_view former;
    for (const MenuEntry& entry : menuTree()) {
        EXPECT_TRUE(!entry.group || entry.parent == former || former == "mnuConvertBINFile" ||
                    former == "mnuPrint" || former == "mnuSmooth")
            << entry.name << " stands at the top of its menu";
        former = entry.parent;
    }
}

TEST(MenuTree, TheModeInForceBearsTheMark) {
    FakeSession fake;
    const auto entries = byName();
    const auto marks = [&] {
        return std::pair(entries.at("mnuMonitor_DayMode")->checked(fake.session),
                         entries.at("mnuMonitor_NightMode")->checked(fake.session));
    };
    fake.settings.set("System", "MonitorMode", "1");
    EXPECT_EQ(marks(), std::pair(true, false));
    fake.settings.set("System", "MonitorMode", "0");
    EXPECT_EQ(marks(), std::pair(false, true));
}

TEST(MenuTree, WhatFoldsBearsTheMarkWhileItIsOpen) {
    FakeSession fake;
    MainCommands commands(fake.session);
    const auto entries = byName();
    const auto open = [&] {
        return std::pair(entries.at("mnuFoldMessages")->checked(fake.session),
                         entries.at("mnuFoldTree")->checked(fake.session));
    };
    EXPECT_EQ(open(), std::pair(true, true));
    entries.at("mnuFoldMessages")->run(commands);
    EXPECT_EQ(open(), std::pair(false, true));
    entries.at("mnuFoldTree")->run(commands);
    EXPECT_EQ(open(), std::pair(false, false));
    fake.session.folds.messages.roomShort(true);
    entries.at("mnuFoldMessages")->run(commands);
    EXPECT_EQ(open(), std::pair(true, false)) << "opened in spite of the room";
    entries.at("mnuRestoreLayout")->run(commands);
    EXPECT_EQ(open(), std::pair(false, true)) << "as the room allows";
}

TEST(MenuTree, DashboardFoldsFromTheMenuAndComesBackWithTheLayout) {
    FakeSession fake;
    MainCommands commands(fake.session);
    const auto entries = byName();
    const MenuEntry* entry = entries.at("mnuFoldDashboard");
    EXPECT_EQ(entry->shortcut, "Ctrl+F9");
    EXPECT_TRUE(entry->checked(fake.session));
    entry->run(commands);
    EXPECT_FALSE(entry->checked(fake.session));
    entries.at("mnuRestoreLayout")->run(commands);
    EXPECT_TRUE(entry->checked(fake.session));
}

TEST(MenuTree, NoTwoEntriesShareAShortcut) {
    std::set<std::string> seen;
    for (const MenuEntry& entry : menuTree()) {
        if (!entry.shortcut.empty()) {
            EXPECT_TRUE(seen.insert(std::string(entry.shortcut)).second) << entry.name;
        }
    }
}

TEST(MenuTree, EntriesOpenTheirWindowsOnWhatTheyName) {
    struct Row {
        const char *name, *window, *on;
    };
    const Row rows[] = {
        {"mnuOptions", "frmOptions", ""},           {"mnuControlPanel", "frmOptions", ""},
        {"mnuFastHelp", "frmFastHelp", ""},         {"mnuMonitor_ChangeColors", "frmOptions", "Monitor"},
        {"mnuAdvTbl", "frmTABLE", "ADV"},           {"mnuVETbl", "frmTABLE", "VE"},
        {"mnuStgTbl", "frmTABLE", "SPW"},           {"mnuEGOTbl", "frmTABLE", "AFR"},
        {"mnuMAPSensors", "frmEditMAPSensors", ""},
    };
    const auto entries = byName();
    for (const Row& row : rows) {
        ASSERT_TRUE(entries.count(row.name)) << row.name;
        EXPECT_EQ(entries.at(row.name)->window, row.window) << row.name;
        EXPECT_EQ(entries.at(row.name)->on, row.on) << row.name;
    }
}

TEST(MenuTree, WhatStoresProgramsPrintsOrClosesComesBehindTheEditsTypedBefore) {
    std::set<std::string_view> behind;
    for (const MenuEntry& entry : menuTree()) {
        if (entry.afterEdits) behind.insert(entry.name);
    }
    EXPECT_EQ(behind, (std::set<std::string_view>{
                          "mnuNew", "mnuOpen", "mnuSave", "mnuSaveAs", "mnuClose", "mnuExit", "mnuProgramORB",
                          "mnuStoreONFLY", "mnuFirmwareUpgrade", "mnuPrintBIN", "mnuPrintCurrentForm"}));
}

TEST(Toolbar, HasItsEightButtonsInOrderAndEachStandsForAMenuEntry) {
    const char* keys[] = {"New", "Open", "Save", "Program", "Print", "Options", "Help", "Shutdown"};
    const auto buttons = toolbarButtons();
    const auto entries = byName();
    ASSERT_EQ(buttons.size(), 8u);
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        EXPECT_EQ(buttons[i].key, keys[i]);
        EXPECT_TRUE(entries.count(std::string(buttons[i].command)));
    }
}

}  // namespace
}  // namespace zentaq
