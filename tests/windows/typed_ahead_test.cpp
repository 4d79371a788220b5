// Keys typed faster than the unit answers, and the commands behind them: everything comes in the order in
// which it was typed, and nothing that is not written goes without a word.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCloseEvent>
#include <QDialog>
#include <QEventLoop>
#include <QThread>

#include "unit_replies.h"
#include "windows/key_press.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TypedAhead : public TableWindowsTest {
 protected:
    TypedAhead() {
        openVe();
        windows.killTimers();  // no polls between the records
        fake.session.link.load();
        fake.ticker.start();
        settle();
        drainLink();
        unit().ONFLY_MODE(true);
        fake.dialogs.boxes.clear();
        fake.port.written.clear();
        stand(16, 1);
    }
    std::string notice() const { return fake.session.notices.text(fake.clock.nowUs); }
    /// The commands of the start run out of patience.
    void drainLink() {
        const Link& link = fake.session.link;
        fake.ticker.run(1);
        for (int i = 0; i < 200'000 && !link.CurrentCommand().empty(); ++i) fake.ticker.run(1);
        fake.ticker.run(2);
        ASSERT_TRUE(link.CurrentCommand().empty());
    }
    void nudge() { key(Qt::Key_Period, "."); }
    void enter(const QString& digits) {
        type(digits);
        key(Qt::Key_Return, "\r");
    }
    void lock() {
        for (int i = 0; i < 1000 && !form().locked(); ++i) fake.ticker.run(1);
        ASSERT_TRUE(form().locked());
    }
    /// One step is on its way to the unit, and the next is typed behind it.
    void nudgeTwice() {
        nudge();
        lock();
        nudge();
    }
    void answer() {
        fake.port.deliver({'A', 'X'});
        fake.ticker.run(2);
        settle();
    }
    /// First bytes of what went over the wire, polls left out.
    std::vector<std::string> wire() {
        std::vector<std::string> keys;
        for (const std::string& command : fake.port.written) {
            if (command.rfind("P2", 0) == 0) keys.emplace_back("P2");
            if (command == "S") keys.emplace_back("S");
        }
        return keys;
    }
    /// An ORB A, number 200001, tells who it is.
    void connectUnit() {
        fake.session.link.Send_ORB_Command("E");
        fake.ticker.run(1);
        for (const std::string& reply : {identifyReply(200001), firmwareReply("", "ZQA-405099")}) {
            fake.port.deliver(reply);
            fake.ticker.run(2);
        }
        drainLink();
        ASSERT_EQ(fake.session.link.linked().LinkedUnitKind, 3);
        windows.main().refresh();
    }
    float inFile(int cell) const { return cellIn(fake.session.CurrentFile, cell); }
};

TEST_F(TypedAhead, StoreComesBehindTheStepsTypedBeforeIt) {
    nudgeTwice();
    nudge();
    windows.main().run("mnuStoreONFLY");
    EXPECT_THAT(wire(), ElementsAre("P2"));
    for (int i = 0; i < 5; ++i) answer();
    EXPECT_EQ(ve(0), 3);
    EXPECT_THAT(wire(), ElementsAre("P2", "P2", "P2", "S"));
}

TEST_F(TypedAhead, ProgramWritesTheStepsTypedBeforeItAndDropsNone) {
    nudgeTwice();
    windows.main().run("mnuProgramORB");
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty()) << "its turn has not come";
    EXPECT_NE(windows.table(), nullptr);
    answer();
    EXPECT_EQ(ve(0), 2);
    EXPECT_EQ(lastBox().title, "Error 1005");
}

TEST_F(TypedAhead, SavePutsTheLastStepIntoTheFile) {
    nudgeTwice();
    windows.main().run("mnuSave");
    answer();
    EXPECT_FALSE(fake.session.DataModified);
    const int cell = unit().find("VE")->index;
    EXPECT_EQ(inFile(cell), 2);
}

TEST_F(TypedAhead, ClosingWaitsForTheKeysAndThenAsks) {
    nudgeTwice();
    QCloseEvent closing;
    QApplication::sendEvent(&windows.main(), &closing);
    EXPECT_FALSE(closing.isAccepted());
    EXPECT_FALSE(windows.closed());
    answer();
    EXPECT_EQ(ve(0), 2);
    EXPECT_TRUE(windows.closed());
    ASSERT_FALSE(fake.dialogs.boxes.empty());
    EXPECT_EQ(fake.dialogs.boxes.front().text, "Save changes?");
}

TEST_F(TypedAhead, AnotherTableOpensBehindTheKeysOfThisOne) {
    nudgeTwice();
    windows.main().run("mnuAdvTbl");
    EXPECT_EQ(form().tableName(), "VE");
    answer();
    EXPECT_EQ(ve(0), 2);
    EXPECT_EQ(form().tableName(), "ADV");
}

TEST_F(TypedAhead, AClickThatWaitedTakesTheDigitsTypedBehindIt) {
    nudge();
    lock();
    const QPointF place = grid().cellRect(4, 4).center();
    QWidget* area = grid().viewport();
    QMouseEvent press(QEvent::MouseButtonPress, place, area->mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(area, &press);
    EXPECT_EQ(form().model()->cursor().row(), 16) << "not yet";
    enter("7");
    answer();
    EXPECT_EQ(form().model()->cursor().row(), 4);
    EXPECT_EQ(ve(form().model()->sheet().tableIndex(4, 4)), 7);
    EXPECT_EQ(ve(0), 1);
}

TEST_F(TypedAhead, WhatIsTypedBehindARefusedEntryIsDroppedWithAWord) {
    nudge();
    lock();
    enter("99");  // 50 at most
    key(Qt::Key_Right);
    enter("8");
    windows.main().run("mnuSave");
    answer();
    settle();
    EXPECT_EQ(ve(0), 1);
    EXPECT_EQ(ve(1), 0) << "its digits must not land in the refused cell either";
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_THAT(fake.dialogs.boxes[0].text, HasSubstr("(-50 to 50%)"));
    EXPECT_EQ(notice(), "The entry was refused; not taken behind it: 3 keys, Save.");
    EXPECT_TRUE(fake.session.DataModified) << "nothing was saved";
}

TEST_F(TypedAhead, ARefusedEntryIsToldFromTheEventLoopAndNotInsideTheTick) {
    nudge();
    lock();
    enter("99");
    fake.port.deliver({'A', 'X'});
    fake.ticker.run(2);
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty());
    settle();
    EXPECT_EQ(fake.dialogs.boxes.size(), 1u);
}

TEST_F(TypedAhead, KeysThatWaitAreNotWrittenUnderABoxButBehindIt) {
    nudgeTwice();
    QDialog box(&windows.main());
    box.setModal(true);
    box.show();
    ASSERT_EQ(QApplication::activeModalWidget(), &box);
    answer();
    EXPECT_EQ(ve(0), 1);
    box.close();
    for (int round = 0; round < 500 && ve(0) == 1; ++round) {
        settle();
        QThread::msleep(1);
    }
    EXPECT_EQ(ve(0), 2);
}

TEST_F(TypedAhead, AHundredKeysWaitAndAreAllWritten) {
    nudge();
    lock();
    for (int i = 0; i < 20; ++i) {
        for (const int code :
             {Qt::Key_Period, Qt::Key_Period, Qt::Key_Comma, Qt::Key_Period, Qt::Key_Comma}) {
            key(code, code == Qt::Key_Period ? "." : ",");
        }
    }
    for (int i = 0; i < 110; ++i) answer();
    EXPECT_EQ(ve(0), 21);
}

TEST_F(TypedAhead, KeysThatWaitWhenTheUnitIsLostAreWrittenAllTheSame) {
    nudgeTwice();
    drainLink();
    settle();
    EXPECT_EQ(ve(0), 2);
}

TEST_F(TypedAhead, AStoreThatWaitedForAUnitThatHasGoneIsToldAndNotSent) {
    connectUnit();
    unit().ONFLY_MODE(true);
    fake.port.written.clear();
    fake.dialogs.boxes.clear();
    nudgeTwice();
    find<QAction>("mnuStoreONFLY")->trigger();
    drainLink();
    ASSERT_EQ(fake.session.link.linked().LinkedUnitKind, 0);
    settle();
    EXPECT_EQ(ve(0), 2);
    EXPECT_THAT(wire(), ElementsAre("P2"));
    EXPECT_EQ(notice(), "Not run: \"Store Changes in ORB\". What it needs has gone meanwhile.");
}

TEST_F(TypedAhead, SaveTakesTheTextThatStandsInTheBox) {
    type("12");
    windows.main().run("mnuSave");
    EXPECT_EQ(ve(0), 12);
    EXPECT_EQ(inFile(unit().find("VE")->index), 12);
    EXPECT_TRUE(form().inputBox().isHidden());
}

TEST_F(TypedAhead, ATextThatIsRefusedEndsTheCommand) {
    type("99");
    fake.session.DataModified = true;
    windows.main().run("mnuSave");
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("(-50 to 50%)")));
    EXPECT_TRUE(fake.session.DataModified);
    EXPECT_EQ(ve(0), 0);
}

TEST_F(TypedAhead, ABoxThatOnlyShowsItsCellFillsNoSelection) {
    unit().set("VE", 4, 0);
    windows.showUnit();
    const QAbstractItemModel* cells = grid().model();
    grid().selectionModel()->select({cells->index(14, 0), cells->index(15, 1)},
                                    QItemSelectionModel::ClearAndSelect);
    key(Qt::Key_Space, " ");
    ASSERT_FALSE(form().inputBox().isHidden());
    windows.main().run("mnuSave");
    EXPECT_EQ(ve(0), 4);
    EXPECT_EQ(ve(1), 0);
    EXPECT_EQ(ve(16), 0);
}

TEST_F(TypedAhead, SaveTakesWhatWasLeftInACellWithoutEnter) {
    type("12");
    grid().setFocus(Qt::MouseFocusReason);
    stand(4, 4);
    ASSERT_EQ(form().model()->sheet().grid().text(16, 1), "12");
    ASSERT_EQ(ve(0), 0) << "left without Enter";
    windows.main().run("mnuSave");
    EXPECT_EQ(inFile(unit().find("VE")->index), 12);
}

TEST_F(TypedAhead, StoreTakesTheTimeOfGapThatIsBeingTyped) {
    QLineEdit* gap = timeOfGap();
    gap->setFocus();
    gap->selectAll();
    typeText("6");
    QFocusEvent menu(QEvent::FocusOut, Qt::MenuBarFocusReason);
    QApplication::sendEvent(gap, &menu);
    EXPECT_EQ(unit().get("scale1"), 5) << "a menu in front is no entry";
    windows.main().run("mnuStoreONFLY");
    EXPECT_EQ(unit().get("scale1"), 6);
    for (int i = 0; i < 4; ++i) {
        fake.ticker.run(1);
        answer();
    }
    ASSERT_FALSE(wire().empty());
    EXPECT_EQ(wire().front(), "P2");
    EXPECT_EQ(wire().back(), "S");
}

// ---- Commands that take the table away

TEST_F(TypedAhead, ACommandBehindOneThatRemovesTheTableRunsAllTheSame) {
    nudgeTwice();
    windows.main().run("mnuClose");
    windows.main().run("mnuExit");
    answer();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_TRUE(windows.closed());
}

TEST_F(TypedAhead, WhatCannotComeBehindAClosedCalibrationIsToldInOneLine) {
    nudgeTwice();
    windows.main().run("mnuClose");
    windows.main().run("mnuSave");
    windows.main().run("mnuSaveAs");
    windows.main().run("mnuAdvTbl");
    fake.dialogs.answers = {Answer::Cancel};  // no save
    answer();
    settle();
    settle();
    EXPECT_EQ(fake.session.slotInHand(), 0);
    EXPECT_EQ(windows.table(), nullptr);
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].text, "Save changes?");
    EXPECT_EQ(
        notice(),
        "Not run: \"Save\", \"Save As\", \"Ignition Advance Table\". What it needs has gone meanwhile.");
}

TEST_F(TypedAhead, KeysAndButtonsForTheCellsOfARemovedTableAreToldInOneLine) {
    nudgeTwice();
    windows.main().run("mnuClose");
    nudge();
    tableAction("Discard")->trigger();
    windows.main().run("mnuHelpContents");  // waits for no table
    fake.dialogs.answers = {Answer::Cancel};
    answer();
    settle();
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u) << "whether to save";
    EXPECT_EQ(notice(), "The table was closed; not taken: 1 key, Discard Changes.");
}

TEST_F(TypedAhead, AStoreBehindTheTablesOwnCloseGoesOut) {
    nudgeTwice();
    tableAction("Close")->trigger();
    EXPECT_TRUE(form().isVisible()) << "in its turn";
    nudge();
    windows.main().run("mnuStoreONFLY");
    for (int i = 0; i < 5; ++i) answer();
    settle();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_EQ(ve(0), 2);
    EXPECT_THAT(wire(), ElementsAre("P2", "P2", "S"));
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty());
    EXPECT_EQ(notice(), "The table was closed; not taken: 1 key.");
}

TEST_F(TypedAhead, WhatIsLeftByARemovedTableWaitsForTheBoxOfTheCommandThatRemovedIt) {
    nudgeTwice();
    windows.main().run("mnuStoreONFLY");
    QDialog box(&windows.main());
    box.setModal(true);
    box.show();
    windows.removeForms();
    fake.port.written.clear();
    for (int i = 0; i < 3; ++i) answer();
    EXPECT_THAT(wire(), IsEmpty());
    box.close();
    for (int i = 0; i < 50 && wire().empty(); ++i) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        fake.ticker.run(1);
    }
    EXPECT_THAT(wire(), ElementsAre("S"));
}

TEST_F(TypedAhead, ASaveTypedBehindAnOpenComesBehindTheOpening) {
    nudgeTwice();
    windows.main().run("mnuOpen");
    windows.main().run("mnuSave");
    fake.dialogs.files.push_back(calibrationFile());
    fake.dialogs.answers = {Answer::Cancel};
    answer();
    settle();
    EXPECT_EQ(lastBox().title, "Data Saved.");
    EXPECT_EQ(inFile(unit().find("VE")->index), 0) << "the change was declined";
}

}  // namespace
}  // namespace zentaq
