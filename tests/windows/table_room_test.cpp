// How the workspace shares its room: rows of a table in sight, what folds for them and where the keyboard
// goes.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QScrollBar>
#include <QToolButton>

#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class TableRoom : public TableWindowsTest {
 protected:
    FrmConfig& config() { return *windows.config(); }
    ConfigBottom& bottom() { return *find<ConfigBottom>("fraMessages"); }
    QToolButton* foldButton() { return find<QToolButton>("cmdFoldMessages"); }
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
    windows.tell(&WindowNews::restoreLayout);
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
        bottom().toggle();
        EXPECT_EQ(QApplication::focusWidget(), foldButton()) << name;
        bottom().toggle();
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
    bottom().toggle();
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    config().toggleTree();
    EXPECT_EQ(QApplication::focusWidget(), &grid());
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
            all.push_back(form()
                              .findChild<QToolButton*>(QStringLiteral("Toolbar1_") + QLatin1String(name))
                              ->geometry());
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

}  // namespace
}  // namespace zentaq
