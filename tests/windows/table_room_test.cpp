// How the workspace shares its room: rows of a table in sight, what folds for them and where the keyboard
// goes.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QScrollBar>
#include <QToolButton>
#include <QTreeWidgetItemIterator>
#include <set>

#include "qt/wrap_layout.h"

#include "windows/key_press.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class TableRoom : public TableWindowsTest {
 protected:
    FrmConfig& config() { return *windows.config(); }
    ConfigBottom& bottom() { return *find<ConfigBottom>("fraMessages"); }
    QToolButton* foldButton() { return find<QToolButton>("cmdFoldMessages"); }
    QTreeWidget& tree() { return *find<QTreeWidget>("treeZentaq"); }
    QToolButton* treeButton() { return find<QToolButton>("cmdFoldTree"); }
    QToolButton* barButton(const char* name) {
        return form().findChild<QToolButton*>(QStringLiteral("Toolbar1_") + QLatin1String(name));
    }
    FrmDashBoard& dashboard() { return *find<FrmDashBoard>("frmDashBoard"); }
    QToolButton* dashboardButton() { return find<QToolButton>("cmdFoldDashboard"); }
    bool dashboardFolded() { return dashboard().height() <= 3 * dashboard().fontMetrics().height(); }
    bool open(const char* entry) {
        windows.main().refresh();
        return find<QAction>(entry)->isChecked();
    }
    void frame(int width, int height) {
        windows.main().setWindowState(Qt::WindowNoState);
        windows.main().resize(width, height);
        windows.main().show();
        settle();
        settle();
    }
    /// Rows whose whole height is inside the grid, and the grid inside the frame.
    int rowsInSight() {
        const QRect seen = grid().viewport()->rect();
        int rows = 0;
        for (int row = 1; row <= 16; ++row) {
            const QRect cell = grid().cellRect(row, 1);
            if (cell.top() >= seen.top() && cell.bottom() <= seen.bottom()) ++rows;
        }
        return rows;
    }
};

TEST_F(TableRoom, SixteenRowsAndTheAxisAreInSightOnASmallLaptop) {
    frame(1366, 700);
    openVe();
    settle();
    ASSERT_EQ(windows.main().size(), QSize(1366, 700));
    EXPECT_EQ(rowsInSight(), 16);
    EXPECT_TRUE(grid().horizontalHeader()->isVisible());
    EXPECT_FALSE(grid().verticalScrollBar()->isVisible());
    EXPECT_FALSE(grid().horizontalScrollBar()->isVisible());
    const QPoint end = grid().mapTo(&windows.main(), grid().rect().bottomRight());
    EXPECT_TRUE(windows.main().rect().contains(end));
    EXPECT_GE(grid().rowHeight(0), grid().fontMetrics().height());
}

TEST_F(TableRoom, DigitsRowsAndColumnsGrowWithTheWindow) {
    frame(1366, 700);
    openVe();
    settle();
    const int letters = grid().fontMetrics().height();
    const int row = grid().rowHeight(0);
    const int column = grid().columnWidth(0);
    frame(1920, 1012);
    EXPECT_EQ(rowsInSight(), 16);
    EXPECT_GT(grid().fontMetrics().height(), letters);
    EXPECT_GT(grid().rowHeight(0), row);
    EXPECT_GT(grid().columnWidth(0), column);
    EXPECT_FALSE(grid().horizontalScrollBar()->isVisible());
    EXPECT_LE(grid().growth(), 1.8) << "and no further";
    frame(1366, 700);
    EXPECT_EQ(grid().fontMetrics().height(), letters) << "and shrink with it";
}

TEST_F(TableRoom, MessagesAndLinkFoldByThemselvesWhereRoomIsShort) {
    frame(1920, 1012);
    EXPECT_FALSE(bottom().folded());
    frame(1366, 700);
    EXPECT_TRUE(bottom().folded());
    frame(1920, 1012);
    EXPECT_FALSE(bottom().folded());
    EXPECT_EQ(fake.settings.get("Forms", "foldMessages"), "") << "nobody has chosen anything";
}

TEST_F(TableRoom, TheUsersOwnFoldingIsKept) {
    frame(1920, 1012);
    foldButton()->click();
    EXPECT_TRUE(bottom().folded());
    EXPECT_EQ(fake.settings.get("Forms", "foldMessages"), "1");
    frame(1366, 700);
    frame(1920, 1012);
    EXPECT_TRUE(bottom().folded());
    commands.restoreLayout();
    EXPECT_FALSE(bottom().folded());
}

TEST_F(TableRoom, FoldedTheyTellTheLastMessageAndTheLink) {
    frame(1366, 700);
    fake.session.sysLog("Loaded the tune.");
    LinkStatus& status = fake.session.linkDisplay.editStatus();
    status.title = "Monitoring...";
    status.line2 = "";
    status.trouble = "";
    status.unitLabel = "A Std";
    status.send = Lamp::Sending;
    windows.refresh();
    EXPECT_TRUE(find<QLabel>("lblLastMessage")->text().endsWith(" - Loaded the tune."));
    EXPECT_TRUE(find<QLabel>("lblLinkLine")->text().startsWith("Monitoring...  ORB A Std"));
    EXPECT_TRUE(find<QLabel>("lblLine_Send")->isVisible());
    EXPECT_EQ(find<QLabel>("lblLine_Send")->accessibleDescription(), "sending");
    EXPECT_EQ(find<QLabel>("lblLine_Rcv")->accessibleDescription(), "at rest");
    EXPECT_FALSE(find<QListView>("lstLog")->isVisible());
    EXPECT_FALSE(find<QComboBox>("cmbCOMM")->isVisible());
}

TEST_F(TableRoom, KeyboardInsideWhatFoldsGoesToWhatOpensIt) {
    frame(1920, 1012);
    for (const char* name : {"lstLog", "cmbCOMM"}) {
        find<QWidget>(name)->setFocus();
        ASSERT_EQ(QApplication::focusWidget(), find<QWidget>(name));
        commands.toggleMessages();
        EXPECT_EQ(QApplication::focusWidget(), foldButton()) << name;
        commands.toggleMessages();
        EXPECT_EQ(QApplication::focusWidget(), foldButton()) << "and stays there";
    }
    find<QWidget>("lstLog")->setFocus();
    frame(1366, 700);
    EXPECT_EQ(QApplication::focusWidget(), foldButton()) << "also where they fold by themselves";
}

TEST_F(TableRoom, KeyboardElsewhereStaysWhereItIs) {
    frame(1920, 1012);
    openVe();
    grid().setFocus();
    commands.toggleMessages();
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    commands.toggleTree();
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}

// What is folded behind another window must not leave its keyboard to a cell: the next digit would be a
// value.
TEST_F(TableRoom, KeyboardOfAFrameBehindAnotherWindowGoesToWhatOpensThemToo) {
    frame(1920, 1012);
    openVe();
    Q_EMIT form().dockingAsked(false);
    settle();
    const std::pair<QWidget*, QToolButton*> places[] = {{find<QWidget>("cmbCOMM"), foldButton()},
                                                        {find<QWidget>("lstLog"), foldButton()},
                                                        {&tree(), treeButton()}};
    for (const auto& [inHand, button] : places) {
        activate(windows.main());
        inHand->setFocus();
        activate(form());
        ASSERT_EQ(QApplication::activeWindow(), &form());
        button == treeButton() ? commands.toggleTree() : commands.toggleMessages();
        settle();
        EXPECT_FALSE(inHand->isVisible());
        EXPECT_EQ(windows.main().focusWidget(), button) << inHand->objectName().toStdString();
        button == treeButton() ? commands.toggleTree() : commands.toggleMessages();
    }
}

TEST_F(TableRoom, KeysAndEntriesOfTheViewMenuFoldAndTellHowItIs) {
    frame(1920, 1012);
    activate(windows.main());
    tree().setFocus();
    EXPECT_TRUE(open("mnuFoldMessages"));
    EXPECT_TRUE(open("mnuFoldTree"));
    pressKey(Qt::Key_F9);
    EXPECT_TRUE(bottom().folded());
    EXPECT_FALSE(open("mnuFoldMessages"));
    EXPECT_TRUE(open("mnuFoldTree"));
    pressKey(Qt::Key_F9, Qt::ShiftModifier);
    EXPECT_FALSE(tree().isVisible());
    EXPECT_FALSE(open("mnuFoldTree"));
    find<QAction>("mnuFoldMessages")->trigger();
    EXPECT_FALSE(bottom().folded());
    EXPECT_TRUE(open("mnuFoldMessages"));
    find<QAction>("mnuRestoreLayout")->trigger();
    EXPECT_TRUE(tree().isVisible());
    EXPECT_TRUE(open("mnuFoldTree"));
}

TEST_F(TableRoom, TheViewMenuKnowsWhatFoldedByItselfAMomentAgo) {
    frame(1920, 1012);
    auto* entry = find<QAction>("mnuFoldMessages");
    ASSERT_TRUE(open("mnuFoldMessages"));
    frame(1366, 700);
    auto* menu = find<QMenu>("mnuView");
    menu->popup({10, 10});
    EXPECT_FALSE(entry->isChecked());
    menu->close();
    entry->trigger();
    EXPECT_FALSE(bottom().folded()) << "opened in spite of the room";
    EXPECT_TRUE(entry->isChecked());
}

TEST_F(TableRoom, TheDashboardGivesItsRoomToTheTableWhereItIsShortAndComesBack) {
    frame(1366, 700);
    openVe();
    const int high = dashboard().height();
    EXPECT_FALSE(dashboardFolded());
    frame(683, 345);
    EXPECT_TRUE(dashboardFolded());
    EXPECT_FALSE(open("mnuFoldDashboard"));
    EXPECT_TRUE(find<LiveLabel>("lblTach")->isVisible());
    EXPECT_TRUE(find<LiveLabel>("lblAAFR")->isVisible());
    EXPECT_FALSE(find<QWidget>("Tachometer")->isVisible());
    EXPECT_FALSE(find<QWidget>("shpOverRev")->isVisible()) << "dark, and gives its place to a number";
    dashboard().panel().overRevLamp->light(QColor(Qt::red));
    dashboard().panel().lampsChanged();
    EXPECT_TRUE(find<QWidget>("shpOverRev")->isVisible());
    dashboard().panel().setLive(false);
    EXPECT_TRUE(dashboard().panel().veil->isVisible());
    frame(1366, 700);
    EXPECT_EQ(dashboard().height(), high);
    EXPECT_TRUE(find<QWidget>("Tachometer")->isVisible());
    EXPECT_EQ(fake.settings.get("Forms", "foldDashboard"), "") << "nobody has chosen anything";
}

TEST_F(TableRoom, TheDashboardFoldsByHandKeepsThatAndDecidesAboutTheKeyboard) {
    frame(1366, 700);
    openVe();
    const int high = dashboard().height();
    const int workspace = config().height();
    activate(windows.main());
    find<QPushButton>("btnMore")->setFocus();
    ASSERT_TRUE(dashboard().isAncestorOf(QApplication::focusWidget()));
    pressKey(Qt::Key_F9, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(dashboardFolded());
    EXPECT_EQ(QApplication::focusWidget(), dashboardButton());
    EXPECT_GT(config().height(), workspace + high / 2);
    EXPECT_EQ(fake.settings.get("Forms", "foldDashboard"), "1");
    EXPECT_EQ(dashboardButton()->accessibleName(), "Open the dashboard");
    frame(1920, 1012);
    EXPECT_TRUE(dashboardFolded()) << "chosen by hand";
    frame(1366, 700);
    grid().setFocus();
    dashboardButton()->click();
    settle();
    EXPECT_EQ(dashboard().height(), high);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    commands.toggleDashboard();
    commands.restoreLayout();
    settle();
    EXPECT_EQ(dashboard().height(), high);
}

TEST_F(TableRoom, NamesOfTheTreeAreNeverCutButScrolledTo) {
    for (const QSize room : {QSize(1366, 700), QSize(683, 345)}) {
        frame(room.width(), room.height());
        openVe();
        const QFontMetrics metrics = tree().fontMetrics();
        int widest = 0;
        for (QTreeWidgetItemIterator at(&tree()); *at != nullptr; ++at) {
            const QRect place = tree().visualItemRect(*at);
            if (place.isEmpty()) continue;
            EXPECT_GE(place.width(), metrics.horizontalAdvance((*at)->text(0)))
                << (*at)->text(0).toStdString();
            widest = std::max(widest, place.right());
        }
        EXPECT_EQ(tree().textElideMode(), Qt::ElideNone);
        EXPECT_EQ(widest >= tree().viewport()->width(), tree().horizontalScrollBar()->maximum() > 0);
    }
}

TEST_F(TableRoom, TheUsersPlaceOfTheTreeStaysWhateverFileComes) {
    frame(1366, 700);
    auto* splitter = find<QSplitter>("splTree");
    splitter->setSizes({200, splitter->width() - 200});
    Q_EMIT splitter->splitterMoved(200, 1);
    const int place = splitter->sizes().at(0);
    ASSERT_NEAR(place, 200, 5);
    commands.files.close();
    settle();
    EXPECT_NEAR(splitter->sizes().at(0), place, 1);
    openCalibration();
    settle();
    EXPECT_NEAR(splitter->sizes().at(0), place, 1);
    commands.toggleTree();
    commands.toggleTree();
    settle();
    EXPECT_NEAR(splitter->sizes().at(0), place, 1);
    for (int i = 0; i < 20; ++i) windows.tell(&WindowNews::setupNodes);
    settle();
    EXPECT_NEAR(splitter->sizes().at(0), place, 1) << "nothing adds up";
}

TEST_F(TableRoom, TheTreeFoldsGivesItsRoomToTheTableAndItsKeyboardToWhatOpensIt) {
    frame(1366, 700);
    openVe();
    auto* tree = find<QTreeWidget>("treeZentaq");
    tree->setFocus();
    const int before = grid().width();
    find<QToolButton>("cmdFoldTree")->click();
    settle();
    EXPECT_FALSE(tree->isVisible());
    EXPECT_GT(grid().width(), before + 100);
    EXPECT_EQ(QApplication::focusWidget(), find<QToolButton>("cmdFoldTree"));
    EXPECT_EQ(fake.settings.get("Forms", "foldTree"), "1");
    config().focusTree();
    EXPECT_EQ(QApplication::focusWidget(), find<QToolButton>("cmdFoldTree"));
    find<QToolButton>("cmdFoldTree")->click();
    settle();
    EXPECT_TRUE(tree->isVisible());
    EXPECT_EQ(grid().width(), before);
}

TEST_F(TableRoom, ButtonsStayWhereTheyAreWhateverIsShown) {
    frame(1366, 700);
    openVe();
    const auto places = [&] {
        std::vector<QRect> all;
        for (const char* name : {"Home", "Save", "Overlay", "View", "Manage", "Print", "Docking", "Close"}) {
            all.push_back(barButton(name)->geometry());
        }
        return all;
    };
    const auto before = places();
    for (const char* command : {"Pulsewidth", "DutyCycle", "Absolute", "Colors"}) {
        tableAction(command)->trigger();
        settle();
        EXPECT_EQ(places(), before) << command;
    }
    windows.main().run("mnuAdvTbl");
    settle();
    EXPECT_EQ(places(), before) << "a table without fuel views";
}

TEST_F(TableRoom, TheBarHasOneLineAndItsPlacesWhateverTheNameOfTheAxis) {
    frame(1366, 700);
    openVe();
    auto* across = form().findChild<QLabel*>("lblAcross");
    auto* bar = form().findChild<QWidget*>("Toolbar1");
    const int height = bar->height();
    const QRect before = across->geometry();
    windows.main().run("mnuAdvTbl");
    settle();
    EXPECT_EQ(bar->height(), height);
    EXPECT_EQ(across->geometry(), before);
    fake.session.windows().open(window::table, "GPO1", "Full Table - Table#1");
    settle();
    EXPECT_EQ(bar->height(), height) << "its axes stand where the times of a fuel table do";
    auto* axis = form().findChild<QToolButton*>("Toolbar1_X");
    const QRect room = axis->geometry();
    unit().SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "ACTUAL AFR");
    form().Setup_Grid("", "");
    settle();
    EXPECT_EQ(axis->text(), "X: ACTUAL AFR");
    EXPECT_EQ(axis->geometry(), room);
    EXPECT_GE(axis->width(), axis->fontMetrics().horizontalAdvance(axis->text()));
}

TEST_F(TableRoom, TheLiveReadingHasItsColor) {
    frame(1366, 700);
    openVe();
    auto* reading = form().findChild<QLabel*>("lblDspTableVal");
    for (const bool day : {true, false}) {
        windows.main().run(day ? "mnuMonitor_DayMode" : "mnuMonitor_NightMode");
        EXPECT_EQ(reading->palette().color(QPalette::WindowText),
                  lookColors(day ? DisplayMode::Day : DisplayMode::Night).live);
    }
}

TEST_F(TableRoom, BadgesTellTheViewAndWhoMovesTheCursor) {
    frame(1366, 700);
    openVe();
    auto* view = form().findChild<QLabel*>("lblView");
    auto* hand = form().findChild<QLabel*>("lblCursor");
    EXPECT_EQ(view->text(), "VALUES");
    EXPECT_EQ(hand->text(), "FOLLOW");
    tableAction("DutyCycle")->trigger();
    EXPECT_EQ(view->text(), "DUTY %");
    key(Qt::Key_Right);
    EXPECT_EQ(hand->text(), "HOLD");
    EXPECT_GE(view->width(), view->sizeHint().width());
    key(Qt::Key_Escape);
    EXPECT_EQ(hand->text(), "FOLLOW");
}

TEST_F(TableRoom, WhatDoesNotFitTheBarStandsInASecondLine) {
    frame(1366, 700);
    openVe();
    Q_EMIT form().dockingAsked(false);
    for (const int width : {1000, 640, 420}) {
        form().resize(width, 400);
        settle();
        auto* bar = form().findChild<QWidget*>("Toolbar1");
        for (QWidget* part : bar->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (part->isHidden()) continue;
            EXPECT_TRUE(bar->rect().contains(part->geometry())) << width << part->objectName().toStdString();
        }
        EXPECT_TRUE(timeOfGap()->isVisible());
        EXPECT_GE(form().findChild<QLabel*>("lblDspTableVal")->width(),
                  digitsWidth(form().findChild<QLabel*>("lblDspTableVal")->fontMetrics(), 5));
    }
}

TEST_F(TableRoom, TheMostUsedButtonsKeepTheirWordsAsFarAsTheBarHasRoom) {
    openVe();
    Q_EMIT form().dockingAsked(false);
    const auto words = [&] {
        std::string said;
        for (const char* name : {"Save", "View", "Overlay", "Home", "Close", "Docking", "Print", "Manage"}) {
            said += barButton(name)->toolButtonStyle() == Qt::ToolButtonTextBesideIcon ? '1' : '0';
        }
        return said;
    };
    auto* bar = form().findChild<QWidget*>("Toolbar1");
    const auto* layout = static_cast<const WrapLayout*>(bar->layout());
    const int letters = bar->fontMetrics().averageCharWidth();
    std::set<std::string> seen;
    for (int width = 40 * letters; width < 260 * letters; width += 5 * letters) {
        form().resize(width, 400);
        settle();
        const std::string said = words();
        seen.insert(said);
        EXPECT_TRUE(std::ranges::is_sorted(said, std::greater<>())) << said << " at " << width;
        // No word costs the table a row, or takes a button away from the others.
        const auto lines = layout->lineCounts(bar->width());
        for (QToolButton* button : bar->findChildren<QToolButton*>()) {
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        }
        EXPECT_EQ(lines, layout->lineCounts(bar->width())) << width;
    }
    EXPECT_EQ(words(), "00000000") << "as this test left it";
    EXPECT_TRUE(seen.contains("11111111"));
    EXPECT_GE(seen.size(), 6u);
}

TEST_F(TableRoom, ASmallLaptopHasWordsOnTheBarWhileItIsOneLine) {
    frame(1366, 700);
    openVe();
    settle();
    auto* bar = form().findChild<QWidget*>("Toolbar1");
    EXPECT_EQ(static_cast<const WrapLayout*>(bar->layout())->lineCounts(bar->width()).size(), 1u);
    EXPECT_EQ(barButton("Save")->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
}

TEST_F(TableRoom, EveryButtonHasATipThatBeginsWithItsWordAndTellsItsKey) {
    openVe();
    const std::map<const char*, std::vector<const char*>> keys{
        {"Save", {}},  {"View", {"(Shift+A)", "(Shift+P)", "(Shift+D)"}},
        {"Home", {}},  {"Overlay", {"(Shift+O)"}},
        {"Print", {}}, {"Close", {"(Shift+X)"}},
        {"Manage", {}}};
    for (const auto& [name, all] : keys) {
        const QString tip = barButton(name)->toolTip();
        EXPECT_TRUE(tip.contains(name)) << tip.toStdString();
        EXPECT_GT(tip.size(), QString(name).size() + 5) << "it tells more than the word";
        for (const char* key : all) EXPECT_TRUE(tip.contains(key)) << tip.toStdString();
    }
    EXPECT_TRUE(barButton("Docking")->toolTip().startsWith("Undock"));
}

}  // namespace
}  // namespace zentaq
