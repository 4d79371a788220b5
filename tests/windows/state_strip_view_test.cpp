#include "windows/state_strip_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QAction>
#include <QElapsedTimer>
#include <QMouseEvent>

#include "app/strip_facts.h"
#include "windows/key_press.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StateStripViewTest : public testing::Test {
 protected:
    QWidget window;
    StateStripView strip{&window};

    StateStripViewTest() {
        strip.resize(4000, strip.sizeHint().height());
        strip.show(stripRows(changing()));
        window.show();
    }
    void activate() {
        window.activateWindow();
        constexpr int patienceMs = 3000;
        QElapsedTimer waited;
        for (waited.start(); !window.isActiveWindow() && waited.elapsed() < patienceMs;) {
            QApplication::processEvents(QEventLoop::AllEvents, 20);
            window.activateWindow();
        }
    }
    void say(const StripFacts& facts) { strip.show(stripRows(facts)); }
    StripButton* button(const char* name) { return strip.findChild<StripButton*>(QLatin1String(name)); }
    /// What is seen, from left to right.
    std::vector<std::string> seen() {
        std::vector<StripButton*> buttons;
        for (auto* one : strip.findChildren<StripButton*>()) {
            if (!one->isHidden()) buttons.push_back(one);
        }
        std::ranges::sort(buttons, {}, [](const auto* one) { return one->x(); });
        std::vector<std::string> texts;
        for (const auto* one : buttons) texts.push_back(one->accessibleName().toStdString());
        return texts;
    }
    void expectNoneOverlapsOrIsCut() {
        int right = 0;
        for (auto* one : strip.findChildren<StripButton*>()) {
            if (one->isHidden()) continue;
            EXPECT_GE(one->width(), one->leastWidth()) << one->accessibleName().toStdString();
            EXPECT_LE(one->geometry().right(), strip.width()) << one->accessibleName().toStdString();
            if (one->objectName() != "stripMore") {
                EXPECT_GE(one->x(), right);
                right = one->geometry().right();
            }
        }
        EXPECT_TRUE(button("stripMore")->isHidden() || button("stripMore")->x() >= right);
    }
};

TEST_F(StateStripViewTest, ShowsWhatIsToSayFromLeftToRight) {
    EXPECT_THAT(seen(), ElementsAre("ORB A 001234", "ONFLY", "Not stored in ORB", "Modified, not saved",
                                    "ORB A  tune.ZQ4OA", "ZQA5099"));
    expectNoneOverlapsOrIsCut();
}

TEST_F(StateStripViewTest, APartIsPressedByMouseByEnterAndBySpace) {
    std::vector<std::string_view> commands;
    QObject::connect(&strip, &StateStripView::pressed, &strip,
                     [&](const StripRow& row) { commands.push_back(row.command); });
    StripButton* stored = button("stripNotStored");
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent mouse(type, QPointF(3, 3), stored->mapToGlobal(QPointF(3, 3)), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(stored, &mouse);
    }
    activate();
    stored->setFocus();
    sendKey(Qt::Key_Space);
    sendKey(Qt::Key_Return);
    EXPECT_THAT(commands, ElementsAre("mnuStoreONFLY", "mnuStoreONFLY", "mnuStoreONFLY"));
}

TEST_F(StateStripViewTest, AClickLeavesTheKeyboardWhereItIsAndTabReachesEveryPart) {
    for (auto* one : strip.findChildren<StripButton*>()) {
        const bool says = !one->accessibleName().isEmpty();
        EXPECT_EQ(one->focusPolicy(), says ? Qt::TabFocus : Qt::NoFocus);
    }
}

TEST_F(StateStripViewTest, AScreenReaderHearsTheTextAndBehindItTheMeaning) {
    const auto said = [this](const char* name, QAccessible::Text which) {
        return QAccessible::queryAccessibleInterface(button(name))->text(which).toStdString();
    };
    EXPECT_EQ(QAccessible::queryAccessibleInterface(button("stripUnit"))->role(), QAccessible::Button);
    EXPECT_EQ(said("stripUnit", QAccessible::Name), "ORB A 001234");
    EXPECT_EQ(said("stripUnit", QAccessible::Description),
              "On the link is ORB A 001234, firmware ZQA5099. Press to ask it again who it is.");
    StripFacts lost = changing();
    lost.unitFound = lost.identified = false;
    lost.unitLost = true;
    say(lost);
    EXPECT_EQ(said("stripUnit", QAccessible::Name), "LINK LOST");
    EXPECT_NE(said("stripUnit", QAccessible::Description).find("does not answer any more"),
              std::string::npos);
}

TEST_F(StateStripViewTest, AtEveryWidthPartsFoldByImportanceIntoAMenuThatHasAllOfThem) {
    QMenu* menu = strip.findChild<QMenu*>("mnuStripMore");
    for (int width = 1400; width >= 300; width -= 50) {
        strip.resize(width, strip.height());
        expectNoneOverlapsOrIsCut();
        std::size_t shown = seen().size();
        if (!button("stripMore")->isHidden()) {
            Q_EMIT menu->aboutToShow();
            shown += static_cast<std::size_t>(menu->actions().size()) - 1;
        }
        EXPECT_EQ(shown, 6u) << width;
    }
    EXPECT_THAT(seen(), testing::Contains("ORB A 001234")) << "the last to stay";
    EXPECT_EQ(button("stripMore")->accessibleDescription().toStdString(),
              "More states, for which there is no room: ONFLY, Not stored in ORB, Modified, not saved, "
              "ORB A  tune.ZQ4OA, ZQA5099");
}

TEST_F(StateStripViewTest, AnEntryOfTheMenuDoesWhatThePartDoes) {
    strip.resize(200, strip.height());
    std::string command;
    QObject::connect(&strip, &StateStripView::pressed, &strip,
                     [&](const StripRow& row) { command = row.command; });
    QMenu* menu = strip.findChild<QMenu*>("mnuStripMore");
    Q_EMIT menu->aboutToShow();
    menu->findChild<QAction*>("stripNotStored")->trigger();
    EXPECT_EQ(command, "mnuStoreONFLY");
}

TEST_F(StateStripViewTest, APartThatGoesGivesTheKeyboardBack) {
    activate();
    button("stripNotStored")->setFocus();
    ASSERT_TRUE(button("stripNotStored")->hasFocus());
    int left = 0;
    QObject::connect(&strip, &StateStripView::keyboardLeft, &strip, [&] {
        ++left;
        window.setFocus();
    });
    StripFacts stored = changing();
    stored.changesNotStored = false;
    say(stored);
    EXPECT_EQ(left, 1);
}

TEST_F(StateStripViewTest, APartThatFoldsHandsTheKeyboardToTheMenu) {
    activate();
    button("StatusBar1_Panel4")->setFocus();
    strip.resize(200, strip.height());
    EXPECT_TRUE(button("stripMore")->hasFocus());
}

TEST_F(StateStripViewTest, ANameOfAFileIsShownEscapedAndTakesNoKey) {
    StripFacts facts = changing();
    facts.file = "a&b <b>\x1B.ZQ4OA";
    say(facts);
    EXPECT_EQ(button("StatusBar1_Panel1")->accessibleName().toStdString(), "ORB A  a&b <b>\\x1B.ZQ4OA");
    EXPECT_TRUE(button("StatusBar1_Panel1")->shortcut().isEmpty());
}

/// What a button of the strip shows of its text.
std::string shownOn(const StripButton& button) {
    const int inside = button.width() - 2 * space(button.fontMetrics(), Space::Normal);
    return button.fontMetrics().elidedText(button.accessibleName(), Qt::ElideMiddle, inside).toStdString();
}

TEST_F(StateStripViewTest, WhereThereIsRoomNoTextIsCutInAnySize) {
    const std::vector<std::string> names = {"new calibration", "ii.ZQ4OA", "Street 2.0 Four.ZQ4OA",
                                            "WWWWWWWWWWWWWWWW.ZQ4OA"};
    for (double points = 9; points < 30; points += 0.7) {
        for (auto* one : strip.findChildren<StripButton*>()) {
            QFont font = one->font();
            font.setPointSizeF(points);
            one->setFont(font);
        }
        for (const std::string& name : names) {
            StripFacts facts = changing();
            facts.file = name;
            say(facts);
            EXPECT_EQ(shownOn(*button("StatusBar1_Panel1")), "ORB A  " + name) << points;
        }
    }
}

TEST_F(StateStripViewTest, ATextComesWholeAsSoonAsWhatTookItsRoomHasGone) {
    StripFacts facts = changing();
    facts.file = "Street 2.0 Four with the long runners.ZQ4OA";
    facts.notice = "The search for a unit was ended, and the port is the one that it was before.";
    facts.notices = 1;
    strip.resize(1700, strip.height());
    say(facts);
    ASSERT_NE(shownOn(*button("StatusBar1_Panel1")), "ORB A  " + facts.file) << "the message comes first";
    facts.notice.clear();
    say(facts);
    EXPECT_EQ(shownOn(*button("StatusBar1_Panel1")), "ORB A  " + facts.file);
}

TEST_F(StateStripViewTest, WhatMayBeCutIsToldWholeUnderThePointer) {
    EXPECT_EQ(button("StatusBar1_Panel1")->toolTip().toStdString(),
              plainTip("ORB A  tune.ZQ4OA\nThe calibration in hand. Press to save it under another name.")
                  .toStdString());
}

TEST_F(StateStripViewTest, TheSameRowsAgainTouchNothing) {
    const QRect before = button("stripUnit")->geometry();
    button("stripUnit")->setGeometry(1, 1, 5, 5);
    say(changing());
    EXPECT_EQ(button("stripUnit")->geometry(), QRect(1, 1, 5, 5)) << "no layout without a change";
    button("stripUnit")->setGeometry(before);
}

// ---- In the frame

class StripInFrame : public WindowTest {
 protected:
    StripButton* part(const char* name) { return find<StripButton>(name); }
    std::string text(const char* name) { return part(name)->accessibleName().toStdString(); }
};

TEST_F(StripInFrame, TellsWhatIsInHandAndWhatIsNotSavedYet) {
    EXPECT_EQ(text("StatusBar1_Panel1"), "No calibration");
    openCalibration();
    EXPECT_EQ(text("StatusBar1_Panel1"), "ORB A  tune.ZQ4OA");
    EXPECT_EQ(text("StatusBar1_Panel4"), "");
    fake.session.markModified();
    windows.main().refresh();
    EXPECT_EQ(text("StatusBar1_Panel4"), "Modified, not saved");
    part("StatusBar1_Panel4")->click();
    EXPECT_EQ(lastBox().text, "Data has been saved Successfully!");
    EXPECT_EQ(text("StatusBar1_Panel4"), "");
}

TEST_F(StripInFrame, OnFlyOpensWhatTheGuideTellsAboutIt) {
    openCalibration();
    fake.session.currentUnitObject().ONFLY_MODE(true);
    windows.main().refresh();
    EXPECT_EQ(text("StatusBar1_Panel2"), "ONFLY");
    part("StatusBar1_Panel2")->click();
    ASSERT_NE(windows.help(), nullptr);
}

TEST_F(StripInFrame, AMessageStandsUntilItIsPressedAway) {
    fake.session.notice("Told.");
    windows.main().refresh();
    EXPECT_EQ(text("stripNotice"), "Told.");
    part("stripNotice")->click();
    EXPECT_EQ(text("stripNotice"), "");
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty());
}

TEST_F(StripInFrame, AMessageWaitsForThePressOfAKeyAndGoesHalfAMinuteBehindIt) {
    fake.session.notice("Told.");
    windows.main().refresh();
    fake.clock.nowUs += 10 * Notices::standsUs;
    windows.main().refresh();
    EXPECT_EQ(text("stripNotice"), "Told.") << "nobody was there";
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Shift, Qt::NoModifier);
    QApplication::sendEvent(&windows.main(), &key);
    windows.main().refresh();
    EXPECT_EQ(text("stripNotice"), "Told.");
    fake.clock.nowUs += Notices::standsUs;
    windows.main().refresh();
    EXPECT_EQ(text("stripNotice"), "");
}

TEST_F(StripInFrame, AMessageComesInABoxWhereAnotherWindowStandsInFront) {
    windows.open(window::options);
    activate(*windows.options());
    ASSERT_TRUE(windows.options()->isActiveWindow());
    fake.session.notice("Told.");
    QApplication::processEvents();
    EXPECT_EQ(lastBox().text, "Told.");
    EXPECT_EQ(fake.session.notices.text(0), "");
}

TEST_F(StripInFrame, ReachesAsFarAsTheFrameAndNoFurther) {
    auto* strip = find<StateStripView>("stateStrip");
    windows.main().resize(683, 384);
    QApplication::processEvents();
    EXPECT_LE(strip->mapTo(&windows.main(), QPoint(strip->width(), 0)).x(), windows.main().width());
    EXPECT_GE(strip->height(), part("stripUnit")->sizeHint().height());
}

}  // namespace
}  // namespace zentaq
