// The table window on a real session with an ORB A calibration: keys in; grid, calibration, boxes and the
// wire out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <functional>

#include "windows/key_press.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class TableWindows : public RecordingWindows {
 public:
    void onFlyLock(bool busy) override { table->onFlyLock(busy); }
    void showUnit() override {
        ++shownUnits;
        if (table != nullptr) table->showUnit();
    }
    FrmTable* table = nullptr;
    int shownUnits = 0;
};

class Table : public OrbASession {
 protected:
    TableWindows windows;
    std::unique_ptr<FrmTable> form;

    Table() {
        giveRisingAxes(unit());
        form = std::make_unique<FrmTable>(fake.session);
        windows.table = form.get();
        fake.session.attach(windows);
        form->resize(1366, 420);
        form->show();
        form->activateWindow();
        form->Setup_Grid("VE", "Volumetric Efficiency Table");
        form->setFocus();
        QApplication::processEvents();
        fake.dialogs.boxes.clear();
        fake.session.DataModified = false;
    }
    ~Table() override { fake.session.attach(fake.windows); }

    TableGridView& grid() { return form->grid(); }
    QLineEdit& box() { return form->inputBox(); }
    std::string cell(int row, int column) { return form->model()->sheet().grid().text(row, column); }
    std::string shown(int row, int column) {
        return grid().model()->index(row - 1, column - 1).data().toString().toStdString();
    }
    float ve(int index) { return unit().get("VE", index); }
    TableCursor& cursor() { return form->model()->cursor(); }
    int colour(int row, int column) { return form->model()->sheet().grid().colour(row, column); }
    QLineEdit* timeOfGap() { return form->findChild<QLineEdit*>("txtTOG"); }

    static void key(int code, const QString& text = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        sendKey(code, modifiers, text);
    }
    static void type(const QString& text) { sendText(text); }
    static void enter(const QString& text = {}) {
        type(text);
        key(Qt::Key_Return, "\r");
    }
    void paste() { key(Qt::Key_V, "\x16", Qt::ControlModifier); }
    void paste(const QString& text) {
        QApplication::clipboard()->setText(text);
        paste();
    }
    /// The prompt that a double click on a header raises; the boxes are those of this entry alone.
    void enterHeader(Qt::Orientation axis, int section, const std::optional<std::string>& entry) {
        fake.dialogs.boxes.clear();
        fake.dialogs.inputs.push_back(entry);
        QHeaderView* header = axis == Qt::Horizontal ? grid().horizontalHeader() : grid().verticalHeader();
        Q_EMIT header->sectionDoubleClicked(section);
    }
    /// The first cell of the calibration, and the grid read again.
    void showStored(double value) {
        unit().set("VE", value, 0);
        form->Setup_Grid("", "");
    }
    void stand(int row, int column) { grid().setCurrentIndex(grid().model()->index(row - 1, column - 1)); }
    /// As the mouse does it: the focus moves before the grid hears of the press.
    void click(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        grid().setFocus(Qt::MouseFocusReason);
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            mouse(type, grid().cellRect(row, column).center(), modifiers);
        }
    }
    void mouse(QEvent::Type type, const QPointF& at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, grid().viewport()->mapToGlobal(at), button, held, modifiers);
        QApplication::sendEvent(grid().viewport(), &event);
    }
    /// The cursor of a cell that was clicked goes to that of 1000 rpm and 40 kPa, row 12 and column 2.
    void clickAndLetTheEngineTakeOver() {
        click(3, 12);
        key(Qt::Key_Escape);
        form->Show_Current_Activity(1000, 40);
    }
    /// Top, left, bottom, right.
    std::vector<int> selected() {
        const Selection& chosen = cursor().selection();
        return {chosen.top, chosen.left, chosen.bottom, chosen.right};
    }
    QAction* tool(const char* name) { return form->findChild<QAction*>(QLatin1String(name)); }
    std::string overlayItem() { return tool("Colors")->text().toStdString(); }
    void select(int top, int left, int bottom, int right) {
        const QAbstractItemModel* model = grid().model();
        stand(top, left);
        grid().selectionModel()->select(
            {model->index(top - 1, left - 1), model->index(bottom - 1, right - 1)},
            QItemSelectionModel::ClearAndSelect);
    }
    /// The link runs on a port that is there; the calibration is on the running unit.
    void goLive() {
        fake.session.link.load();
        fake.ticker.start();
        unit().ONFLY_MODE(true);
    }
    void tick(int count = 1) { fake.ticker.run(count); }
    void answerOnFly() {
        fake.port.deliver({'A', 'X'});
        tick(2);
        QApplication::processEvents();
    }
    static QImage picture(QWidget& widget) { return widget.grab().toImage(); }
};

TEST_F(Table, HasEveryNamedControl) {
    EXPECT_EQ(form->objectName(), "frmTABLE");
    for (const char* name : {"Grid1", "txtInputValue", "TblMarker", "fraDotFrame", "Toolbar1", "txtTOG",
                             "lblTOG", "txtIOT", "lblIOT", "lblDspTable", "lblDspTableVal", "Label2"}) {
        EXPECT_NE(form->findChild<QWidget*>(QLatin1String(name)), nullptr) << name;
    }
    for (const char* name : {"Home", "Save", "Manage", "Print", "Docking", "Close"}) {
        EXPECT_NE(tool(name), nullptr) << name;
    }
    EXPECT_EQ(grid().accessibleName(), "Volumetric Efficiency Table");
}

TEST_F(Table, LowestRowHeaderStandsAtTheBottomAndLowestSpeedAtTheLeft) {
    const QAbstractItemModel* model = grid().model();
    EXPECT_EQ(model->rowCount(), 16);
    EXPECT_EQ(model->columnCount(), 16);
    EXPECT_EQ(model->headerData(0, Qt::Vertical).toString(), "95");
    EXPECT_EQ(model->headerData(15, Qt::Vertical).toString(), "20");
    EXPECT_EQ(model->headerData(0, Qt::Horizontal).toString(), "500");
    EXPECT_EQ(model->headerData(15, Qt::Horizontal).toString(), "8000");
}

TEST_F(Table, AllCellsAreInSightInAHeightOf380) {
    form->resize(1000, 380);
    QApplication::processEvents();
    EXPECT_FALSE(grid().verticalScrollBar()->isVisible());
    EXPECT_FALSE(grid().horizontalScrollBar()->isVisible());
    EXPECT_TRUE(grid().viewport()->rect().contains(grid().cellRect(16, 16)));
}

TEST_F(Table, TypingANumberAndEnterWritesTheCell) {
    stand(16, 3);
    type("12");
    EXPECT_TRUE(box().isVisible());
    EXPECT_EQ(box().text(), "12");
    EXPECT_EQ(ve(2), 0);
    enter();
    EXPECT_FALSE(box().isVisible());
    EXPECT_EQ(ve(2), 12);
    EXPECT_EQ(shown(16, 3), "12");
    EXPECT_TRUE(fake.session.DataModified);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}

TEST_F(Table, TypedValueGoesToTheRunningUnitAtOnce) {
    goLive();
    stand(1, 1);  // stored row 15: index 240, address 4352 + 912 + 240 = 0x1580
    enter("12");
    tick();
    // 12 + 50 = 0x3E; 0x04 + 0x15 + 0x80 + 0x3E = 0xD7, inverted 0x28
    EXPECT_THAT(fake.port.written, ElementsAre("P2S10415803E28"));
}

TEST_F(Table, RefusedValueWarnsAndTheBoxHoldsTheOldText) {
    goLive();
    stand(16, 1);
    enter("51");
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].title, "Data Input Error");
    EXPECT_THAT(fake.dialogs.boxes[0].text, HasSubstr("(-50 to 50%) - Invalid Entry."));
    EXPECT_TRUE(box().isVisible());
    EXPECT_TRUE(box().hasFocus());
    EXPECT_EQ(box().text(), "0");
    EXPECT_EQ(ve(0), 0);
    EXPECT_FALSE(fake.session.DataModified);
    tick(3);
    EXPECT_THAT(fake.port.written, IsEmpty());
    form->Show_Current_Activity(1000, 40);
    EXPECT_EQ(cursor().row(), 16) << "an open box holds its cell";
    key(Qt::Key_Escape);
    EXPECT_EQ(overlayItem(), "Turn Overlay OFF");
}

TEST_F(Table, LettersAreNoStartOfANumber) {
    stand(16, 1);
    type("a");
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("Non-numeric value detected.")));
    EXPECT_FALSE(box().isVisible());
}

/// Only what a command has stored in a cell marks the calibration, and only that is sent.
TEST_F(Table, ACommandMarksTheCalibrationIfItHasStoredACell) {
    unit().set("scale1", 0.5);
    showStored(50);
    goLive();
    const struct {
        const char* what;
        std::function<void()> run;
        std::vector<std::string> sent;  ///< address 4352 + 912 + index, value + 50
        int refused;
    } rows[] = {
        {"an unchanged grid is saved", [&] { tool("Save")->trigger(); }, {}, 0},
        {"a paste over equal cells",
         [&] {
             stand(16, 1);
             paste("50\t0\t5");
         },
         {"P2S1041492371E"},
         0},
        {"a nudge out of the range",
         [&] {
             stand(16, 1);
             type(".");
         },
         {},
         1},
        {"a changed grid is saved",
         [&] {
             stand(15, 1);
             type("44");
             tool("Save")->trigger();
         },
         {"P2S10414A05EE9"},
         0},
        {"a nudge in the view of duty cycles, whose text stays",
         [&] {
             stand(14, 1);
             type("D");
             const std::string before = shown(14, 1);
             type(".");
             EXPECT_EQ(shown(14, 1), before);
         },
         {"P2S10414B03304"},
         0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        fake.session.DataModified = false;
        fake.port.written.clear();
        fake.dialogs.boxes.clear();
        row.run();
        EXPECT_EQ(fake.session.DataModified, !row.sent.empty());
        EXPECT_THAT(fake.dialogs.boxes, SizeIs(row.refused));
        tick();
        if (form->locked()) answerOnFly();
        tick(3);
        EXPECT_EQ(fake.port.written, row.sent);
    }
    EXPECT_THAT((std::vector{ve(0), ve(1), ve(2), ve(16), ve(32)}), ElementsAre(50, 0, 5, 44, 1));
}

TEST_F(Table, BoxTakesOnlyWhatLeadsToANumber) {
    stand(16, 1);
    type("-1x2.5y");
    EXPECT_EQ(box().text(), "-12.5");
}

TEST_F(Table, EscapeLeavesTheCellAsItWas) {
    stand(16, 1);
    type("33");
    key(Qt::Key_Escape);
    EXPECT_FALSE(box().isVisible());
    EXPECT_FALSE(cursor().overlaySuppressed());
    EXPECT_EQ(cell(16, 1), "0");
    EXPECT_EQ(ve(0), 0);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}

TEST_F(Table, SpaceOpensTheCellsOwnText) {
    showStored(7);
    stand(16, 1);
    type(" ");
    EXPECT_EQ(box().text(), "7");
    EXPECT_EQ(box().selectedText(), "7");
}

TEST_F(Table, EnterFillsTheWholeSelection) {
    select(15, 2, 16, 4);
    enter("8");
    EXPECT_THAT((std::vector{ve(1), ve(2), ve(3), ve(17), ve(18), ve(19)}), ElementsAre(8, 8, 8, 8, 8, 8));
    EXPECT_THAT((std::vector{ve(0), ve(4), ve(33)}), ElementsAre(0, 0, 0));
}

TEST_F(Table, FullStopAndCommaNudgeTheSelection) {
    select(15, 1, 16, 2);
    type("...");
    type(",");
    EXPECT_THAT((std::vector{ve(0), ve(1), ve(16), ve(17)}), ElementsAre(2, 2, 2, 2));
    EXPECT_EQ(shown(16, 2), "2");
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(Table, KeysTypedWhileAChangeIsOnItsWayAreNotLost) {
    goLive();
    stand(16, 1);
    enter("12");
    tick();
    ASSERT_TRUE(form->locked());
    enter("34");
    key(Qt::Key_Right);
    type("56");
    EXPECT_EQ(ve(0), 12) << "nothing is changed while locked";
    answerOnFly();
    EXPECT_FALSE(form->locked());
    EXPECT_EQ(ve(0), 34);
    EXPECT_EQ(cursor().column(), 2);
    EXPECT_EQ(box().text(), "56");
}

TEST_F(Table, BoxOpenedBeforeTheLockKeepsTheFocusAndItsEnterWaits) {
    goLive();
    stand(16, 1);
    enter("12");
    type("3");  // the change is queued, the lock comes with the next tick
    tick();
    ASSERT_TRUE(form->locked());
    type("4");
    EXPECT_EQ(box().text(), "34");
    enter();
    EXPECT_EQ(ve(0), 12);
    answerOnFly();
    EXPECT_EQ(ve(0), 34);
}

TEST_F(Table, FocusReturnsToTheGridWhenTheLockEnds) {
    form->onFlyLock(true);
    timeOfGap()->setFocus();
    form->onFlyLock(false);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    // Only the change from busy to free does it.
    timeOfGap()->setFocus();
    form->onFlyLock(false);
    EXPECT_NE(QApplication::focusWidget(), &grid());
}

TEST_F(Table, HeldDownKeyDoesNotGoOnAfterTheLock) {
    stand(16, 1);
    form->onFlyLock(true);
    for (int i = 0; i < 30; ++i) {
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Period, Qt::NoModifier, ".", true);
        QApplication::sendEvent(&grid(), &repeat);
    }
    form->onFlyLock(false);
    EXPECT_EQ(ve(0), 0);
}

TEST_F(Table, DoubleClickOnAColumnHeaderAsksForItsValue) {
    enterHeader(Qt::Horizontal, 0, "750");
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].title, "Table Setup");
    EXPECT_EQ(fake.dialogs.boxes[0].text, "Enter a New RPM Header Value...\n500");
    EXPECT_EQ(unit().get("RPMTBL", 0), 750);
    EXPECT_EQ(grid().model()->headerData(0, Qt::Horizontal).toString(), "750");
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(Table, AHeaderThatIsNotAboveTheOneBeforeItIsRefused) {
    fake.session.messages.ActiveFormName = "frmTABLE";
    for (const std::string entry : {"500", "250"}) {
        enterHeader(Qt::Horizontal, 1, entry);  // 1000, behind 500
        ASSERT_EQ(fake.dialogs.boxes.size(), 2u);
        EXPECT_EQ(fake.dialogs.boxes[1].title, "Data Input Error");
        EXPECT_EQ(fake.dialogs.boxes[1].text,
                  "Warning 1006: Data Input Error\nThe value you entered must be higher than that of the one "
                  "to the left.\n500 > " +
                      entry + " = FALSE");
        EXPECT_THAT(fake.session.console.lines().back(),
                    HasSubstr(" - Warning 1006: Data Input Error / Value Lesser than Left."));
        EXPECT_EQ(windows.calls.back(), "focus frmTABLE");
    }
    EXPECT_EQ(unit().get("RPMTBL", 1), 1000);
    enterHeader(Qt::Vertical, 14, "20");  // 25 kPa, above 20
    ASSERT_EQ(fake.dialogs.boxes.size(), 2u);
    EXPECT_THAT(fake.dialogs.boxes[1].text, HasSubstr("20 > 20 = FALSE"));
    EXPECT_EQ(unit().get("MAPTBL", 1), 25);
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(Table, AHeaderThatIsNotBelowTheNextOneStandsAndIsTold) {
    enterHeader(Qt::Horizontal, 6, "9000");  // 3500, in front of 4000
    EXPECT_EQ(unit().get("RPMTBL", 6), 9000);
    ASSERT_EQ(fake.dialogs.boxes.size(), 2u);
    EXPECT_EQ(fake.dialogs.boxes[1].title, "Warning");
    EXPECT_THAT(fake.dialogs.boxes[1].text,
                StartsWith("9000 is not below the next value of the axis, 4000.\n"));
    EXPECT_THAT(fake.session.console.lines().back(),
                HasSubstr("9000 is not below the next value of the axis"));
    EXPECT_TRUE(fake.session.DataModified);
    for (const bool inverted : {false, true}) {
        if (inverted) form->model()->invert();
        enterHeader(Qt::Vertical, inverted ? 1 : 14, inverted ? "33" : "32");  // 25 kPa, below 30
        ASSERT_EQ(fake.dialogs.boxes.size(), 2u) << inverted;
        EXPECT_THAT(fake.dialogs.boxes[1].text, HasSubstr("is not below the next value of the axis, 30."));
    }
}

TEST_F(Table, AHeaderBetweenItsNeighborsAndTheLastOneOfAnAxisAreNotTold) {
    for (const auto& [section, entry] : {std::pair(6, "3600"), std::pair(15, "9000")}) {
        enterHeader(Qt::Horizontal, section, entry);
        EXPECT_EQ(fake.dialogs.boxes.size(), 1u) << entry;
    }
}

TEST_F(Table, CancelledHeaderPromptChangesNothing) {
    enterHeader(Qt::Vertical, 15, std::nullopt);
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].text, "Enter a New MAP Header Value...\n20");
    EXPECT_FALSE(fake.session.DataModified);
    EXPECT_FALSE(cursor().overlaySuppressed()) << "the overlay is as it was";
}

TEST_F(Table, CopyGivesTabSeparatedRowsAndPasteWritesThem) {
    unit().set("VE", 1, 16);
    unit().set("VE", 2, 17);
    unit().set("VE", 3, 0);
    unit().set("VE", 4, 1);
    form->Setup_Grid("", "");
    select(15, 1, 16, 2);
    key(Qt::Key_C, "\x03", Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "1\t2\n3\t4");
    stand(1, 15);
    paste();
    EXPECT_THAT((std::vector{ve(254), ve(255), ve(238), ve(239)}), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(shown(2, 16), "4");
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(Table, APasteWithManyRefusalsRaisesOneBoxAndSendsNoneOfThem) {
    form->Setup_Grid("GPO1", "Full Table - Table#1");
    goLive();
    fake.dialogs.boxes.clear();
    stand(16, 1);
    paste("500\t-20\t444\n");
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("(0 to 100%) - Invalid Entry.")));
    EXPECT_EQ(shown(16, 1), "0");
    EXPECT_EQ(shown(16, 3), "0");
    EXPECT_FALSE(fake.session.DataModified);
    tick(3);
    EXPECT_THAT(fake.port.written, IsEmpty());
}

TEST_F(Table, ATextLeftInTheBoxIsCheckedByTheSaveButton) {
    form->Setup_Grid("GPO1", "Full Table - Table#1");
    fake.dialogs.boxes.clear();
    stand(16, 1);
    type("444");
    stand(15, 1);
    ASSERT_EQ(cell(16, 1), "444");
    tool("Save")->trigger();
    EXPECT_EQ(unit().Get_GPIO_Table(1, 0), 0);
    EXPECT_EQ(shown(16, 1), "0");
    EXPECT_EQ(fake.dialogs.boxes.size(), 1u);
    tool("Save")->trigger();
    EXPECT_EQ(fake.dialogs.boxes.size(), 1u);
}

TEST_F(Table, AnAxisThatHasBecomeEmptyIsFilledAndTheStopsRefusedAreTold) {
    form->Setup_Grid("GPO1", "Full Table - Table#1");
    fake.dialogs.boxes.clear();
    for (int i = 0; i < 16; ++i) unit().AssignDirectIndex(0, 2242 + i);
    unit().AssignDirectIndex(30000, unit().find("RPMTBL")->cell(2));
    form->showUnit();
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_THAT(fake.dialogs.boxes[0].text, StartsWith("Warning 1001: Data Input Error\n"));
    EXPECT_EQ(cell(0, 4), "2000");
}

TEST_F(Table, ATableThatCannotBeShownLeavesTheOneOnTheScreen) {
    showStored(7);
    EXPECT_THROW(form->Setup_Grid("FUEL", "Fuel"), NoSuchMember);
    EXPECT_EQ(grid().accessibleName(), "Volumetric Efficiency Table");
    EXPECT_EQ(shown(16, 1), "7");
    stand(16, 1);
    enter("9");
    EXPECT_EQ(ve(0), 9);
}

TEST_F(Table, CapitalXClosesTheWindow) {
    int closed = 0;
    form->onClosed([&] { ++closed; });
    type("X");
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(Table, MarkerFramesTheNearestCellAndTellsThePlaceInIt) {
    auto* marker = form->findChild<TableMarker*>("TblMarker");
    EXPECT_TRUE(marker->isHidden());
    form->Show_Current_Activity(1200,
                                40);  // 0.4 of the way from 1000 to 1500; row of 40 is the fifth from below
    EXPECT_FALSE(marker->isHidden());
    EXPECT_EQ(marker->cell(), grid().cellRect(12, 2));
    const int from = grid().cellRect(12, 2).center().x();
    const int to = grid().cellRect(12, 3).center().x();
    EXPECT_NEAR(marker->engine().x(), from + 0.4 * (to - from), 2);
    EXPECT_NEAR(marker->engine().y(), grid().cellRect(12, 2).center().y(), 2);
    form->Show_Current_Activity(1300, 40);
    form->Show_Current_Activity(1300, 40);
    fake.clock.nowUs += 1'000'000;
    QApplication::processEvents();
    form->Show_Current_Activity(1300, 40);
    EXPECT_EQ(marker->cell(), grid().cellRect(12, 3)) << "past the middle it is the next one";
}

TEST_F(Table, LiveCellTurnsYellowAndTheCursorFollows) {
    form->Show_Current_Activity(1000, 40);
    EXPECT_EQ(colour(12, 2), 0x00FFFF);
    EXPECT_EQ(grid().currentIndex().row(), 11);
    EXPECT_EQ(grid().currentIndex().column(), 1);
    stand(1, 1);
    key(Qt::Key_Left);  // a key of the user ends the following
    form->Show_Current_Activity(2000, 40);
    EXPECT_EQ(cursor().column(), 1);
}

TEST_F(Table, ClickedCellTakesWhatIsTypedWhileTheEngineRunsElsewhere) {
    form->Show_Current_Activity(1000, 40);
    click(4, 4);
    EXPECT_EQ(overlayItem(), "Turn Overlay ON");
    form->Show_Current_Activity(1000, 40);
    EXPECT_EQ(cursor().row(), 4);
    type("44");
    form->Show_Current_Activity(1500, 45);
    enter();
    EXPECT_EQ(ve(12 * 16 + 3), 44);
    EXPECT_EQ(ve(4 * 16 + 1), 0) << "the cell of the engine";
    EXPECT_EQ(ve(5 * 16 + 2), 0);
    EXPECT_EQ(overlayItem(), "Turn Overlay OFF");
    form->Show_Current_Activity(1000, 40);
    EXPECT_EQ(cursor().row(), 12);
}

TEST_F(Table, KeyOAndEscapeOnTheGridLetTheCursorFollowAgain) {
    click(4, 4);
    type("O");
    EXPECT_EQ(overlayItem(), "Turn Overlay OFF");
    click(4, 4);
    key(Qt::Key_Escape);
    EXPECT_EQ(overlayItem(), "Turn Overlay OFF");
    form->Show_Current_Activity(1000, 40);
    EXPECT_EQ(cursor().row(), 12);
    type("O");
    click(4, 4);
    key(Qt::Key_Escape);
    EXPECT_EQ(overlayItem(), "Turn Overlay ON") << "switched off by the user";
}

TEST_F(Table, ClickOnAnotherCellEndsTheEditAndHoldsThere) {
    click(4, 4);
    type("7");
    click(5, 5);
    EXPECT_EQ(cell(4, 4), "7");
    form->Show_Current_Activity(1000, 40);
    EXPECT_EQ(cursor().row(), 5);
    enter("8");
    EXPECT_EQ(ve(11 * 16 + 4), 8);
    EXPECT_FALSE(cursor().overlaySuppressed());
}

TEST_F(Table, ArrowOutOfTheBoxHoldsTheCellThatItGoesTo) {
    click(4, 4);
    type("7");
    key(Qt::Key_Down);
    ASSERT_FALSE(box().isVisible());
    EXPECT_EQ(cell(4, 4), "7");
    form->Show_Current_Activity(1000, 40);
    EXPECT_EQ(cursor().row(), 5);
}

TEST_F(Table, EveryKeyOutOfTheBoxLeavesTheKeyboardToTheGridAndWritesNothing) {
    for (const int out : {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_PageUp}) {
        for (const char* opened : {" ", "9"}) {
            click(8, 4);
            type(opened);
            ASSERT_EQ(QApplication::focusWidget(), &box());
            key(out);
            EXPECT_FALSE(box().isVisible()) << out;
            EXPECT_EQ(QApplication::focusWidget(), &grid()) << out;
        }
    }
    EXPECT_EQ(form->model()->sheet().cellsWritten(), 0);
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(Table, AShiftedKeySelectsFromTheCellThatTheEngineHasCarriedTheCursorTo) {
    clickAndLetTheEngineTakeOver();
    ASSERT_EQ(cursor().row(), 12);
    key(Qt::Key_Down, {}, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(12, 2, 13, 2));
    key(Qt::Key_Comma, ",");
    EXPECT_EQ(ve(4 * 16 + 1), -1);
    EXPECT_EQ(ve(3 * 16 + 1), -1);
    EXPECT_EQ(ve(13 * 16 + 11), 0) << "the cell that was clicked";
    EXPECT_EQ(form->model()->sheet().cellsWritten(), 2);
}

TEST_F(Table, AShiftedClickSelectsFromTheCellThatTheEngineHasCarriedTheCursorTo) {
    clickAndLetTheEngineTakeOver();
    click(13, 3, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(12, 2, 13, 3));
}

TEST_F(Table, AHandThatShakesWhileItClicksWithShiftSelectsNoMore) {
    clickAndLetTheEngineTakeOver();
    const QPointF place = grid().cellRect(13, 3).center();
    mouse(QEvent::MouseButtonPress, place, Qt::ShiftModifier);
    mouse(QEvent::MouseMove, place + QPointF(1, 1), Qt::ShiftModifier);
    mouse(QEvent::MouseButtonRelease, place + QPointF(1, 1), Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(12, 2, 13, 3));
}

TEST_F(Table, AShiftedKeyBehindAnEntrySelectsFromTheEnginesCell) {
    click(3, 12);
    enter("7");
    form->Show_Current_Activity(1000, 40);
    key(Qt::Key_Right, {}, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(12, 2, 12, 3));
}

TEST_F(Table, TurningTheRowsOverEndsAnOpenEdit) {
    click(4, 4);
    type("7");
    tool("Invert")->trigger();
    EXPECT_FALSE(box().isVisible());
    EXPECT_FALSE(cursor().overlaySuppressed());
    EXPECT_EQ(cell(4, 4), "0");
}

TEST_F(Table, LockedGridIsNotHeldByAClick) {
    form->onFlyLock(true);
    click(4, 4);
    EXPECT_FALSE(cursor().overlaySuppressed());
    form->onFlyLock(false);
}

TEST_F(Table, TypedValueIsShadedOnTheScreenAtOnce) {
    click(4, 4);
    enter("50");
    stand(1, 1);
    const QRect place = grid().cellRect(4, 4);
    const QColor shown = picture(*grid().viewport()).pixelColor(place.topLeft() + QPoint(3, 3));
    EXPECT_EQ(shown, grid().groundOf(grid().model()->index(3, 3)));
    EXPECT_NE(shown, grid().colors().surface);
}

TEST_F(Table, LiveCellIsDrawnAtMostThirtyTimesASecond) {
    const int before = form->redraws();
    fake.clock.nowUs += 1'000'000;
    for (int i = 0; i < 1000; ++i) {
        form->Show_Current_Activity(static_cast<float>(600 + 7 * i), 40);
        fake.clock.nowUs += 1000;
    }
    EXPECT_LE(form->redraws() - before, 30);
    EXPECT_GE(form->redraws() - before, 28);
    // Every cell on the way is painted in the grid although few frames were drawn.
    for (int column = 1; column <= 15; ++column) {
        EXPECT_EQ(colour(12, column), 0x00FFFF) << column;
    }
}

TEST_F(Table, FramesOfAnotherKindThanTheCalibrationMarkNothing) {
    fake.session.live.RPM = 1000;
    fake.session.live.MAP = 40;
    form->refreshLive();  // nothing is on the link
    EXPECT_TRUE(form->findChild<QWidget*>("TblMarker")->isHidden());
}

TEST_F(Table, DiscardingBringsBackTheValuesAndCountsAsAChange) {
    showStored(7);
    stand(16, 1);
    enter("12");
    fake.session.DataModified = false;  // the file holds 12 now
    fake.dialogs.answers.push_back(Answer::Yes);
    tool("Discard")->trigger();
    EXPECT_EQ(lastBox().title, "Discard Changes?");
    EXPECT_EQ(lastBox().text, "Are you sure you want to reset the table back to it's original state?");
    EXPECT_EQ(ve(0), 7);
    EXPECT_EQ(shown(16, 1), "7");
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(Table, WhatIsDiscardedOnTheFlyIsNotSentAndTheTunerHearsOfIt) {
    showStored(7);
    stand(16, 1);
    const auto discard = [&] {
        fake.dialogs.answers.push_back(Answer::Yes);
        tool("Discard")->trigger();
    };
    const auto notice = [&] { return fake.session.notices.text(fake.clock.monotonicUs()); };
    enter("12");
    discard();
    EXPECT_EQ(notice(), "") << "no unit runs on the calibration";
    goLive();
    enter("12");
    answerOnFly();
    fake.port.written.clear();
    discard();
    EXPECT_EQ(ve(0), 7);
    EXPECT_THAT(fake.port.written, IsEmpty());
    EXPECT_EQ(notice(), "Discarded in the calibration alone: the running unit keeps its values.");
}

TEST_F(Table, ViewFollowsACalibrationThatWasChangedElsewhere) {
    unit().set("INJ_On", 0.5);
    form->Setup_Grid("", "");
    type("P");
    ASSERT_EQ(shown(16, 1), "0.50");
    unit().set("INJ_On", 0.75);
    form->showUnit();
    EXPECT_EQ(shown(16, 1), "0.75");
    EXPECT_TRUE(tool("Pulsewidth")->isChecked());
}

TEST_F(Table, PaintOutlivesTheWindow) {
    form->Show_Current_Activity(1000, 40);
    windows.table = nullptr;
    form.reset();
    form = std::make_unique<FrmTable>(fake.session);
    windows.table = form.get();
    form->Setup_Grid("VE", "Volumetric Efficiency Table");
    EXPECT_EQ(colour(12, 2), 0x00FFFF);
}

TEST_F(Table, PaintIsOfItsAxesAlone) {
    form->Show_Current_Activity(1000, 40);
    ASSERT_EQ(colour(12, 2), 0x00FFFF);
    form->Setup_Grid("ADV", "Ignition Advance Table");
    EXPECT_EQ(colour(12, 2), 0x00FFFF) << "the same axes";
    unit().set("RPMTBL", 1100, 1);
    form->showUnit();
    EXPECT_EQ(colour(12, 2), 0xFFFFFF);
    form->Show_Current_Activity(1100, 40);
    enterHeader(Qt::Horizontal, 1, "1200");
    ASSERT_EQ(unit().get("RPMTBL", 1), 1200);
    EXPECT_EQ(colour(12, 2), 0xFFFFFF) << "a header that the user has changed";
}

TEST_F(Table, TheFramesOfAnotherUnitFindAGridWithoutPaint) {
    fake.session.paintMemory.ofUnit(orbA, 200001);
    form->Show_Current_Activity(1000, 40);
    form->refreshLive();
    ASSERT_EQ(colour(12, 2), 0x00FFFF);
    fake.session.paintMemory.ofUnit(orbA, 200002);
    form->refreshLive();
    EXPECT_NE(colour(12, 2), 0x00FFFF);
}

TEST_F(Table, TimeFieldsHaveTheirOwnHelp) {
    EXPECT_EQ(timeOfGap()->property("fastHelpKey"), "helptog");
    EXPECT_EQ(timeOfGap()->toolTip(), "Maximum Controllable PulseWidth");
    EXPECT_EQ(form->findChild<QLineEdit*>("txtIOT")->accessibleName(), "Injector Offset Time (IOT)");
    EXPECT_EQ(form->findChild<QLineEdit*>("txtIOT")->property("fastHelpKey"), "helptiot");
}

TEST_F(Table, TimeThatIsNoNumberReturnsWithTheFocusAndAnEmptyOneWarns) {
    unit().set("scale1", 10);
    form->Setup_Grid("", "");
    QLineEdit* gap = timeOfGap();
    gap->setFocus();
    gap->setText("-");
    enter();
    grid().setFocus();  // as the box does
    EXPECT_EQ(gap->text(), "10");
    QApplication::processEvents();
    EXPECT_EQ(QApplication::focusWidget(), gap);
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("Retype Data")));
    gap->clear();
    enter();
    EXPECT_EQ(gap->text(), "10");
    EXPECT_THAT(lastBox().text, HasSubstr("Field CANNOT be NULL"));
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(Table, AcceptedTimeIsHandedToTheOtherFormsAndKeepsWhatDiscardBringsBack) {
    showStored(7);
    stand(16, 1);
    enter("12");
    QLineEdit* gap = timeOfGap();
    gap->setFocus();
    gap->setText("20");
    enter();
    EXPECT_EQ(unit().get("scale1"), 20);
    EXPECT_EQ(windows.shownUnits, 1);
    EXPECT_EQ(form->model()->sheet().undoCopy(0), 7);
}

TEST_F(Table, UnitsOfTheAxesStandInTheCornerOfTheHeaders) {
    auto* name = form->findChild<QLabel*>("lblAxisUnits");
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(name->text(), "kPa \\ RPM");
    EXPECT_EQ(name->accessibleDescription(), "Rows BLEND MAP in kPa, columns RPM in RPM");
    EXPECT_TRUE(name->isVisible());
    const QRect place(name->mapTo(&grid(), QPoint(0, 0)), name->size());
    EXPECT_EQ(place.right() + 1, grid().horizontalHeader()->geometry().left());
    EXPECT_EQ(place.top(), grid().horizontalHeader()->geometry().top());
    EXPECT_EQ(place.height(), grid().horizontalHeader()->height());
    EXPECT_GE(place.width(), name->fontMetrics().horizontalAdvance("kPa \\ RPM"));
}

TEST_F(Table, TheXAxisIsNamedBesideTheTimes) {
    auto* name = form->findChild<QLabel*>("Label2");
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(name->text(), "x-axis");
    EXPECT_TRUE(name->isVisible());
    EXPECT_EQ(form->findChild<QLabel*>("lblAcross")->text(), "RPM");
}

TEST_F(Table, EditBoxShowsLargeDigitsInSightAtEveryEdge) {
    for (const auto& [row, column] :
         {std::pair(1, 1), std::pair(1, 16), std::pair(16, 1), std::pair(16, 16)}) {
        stand(row, column);
        type("-12.5");
        EXPECT_GE(box().fontMetrics().height() * 4, grid().fontMetrics().height() * 5);
        EXPECT_GE(box().height(), box().fontMetrics().height());
        EXPECT_GE(box().width(), box().fontMetrics().horizontalAdvance("-12.5"));
        EXPECT_TRUE(grid().viewport()->rect().contains(box().geometry())) << row << ", " << column;
        EXPECT_TRUE(box().geometry().intersects(grid().cellRect(row, column)));
        key(Qt::Key_Escape);
    }
}

TEST_F(Table, EditBoxStandsOutFromTheCellsByDayAndByNight) {
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        mode == DisplayMode::Day ? form->look(true) : form->look(false);
        stand(8, 8);
        type("5");
        const QColor back = picture(box()).pixelColor(box().width() / 4, box().height() / 2);
        EXPECT_EQ(back, lookColors(mode).highlight);
        EXPECT_NE(back, lookColors(mode).surface);
        EXPECT_GT(box().fontMetrics().height(), grid().fontMetrics().height());
        key(Qt::Key_Escape);
    }
}

TEST_F(Table, RightClickOpensThePopUpOfTheMainWindowWithTheEntriesForTheSelection) {
    QWidget frame;
    QMenu popup(&frame);
    popup.setObjectName("mnuPopupTable");
    for (const char* name : {"mnuGraphTable", "mnuInterpolate", "mnuNewCol", "mnuRmvRow"}) {
        popup.addAction(name)->setObjectName(name);
    }
    const auto visible = [&] {
        std::vector<std::string> names;
        for (const QAction* entry : popup.actions()) {
            if (entry->isVisible()) names.push_back(entry->objectName().toStdString());
        }
        return names;
    };
    form->setParent(&frame);
    frame.resize(form->size());
    frame.show();
    form->show();
    Q_EMIT grid().customContextMenuRequested(grid().cellRect(3, 4).center());
    EXPECT_TRUE(popup.isVisible());
    EXPECT_EQ(cursor().row(), 3);
    EXPECT_EQ(cursor().column(), 4);
    EXPECT_THAT(visible(), ElementsAre("mnuGraphTable", "mnuNewCol", "mnuRmvRow"));
    popup.hide();
    select(3, 4, 5, 6);
    Q_EMIT grid().customContextMenuRequested(grid().cellRect(9, 9).center());
    EXPECT_EQ(cursor().selection().bottom, 5);
    EXPECT_THAT(visible(), ElementsAre("mnuGraphTable", "mnuInterpolate"));
    popup.hide();
    form->setParent(nullptr);
}

TEST_F(Table, DockingButtonAsksAndSwapsItsPaddedCaption) {
    std::vector<bool> asked;
    QObject::connect(form.get(), &FrmTable::dockingAsked, form.get(),
                     [&](bool docked) { asked.push_back(docked); });
    auto* button = tool("Docking");
    EXPECT_EQ(button->text(), "Undock        ");
    button->trigger();
    EXPECT_EQ(button->text(), "Dock          ");
    EXPECT_EQ(form->windowTitle(), "Volumetric Efficiency Table");
    button->trigger();
    EXPECT_EQ(form->windowTitle(), "");
    EXPECT_THAT(asked, ElementsAre(false, true));
}

TEST_F(Table, FuelFieldsShowOnlyOnFuelTables) {
    QLineEdit* gap = timeOfGap();
    EXPECT_FALSE(gap->isHidden());
    form->Setup_Grid("ADV", "Ignition Advance Table");
    EXPECT_TRUE(gap->isHidden());
    EXPECT_EQ(form->findChild<QLabel*>("lblDspTable")->text(), "Table Adv");
}

TEST_F(Table, LoadingAndUnloadingAreLogged) {
    const auto lastLine = [this] { return std::string(fake.session.console.lines().back()); };
    EXPECT_THAT(std::string(fake.session.console.lines().front()), HasSubstr("TABLE App. Loaded."));
    windows.table = nullptr;
    form.reset();
    EXPECT_THAT(lastLine(), HasSubstr("TABLE App. Terminated."));
}

}  // namespace
}  // namespace zentaq
