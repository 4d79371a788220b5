#include "windows/window_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QProgressBar>
#include <QTimer>

#include "qt/qt_dialogs.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using Manager = WindowTest;

TEST_F(Manager, RemovingTheFormsEndsTheTableAtOnceSoThatItsLogLineStandsBeforeTheCommandsOwn) {
    openCalibration();
    commands.openTable("VE", "Volumetric Efficiency Table");
    ASSERT_NE(windows.table(), nullptr);
    windows.removeForms();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_THAT(fake.session.console.lines(),
                testing::Contains(testing::HasSubstr("TABLE App. Terminated.")));
}

TEST_F(Manager, WhatTheLinkTellsComesInItsOrderOneBoxAfterTheOther) {
    std::vector<std::string> order;
    windows.later([&] {
        order.emplace_back("first");
        QCoreApplication::processEvents();  // as a box that waits for its answer
        order.emplace_back("first ends");
    });
    windows.later([&] { order.emplace_back("second"); });
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(order, (std::vector<std::string>{"first", "first ends", "second"}));
}

TEST_F(Manager, AfterAWarningTheActiveFormHasTheFocus) {
    openCalibration();
    commands.openTable("VE", "Volumetric Efficiency Table");
    Messages& messages = fake.session.messages;
    windows.config()->findChild<QWidget*>("lstLog")->setFocus();
    messages.ActiveFormName = "frmTABLE";
    messages.Display_Warning(1005);
    const QWidget* focus = windows.main().focusWidget();
    ASSERT_NE(focus, nullptr);
    EXPECT_TRUE(focus == windows.table() || windows.table()->isAncestorOf(focus));

    find<QWidget>("Toolbar1")->setFocusPolicy(Qt::StrongFocus);
    find<QWidget>("Toolbar1")->setFocus();
    messages.ActiveFormName = "frmConfig";
    messages.Display_Warning(1005);
    EXPECT_TRUE(windows.config()->isAncestorOf(windows.main().focusWidget()));
}

TEST_F(Manager, ATableInAWindowOfItsOwnComesBackWhereItStood) {
    openCalibration();
    const auto undocked = [this] {
        commands.openTable("VE", "Volumetric Efficiency Table");
        if (windows.table()->docked()) windows.table()->findChild<QAction*>("Docking")->trigger();
        EXPECT_TRUE(windows.table()->isWindow());
    };
    undocked();
    windows.table()->setGeometry(50, 60, 600, 400);
    windows.table()->close();
    EXPECT_EQ(fake.settings.get("Forms", "frmTABLE"), "50 60 600 400 0");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    undocked();
    EXPECT_EQ(windows.table()->geometry(), QRect(50, 60, 600, 400));
    windows.table()->setGeometry(70, 80, 600, 400);
    windows.table()->findChild<QAction*>("Docking")->trigger();
    EXPECT_EQ(fake.settings.get("Forms", "frmTABLE"), "70 80 600 400 0");
}

TEST_F(Manager, WhatTheLinkTellsIsShownFromTheEventLoopAndNotFromInsideItsHandler) {
    const std::size_t boxes = fake.dialogs.boxes.size();
    fake.forLink.displayMessage(1002);
    EXPECT_EQ(fake.dialogs.boxes.size(), boxes);
    QCoreApplication::processEvents();
    ASSERT_EQ(fake.dialogs.boxes.size(), boxes + 1);
    EXPECT_EQ(lastBox().title, "Complete!");
}

TEST_F(Manager, AUnitThatIsFoundBeginsAMonitorSessionWhereTheOptionsAskForIt) {
    fake.settings.set("System", "AutoMonitor", "1");
    fake.forLink.heard({.event = LinkEvent::KindFound, .number = 3});
    EXPECT_FALSE(fake.session.Monitoring);  // not inside the reply
    QCoreApplication::processEvents();
    EXPECT_TRUE(fake.session.Monitoring);
    EXPECT_TRUE(fake.session.AutoMonitoring);
}

TEST_F(Manager, AUnitThatIsFoundBeginsNoMonitorSessionByItself) {
    for (const char* setting : {"", "0", "yes"}) {
        fake.settings.set("System", "AutoMonitor", setting);
        fake.forLink.heard({.event = LinkEvent::KindFound, .number = 3});
        QCoreApplication::processEvents();
        EXPECT_FALSE(fake.session.Monitoring) << setting;
    }
}

TEST_F(Manager, ARunningMonitorSessionIsNotBegunAgain) {
    fake.settings.set("System", "AutoMonitor", "1");
    fake.session.Monitoring = true;
    const std::size_t lines = fake.session.console.lines().size();
    fake.forLink.heard({.event = LinkEvent::KindFound, .number = 3});
    QCoreApplication::processEvents();
    EXPECT_EQ(fake.session.console.lines().size(), lines);  // opening the link would leave a line
}

TEST_F(Manager, ATransfersProgressTakesThePlaceOfThePort) {
    auto* progress = find<QProgressBar>("ProgressBar1");
    auto* port = find<QComboBox>("cmbCOMM");
    ASSERT_TRUE(progress && port);
    windows.main().resize(1920, 1012);  // a low window folds the panel
    QCoreApplication::processEvents();
    EXPECT_TRUE(port->isVisible());
    LinkStatus& status = fake.session.linkDisplay.editStatus();
    status.progressVisible = true;
    status.progressPercent = 40;
    windows.refresh();
    EXPECT_TRUE(progress->isVisible());
    EXPECT_EQ(progress->value(), 40);
    EXPECT_FALSE(port->isVisible());
    fake.session.linkDisplay.editStatus().progressVisible = false;
    windows.refresh();
    EXPECT_TRUE(port->isVisible());
}

TEST_F(Manager, TheInsideOfListsAndTablesFollowsDayAndNight) {
    openCalibration();
    commands.openTable("VE", "Volumetric Efficiency Table");
    std::vector<std::string> names;
    const auto insides = [&] {
        std::vector<QColor> colors;
        names.clear();
        for (auto* area : windows.main().findChildren<QAbstractScrollArea*>()) {
            if (qobject_cast<QHeaderView*>(area) != nullptr) continue;  // drawn as buttons
            names.push_back(area->objectName().toStdString());
            colors.push_back(area->viewport()->palette().color(QPalette::Base));
        }
        return colors;
    };
    windows.nightMode();
    const auto night = insides();
    windows.dayMode();
    const auto day = insides();
    windows.nightMode();
    ASSERT_GT(night.size(), 3u);
    ASSERT_EQ(night.size(), day.size());
    for (std::size_t i = 0; i < night.size(); ++i)
        EXPECT_GT(day[i].lightness(), night[i].lightness() + 100) << names[i];
    EXPECT_EQ(insides(), night);
}

TEST_F(Manager, BesideTheCellsATableThatWasOpenedAtNightIsAsBrightAsTheDay) {
    windows.nightMode();
    openCalibration();
    commands.openTable("VE", "Volumetric Efficiency Table");
    QCoreApplication::processEvents();
    QWidget* inside = windows.table()->grid().viewport();
    const auto beside = [&] { return inside->grab().toImage().pixelColor(inside->width() - 2, 2); };
    ASSERT_EQ(beside(), lookColors(DisplayMode::Night).surface);
    windows.dayMode();
    QCoreApplication::processEvents();
    EXPECT_EQ(beside(), lookColors(DisplayMode::Day).surface);
    for (const char* place : {"in a window of its own", "docked again"}) {
        windows.table()->findChild<QAction*>("Docking")->trigger();
        QCoreApplication::processEvents();
        EXPECT_EQ(beside(), lookColors(DisplayMode::Day).surface) << place;
    }
}

TEST_F(Manager, WhatTheLinkHasToTellWaitsForAQuestionThatIsAboutToGo) {
    QtDialogs dialogs;
    bool running = true;
    bool told = false;
    bool underTheQuestion = false;
    QTimer::singleShot(0, qApp, [&] {
        windows.later([&] {
            told = true;
            underTheQuestion = boxEndsByItself();
        });
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
        running = false;
    });
    const Box question{.title = "Transfer Running",
                       .text = "End the program all the same?",
                       .buttons = Buttons::YesNo,
                       .stands = [&] { return running; }};
    EXPECT_EQ(dialogs.show(question), Answer::No);
    while (!told) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_FALSE(underTheQuestion);
}

TEST_F(Manager, ATableShowsNoPaintOfTheCalibrationBefore) {
    openCalibration();
    Unit& unit = fake.session.currentUnitObject();
    commands.openTable("VE", "Volumetric Efficiency Table");
    windows.table()->Show_Current_Activity(0.5f, 0.5f);
    TableModel& model = *windows.table()->model();
    const GridCell cell = model.cursor().cell();
    const auto yellow = paintColour(Paint::Yellow);
    ASSERT_EQ(model.sheet().grid().colour(cell.row, cell.column), yellow);
    openCalibration();
    ASSERT_EQ(windows.table()->model()->sheet().table(), "VE");
    EXPECT_NE(windows.table()->model()->sheet().grid().colour(cell.row, cell.column), yellow);
    EXPECT_EQ(fake.session.paintMemory.at(cell.row, cell.column), Paint::White);
    EXPECT_EQ(&unit, &fake.session.currentUnitObject()) << "the same object holds both";
}

}  // namespace
}  // namespace zentaq
