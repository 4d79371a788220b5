#include "app/main_commands.h"

#include <filesystem>
#include <fstream>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"
#include "unit/file_kind.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Commands : public CommandTest {
 protected:
    /// A whole calibration whose cells are 0 but for the rev limit.
    std::string file(const std::string& name, float version = 9.44f, float kind = 3) {
        std::vector<float> floats = wholeFloats(kind);
        floats[1] = version;
        floats[3 + 58] = 6500;
        if (kind == 5) floats.resize(3 + 1701);
        return writeFloats(fake.folder.path(name), floats);
    }
    /// Another number of floats than a whole file has: cut, or filled up with 1.
    std::string ofLength(std::size_t count, const std::string& name) {
        std::vector<float> floats = wholeFloats();
        floats.resize(count, 1.0f);
        return writeFloats(fake.folder.path(name), floats);
    }
    /// The unit takes the command.
    void zeroAdvanceTaken() {
        commands.unit.zeroAdvance();
        ticks(1);
        answer("AX");
    }
};

TEST_F(Commands, OpenLoadsACalibrationAndNamesItInTheTitleBar) {
    const std::string path = file("tune.ZQ4OA");
    open(path);
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_EQ(session.CurrentFile, path);
    EXPECT_EQ(fake.windows.title, "Current Calibration File: " + path);
    EXPECT_EQ(unit().get("REV_Limiter"), 6500);
    EXPECT_EQ(unit().BinFile(), path);
    EXPECT_EQ(session.FileFilterIndex, 4);
    EXPECT_EQ(session.header().fileState, "OLD");
    EXPECT_FALSE(session.DataModified);
    EXPECT_THAT(fake.windows.calls, Contains("setupNodes"));
    EXPECT_TRUE(logged("Opened Calibration File: "));
    EXPECT_TRUE(logged("Loaded Calibration: "));
}

TEST_F(Commands, TheOpenDialogHasItsTitleFilterAndFolder) {
    commands.files.open();
    ASSERT_EQ(fake.dialogs.requests.size(), 1u);
    EXPECT_EQ(fake.dialogs.requests[0].title, "Open Zentaq4 User Calibration Files");
    EXPECT_EQ(fake.dialogs.requests[0].filter,
              "Zentaq4 File|*.ZQ4*|Zentaq4 ORBL File|*.ZQ4OL|Zentaq4 PZK-2 File|*.ZQ4PZK|Zentaq4 ORBA "
              "File|*.ZQ4OA|Zentaq4 ORBd File|*.ZQ4OD|Zentaq4 ORBc File|*.ZQ4OC|Zentaq BIN file|*.BIN");
    EXPECT_EQ(fake.dialogs.requests[0].folder, fake.folder.path());
    EXPECT_EQ(fake.dialogs.requests[0].filterIndex, 1);
    EXPECT_EQ(session.slotInHand(), 0);
}

TEST_F(Commands, TheExtensionTestLooksAtFourCharactersOnly) {
    open(file("short.ZQ4"));
    EXPECT_EQ(session.slotInHand(), 3);
    open(file("lower.zq4oa"));
    EXPECT_THAT(session.CurrentFile, HasSubstr("lower.zq4oa"));
    open(file("too.ZQ"));
    EXPECT_THAT(box(), IsBox("File Extension Error",
                             "INCORRECT FILE EXTENSION:   too.ZQ\nDo you want to enter a new filename?"));
    EXPECT_EQ(box().buttons, Buttons::YesNo);
    EXPECT_THAT(session.CurrentFile, HasSubstr("lower.zq4oa"));
}

TEST_F(Commands, YesAtTheExtensionBoxAsksForAFileAgain) {
    fake.dialogs.files = {file("wrong.txt"), file("right.ZQ4OA")};
    fake.dialogs.answers = {Answer::Yes};
    commands.files.open();
    EXPECT_EQ(fake.dialogs.requests.size(), 2u);
    EXPECT_THAT(session.CurrentFile, HasSubstr("right.ZQ4OA"));
}

TEST_F(Commands, AFileThatCannotBeACalibrationIsPossiblyCorruptAndTheFormerCalibrationStays) {
    const std::string good = file("good.ZQ4OA");
    open(good);
    for (const std::string& bad : {writeFloats(fake.folder.path("bad.ZQ4OA"), {42, 1, 2, 3}),
                                   ofLength(3 + 3002, "bad.ZQ4OA")}) {  // one more than there are cells
        open(bad);
        EXPECT_THAT(box(), IsBox("File Read Error",
                                 "FILE POSSIBLY CORRUPT:   bad.ZQ4OA\n"
                                 "Do you want to enter a new filename?"));
        EXPECT_EQ(session.CurrentFile, good);
        EXPECT_EQ(session.slotInHand(), 3);
        EXPECT_EQ(unit().get("REV_Limiter"), 6500);
    }
}

TEST_F(Commands, AFileTooShortForAHeaderIsPossiblyCorrupt) {
    open(writeFloats(fake.folder.path("tiny.ZQ4OA"), {3, 9}, 3));
    EXPECT_EQ(box().title, "File Read Error");
    EXPECT_EQ(session.slotInHand(), 0);
}

TEST_F(Commands, AHeaderlessFileOf8718BytesIsTakenAsKind3ByItsLength) {
    const std::string path = fake.folder.path("old.ZQ4OA");
    std::vector<float> floats(2179, 0.0f);  // 8716 bytes
    floats[0] = 77;
    writeFloats(path, floats, 2);
    ASSERT_EQ(std::filesystem::file_size(path), 8718u);
    open(path);
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_EQ(session.slotInHand(), 3);
}

TEST_F(Commands, AFileOfTheProgramsOwnVersionLoadsWithNoBox) {
    open(file("same.ZQ4OA", 10.2f));
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_EQ(session.slotInHand(), 3);
}

TEST_F(Commands, ANewerFileAsksAndNoLoadsItAllTheSame) {
    open(file("newer.ZQ4OA", 11.5f));
    EXPECT_THAT(boxes().at(0), IsBox("Version Support Error",
                                     "FILE CREATED WITH NEWER ZENTAQ:   11.5\n"
                                     "This file was generated by a version of Zentaq newer than this\n"
                                     "version.  Some features enabled in this file may not be supported.\n"
                                     "Do you want to load another file?"));
    EXPECT_EQ(session.slotInHand(), 3);
}

TEST_F(Commands, ANewerFileWithYesAsksForAnotherOne) {
    fake.dialogs.answers = {Answer::Yes};
    open(file("newer.ZQ4OA", 11.5f));
    EXPECT_EQ(fake.dialogs.requests.size(), 2u);
    EXPECT_EQ(session.slotInHand(), 0);
}

TEST_F(Commands, ReleasesOfTheSameLineAreComparedByTheirCount) {
    // The program writes 10.2: the second release of 10. 10.15 is the fifteenth, 10.1 the first.
    ASSERT_FLOAT_EQ(programVersion(), 10.2f);
    open(file("same.ZQ4OA", 10.2f));
    open(file("first.ZQ4OA", 10.1f));
    EXPECT_THAT(boxes(), IsEmpty());
    open(file("fifteenth.ZQ4OA", 10.15f));
    ASSERT_EQ(boxes().size(), 1u);
    EXPECT_EQ(box().title, "Version Support Error");
    EXPECT_THAT(box().text, HasSubstr("FILE CREATED WITH NEWER ZENTAQ:   10.15\n"));
}

TEST_F(Commands, OpeningOverUnsavedChangesOffersToSaveThem) {
    const std::string first = file("first.ZQ4OA");
    for (const auto& [answer, kept] : {std::pair(Answer::Cancel, 0), {Answer::Ok, 50}}) {
        open(first);
        unit().set("KNK_MIN", 50.0);
        session.markModified();
        boxes().clear();
        fake.dialogs.answers = {answer};
        open(file("second.ZQ4OA"));
        EXPECT_THAT(boxes().at(0), IsBox("SAVE", "Save changes?"));
        open(first);
        EXPECT_EQ(unit().get("KNK_MIN"), kept);
    }
}

TEST_F(Commands, SaveWritesTheWholeFileAndShowsMessage1001) {
    const std::string path = file("tune.ZQ4OA");
    open(path);
    session.markModified();
    commands.saves.save();
    EXPECT_EQ(box().title, "Data Saved.");
    EXPECT_FALSE(session.DataModified);
    EXPECT_EQ(std::filesystem::file_size(path), 11324u);
}

TEST_F(Commands, SaveWithNoFileDoesNothing) {
    commands.saves.save();
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(Commands, ASaveThatFailsTellsSoAndKeepsTheChangesMarked) {
    open(file("tune.ZQ4OA"));
    session.markModified();
    unit().BinFile(fake.folder.path("gone/tune.ZQ4OA"));
    commands.saves.save();
    EXPECT_EQ(box().title, "File Save Error");
    EXPECT_TRUE(session.DataModified);
}

TEST_F(Commands, SaveAsWritesUnderTheNewNameAndGoesOnWithIt) {
    const std::string first = file("first.ZQ4OA");
    open(first);
    const std::string second = fake.folder.path("second.ZQ4OA");
    fake.dialogs.files = {second};
    commands.saves.saveAs();
    EXPECT_EQ(fake.dialogs.requests.back().title, "Zentaq4 User Calibration Files");
    EXPECT_EQ(fake.dialogs.requests.back().filter, "Zentaq4 ORBA File|*.ZQ4OA");
    EXPECT_EQ(std::filesystem::file_size(second), 11324u);
    EXPECT_EQ(session.CurrentFile, second);
    EXPECT_EQ(unit().BiName().substr(0, 7), "second ");
    EXPECT_EQ(fake.windows.title, "Current Calibration File: " + second);
}

TEST_F(Commands, SaveAsTurnsABinNameIntoACalibrationName) {
    open(file("first.ZQ4OA"));
    fake.dialogs.files = {fake.folder.path("old.BIN")};
    commands.saves.saveAs();
    EXPECT_EQ(session.CurrentFile, fake.folder.path("old.ZQ4OA"));
}

TEST_F(Commands, SaveAsOverAnExistingFileAsksAndNoWritesNothing) {
    open(file("first.ZQ4OA"));
    const std::string second = fake.folder.path("second.ZQ4OA");
    std::ofstream(second) << "keep me";
    fake.dialogs.files = {second};
    fake.dialogs.answers = {Answer::No};
    commands.saves.saveAs();
    EXPECT_THAT(box(), IsBox("File Exists", "FILE EXISTS:   " + second + "\nOverwrite?"));
    EXPECT_EQ(std::filesystem::file_size(second), 7u);
    EXPECT_THAT(session.CurrentFile, HasSubstr("first.ZQ4OA"));
}

TEST_F(Commands, SaveAsThatFailsKeepsTheFormerNameAndMarksNothing) {
    const std::string first = file("first.ZQ4OA");
    open(first);
    fake.dialogs.files = {fake.folder.path("gone/second.ZQ4OA")};
    commands.saves.saveAs();
    EXPECT_EQ(session.CurrentFile, first);
    EXPECT_EQ(unit().BinFile(), first);
    EXPECT_FALSE(session.DataModified);
}

TEST_F(Commands, CloseEmptiesTheUnitAndGoesBackToTheStart) {
    open(file("tune.ZQ4OA"));
    commands.files.close();
    EXPECT_EQ(session.slotInHand(), 0);
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_EQ(session.Units(3).get("REV_Limiter"), 0);
    EXPECT_EQ(session.Units(3).BinFile(), "");
    EXPECT_EQ(fake.windows.calls.back(), "startTab");
}

TEST_F(Commands, CloseWithNothingInHandDoesNothing) {
    commands.files.close();
    EXPECT_THAT(fake.windows.calls, IsEmpty());
}

TEST_F(Commands, ProgramOrbRefusesWithoutAFileAndWithoutAUnit) {
    commands.programming.programOrb();
    EXPECT_EQ(box().title, "Error 1003");
    open(file("tune.ZQ4OA"));
    commands.programming.programOrb();
    EXPECT_EQ(box().title, "Error 1005");
    EXPECT_FALSE(session.link.transfer().active());
}

TEST_F(Commands, ATableWithoutACalibrationIsError1003) {
    commands.openTable("VE", "Volumetric Efficiency Table");
    EXPECT_EQ(box().title, "Error 1003");
    EXPECT_THAT(fake.windows.calls, Not(Contains(HasSubstr("table"))));
}

TEST_F(Commands, ATableThatTheKindLacksStaysClosedAndSilent) {
    struct Row {
        float kind;
        const char* name;
        std::vector<std::string> tables;
    };
    const Row rows[] = {{3, "a.ZQ4OA", {"ADV", "VE", "SPW", "AFR", "GPO1", "GPO2"}},
                        {4, "l.ZQ4OL", {"ADV", "VE", "SPW", "AFR", "GPO1", "GPO2"}},
                        {5, "p.ZQ4PZK", {"ADV", "GPO1", "GPO2"}},
                        {6, "c.ZQ4OC", {"ADV", "VE", "SPW", "AFR", "GPO1", "GPO2"}},
                        {7, "d.ZQ4OD", {"ADV", "VE", "AFR", "GPO1", "GPO2"}},
                        {8, "d6.ZQ4OD", {"ADV", "VE", "AFR", "GPO1", "GPO2"}}};
    for (const Row& row : rows) {
        open(file(row.name, 9.44f, row.kind));
        ASSERT_EQ(session.CurrentUnit(), row.kind);
        boxes().clear();
        for (const std::string table : {"ADV", "VE", "SPW", "AFR", "GPO1", "GPO2", "XYZ"}) {
            fake.windows.calls.clear();
            commands.openTable(table, "Title");
            std::vector<std::string> asked;
            if (std::ranges::count(row.tables, table) != 0) asked = {"table " + table + " Title"};
            EXPECT_EQ(fake.windows.calls, asked) << row.name << " " << table;
        }
        EXPECT_THAT(boxes(), IsEmpty()) << row.name;
    }
}

TEST_F(Commands, AnOpenTableGoesWhenACalibrationOfAnotherKindComes) {
    open(file("tune.ZQ4OA"));
    EXPECT_THAT(fake.windows.calls, Not(Contains("removeForms")));
    open(file("second.ZQ4OA"));
    EXPECT_THAT(fake.windows.calls, Not(Contains("removeForms")));
    open(file("classic.ZQ4PZK", 9.44f, 5));
    EXPECT_THAT(fake.windows.calls, Contains("removeForms"));
}

TEST_F(Commands, TheTablesThatTheKindLacksAreDisabledInTheMenu) {
    const auto tables = [&] {
        std::string answer;
        for (const char* table : {"Adv", "VE", "Stg", "EGO"})
            answer += enabled("mnu" + std::string(table) + "Tbl") ? '1' : '0';
        return answer;
    };
    EXPECT_EQ(tables(), "1111");  // the command tells that no calibration is in hand
    open(file("classic.ZQ4PZK", 9.44f, 5));
    EXPECT_EQ(tables(), "1000");
    open(file("street.ZQ4OD", 9.44f, 7));
    EXPECT_EQ(tables(), "1101");
    open(file("tune.ZQ4OA"));
    EXPECT_EQ(tables(), "1111");
}

TEST_F(Commands, ATreeClickOpensATableOrAnswersItsPage) {
    EXPECT_EQ(commands.treeClick("root02"), 0);
    open(file("tune.ZQ4OA"));
    EXPECT_EQ(commands.treeClick("root02"), -1);
    EXPECT_EQ(fake.windows.calls.back(), "table VE Volumetric Efficiency Table");
    EXPECT_EQ(commands.treeClick("child90"), 16);
    EXPECT_EQ(commands.treeClick("no such node"), 0);
}

TEST_F(Commands, ThePinOfAFullTableOpensTheTableOfItsNumber) {
    commands.editPinTable(0);
    EXPECT_THAT(fake.windows.calls, Not(Contains(HasSubstr("Full Table"))));
    open(file("tune.ZQ4OA"));
    session.currentUnitObject().Set_GPIO_Func(1, 8);
    session.currentUnitObject().Set_GPIO_Param(1, 0, 2);
    commands.editPinTable(1);
    EXPECT_EQ(fake.windows.calls.back(), "table GPO2 Full Table - Table#2");
    const auto before = fake.windows.calls.size();
    session.currentUnitObject().Set_GPIO_Param(1, 0, 3);
    commands.editPinTable(1);
    commands.editPinTable(0);
    commands.editPinTable(-1);
    EXPECT_EQ(fake.windows.calls.size(), before);
}

TEST_F(Commands, ZeroAdvanceTwiceInARowAsksForBothThoughNothingWasAnsweredYet) {
    session.link.load();
    commands.unit.zeroAdvance();
    commands.unit.zeroAdvance();
    EXPECT_FALSE(session.link.zeroAdvanceAsked());
    EXPECT_FALSE(session.link.linked().zeroAdvance);
    EXPECT_EQ(session.link.ring().count(), 2);
}

TEST_F(Commands, ZeroAdvanceSendsTheByteOfItsCheckMark) {
    session.link.load();
    commands.unit.zeroAdvance();
    ticks(1);
    EXPECT_EQ(fake.port.written.back(), "Z\xFF");
    answer("AX");
    commands.unit.zeroAdvance();
    ticks(1);
    EXPECT_EQ(fake.port.written.back(), std::string("Z\0", 2));
}

TEST_F(Commands, AUnitThatRunsWithZeroAdvanceIsNotLeftUnasked) {
    session.link.load();
    zeroAdvanceTaken();
    ASSERT_TRUE(session.link.linked().zeroAdvance);
    const std::vector<std::function<void()>> leaving = {
        [&] { kernel.closeRequested(); },
        [&] { EXPECT_FALSE(kernel.System_Shutdown(false)); },
        [&] { commands.unit.choosePort(2); },
        [&] { EXPECT_EQ(commands.unit.autodetectPort(), 0); },
    };
    for (std::size_t i = 0; i < leaving.size(); ++i) {
        boxes().clear();
        fake.dialogs.answers = {Answer::Ok, Answer::No};
        if (i != 1) fake.dialogs.answers = {Answer::No};
        leaving[i]();
        ASSERT_FALSE(boxes().empty()) << i;
        EXPECT_EQ(box().title, "Zero Advance") << i;
        EXPECT_TRUE(box().declines) << i;
        EXPECT_TRUE(box().stands()) << i;
    }
    EXPECT_THAT(fake.windows.calls, Not(Contains("closeMain")));
    EXPECT_TRUE(session.link.linked().zeroAdvance);
    EXPECT_EQ(session.link.commPort(), 1);

    zeroAdvanceTaken();  // off again
    boxes().clear();
    kernel.closeRequested();
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_THAT(fake.windows.calls, Contains("closeMain"));
}

TEST_F(Commands, TheUserMayLeaveAUnitWithZeroAdvance) {
    session.link.load();
    commands.unit.zeroAdvance();  // not answered yet: the unit may take it when the program has gone
    fake.dialogs.answers = {Answer::Yes};
    kernel.closeRequested();
    ASSERT_EQ(boxes().size(), 1u);
    EXPECT_EQ(boxes()[0].title, "Zero Advance");
    EXPECT_THAT(fake.windows.calls, Contains("closeMain"));
}

/// The box of zero advance goes by itself, which is answered as No.
class ZeroAdvanceThatEnds : public Commands {
 protected:
    ZeroAdvanceThatEnds() {
        session.link.load();
        zeroAdvanceTaken();
        EXPECT_TRUE(session.link.linked().zeroAdvance);
        fake.dialogs.meanwhile = [this](const std::string& title) {
            if (title != "Zero Advance") return;
            const Box asked = box();
            zeroAdvanceTaken();
            EXPECT_FALSE(asked.stands());
        };
    }
    int asked() { return static_cast<int>(std::ranges::count(boxes(), "Zero Advance", &Box::title)); }
};

TEST_F(ZeroAdvanceThatEnds, LetsTheChosenPortBeTaken) {
    commands.unit.choosePort(2);
    EXPECT_EQ(asked(), 1);
    EXPECT_EQ(session.link.commPort(), 2);
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "2");
    EXPECT_FALSE(logged("stayed with it"));
}

TEST_F(ZeroAdvanceThatEnds, LetsThePortsBeSearched) {
    fake.port.presentNumber = 0;
    const int opens = fake.port.opens;
    commands.unit.autodetectPort();
    EXPECT_EQ(asked(), 1);
    EXPECT_GT(fake.port.opens, opens);
    EXPECT_EQ(session.notices.text(fake.clock.nowUs),
              "Could not Find ORB Unit.  Please check the serial connection.");
    EXPECT_FALSE(logged("stayed with it"));
}

TEST_F(ZeroAdvanceThatEnds, KeepsTheProgramAndTheLogSaysNothingOfIt) {
    kernel.closeRequested();
    EXPECT_EQ(asked(), 1);
    EXPECT_THAT(fake.windows.calls, Not(Contains("closeMain")));
    EXPECT_FALSE(logged("stayed with it"));
}

TEST_F(Commands, TheUserWhoStaysWithZeroAdvanceIsInTheLog) {
    session.link.load();
    commands.unit.zeroAdvance();
    fake.dialogs.answers = {Answer::No};
    commands.unit.choosePort(2);
    EXPECT_EQ(session.link.commPort(), 1);
    EXPECT_TRUE(logged("The unit runs with zero advance: stayed with it."));
}

TEST_F(Commands, TheMonitorModeIsKeptAsASetting) {
    commands.dayMode();
    EXPECT_EQ(fake.settings.get("System", "MonitorMode"), "1");
    EXPECT_TRUE(session.dayMode());
    commands.nightMode();
    EXPECT_EQ(fake.settings.get("System", "MonitorMode"), "0");
    EXPECT_FALSE(session.dayMode());
    EXPECT_EQ(fake.windows.calls.back(), "night");
}

TEST_F(Commands, OtherWindowsOpenTheTwoMainTablesAndAMonitorSessionByACode) {
    fake.windows.calls.clear();
    session.CurrentUnit(3);
    commands.Load_Command(0);
    EXPECT_EQ(fake.windows.calls.back(), "table ADV Ignition Advance Table");
    commands.Load_Command(1);
    EXPECT_EQ(fake.windows.calls.back(), "table VE Volumetric Efficiency Table");
    commands.Load_Command(2);
    EXPECT_TRUE(session.Monitoring);
    commands.Load_Command(3);
    EXPECT_FALSE(session.Monitoring);
    const auto calls = fake.windows.calls;
    commands.Load_Command(4);
    EXPECT_EQ(fake.windows.calls, calls);
}

TEST_F(Commands, AMonitorSessionFollowsTheSettingAndItsEndResetsTheDashboard) {
    fake.settings.set("System", "AutoMonitor", "1");
    commands.unit.loadCommand(2);
    EXPECT_TRUE(session.Monitoring);
    EXPECT_TRUE(session.AutoMonitoring);
    EXPECT_TRUE(fake.port.isOpen());
    commands.unit.loadCommand(3);
    EXPECT_FALSE(session.Monitoring);
    EXPECT_FALSE(session.AutoMonitoring);
}

TEST_F(Commands, AClosedPortIsOpenedAsSoonAsItAppears) {
    fake.port.presentNumber = 0;
    session.link.load();
    EXPECT_FALSE(fake.port.isOpen());
    session.poll(false);
    EXPECT_FALSE(fake.port.isOpen());
    fake.port.presentNumber = 1;
    fake.clock.nowUs += 1'000'000;
    session.poll(false);
    EXPECT_TRUE(fake.port.isOpen());
}

TEST_F(Commands, AChosenPortIsStoredWithItsDeviceAndOpenedAnewAsThat) {
    session.link.load();
    fake.port.presentNumber = 4;
    commands.unit.choosePort(4);
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "4");
    EXPECT_EQ(fake.settings.get("System", "CommPortIdentity"), "fake");
    fake.port.presentNumber = 5;
    commands.unit.loadCommand(2);  // opens it anew
    EXPECT_TRUE(fake.port.isOpen());
    EXPECT_EQ(session.link.commPort(), 5);
    EXPECT_EQ(session.linkDisplay.status().port, "5");
}

TEST_F(Commands, AFileThatWasCutLoadsAndABoxAndTheLogTellWhatItHasLost) {
    open(ofLength(1750, "cut.ZQ4OA"));
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_EQ(box().title, "Damaged File");
    EXPECT_THAT(box().text,
                HasSubstr("FILE POSSIBLY CORRUPT:   cut.ZQ4OA\n"
                          "The file ends early: 1081 of its 2828 cells are missing and were taken "
                          "as 0.\n"));
    EXPECT_TRUE(logged("Short file: 7000 of 11324 bytes. What is missing was taken as 0."));
}

// The first programs wrote no notes.
TEST_F(Commands, AFileAsShortAsAnOlderProgramWroteItOpensWithoutABox) {
    open(ofLength(3 + 2328, "early.ZQ4OA"));
    EXPECT_EQ(session.slotInHand(), 3);
    for (const Box& each : boxes()) EXPECT_NE(each.title, "Damaged File");
    EXPECT_TRUE(logged("Short file: 9324 of 11324 bytes. What is missing was taken as 0."));
}

TEST_F(Commands, AWholeFileBehindACutOneIsNoLongerDoubted) {
    const std::string path = ofLength(1750, "cut.ZQ4OA");
    open(path);
    EXPECT_EQ(session.currentUnitObject().facts().cellsCutOff, 1081);
    open(file("whole.ZQ4OA"));
    EXPECT_EQ(session.currentUnitObject().facts().cellsCutOff, 0);
    open(path);
    commands.files.close();
    EXPECT_EQ(session.Units(3).facts().cellsCutOff, 0);
}

TEST_F(Commands, AFailedPortSearchGoesBackToTheUsersPort) {
    fake.yield.passing = [this] { fake.clock.nowUs += 60'000; };
    session.link.commPort(1);
    EXPECT_EQ(commands.unit.autodetectPort(), 0);
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_EQ(session.notices.text(fake.clock.nowUs),
              "Could not Find ORB Unit.  Please check the serial connection.");
    EXPECT_EQ(session.link.commPort(), 1);
    EXPECT_TRUE(fake.port.isOpen());
}

}  // namespace
}  // namespace zentaq
