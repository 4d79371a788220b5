// The open and save commands on files of the older generation.
#include "app/command_fixture.h"
#include "base/errors.h"
#include "unit/old_file_encoder.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using zentaq::testing::LegacyFile;

constexpr const char* updated =
    "Your BIN file has been updated to work with this firmware.\n"
    "You should do a Save As... and reprogram your unit.";
constexpr const char* oldFormat =
    "This is an old format file.  You MUST do a 'Save As...' to save the file again.";

class OldFileCommands : public CommandTest {
 protected:
    std::string file(const std::string& name, std::size_t bytes = 8704) {
        LegacyFile cells(static_cast<int>(bytes / 4));
        cells[292] = 1;
        cells[58] = 6500;
        std::string content = cells.bytes();
        content.resize(bytes, '\0');
        return fake.folder.write(name, content);
    }
    std::vector<std::string> boxTexts() {
        std::vector<std::string> texts;
        for (const Box& box : boxes()) texts.push_back(box.text);
        return texts;
    }
};

TEST_F(OldFileCommands, EachLengthOpensAsItsKind) {
    const std::pair<std::size_t, int> lengths[] = {{8704, 3}, {8720, 3}, {9312, 4}, {4804, 5}};
    for (const auto& [bytes, slot] : lengths) {
        const std::string path = file("tune.BIN", bytes);
        boxes().clear();
        open(path);
        EXPECT_EQ(session.slotInHand(), slot) << bytes;
        EXPECT_EQ(session.CurrentFile, path);
        EXPECT_EQ(unit().BinFile(), path);
        EXPECT_EQ(unit().get("REV_Limiter"), 6500);
        EXPECT_EQ(session.FileFilterIndex, unit().kind().fileFilter);
        EXPECT_EQ(session.header().fileState, "OLD");
        EXPECT_FALSE(session.DataModified);
        EXPECT_EQ(fake.windows.title, "Current Calibration File: " + path);
        EXPECT_THAT(boxTexts(), ElementsAre(updated, oldFormat));
        EXPECT_TRUE(logged("Opened Bin File: "));
        EXPECT_TRUE(logged("Loaded Calibration: "));
        EXPECT_FALSE(logged("Short file")) << "old files have their own lengths";
    }
}

TEST_F(OldFileCommands, TheExtensionCountsInSmallLettersToo) {
    open(file("tune.bin"));
    EXPECT_EQ(session.slotInHand(), 3);
}

TEST_F(OldFileCommands, OtherLengthsEndInTheFormatBoxWithTheFormerCalibrationInPlace) {
    const std::string first = file("first.BIN");
    open(first);
    for (const std::size_t bytes : {std::size_t{0}, std::size_t{8703}, std::size_t{8705}, std::size_t{8718},
                                    std::size_t{11324}, std::size_t{20000}}) {
        boxes().clear();
        open(fake.folder.write("other.BIN", std::string(bytes, '\0')));
        EXPECT_THAT(boxes(),
                    ElementsAre(IsBox("File Format Error", "INCORRECT FILE SIZE:   " + std::to_string(bytes) +
                                                               "\nEnter a new filename?")));
        EXPECT_EQ(session.CurrentFile, first);
        EXPECT_EQ(unit().get("REV_Limiter"), 6500);
    }
}

TEST_F(OldFileCommands, YesAtTheFormatBoxAsksForAnotherFile) {
    const std::string good = file("good.BIN");
    fake.dialogs.files = {fake.folder.write("bad.BIN", "12345"), good};
    fake.dialogs.answers = {Answer::Yes};
    commands.files.open();
    EXPECT_EQ(fake.dialogs.requests.size(), 2u);
    EXPECT_EQ(session.CurrentFile, good);
}

TEST_F(OldFileCommands, ACustomSensorIsToldBeforeTheUpdate) {
    LegacyFile cells;
    cells[292] = 5;
    open(fake.folder.write("custom.BIN", cells.bytes()));
    EXPECT_THAT(boxTexts(),
                ElementsAre(HasSubstr("appears to use a custom MAP sensor."), updated, oldFormat));
}

TEST_F(OldFileCommands, SaveGoesTheWayOfSaveAsAndLeavesTheOldFileWhole) {
    const std::string path = file("tune.BIN");
    const std::string before = TemporaryFolder::read(path);
    open(path);
    const std::string target = fake.folder.path("tune.ZQ4OA");
    fake.dialogs.files = {target};
    commands.saves.save();
    EXPECT_EQ(fake.dialogs.requests.back().suggestedName, "tune.ZQ4OA");
    EXPECT_EQ(TemporaryFolder::read(path), before);
    EXPECT_EQ(std::filesystem::file_size(target), 11324u);
    EXPECT_EQ(floatAt(TemporaryFolder::read(target), 0), 3.0F);
    EXPECT_EQ(session.CurrentFile, target);
    fake.dialogs.requests.clear();
    commands.saves.save();  // from now on a calibration like any other
    EXPECT_THAT(fake.dialogs.requests, IsEmpty());
}

TEST_F(OldFileCommands, ACancelledSaveWritesNothing) {
    const std::string path = file("tune.BIN");
    const std::string before = TemporaryFolder::read(path);
    open(path);
    commands.saves.save();
    EXPECT_EQ(TemporaryFolder::read(path), before);
    EXPECT_EQ(session.CurrentFile, path);
}

TEST_F(OldFileCommands, ChangesAreSavedUnderANewNameBeforeAnotherFileComes) {
    const std::string path = file("tune.BIN");
    const std::string before = TemporaryFolder::read(path);
    const std::string target = fake.folder.path("kept.ZQ4OA");
    const std::string second = file("second.BIN", 9312);
    open(path);
    unit().set("KNK_MIN", 50.0);
    session.markModified();
    boxes().clear();
    fake.dialogs.files = {target, second};
    commands.files.open();
    EXPECT_EQ(boxes()[0].text, "Save changes?");
    EXPECT_EQ(TemporaryFolder::read(path), before);
    EXPECT_EQ(std::filesystem::file_size(target), 11324u);
    EXPECT_EQ(session.CurrentFile, second);
    EXPECT_EQ(session.slotInHand(), 4);
}

TEST_F(OldFileCommands, AWantedSaveThatIsCancelledKeepsTheCalibrationInHand) {
    const std::string path = file("tune.BIN");
    open(path);
    unit().set("KNK_MIN", 50.0);
    session.markModified();
    commands.files.open();  // OK to save, then no name
    EXPECT_EQ(session.CurrentFile, path);
    EXPECT_TRUE(session.DataModified);
    EXPECT_EQ(unit().get("KNK_MIN"), 50);
}

/// Windows that cannot show a box while a file is read.
class FailingWindows : public RecordingWindows {
 public:
    void later(const std::function<void()>&) override { throw Failure("no window"); }
};

TEST_F(OldFileCommands, AnImportThatFailsHalfWayLeavesTheFormerCalibration) {
    const std::string first = file("first.BIN");
    open(first);
    LegacyFile other(2328);
    other[58] = 8000;
    FailingWindows failing;
    session.attach(failing);
    boxes().clear();
    open(fake.folder.write("other.BIN", other.bytes()));
    session.attach(fake.windows);
    EXPECT_THAT(boxes(), ElementsAre(IsBox(
                             "File Read Error",
                             "FILE POSSIBLY CORRUPT:   other.BIN\nDo you want to enter a new filename?")));
    EXPECT_TRUE(logged("Calibration file not read: no window"));
    EXPECT_EQ(session.CurrentFile, first);
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_EQ(unit().get("REV_Limiter"), 6500);
    EXPECT_EQ(session.Units(4).get("REV_Limiter"), 0);
}

TEST_F(OldFileCommands, ACalibrationOfAnExactLengthOpensThoughItsFirstNumberNamesNoKind) {
    const std::pair<std::size_t, int> lengths[] = {{8718, 3}, {9324, 4}, {9320, 6}, {9316, 7}, {4816, 5}};
    for (const auto& [bytes, slot] : lengths) {
        open(fake.folder.write("old.ZQ4OA", std::string(bytes, '\0')));
        EXPECT_EQ(session.slotInHand(), slot) << bytes;
    }
}

}  // namespace
}  // namespace zentaq
