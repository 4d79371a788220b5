#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTimer>

#include "windows/splash.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class StartSequence : public WindowTest {};

TEST_F(StartSequence, BringsUpTheFrameTheWorkspaceAndTheDashboard) {
    EXPECT_TRUE(windows.main().isVisible());
    ASSERT_NE(windows.config(), nullptr);
    ASSERT_NE(windows.dashboard(), nullptr);
    EXPECT_TRUE(windows.config()->isVisible());
    EXPECT_TRUE(windows.dashboard()->isVisible());
    EXPECT_LT(windows.dashboard()->mapTo(&windows.main(), QPoint()).y(),
              windows.config()->mapTo(&windows.main(), QPoint()).y())
        << "the dashboard stands above the workspace";
}

TEST_F(StartSequence, EndsWithTheToolbarEnabledAndTheSplashHidden) {
    EXPECT_TRUE(find<QToolBar>("Toolbar1")->isEnabled());
    ASSERT_NE(windows.splashWindow(), nullptr);
    EXPECT_FALSE(windows.splashWindow()->isVisible());
    EXPECT_EQ(windows.splashWindow()->findChild<QLabel*>("lblOperation")->text(), "    Program Activated");
}

TEST_F(StartSequence, TheSplashHidesItselfOnlyWhileTheProgramStarts) {
    fake.session.StartingUp = 1;
    windows.splash("Starting");
    EXPECT_FALSE(windows.splashWindow()->isVisible());
    fake.session.StartingUp = 0;
    windows.splash("Working");
    EXPECT_TRUE(windows.splashWindow()->isVisible());
}

TEST_F(StartSequence, EndsWithTheFocusInTheWorkspace) {
    const QWidget* focus = windows.main().focusWidget();
    ASSERT_NE(focus, nullptr);
    EXPECT_TRUE(windows.config()->isAncestorOf(focus));
}

TEST_F(StartSequence, EndsWithTheFirstTabSelectedAndTheSecondHidden) {
    const auto* tabs = find<QTabWidget>("sstMenu");
    EXPECT_EQ(tabs->currentIndex(), 0);
    EXPECT_FALSE(tabs->isTabVisible(1));
}

TEST_F(StartSequence, ShowsTheBannerInTheConsole) {
    windows.refresh();
    const QAbstractItemModel* model = find<QListView>("lstLog")->model();
    QStringList lines;
    for (int row = 0; row < model->rowCount(); ++row) lines.append(model->index(row, 0).data().toString());
    const auto ruler = lines.indexOf(QString(80, '-'));
    ASSERT_GE(ruler, 0);
    ASSERT_LT(ruler + 2, lines.size());
    EXPECT_EQ(lines[ruler + 1].trimmed(), "12:34:56 - Norvalia Zentaq Engine Management Software");
    EXPECT_EQ(lines[ruler + 2].trimmed(), "12:34:56 - v4.10.2");
}

/// The user closes the frame while a splash text is held.
TEST(StartSequenceInterrupted, LeavesNoWindowBehind) {
    FakeSession fake;
    MainCommands commands{fake.session};
    Kernel kernel{fake.session, commands};
    WindowManager windows{*qApp, fake.session, commands, kernel};
    fake.settings.set("System", "FileOpen", "0");
    QTimer::singleShot(20, &windows.main(), &QWidget::close);
    kernel.load();
    EXPECT_TRUE(windows.closed());
    EXPECT_FALSE(windows.main().isVisible());
    EXPECT_EQ(windows.dashboard(), nullptr);
}

}  // namespace
}  // namespace zentaq
