// The dashboard in the program: codes have a place whatever the room is, and its instruments follow the unit.
#include "unit_replies.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class DashboardCodes : public TableWindowsTest {
 protected:
    FrmDashBoardPanel& panel() { return windows.dashboard()->panel(); }
    CodeBox& box() { return *panel().lblCheckEngine; }
    void frame(QSize size) {
        windows.main().setWindowState(Qt::WindowNoState);
        windows.main().resize(size);
        windows.main().show();
        settle();
        settle();
    }
    void fold(bool on) {
        if (fake.session.folds.dashboard.folded() != on) commands.toggleDashboard();
        settle();
    }
    void come(const char* code) {
        fake.session.codes.Update_CHKE(code);
        windows.tell(&WindowNews::codesChanged);
        settle();
    }
    /// All that is in view beside it on the panel, but for the veil and the link's panel over the dials.
    void expectInSight(const QWidget& widget, const std::string& where) {
        EXPECT_TRUE(widget.isVisible()) << where;
        EXPECT_FALSE(widget.geometry().isEmpty()) << where;
        EXPECT_TRUE(panel().rect().contains(widget.geometry())) << where;
        for (const QWidget* other : panel().findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (other == &widget || !other->isVisible()) continue;
            EXPECT_FALSE(other->geometry().intersects(widget.geometry()))
                << where << " " << other->objectName().toStdString();
        }
    }
    /// That nothing of the text is cut.
    void expectWhole(const std::string& where) {
        EXPECT_LE(box().fontMetrics().size(0, box().text()).width(), box().width()) << where;
        EXPECT_LE(box().fontMetrics().size(0, box().text()).height(), box().height()) << where;
    }
};

constexpr QSize screens[] = {{1366, 700}, {911, 466}, {683, 345}};

TEST_F(DashboardCodes, ACodeIsInSightInEveryRoomFoldedAndOpen) {
    come("21 - TPS Sensor Failed High");
    for (const QSize& size : screens) {
        frame(size);
        for (const bool folded : {true, false}) {
            fold(folded);
            const std::string where = std::to_string(windows.main().width()) + (folded ? " folded" : " open");
            expectInSight(box(), where);
            expectWhole(where);
            EXPECT_TRUE(panel().label("lblTach").isVisible()) << where;
            const std::string whole = folded ? "1 code: TPS SEN FAIL HI" : "TPS SEN\nFAIL HI";
            EXPECT_EQ(box().text().toStdString(), whole) << where;
        }
    }
}

TEST_F(DashboardCodes, OpenInLittleRoomACodeKeepsAPlaceToo) {
    come("21 - TPS Sensor Failed High");
    fold(false);
    // By itself, as small as its frame lets it be and smaller.
    FrmDashBoard board(fake.session, commands);
    for (const QSize& size :
         {QSize(911, 110), QSize(683, 88), QSize(683, 44), QSize(400, 44), QSize(300, 30)}) {
        board.resize(size);
        board.show();
        board.codesChanged();
        settle();
        const CodeBox& code = *board.panel().lblCheckEngine;
        EXPECT_TRUE(code.isVisible()) << size.width();
        EXPECT_GE(code.width(), code.fontMetrics().horizontalAdvance("FAIL HI")) << size.width();
        EXPECT_GE(code.height(), code.fontMetrics().height()) << size.width();
        if (size.width() >= 683) {
            EXPECT_LE(code.fontMetrics().size(0, code.text()).width(), code.width()) << size.height();
        }
        EXPECT_TRUE(board.panel().rect().contains(code.geometry())) << size.width();
        for (const auto* label : board.panel().findChildren<LiveLabel*>(Qt::FindDirectChildrenOnly)) {
            if (!label->isVisible()) continue;
            EXPECT_FALSE(label->geometry().intersects(code.geometry())) << label->objectName().toStdString();
        }
    }
}

TEST_F(DashboardCodes, WithoutACodeNothingTakesRoomOnTheLine) {
    frame({683, 345});
    fold(true);
    const auto inSight = [&] {
        int count = 0;
        for (const auto* label : panel().findChildren<LiveLabel*>()) count += int{label->isVisible()};
        return count;
    };
    const int before = inSight();
    EXPECT_TRUE(box().isHidden());
    come("21 - TPS Sensor Failed High");
    EXPECT_LT(inSight(), before);
    fake.session.codes.Clear_CHKE();
    windows.tell(&WindowNews::codesChanged);
    settle();
    EXPECT_TRUE(box().isHidden());
    EXPECT_EQ(inSight(), before);
}

TEST_F(DashboardCodes, TheLineSaysHowManyCodesThereAreAndTheTipHasThemAll) {
    frame({683, 345});
    fold(true);
    come("12 - Trigger Wheel Error");
    come("62 - ISC2 Short to Battery or Open Load");
    emit find<QTimer>("tmrCHKE_Status")->timeout({});
    EXPECT_EQ(box().text(), "2 codes: ISC2 SHRT/OP");
    EXPECT_EQ(box().toolTip(),
              "2 codes: ISC2 SHRT/OP\n12 - Trigger Wheel Error\n62 - ISC2 Short to Battery or Open Load");
    fold(false);
    EXPECT_EQ(box().text(), "ISC2   \nSHRT/OP");
    EXPECT_TRUE(box().toolTip().contains("12 - Trigger Wheel Error"));
}

TEST_F(DashboardCodes, OnTheLineTheCodesHaveTheAlarmsColorsByDayAndByNightAndTheLampGivesThemItsPlace) {
    frame({683, 345});
    fold(true);
    panel().checkEngineLamp->light(QColor(Qt::red));
    panel().lampsChanged();
    EXPECT_TRUE(panel().checkEngineLamp->isVisible());
    come("21 - TPS Sensor Failed High");
    EXPECT_FALSE(panel().checkEngineLamp->isVisible());
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        mode == DisplayMode::Day ? commands.dayMode() : commands.nightMode();
        settle();
        const LookColors& look = lookColors(mode);
        EXPECT_EQ(box().grab().toImage().pixelColor(2, 2), look.alarmBadge);
        EXPECT_EQ(box().palette().color(QPalette::WindowText), look.alarmBadgeText);
    }
    fold(false);
    EXPECT_EQ(box().grab().toImage().pixelColor(4, 4), lookColors(DisplayMode::Night).surface);
    EXPECT_TRUE(panel().checkEngineLamp->isVisible());
}

TEST_F(DashboardCodes, AReadOutThatLeavesItsDialStaysBelowTheVeil) {
    frame({1366, 700});
    fold(false);
    windows.dashboard()->showLinkState();
    panel().setLive(false);
    LiveLabel& coolant = panel().label("lblCLT");
    ASSERT_EQ(coolant.parentWidget(), &panel().gauge("Coolant"));
    fold(true);
    ASSERT_EQ(coolant.parentWidget(), &panel());
    ASSERT_TRUE(panel().veil->isVisible());
    const auto order = panel().children();
    EXPECT_GT(order.indexOf(panel().veil), order.indexOf(&coolant));
}

TEST_F(DashboardCodes, TheButtonOfTheFoldSaysWhatIsNotOnTheLine) {
    const auto* button = find<QToolButton>("cmdFoldDashboard");
    fold(true);
    EXPECT_EQ(button->toolTip(), "Open the dashboard (Ctrl+F9)\nNot on this line: dials, Detail");
    panel().lstGPO->addItem("GPIO1  OFF");
    fold(false);
    EXPECT_EQ(button->toolTip(), "Fold the dashboard (Ctrl+F9)");
    fold(true);
    EXPECT_EQ(button->toolTip(),
              "Open the dashboard (Ctrl+F9)\nNot on this line: dials, inputs and outputs, Detail");
}

class DashboardUnits : public WindowTest {
 protected:
    static constexpr int pzk2 = 5;

    FrmDashBoardPanel& panel() { return windows.dashboard()->panel(); }
    void stand() {
        windows.main().setWindowState(Qt::WindowNoState);
        windows.main().resize(1920, 1012);
        windows.main().show();
        QApplication::processEvents();
    }
    void openPzk2() {
        std::vector<float> floats = wholeFloats(pzk2);
        floats.resize(3 + 1701);
        fake.dialogs.files.push_back(writeFloats(fake.folder.path("spark.ZQ4PZK"), floats));
        commands.files.open();
        QApplication::processEvents();
        ASSERT_EQ(fake.session.CurrentUnit(), pzk2);
    }
    void identify(std::uint32_t serial) {
        fake.session.link.load();
        fake.session.link.Send_ORB_Command("E");
        fake.session.link.tick();
        fake.port.deliver(identifyReply(serial));
        fake.session.link.tick();
        QApplication::processEvents();
    }
    /// Width of the last piece of instruments that is in view.
    int rightEdge() {
        int edge = 0;
        for (const QWidget* part : panel().findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            const bool instrument = qobject_cast<const LiveLabel*>(part) != nullptr ||
                                    qobject_cast<const GaugeWidget*>(part) != nullptr;
            if (instrument && part->isVisible()) edge = std::max(edge, part->geometry().right());
        }
        return edge;
    }
    void expectFuel(bool on, const char* when) {
        for (const char* dial : {"AFR", "Coolant", "MAT", "IAC"}) {
            EXPECT_EQ(panel().gauge(dial).isVisible(), on) << dial << " " << when;
        }
        EXPECT_EQ(panel().label("lblAAFR").isVisible(), on) << when;
        for (const char* dial : {"Tachometer", "TPS", "VOLT"}) {
            EXPECT_TRUE(panel().gauge(dial).isVisible()) << dial << " " << when;
        }
        EXPECT_GE(rightEdge(), panel().width() * 9 / 10) << when << ": the rest takes the room";
    }
};

TEST_F(DashboardUnits, AFileOfAnIgnitionUnitWithoutALinkTakesTheFuelDialsAwayAndAnotherBringsThemBack) {
    stand();
    expectFuel(true, "at first");
    openPzk2();
    expectFuel(false, "with the file");
    openCalibration();
    expectFuel(true, "with a file of a fuel unit");
    openPzk2();
    expectFuel(false, "again");
    commands.files.close();
    QApplication::processEvents();
    expectFuel(true, "closed");
}

TEST_F(DashboardUnits, AnIgnitionUnitOnTheLinkHasNoFuelDialsWhateverFileIsInHand) {
    stand();
    openCalibration();
    expectFuel(true, "with a file of a fuel unit");
    identify(500000);
    ASSERT_EQ(fake.session.link.linked().LinkedUnitKind, pzk2);
    expectFuel(false, "linked");
    openCalibration();
    expectFuel(false, "and the file opened again");
}

}  // namespace
}  // namespace zentaq
