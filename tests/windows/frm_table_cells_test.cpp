// The commands on a table's cells, in a program that runs: menus, keys, the line for many cells, new axes,
// comparing, paper, and what a screen reader is told.
#include <QAccessible>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>

#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <fstream>

#include "app/state_strip.h"
#include "qt/paper.h"
#include "windows/frm_rebin.h"
#include "windows/table_keys.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TableCells : public TableWindowsTest {
 protected:
    TableCells() {
        for (int i = 0; i < 256; ++i) {
            unit().set("ADV", 30, i);
            unit().set("Get_AFR", 14, i);
        }
        openVe();
        fake.dialogs.boxes.clear();
        fake.session.DataModified = false;
    }
    void select(int top, int left, int bottom, int right) {
        const QAbstractItemModel* model = grid().model();
        stand(top, left);
        grid().selectionModel()->select(
            {model->index(top - 1, left - 1), model->index(bottom - 1, right - 1)},
            QItemSelectionModel::ClearAndSelect);
    }
    void run(const char* name) {
        ASSERT_NE(tableAction(name), nullptr) << name;
        tableAction(name)->trigger();
        settle();
    }
    QLineEdit& line() { return form().formulaLine(); }
    void enterFormula(const QString& text) {
        line().setText(text);
        keyTo(line(), Qt::Key_Return, "\r");
    }
    std::string notice() { return fake.session.notices.text(fake.clock.monotonicUs()); }
    std::string shown(int row, int column) {
        return grid().model()->index(row - 1, column - 1).data().toString().toStdString();
    }
    /// While a dialog of the table stands.
    template <typename Dialog>
    void during(const char* command, const std::function<void(Dialog&)>& look) {
        bool seen = false;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (box == nullptr) return;
            seen = true;
            look(*box);
            if (box->isVisible()) box->reject();
        });
        tableAction(command)->trigger();
        settle();
        EXPECT_TRUE(seen) << command;
    }
    std::string clipboard() { return QApplication::clipboard()->text().toStdString(); }
};

// ---- Commands

TEST_F(TableCells, InterpolateFillsTheSelectionAndMarksTheCalibration) {
    unit().set("VE", 10, 0);
    unit().set("VE", 30, 2);
    form().Setup_Grid("", "");
    select(16, 1, 16, 3);
    run("mnuInterpolate");
    EXPECT_EQ(ve(1), 20);
    EXPECT_EQ(shown(16, 2), "20");
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(TableCells, ThePopUpOfTheMainWindowReachesTheTable) {
    unit().set("VE", 10, 0);
    unit().set("VE", 20, 1);
    form().Setup_Grid("", "");
    select(16, 1, 16, 2);
    find<QAction>("mnuSmooth_5")->trigger();
    EXPECT_EQ(ve(0), 15);
    EXPECT_EQ(ve(1), 17.5F);
}

TEST_F(TableCells, ACommandThatNeedsASelectionSaysSoInTheStrip) {
    stand(3, 3);
    run("mnuInterpolate");
    EXPECT_EQ(notice(),
              "Interpolate: Select more than one cell first: hold Shift with an arrow key, or drag.");
    EXPECT_FALSE(fake.session.DataModified);
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty());
}

TEST_F(TableCells, AColumnIsTakenAwayFromAllMainTables) {
    stand(16, 3);
    run("mnuRmvCol");
    EXPECT_EQ(grid().model()->columnCount(), 15);
    EXPECT_EQ(unit().GET_TBL_DIMENSIONS("ADV", "COLS"), 15);
    EXPECT_EQ(unit().get("RPMTBL", 2), 2000);
    EXPECT_TRUE(fake.session.DataModified);
    run("mnuNewCol");
    EXPECT_EQ(grid().model()->columnCount(), 16);
}

TEST_F(TableCells, OnTheFlyAChangeOfAxesIsAskedAndNoLeavesThem) {
    unit().ONFLY_MODE(true);
    fake.dialogs.answers.push_back(Answer::No);
    run("mnuRmvCol");
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("Turn the engine off")));
    EXPECT_TRUE(lastBox().declines);
    EXPECT_EQ(grid().model()->columnCount(), 16);
    fake.dialogs.answers.push_back(Answer::Yes);
    run("mnuRmvCol");
    EXPECT_EQ(grid().model()->columnCount(), 15);
}

TEST_F(TableCells, TheLineInHandIsTakenThoughTheEngineMovesUnderTheQuestion) {
    unit().ONFLY_MODE(true);
    stand(16, 3);
    keyTo(grid(), Qt::Key_Escape);  // the engine may carry the cursor away
    fake.dialogs.meanwhile = [&](const std::string& title) {
        if (title == "Unit Connected") form().Show_Current_Activity(6000, 60);
    };
    fake.dialogs.answers.push_back(Answer::Yes);
    run("mnuRmvCol");
    fake.dialogs.meanwhile = {};
    EXPECT_EQ(unit().get("RPMTBL", 2), 2000) << "1500 rpm has gone";
}

TEST_F(TableCells, WhatIsBeingTypedIsEnteredBeforeACommand) {
    stand(16, 1);
    type("12");
    ASSERT_TRUE(form().inputBox().isVisible());
    run("mnuBlend");
    EXPECT_EQ(ve(0), 6) << "12 was stored, then drawn half of the way to neighbors of 0";
}

TEST_F(TableCells, ARefusedEntryKeepsTheCommandFromRunning) {
    select(16, 1, 16, 2);
    type("99");
    run("mnuBlend");
    EXPECT_EQ(ve(0), 0);
    EXPECT_EQ(ve(1), 0);
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("(-50 to 50%)")));
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(TableCells, OneBoxTellsOfAllRefusedCells) {
    unit().AssignDirectIndex(300, 1168);
    unit().AssignDirectIndex(300, 1169);
    windows.main().run("mnuStgTbl");
    settle();
    select(16, 1, 16, 3);
    run("mnuSmooth_1");
    ASSERT_EQ(fake.dialogs.boxes.size(), 1U);
    EXPECT_THAT(lastBox().text, HasSubstr("2 cells were refused:"));
    EXPECT_THAT(lastBox().text, HasSubstr("cell 16,1"));
    EXPECT_THAT(lastBox().text, HasSubstr("cell 16,2"));
}

// ---- The line for many cells

TEST_F(TableCells, AnOperatorOpensTheLineAndEnterChangesTheSelection) {
    unit().set("VE", 10, 0);
    unit().set("VE", 20, 1);
    form().Setup_Grid("", "");
    select(16, 1, 16, 2);
    key(Qt::Key_Asterisk, "*");
    ASSERT_TRUE(line().isVisible());
    EXPECT_EQ(line().text(), "*");
    enterFormula("*1.05");
    EXPECT_FALSE(line().isVisible());
    EXPECT_EQ(ve(0), 10.5F);
    EXPECT_EQ(ve(1), 21);
    EXPECT_TRUE(grid().hasFocus());
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(TableCells, EscapeLeavesTheCellsAndGivesTheKeyboardBack) {
    key(Qt::Key_Equal, "=");
    line().setText("=12");
    keyTo(line(), Qt::Key_Escape);
    EXPECT_FALSE(line().isVisible());
    EXPECT_EQ(ve(0), 0);
    EXPECT_TRUE(grid().hasFocus());
}

TEST_F(TableCells, ALineThatIsRefusedStaysWithItsTextAndNothingIsStored) {
    unit().set("VE", 10, 0);
    unit().set("VE", 40, 1);
    form().Setup_Grid("", "");
    select(16, 1, 16, 2);
    key(Qt::Key_Asterisk, "*");
    enterFormula("*2");
    EXPECT_TRUE(line().isVisible());
    EXPECT_EQ(line().text(), "*2");
    EXPECT_EQ(ve(0), 10);
    ASSERT_EQ(fake.dialogs.boxes.size(), 1U);
    EXPECT_THAT(lastBox().text, HasSubstr("cell 16,2"));
    enterFormula("*x");
    EXPECT_THAT(lastBox().text, HasSubstr("*x is not understood"));
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(TableCells, SavingTakesWhatStandsInTheLine) {
    stand(16, 1);
    key(Qt::Key_Equal, "=");
    line().setText("=7");
    commands.saves.save();
    settle();
    EXPECT_EQ(ve(0), 7);
    EXPECT_FALSE(line().isVisible());
}

TEST_F(TableCells, WhileAChangeIsOnItsWayTheLinesEnterWaits) {
    stand(16, 1);
    key(Qt::Key_Equal, "=");
    line().setText("=7");
    windows.onFlyLock(true);
    keyTo(line(), Qt::Key_Return, "\r");
    EXPECT_EQ(ve(0), 0);
    windows.onFlyLock(false);
    settle();
    EXPECT_EQ(ve(0), 7);
}

TEST_F(TableCells, InAViewTheLineDoesNotOpen) {
    run("Pulsewidth");
    run("mnuFormula");
    EXPECT_FALSE(line().isVisible());
    EXPECT_THAT(notice(), HasSubstr("go back to the values first"));
}

// ---- Selecting by keys

TEST_F(TableCells, ControlAndShiftWithSpaceSelectColumnAndRow) {
    stand(5, 4);
    keyTo(grid(), Qt::Key_Space, " ", Qt::ControlModifier);
    const Selection& block = form().model()->cursor().selection();
    EXPECT_THAT((std::vector{block.top, block.bottom, block.left, block.right}), ElementsAre(1, 16, 4, 4));
    stand(5, 4);
    keyTo(grid(), Qt::Key_Space, " ", Qt::ShiftModifier);
    EXPECT_THAT((std::vector{block.top, block.bottom, block.left, block.right}), ElementsAre(5, 5, 1, 16));
    EXPECT_FALSE(form().inputBox().isVisible());
    keyTo(grid(), Qt::Key_A, "\x01", Qt::ControlModifier);
    EXPECT_THAT((std::vector{block.top, block.bottom, block.left, block.right}), ElementsAre(1, 16, 1, 16));
}

TEST_F(TableCells, AHeaderSelectsItsLineAndHoldsTheCursor) {
    Q_EMIT grid().horizontalHeader()->sectionPressed(2);
    EXPECT_TRUE(form().model()->cursor().overlaySuppressed());
}

// ---- New axes

TEST_F(TableCells, NewAxesAreShownBeforeTheyAreDone) {
    unit().set("VE", 10, 0);
    unit().set("VE", 20, 1);
    form().Setup_Grid("", "");
    during<FrmRebin>("mnuRebin", [&](FrmRebin& box) {
        auto* columns = box.findChild<QLineEdit*>("txtColumns");
        QString headers = "750";
        for (int i = 2; i <= 16; ++i) headers += QString(", %1").arg(500 * i);
        columns->setText(headers);
        auto* preview = box.findChild<TableGridView*>("grdPreview");
        EXPECT_EQ(preview->model()->index(15, 0).data().toString(), "15");
        EXPECT_EQ(ve(0), 10) << "nothing is done yet";
        EXPECT_TRUE(box.findChild<QPushButton*>("cmdRebin")->isEnabled());
        box.accept();
    });
    EXPECT_EQ(ve(0), 15);
    EXPECT_EQ(unit().get("RPMTBL", 0), 750);
    EXPECT_EQ(shown(16, 1), "15");
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(TableCells, AxesThatCannotBeTakenSayWhyAndBarTheButton) {
    during<FrmRebin>("mnuRebin", [&](FrmRebin& box) {
        auto* columns = box.findChild<QLineEdit*>("txtColumns");
        auto* button = box.findChild<QPushButton*>("cmdRebin");
        auto* state = box.findChild<QLabel*>("lblState");
        columns->setText("500, 400");
        EXPECT_FALSE(button->isEnabled());
        EXPECT_EQ(state->text(), "2 columns: a table has 8 to 16");
        columns->setText(" , ");
        EXPECT_FALSE(button->isEnabled());
        EXPECT_EQ(state->text(), "Enter the headers of the columns");
        columns->setText("500, x");
        EXPECT_THAT(state->text().toStdString(), HasSubstr("x is no number"));
        columns->setText("1, 2, 3, 4, 5, 6, 7, 30000");
        EXPECT_FALSE(button->isEnabled());
        EXPECT_THAT(state->text().toStdString(), HasSubstr("(0 to 20000 RPM)"));
    });
    EXPECT_EQ(unit().get("RPMTBL", 0), 500);
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(TableCells, HeadersAreSpreadEvenlyBetweenTheirEnds) {
    during<FrmRebin>("mnuRebin", [&](FrmRebin& box) {
        auto* rows = box.findChild<QLineEdit*>("txtRows");
        rows->setText("20, 1, 1, 1, 1, 1, 1, 90");
        box.findChild<QPushButton*>("cmdSpreadRows")->click();
        EXPECT_EQ(rows->text(), "20, 30, 40, 50, 60, 70, 80, 90");
    });
}

TEST_F(TableCells, ATableThatHasChangedUnderTheBoxKeepsItsAxes) {
    during<FrmRebin>("mnuRebin", [&](FrmRebin& box) {
        box.findChild<QLineEdit*>("txtRows")->setText("20, 30, 40, 50, 60, 70, 80, 90");
        unit().set("RPMTBL", 501, 0);
        box.accept();
    });
    EXPECT_EQ(grid().model()->rowCount(), 16);
    EXPECT_THAT(notice(), HasSubstr("changed meanwhile"));
}

// ---- Comparing

TEST_F(TableCells, IsComparedWithTheCalibrationAsItWasOpened) {
    fake.session.noteOpened();  // on axes that rise
    unit().set("VE", 12, 0);
    form().Setup_Grid("", "");
    run("CompareOpened");
    EXPECT_EQ(grid().cells().note(grid().model()->index(15, 0)), "+12");
    EXPECT_TRUE(tableAction("CompareOpened")->isChecked());
    run("Difference");
    EXPECT_EQ(shown(16, 1), "+12");
    EXPECT_EQ(form().findChild<QLabel*>("lblView")->text(), "DIFFERENCE");
    run("CompareOff");
    EXPECT_EQ(shown(16, 1), "12");
    EXPECT_EQ(grid().cells().note(grid().model()->index(15, 0)), "");
}

TEST_F(TableCells, IsComparedWithAnotherFile) {
    std::vector<float> floats = wholeFloats();
    giveRisingAxes(unit());
    for (int i = 0; i < 16; ++i) {
        floats[3 + 592 + 2 * static_cast<std::size_t>(i)] = static_cast<float>(500 * (i + 1));
        floats[3 + 624 + 2 * static_cast<std::size_t>(i)] = unit().DirectIndex(624 + 2 * i);
    }
    floats[3 + 912] = -5;
    fake.dialogs.files.push_back(writeFloats(fake.folder.path("other.ZQ4OA"), floats));
    run("CompareFile");
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty());
    EXPECT_EQ(grid().cells().note(grid().model()->index(15, 0)), "+5");
    EXPECT_EQ(form().model()->comparison().name(), "other.ZQ4OA");
}

TEST_F(TableCells, AStateWhoseAxesDoNotRiseIsSaid) {
    run("CompareOpened");
    ASSERT_EQ(fake.dialogs.boxes.size(), 1U);
    EXPECT_THAT(lastBox().text, HasSubstr("not compared (as opened)"));
    EXPECT_THAT(lastBox().text, HasSubstr("out of order"));
    EXPECT_FALSE(form().model()->comparison().on());
}

TEST_F(TableCells, AFileThatIsNoCalibrationIsSaidAndNothingIsCompared) {
    const std::string path = fake.folder.path("broken.ZQ4OA");
    std::ofstream(path) << "no calibration";
    fake.dialogs.files.push_back(path);
    run("CompareFile");
    ASSERT_EQ(fake.dialogs.boxes.size(), 1U);
    EXPECT_EQ(lastBox().title, "Compare");
    EXPECT_FALSE(form().model()->comparison().on());
}

TEST_F(TableCells, DifferencesWithoutAComparisonAreExplained) {
    EXPECT_FALSE(tableAction("Difference")->isEnabled());
    Q_EMIT form().findChild<QShortcut*>("keyDifference")->activated();
    EXPECT_THAT(notice(), HasSubstr("Choose first what the table is compared with."));
}

// ---- Axes of the output tables

TEST_F(TableCells, TheAxisButtonsOfAnOutputTableOfferFifteenKinds) {
    fake.session.windows().open(window::table, "GPO1", "Full Table - Table#1");
    settle();
    auto* button = form().findChild<QToolButton*>("Toolbar1_X");
    ASSERT_TRUE(button->isVisible());
    EXPECT_EQ(button->text(), "X: RPM");
    EXPECT_EQ(form().findChild<QToolButton*>("Toolbar1_Y")->text(), "Y: BLEND MAP");
    EXPECT_EQ(button->menu()->actions().size(), 15);
    tableAction("X_TPS")->trigger();
    settle();
    EXPECT_EQ(button->text(), "X: TPS");
    EXPECT_EQ(unit().GET_TBL_AXIS_TYPE("GPO1", "COL-AXIS"), "TPS");
    EXPECT_EQ(grid().model()->headerData(15, Qt::Horizontal).toString(), "5") << "spread over 0 to 5 volts";
    EXPECT_TRUE(fake.session.DataModified);
    openVe();
    EXPECT_FALSE(button->isVisible());
    EXPECT_TRUE(timeOfGap()->isVisible());
}

// ---- Key list, tree, paper

TEST_F(TableCells, TheKeyListNamesTheKeysOfAllCommands) {
    during<FrmTableKeys>("Keys", [](FrmTableKeys& box) {
        auto* list = box.findChild<QTableWidget*>("lstKeys");
        for (const EditCommand& command : editCommands()) {
            EXPECT_EQ(list->findItems(QString::fromUtf8(command.shortcut), Qt::MatchExactly).size(), 1)
                << command.name;
        }
    });
    activate(windows.main());
    EXPECT_TRUE(grid().hasFocus());
}

TEST_F(TableCells, TheKeyListBreaksItsLinesWhereItIsNarrow) {
    during<FrmTableKeys>("Keys", [](FrmTableKeys& box) {
        const auto* list = box.findChild<QTableWidget*>("lstKeys");
        box.resize(1000, box.height());
        settle();
        EXPECT_EQ(list->rowHeight(0), list->rowHeight(1));
        box.resize(550, box.height());
        settle();
        EXPECT_EQ(list->horizontalScrollBar()->maximum(), 0);
        EXPECT_GE(list->rowHeight(0), 2 * list->fontMetrics().height());
        EXPECT_LT(list->rowHeight(1), 2 * list->fontMetrics().height());
    });
}

TEST_F(TableCells, EveryKeyOfACommandIsAtWork) {
    for (const EditCommand& command : editCommands()) {
        const auto* key =
            form().findChild<QShortcut*>(QLatin1String("key") + QString::fromUtf8(command.name));
        ASSERT_NE(key, nullptr) << command.name;
        EXPECT_EQ(key->key(), QKeySequence(QString::fromUtf8(command.shortcut))) << command.name;
    }
}

TEST_F(TableCells, ManageGoesToThePlaceOfTheTableInTheTree) {
    run("Manage");
    auto* tree = find<QTreeWidget>("treeZentaq");
    ASSERT_NE(tree->currentItem(), nullptr);
    EXPECT_EQ(tree->currentItem()->text(0), "Volumetric Efficiency Table");
    EXPECT_TRUE(tree->hasFocus());
    EXPECT_NE(windows.table(), nullptr);
}

TEST_F(TableCells, PrintingIsAskedAndLogged) {
    int printed = 0;
    form().printsBy([&](QWidget& what) {
        ++printed;
        EXPECT_EQ(&what, &form());
    });
    fake.dialogs.answers.push_back(Answer::No);
    run("Print");
    EXPECT_EQ(printed, 0);
    fake.dialogs.answers.push_back(Answer::Yes);
    run("Print");
    EXPECT_EQ(printed, 1);
    EXPECT_EQ(lastBox().title, "Print");
    EXPECT_EQ(lastBox().text, "Are you sure you want to print this form?");
    EXPECT_THAT(fake.session.console.lines().back(), HasSubstr("USER: Print Table Information Requested."));
}

TEST_F(TableCells, TheWholeTableStandsOnOneWhitePage) {
    QImage page(1200, 800, QImage::Format_RGB32);
    page.fill(Qt::red);
    QPainter painter(&page);
    drawTable(painter, page.rect().adjusted(20, 20, -20, -20), *grid().model(), "VE", "tune.ZQ4OA");
    painter.end();
    EXPECT_EQ(page.pixelColor(25, 760), QColor(Qt::white)) << "the rest of the page";
    EXPECT_EQ(page.pixelColor(5, 5), QColor(Qt::red)) << "nothing is drawn beyond it";
    int dark = 0;
    for (int x = 1100; x < 1180; ++x) {
        for (int y = 20; y < 700; ++y) dark += page.pixelColor(x, y).lightness() < 100 ? 1 : 0;
    }
    EXPECT_GT(dark, 100) << "the last column has its digits";
}

// ---- In words

TEST_F(TableCells, TheStripTellsTheCellInHand) {
    unit().set("VE", -21, 17);
    form().Setup_Grid("", "");
    stand(15, 2);
    const StripFacts facts = stripFacts(fake.session);
    EXPECT_EQ(facts.cell, "25 kPa, 1000 RPM: -21 % (-50 to 50%)");
    windows.close(window::table);
    settle();
    EXPECT_EQ(stripFacts(fake.session).cell, "");
}

TEST_F(TableCells, AScreenReaderReadsEachCellWithItsAxes) {
    unit().set("VE", -21, 17);
    form().Setup_Grid("", "");
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(&grid());
    ASSERT_NE(table, nullptr);
    QAccessibleTableInterface* cells = table->tableInterface();
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(cells->cellAt(14, 1)->text(QAccessible::Name), "-21 %, row 25 kPa, column 1000 RPM");
}

TEST_F(TableCells, AScreenReaderIsToldOfARefusedEntry) {
    stand(16, 1);
    type("99");
    key(Qt::Key_Return, "\r");
    QAccessibleInterface* box = QAccessible::queryAccessibleInterface(&form().inputBox());
    EXPECT_EQ(box->text(QAccessible::Description), "Refused: Invalid Entry: 99 -> (-50 to 50%)");
    type("9");
    form().inputBox().setText("9");
    key(Qt::Key_Return, "\r");
    EXPECT_EQ(box->text(QAccessible::Description), "");
    EXPECT_EQ(ve(0), 9);
}

}  // namespace
}  // namespace zentaq
