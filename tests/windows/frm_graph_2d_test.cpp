// Curves beside the fields of a page and in windows of their own: keys, the mouse, the engine's dot, which
// window shows which curve.
#include "windows/frm_graph_2d.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QTabWidget>

#include "base/number_text.h"
#include "base/settings_keys.h"
#include "qt/entry_box.h"
#include "unit_replies.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;

class CurveGraphWindows : public TableWindowsTest {
 protected:
    CurveGraphWindows() {
        for (int i = 0; i < 20; ++i) unit().set("CHKTBL", 100 - 5 * i, i);
        unit().FW_Release(5);
        fake.session.DataModified = false;
    }
    void page(const QString& text) {
        auto* tree = find<QTreeWidget>("treeZentaq");
        const auto items = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(items.size(), 1);
        tree->setCurrentItem(items[0]);
        Q_EMIT tree->itemActivated(items[0], 0);
        settle();
    }
    CurvePane* pane() { return find<CurvePane>("frmGraphs"); }
    CurvePicture& picture() { return pane()->picture(); }
    FrmGraph2D* graph(const char* name = "frmGraph_2D") { return find<FrmGraph2D>(name); }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        keyTo(picture(), key, {}, modifiers);
        settle();
    }
    std::string box(int cell) {
        const auto name = QStringLiteral("WE_%1").arg(cell);
        return find<EntryBox>(name.toUtf8().constData())->text().toStdString();
    }
    static void mouse(QWidget& target, QEvent::Type type, QPointF at) {
        const bool up = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, target.mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
    }
    void drag(std::size_t point, QPointF by) {
        const QPointF from = picture().placeOf(point);
        mouse(picture(), QEvent::MouseButtonPress, from);
        mouse(picture(), QEvent::MouseMove, from + by / 2);
        mouse(picture(), QEvent::MouseMove, from + by);
        mouse(picture(), QEvent::MouseButtonRelease, from + by);
        settle();
    }
    float warm(int cell) { return unit().get("CHKTBL", cell); }
    std::string label(const char* name) { return pane()->findChild<QLabel*>(name)->text().toStdString(); }
    void connectUnit() {
        fake.session.link.Send_ORB_Command("E");
        fake.ticker.run(1);
        for (const std::string& reply : {identifyReply(200001), firmwareReply("", "ZQA-405099")}) {
            fake.port.deliver(reply);
            fake.ticker.run(2);
        }
        ASSERT_EQ(fake.session.link.linked().LinkedUnitKind, 3);
    }
    void frame(float coolant) {
        fake.session.live.CLT = coolant;
        fake.session.unitMemory.frameCame(fake.clock.monotonicUs());
        fake.clock.nowUs += 300'000;
        fake.session.frames.tell();
    }
};

TEST_F(CurveGraphWindows, APageWithACurveShowsItBesideItsFieldsAndOthersDoNot) {
    page("Warm-Up Enrichments");
    ASSERT_NE(pane(), nullptr);
    EXPECT_EQ(pane()->graph()->kind().name, "Warm_Up");
    EXPECT_TRUE(picture().isVisible());
    page("Rev Limiter");
    EXPECT_EQ(pane(), nullptr);
    EXPECT_NE(find<SketchPicture>("picSketch"), nullptr);
}

TEST_F(CurveGraphWindows, KeysGoFromPointToPointAndChangeIt) {
    page("Warm-Up Enrichments");
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_THAT(label("lblPoint"), HasSubstr("Point 3 of 20: -20 °C, 90 %"));
    press(Qt::Key_Up);
    EXPECT_EQ(warm(2), 91);
    EXPECT_EQ(box(2), "91");
    EXPECT_TRUE(fake.session.DataModified);
    press(Qt::Key_PageDown);
    EXPECT_EQ(warm(2), 81);
    press(Qt::Key_End);
    for (int i = 0; i < 9; ++i) press(Qt::Key_Down);
    EXPECT_EQ(warm(19), 0) << "not below the range, and no box for it";
    EXPECT_TRUE(fake.dialogs.boxes.empty());
    press(Qt::Key_Home);
    EXPECT_EQ(picture().point(), 0u);
}

TEST_F(CurveGraphWindows, APointThatIsDraggedIsAnEntryOfItsBox) {
    page("Warm-Up Enrichments");
    const QPointF up(0, -0.1 * (picture().placeOf(19).y() - picture().placeOf(0).y()));
    drag(10, up);
    // A tenth of the way from 5 to 100 is 9.5 above 50.
    EXPECT_NEAR(warm(10), 59.5, 1);
    EXPECT_EQ(box(10), numberText(warm(10)));
    EXPECT_EQ(warm(9), 55);
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(CurveGraphWindows, AClickWithoutAMoveTakesAPointInHandAndChangesNothing) {
    page("Warm-Up Enrichments");
    drag(7, {0, 0});
    EXPECT_EQ(picture().point(), 7u);
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(CurveGraphWindows, EscapeLetsGoOfAPointOnItsWay) {
    page("Warm-Up Enrichments");
    const QPointF from = picture().placeOf(5);
    mouse(picture(), QEvent::MouseButtonPress, from);
    mouse(picture(), QEvent::MouseMove, from + QPointF(0, 40));
    press(Qt::Key_Escape);
    mouse(picture(), QEvent::MouseButtonRelease, from + QPointF(0, 40));
    EXPECT_EQ(warm(5), 75);
}

TEST_F(CurveGraphWindows, WhatIsTypedInABoxIsEnteredBeforeAMove) {
    page("Warm-Up Enrichments");
    auto* first = find<EntryBox>("WE_0");
    first->setFocus();
    first->setText("120");
    first->setModified(true);
    press(Qt::Key_Up);
    EXPECT_EQ(warm(0), 121);
}

TEST_F(CurveGraphWindows, SpeedsOfTheBlendMoveAcross) {
    for (int i = 0; i < 8; ++i) unit().set("BLDTBL", 1000 * (i + 1), i);
    page("TPS/MAP Blend");
    press(Qt::Key_Right);
    press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(unit().get("BLDTBL", 1), 2050);
    EXPECT_EQ(unit().get("LOWBLD", 1), 0);
}

TEST_F(CurveGraphWindows, AChangeInABoxMovesThePointAndInFahrenheitTheStops) {
    page("Warm-Up Enrichments");
    auto* first = find<EntryBox>("WE_0");
    first->setFocus();
    first->setText("200");
    keyTo(*first, Qt::Key_Return);
    windows.refresh();
    EXPECT_EQ(pane()->graph()->points()[0].y, 200);
    fake.settings.set("System", "TemperatureToggle", "1");
    windows.tell(&WindowNews::temperaturesChanged);
    windows.refresh();
    EXPECT_EQ(pane()->graph()->across().high, 302);
}

// ---- The engine

TEST_F(CurveGraphWindows, TheDotIsShownOnlyOfAUnitOfTheKindInHand) {
    page("Warm-Up Enrichments");
    frame(25);
    EXPECT_FALSE(pane()->graph()->dot().has_value()) << "no unit is on the link";
    connectUnit();
    frame(30);
    ASSERT_TRUE(pane()->graph()->dot().has_value());
    EXPECT_EQ(pane()->graph()->dot()->x, 30);
    EXPECT_THAT(label("lblLive"), HasSubstr("Now at 30: 65"));
    fake.clock.nowUs += 60'000'000;
    windows.refresh();
    EXPECT_FALSE(pane()->graph()->dot().has_value()) << "no values come any more";
}

TEST_F(CurveGraphWindows, WhatTheEngineDoesStandsBesideTheSettingThatIsAboutIt) {
    page("Rev Limiter");
    auto* live = find<QLabel>("lblLive_txtREV_Primary");
    ASSERT_NE(live, nullptr);
    fake.session.live.RPM = 2350;
    frame(20);
    EXPECT_EQ(live->text(), "");
    connectUnit();
    fake.session.live.RPM = 2350;
    frame(20);
    EXPECT_EQ(live->text(), "now 2350 rpm");
}

TEST_F(CurveGraphWindows, TheTraceIsKeptForTheNextCurve) {
    page("Warm-Up Enrichments");
    pane()->trace().click();
    page("Coolant Advance");
    EXPECT_TRUE(pane()->trace().isChecked());
    EXPECT_EQ(fake.settings.get("System", settings::CurveTrace), "1");
}

// ---- Windows of their own

TEST_F(CurveGraphWindows, ACurveOpensInAWindowOfItsOwnAndTheOneThatShowsItComesToTheFront) {
    page("Warm-Up Enrichments");
    find<QPushButton>("cmdGraph")->click();
    settle();
    ASSERT_NE(graph(), nullptr);
    EXPECT_EQ(graph()->windowTitle(), "Warm-Up Enrichments");
    openCurve(fake.session, "Warm_Up");
    settle();
    EXPECT_EQ(graph("frmGraph_2D2"), nullptr);
    openCurve(fake.session, "CLT_ADV");
    settle();
    ASSERT_NE(graph("frmGraph_2D2"), nullptr);
    EXPECT_EQ(graph("frmGraph_2D2")->pane().graph()->kind().name, "CLT_ADV");
    graph()->close();
    settle();
    EXPECT_EQ(graph(), nullptr);
    openCurve(fake.session, "MAT_ENR");
    settle();
    EXPECT_EQ(graph()->pane().graph()->kind().name, "MAT_ENR") << "its place is free";
}

// Told in twips: 4500 and 4000 are 300 and 267 pixels.
TEST_F(CurveGraphWindows, AWindowOfItsOwnOpensBesideTheMainOnesCorner) {
    windows.main().setGeometry(0, 0, 700, 500);
    openCurve(fake.session, "Warm_Up");
    settle();
    const QRect room = graph()->screen()->availableGeometry();
    const QPoint told = windows.main().pos() + QPoint(300, 266);
    EXPECT_EQ(graph()->pos().x(), std::min(told.x(), room.right() - graph()->width()));
    EXPECT_EQ(graph()->pos().y(), std::min(told.y(), room.bottom() - graph()->height()));
}

TEST_F(CurveGraphWindows, AMoveInAWindowShowsOnThePageAndTheOtherWayRound) {
    page("Warm-Up Enrichments");
    openCurve(fake.session, "Warm_Up");
    settle();
    keyTo(graph()->pane().picture(), Qt::Key_Up);
    settle();
    windows.refresh();
    EXPECT_EQ(warm(0), 101);
    EXPECT_EQ(box(0), "101");
    EXPECT_EQ(pane()->graph()->points()[0].y, 101);
    press(Qt::Key_Up);
    windows.refresh();
    EXPECT_EQ(graph()->pane().graph()->points()[0].y, 102);
}

TEST_F(CurveGraphWindows, TheSettingDocksThemInTheWorkspaceWhereOneIsDrawnByATimer) {
    fake.settings.set("System", "Graphs", "1");
    openCurve(fake.session, "Warm_Up");
    settle();
    auto* docked = graph("frmGraph_DX_2D");
    ASSERT_NE(docked, nullptr);
    auto* tabs = find<QTabWidget>("sstMenu");
    EXPECT_EQ(tabs->currentWidget(), docked);
    EXPECT_EQ(tabs->tabText(tabs->currentIndex()), "Warm-Up Enrichments");
    EXPECT_TRUE(docked->findChild<QTimer*>("tmrRender")->isActive());
    openCurve(fake.session, "CLT_ADV");
    settle();
    EXPECT_EQ(tabs->tabText(tabs->currentIndex()), "Coolant Advance");
    EXPECT_EQ(docked->pane().graph()->kind().name, "CLT_ADV");
}

TEST_F(CurveGraphWindows, TheyGoWithTheCalibration) {
    openCurve(fake.session, "Warm_Up");
    settle();
    fake.session.DataModified = false;
    windows.main().run("mnuClose");
    settle();
    EXPECT_EQ(graph(), nullptr);
    openCurve(fake.session, "Warm_Up");
    settle();
    EXPECT_EQ(graph(), nullptr) << "none is in hand";
}

}  // namespace
}  // namespace zentaq
