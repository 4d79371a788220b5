#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTimer>

#include "windows/splash.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using testing::Contains;
using testing::HasSubstr;

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

TEST_F(StartSequence, TheSplashTellsTheVersionFromItsFirstTextOn) {
    ASSERT_NE(windows.splashWindow(), nullptr);
    EXPECT_EQ(windows.splashWindow()->findChild<QLabel*>("lblProduct")->text().toStdString(),
              "Norvalia Zentaq Engine Management System  4.10.2");
}

TEST_F(StartSequence, TheSplashHidesItselfOnlyWhileTheProgramStarts) {
    fake.session.StartingUp = 1;
    windows.open(window::splash, "Starting");
    EXPECT_FALSE(windows.splashWindow()->isVisible());
    fake.session.StartingUp = 0;
    windows.open(window::splash, "Working");
    EXPECT_TRUE(windows.splashWindow()->isVisible());
}

TEST_F(StartSequence, EndsWithTheFocusInTheWorkspace) {
    const QWidget* focus = windows.main().focusWidget();
    ASSERT_NE(focus, nullptr);
    EXPECT_TRUE(windows.config()->isAncestorOf(focus));
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

/// A start that does something while a splash text is held.
class HeldStart : public testing::TestWithParam<const char*> {
 protected:
    FakeSession fake;
    MainCommands commands{fake.session};
    Kernel kernel{fake.session, commands};
    ProgramWindows windows{*qApp, fake.session, commands, kernel};
    QTimer watch;
    bool held = false;

    ~HeldStart() override { windows.killTimers(); }

    template <typename Event>
    void startWith(const char* text, Event&& event) {
        QObject::connect(&watch, &QTimer::timeout, &watch, [this, text, event] {
            const FrmSplash* splash = windows.splashWindow();
            if (held || splash == nullptr || !splash->isVisible()) return;
            if (splash->findChild<QLabel*>("lblOperation")->text() != QString("    ") + text) return;
            held = true;
            event();
        });
        watch.start(5);
        kernel.load();
        EXPECT_TRUE(held);
    }
};

TEST_P(HeldStart, ClosingTheFrameEndsTheProgramAndLeavesNoWindowBehind) {
    startWith(GetParam(), [this] { windows.main().close(); });
    EXPECT_TRUE(windows.closed());
    EXPECT_EQ(windows.dashboard(), nullptr);
    EXPECT_FALSE(windows.splashWindow()->isVisible());
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        EXPECT_FALSE(window->isVisible()) << window->objectName().toStdString();
    }
    EXPECT_FALSE(fake.ticker.running());
    EXPECT_FALSE(fake.port.isOpen());
    EXPECT_TRUE(fake.dialogs.boxes.empty());
    EXPECT_TRUE(fake.dialogs.requests.empty()) << "nobody is asked for a file any more";
    EXPECT_THAT(fake.session.console.lines(), Contains(HasSubstr("System Shutdown!")).Times(1));
}

TEST_P(HeldStart, ACommandOfTheMenuWaitsForTheEndOfTheStart) {
    fake.settings.set("System", "FileOpen", "0");
    startWith(GetParam(), [this] {
        windows.main().refresh();
        windows.main().findChild<QAction*>("mnuOpen")->trigger();
    });
    EXPECT_TRUE(fake.dialogs.requests.empty());
    windows.main().findChild<QAction*>("mnuOpen")->trigger();
    EXPECT_EQ(fake.dialogs.requests.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(EachText, HeldStart,
                         testing::Values("Setting Up Environment", "Initializing Console",
                                         "Initializing Database", "Program Activated"),
                         [](const auto& text) { return QString(text.param).remove(u' ').toStdString(); });

}  // namespace
}  // namespace zentaq
