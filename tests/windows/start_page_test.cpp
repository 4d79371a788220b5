#include "windows/start_page.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <QScrollBar>
#include <QTreeWidget>

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class StartPageTest : public WindowTest {
 protected:
    QListWidget* list(const char* name) { return find<QListWidget>(name); }
    void click(const char* name, int row) {
        Q_EMIT list(name)->itemClicked(list(name)->item(row));
        QApplication::processEvents();
    }
};

TEST_F(StartPageTest, HasNothingRecentOnAFreshInstallation) {
    EXPECT_EQ(list("lstRecent")->count(), 0);
    EXPECT_FALSE(list("lstRecent")->isVisible());
    EXPECT_EQ(find<QLabel>("lblStart")->text(), "No calibration in hand.");
}

TEST_F(StartPageTest, AFileThatWasInHandOpensWithOneClick) {
    openCalibration();
    const std::string path = fake.session.CurrentFile;
    commands.files.close();
    ASSERT_EQ(list("lstRecent")->count(), 1);
    EXPECT_TRUE(list("lstRecent")->item(0)->text().startsWith("tune.ZQ4OA  ("));
    EXPECT_EQ(list("lstRecent")->item(0)->toolTip().toStdString(), path);
    click("lstRecent", 0);
    EXPECT_EQ(fake.session.CurrentFile, path);
    EXPECT_EQ(find<QLabel>("lblStart")->text().toStdString(), "Calibration in hand: " + path);
}

TEST_F(StartPageTest, ADoubleClickOpensOnce) {
    openCalibration();
    commands.files.close();
    auto* item = list("lstRecent")->item(0);
    Q_EMIT list("lstRecent")->itemClicked(item);
    Q_EMIT list("lstRecent")->itemActivated(item);
    QApplication::processEvents();
    const auto& lines = fake.session.console.lines();
    EXPECT_EQ(
        std::ranges::count_if(
            lines, [](const std::string& line) { return line.find("Opened Calibration") != line.npos; }),
        2)
        << "the first opening and this one";
}

TEST_F(StartPageTest, AFileThatHasGoneLeavesTheListAndIsTold) {
    openCalibration();
    const std::string path = fake.session.CurrentFile;
    commands.files.close();
    std::filesystem::remove(path);
    fake.dialogs.boxes.clear();
    click("lstRecent", 0);
    EXPECT_EQ(list("lstRecent")->count(), 0);
    windows.main().refresh();
    EXPECT_TRUE(find<StripButton>("stripNotice")->accessibleName().startsWith("Not there any more: "));
    EXPECT_TRUE(fake.dialogs.boxes.empty());
}

TEST_F(StartPageTest, SamplesThatComeWithTheProgramOpen) {
    std::filesystem::create_directory(fake.folder.path("samples"));
    const std::string sample = fake.folder.path("samples/Turbo.ZQ4OA");
    std::filesystem::copy_file(calibrationFile(), sample);
    windows.showUnit();
    ASSERT_EQ(list("lstSamples")->count(), 1);
    click("lstSamples", 0);
    EXPECT_EQ(fake.session.CurrentFile, sample);
}

TEST_F(StartPageTest, HasTheKeyboardWhileThereIsNothingInTheTree) {
    windows.focus(window::config);
    EXPECT_EQ(windows.main().focusWidget(), find<QPushButton>("cmdStartNew"));
    openCalibration();
    windows.focus(window::config);
    EXPECT_EQ(windows.main().focusWidget(), find<QTreeWidget>("treeZentaq"));
    commands.files.close();
    EXPECT_EQ(windows.main().focusWidget(), find<QPushButton>("cmdStartNew"));
}

TEST(StartPageAlone, ScrollsToTheEndOfItsLongestName) {
    StartPage page(nullptr);
    page.resize(400, 300);
    page.showFiles({}, {"/samples/A.ZQ4OA", "/samples/" + std::string(80, 'w') + ".ZQ4OA"});
    page.show();
    QApplication::processEvents();
    EXPECT_GT(page.findChild<QListWidget*>("lstSamples")->horizontalScrollBar()->maximum(), 0);
}

TEST(StartPageAlone, ShowsNamesEscaped) {
    StartPage page(nullptr);
    page.showFiles({"/a/x\x1B[31m<b>.ZQ4OA"}, {});
    EXPECT_EQ(page.findChild<QListWidget*>("lstRecent")->item(0)->text(), "x\\x1B[31m<b>.ZQ4OA  (a)");
}

}  // namespace
}  // namespace zentaq
