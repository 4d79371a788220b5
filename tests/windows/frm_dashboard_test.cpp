// The dashboard on a real session: decoded frames in, texts, needles, lamps and paint events out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>

#include "qt/look.h"
#include "unit_replies.h"
#include "windows/frm_dashboard.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using testing::Each;

/// Hands the core's news to the dashboard as the program does.
class DashboardWindows : public WindowSet {
 public:
    FrmDashBoard* dashboard = nullptr;

 protected:
    void toEach(const std::function<void(WindowNews&)>& tell) override { tell(*dashboard); }
};

class PaintCounter : public QObject {
 public:
    explicit PaintCounter(QObject* watched) { watched->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }
    int paints = 0;
};

class Dashboard : public OrbASession {
 protected:
    DashboardWindows windows;
    MainCommands commands{fake.session};
    std::unique_ptr<FrmDashBoard> board;

    Dashboard() {
        fake.session.attach(windows);
        unit().set("REV_Limiter", 6500);
        makeBoard();
    }
    ~Dashboard() override { fake.session.attach(fake.windows); }

    void makeBoard() {
        board = std::make_unique<FrmDashBoard>(fake.session, commands);
        windows.dashboard = board.get();
        board->resize(1366, 300);
        board->show();
        QApplication::processEvents();
    }
    /// A narrow frame of 35 bytes: 3250 rpm, 28.5 degrees, 88 C coolant, 31 C air, 1.53 V throttle, 13.8 V.
    static std::vector<std::uint8_t> frame(int rpm = 3250) {
        std::vector<std::uint8_t> bytes(35, 0);
        bytes[0] = static_cast<std::uint8_t>(rpm / 256);
        bytes[1] = static_cast<std::uint8_t>(rpm % 256);
        bytes[2] = 121;   // / 4.25
        bytes[4] = 172;   // * 190 / 255 - 40
        bytes[7] = 31;    // / 2.55
        bytes[8] = 95;    // * 190 / 255 - 40
        bytes[9] = 78;    // / 51
        bytes[10] = 205;  // * 0.067432
        return bytes;
    }
    void feed(const std::vector<std::uint8_t>& bytes) {
        fake.session.decoder.Monitor(unit(), bytes);
        windows.tell(&WindowNews::updateDisplay);
    }
    /// A frame's time later, so that it is drawn at once.
    void show(const std::vector<std::uint8_t>& bytes) {
        fake.clock.nowUs += 1'000'000;
        feed(bytes);
    }
    void waitsFor(const std::string& text) {
        fake.session.linkDisplay.showNoConnectPanel(text);
        board->showLinkState();
    }
    void waitsNoMore() {
        fake.session.linkDisplay.hideNoConnectPanel();
        board->showLinkState();
    }
    std::string text(const char* name) { return board->panel().label(name).text().toStdString(); }
    template <typename Object>
    Object* find(const char* name) {
        return board->findChild<Object*>(QLatin1String(name));
    }
    static void fire(QTimer* timer) {
        const int interval = timer->interval();
        int fired = 0;
        const auto counter = QObject::connect(timer, &QTimer::timeout, timer, [&fired] { ++fired; });
        timer->start(0);
        while (fired == 0) QApplication::processEvents();
        QObject::disconnect(counter);
        if (timer->isActive()) timer->start(interval);
    }
};

TEST_F(Dashboard, HasEveryNamedControl) {
    EXPECT_EQ(board->objectName(), "frmDashBoard");
    for (const char* name :
         {"fraNoConnect",  "lblGeneral",  "lblCheckEngine", "txtGPIO",    "lstGPO",
          "btnShowDetail", "lblTach",     "lblMAP",         "lblAMAP",    "lblTPS",
          "lblCLT",        "lblMAT",      "lblVolt",        "lblKNK",     "lblADV",
          "lblSADV",       "lblADVSplit", "lblRetard",      "lblTFPW",    "lblEGOC",
          "lblEGOV",       "lblDAFR",     "lblAAFR",        "lblIAC",     "lblIACDirection",
          "lblPPW",        "lblSPW",      "lblPID",         "lblSID",     "lblPOT",
          "lblSOT",        "lblSIP",      "lblTemp",        "Tachometer", "TPS",
          "MAT",           "Coolant",     "VOLT",           "AFR",        "IAC"}) {
        EXPECT_NE(find<QWidget>(name), nullptr) << name;
    }
    for (const char* name : {"tmrUpdate", "flashTimer", "tmrCHKE_Status"}) {
        EXPECT_NE(find<QTimer>(name), nullptr) << name;
    }
}

TEST_F(Dashboard, EveryReadOutAndLampHasAnAccessibleName) {
    for (const auto* label : board->findChildren<LiveLabel*>()) {
        EXPECT_FALSE(label->accessibleName().isEmpty()) << label->objectName().toStdString();
    }
    EXPECT_EQ(board->panel().label("lblTach").accessibleName(), "Engine Speed");
}

TEST_F(Dashboard, DecodedFrameShowsItsNumbers) {
    show(frame());
    EXPECT_EQ(text("lblTach"), "3250");
    EXPECT_EQ(text("lblADV"), "28.5");
    EXPECT_EQ(text("lblCLT"), "88");
    EXPECT_EQ(text("lblMAT"), "31");
    EXPECT_EQ(text("lblTPS"), "1.53");
    EXPECT_EQ(text("lblVolt"), "13.8");
    EXPECT_EQ(text("lblKNK"), "12");
    EXPECT_EQ(text("lblTemp"), "\u00B0C");
    EXPECT_EQ(board->panel().label("lblTach").plainValue(), "3250 rpm");
}

TEST_F(Dashboard, TemperaturesFollowTheFahrenheitSetting) {
    fake.settings.set("System", "TemperatureToggle", "1");
    show(frame());
    EXPECT_EQ(text("lblCLT"), "190");  // 88 * 9 / 5 + 32 = 190.4
    EXPECT_EQ(text("lblTemp"), "\u00B0F");
    EXPECT_EQ(board->panel().label("lblCLT").unit(), "\u00B0F");
}

TEST_F(Dashboard, TheScaleOfTheTemperatureDialsFollowsTheSettingAndTheNeedleDoesNot) {
    const auto tickAt = [&](const char* label) {
        for (const auto& tick : board->panel().gauge("Coolant").face().ticks) {
            if (tick.label == QLatin1String(label)) return tick.angle;
        }
        return -1.0;
    };
    show(frame());
    EXPECT_NEAR(tickAt("100"), 0.46 * 100 + 68, 0.001);  // 100 degrees Celsius
    fake.settings.set("System", "TemperatureToggle", "1");
    show(frame());
    EXPECT_NEAR(tickAt("100"), 0.46 * (100 - 32) / 1.8 + 68, 0.001);  // 37.8 degrees Celsius
    EXPECT_NEAR(tickAt("300"), 0.46 * (300 - 32) / 1.8 + 68, 0.001);
    EXPECT_NEAR(board->panel().gauge("Coolant").angle(), 0.46 * 88 + 68, 0.001);
}

TEST_F(Dashboard, TheScaleOfTheTemperatureDialsIsThatOfTheSettingBeforeTheFirstFrame) {
    const auto highest = [&] { return board->panel().gauge("MAT").face().ticks.back().label.toStdString(); };
    fake.settings.set("System", "TemperatureToggle", "0");
    makeBoard();
    EXPECT_EQ(highest(), "150");
    fake.settings.set("System", "TemperatureToggle", "1");
    makeBoard();
    EXPECT_EQ(highest(), "300");
}

TEST_F(Dashboard, NeedlesStandAtTheAnglesOfTheirValues) {
    show(frame());
    EXPECT_NEAR(board->panel().gauge("Tachometer").angle(), 0.031804 * 3250 - 129, 0.001);
    EXPECT_NEAR(board->panel().gauge("Coolant").angle(), 0.46 * 88 + 68, 0.001);
    EXPECT_NEAR(board->panel().gauge("TPS").angle(), 16.5 * 1.53 - 55, 0.01);
    EXPECT_NEAR(board->panel().gauge("VOLT").angle(), (13.8 - 7) * 7.5 + 155, 0.01);
}

TEST_F(Dashboard, LimiterAbove9000TakesTheScaleTo18000) {
    unit().set("REV_Limiter", 12000);
    show(frame());
    EXPECT_NEAR(board->panel().gauge("Tachometer").angle(), 0.015902 * 3250 - 129, 0.001);
    EXPECT_EQ(board->panel().gauge("Tachometer").face().ticks.back().label, "18");
}

TEST_F(Dashboard, DrawsAtMostSixtyTimesASecondWhateverTheFrameRate) {
    PaintCounter tach(&board->panel().label("lblTach"));
    const int before = board->redraws();
    fake.clock.nowUs += 1'000'000;
    for (int i = 0; i < 1000; ++i) {
        feed(frame(1000 + i));
        fake.clock.nowUs += 1000;
        QApplication::sendPostedEvents();
    }
    const int redraws = board->redraws() - before;
    EXPECT_LE(redraws, 60);
    EXPECT_GE(redraws, 55);
    EXPECT_GE(tach.paints, 1);
    EXPECT_LE(tach.paints, redraws);
}

TEST_F(Dashboard, LastFrameOfABurstIsDrawnWithoutAnother) {
    show(frame(1000));
    feed(frame(2000));
    EXPECT_EQ(text("lblTach"), "1000");
    QElapsedTimer patience;
    patience.start();
    while (text("lblTach") != "2000" && patience.elapsed() < 5000) QApplication::processEvents();
    EXPECT_EQ(text("lblTach"), "2000");
}

TEST_F(Dashboard, SameNumbersArePaintedOnce) {
    show(frame());
    QApplication::processEvents();
    PaintCounter tach(&board->panel().label("lblTach"));
    for (int i = 0; i < 5; ++i) {
        show(frame());
        QApplication::sendPostedEvents();
    }
    EXPECT_EQ(tach.paints, 0);
}

TEST_F(Dashboard, MovingNeedleDoesNotDrawItsFaceAgain) {
    QApplication::processEvents();
    auto& tach = board->panel().gauge("Tachometer");
    const int faces = tach.facesDrawn();
    ASSERT_GE(faces, 1);
    PaintCounter paints(&tach);
    for (int rpm = 1000; rpm < 3000; rpm += 100) {
        show(frame(rpm));
        QApplication::sendPostedEvents();
    }
    EXPECT_GE(paints.paints, 10);
    EXPECT_EQ(tach.facesDrawn(), faces);
}

TEST_F(Dashboard, NoConnectPanelFollowsTheLink) {
    auto* panel = find<QFrame>("fraNoConnect");
    auto* general = find<QLabel>("lblGeneral");
    EXPECT_TRUE(panel->isHidden());
    fire(find<QTimer>("tmrUpdate"));  // nothing has been identified yet
    EXPECT_FALSE(panel->isHidden());
    EXPECT_EQ(general->text(), "Connecting...");
    waitsFor("Updating");
    EXPECT_EQ(general->text(), "Updating");
    waitsNoMore();
    EXPECT_TRUE(panel->isHidden());
}

TEST_F(Dashboard, VeilLiesOverTheInstrumentsWhileNoFramesComeAndSaysSo) {
    DashBoardVeil& veil = *board->panel().veil;
    auto* word = find<QLabel>("lblNotLive");
    fire(find<QTimer>("tmrUpdate"));  // nothing has been identified yet: "Connecting..."
    EXPECT_FALSE(veil.isHidden());
    EXPECT_TRUE(word->isHidden()) << "the link panel has a word of its own";
    waitsNoMore();
    EXPECT_FALSE(veil.isHidden()) << "no frame has come";
    EXPECT_FALSE(word->isHidden());
    EXPECT_EQ(word->text(), "NOT LIVE");
    EXPECT_FALSE(board->panel().isLive());
    board->panel().setLive(true);
    EXPECT_TRUE(veil.isHidden());
    EXPECT_TRUE(board->panel().isLive());
    for (const char* text : {"Updating", "AutoVE ON"}) {
        waitsFor(text);
        EXPECT_TRUE(veil.isHidden()) << text;
    }
    waitsFor("Connecting...");
    EXPECT_FALSE(veil.isHidden());
    waitsNoMore();
    EXPECT_TRUE(veil.isHidden());
}

TEST_F(Dashboard, VeilFollowsTheFramesWithEachPollAndEachDrawing) {
    DashBoardVeil& veil = *board->panel().veil;
    waitsNoMore();
    fake.forLink.heard({LinkEvent::FrameDecoded});
    fire(find<QTimer>("tmrUpdate"));
    waitsNoMore();
    EXPECT_TRUE(veil.isHidden()) << "a frame has just come";
    fake.clock.nowUs += 10'000'000;
    fire(find<QTimer>("tmrUpdate"));
    waitsNoMore();
    EXPECT_FALSE(veil.isHidden()) << "none for ten seconds";
    fake.forLink.heard({LinkEvent::FrameDecoded});
    show(frame());
    EXPECT_TRUE(veil.isHidden()) << "drawn with a frame";
}

TEST_F(Dashboard, VeilCoversEveryDialAndReadOutButNotTheLinkPanelNorTheCodes) {
    fire(find<QTimer>("tmrUpdate"));
    FrmDashBoardPanel& panel = board->panel();
    panel.lstGPO->addItem("GPIO1 Fan  ON");
    panel.btnShowDetail->setEnabled(true);
    panel.showCodes("TPS SEN\nFAIL HI", "1 code: TPS SEN FAIL HI", "1 code: TPS SEN FAIL HI");
    board->resize(1366, 400);  // room for all of the column
    QApplication::processEvents();
    const QRect covered = panel.veil->geometry();
    const auto placeOf = [&](const QWidget* part) {
        return QRect(part->mapTo(&panel, QPoint(0, 0)), part->size());
    };
    for (const auto* label : board->findChildren<LiveLabel*>()) {
        if (!label->isVisible()) continue;
        EXPECT_TRUE(covered.contains(placeOf(label))) << label->objectName().toStdString();
    }
    for (const auto* gauge : board->findChildren<GaugeWidget*>()) {
        EXPECT_TRUE(covered.contains(placeOf(gauge))) << gauge->objectName().toStdString();
    }
    for (const char* name : {"lblCheckEngine", "lstGPO", "txtGPIO", "btnShowDetail"}) {
        EXPECT_FALSE(covered.intersects(placeOf(find<QWidget>(name)))) << name;
    }
    const auto order = panel.children();
    EXPECT_GT(order.indexOf(panel.fraNoConnect), order.indexOf(panel.veil));
    EXPECT_GT(order.indexOf(panel.veil), order.indexOf(&panel.gauge("Tachometer")));
    board->resize(1000, 240);
    QApplication::processEvents();
    EXPECT_TRUE(panel.veil->geometry().contains(placeOf(&panel.label("lblTemp"))));
    EXPECT_FALSE(panel.veil->geometry().intersects(placeOf(panel.lblCheckEngine)));
}

TEST_F(Dashboard, VeiledNumbersAreDimByDayAndByNight) {
    fire(find<QTimer>("tmrUpdate"));
    show(frame());
    LiveLabel& advance = board->panel().label("lblADV");  // beside the link panel, not below it
    const QRect place(advance.mapTo(board.get(), QPoint(0, 0)), advance.size());
    /// Lightness from the darkest to the lightest pixel of the read-out.
    const auto contrast = [&] {
        const QImage picture = board->grab(place).toImage();
        int least = 255;
        int most = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const int lightness = picture.pixelColor(x, y).lightness();
                least = std::min(least, lightness);
                most = std::max(most, lightness);
            }
        }
        return most - least;
    };
    board->panel().setLive(true);
    for (const bool day : {true, false}) {
        day ? board->Day_Mode() : board->Night_Mode();
        waitsFor("Connecting...");
        const int veiled = contrast();
        waitsNoMore();
        const int live = contrast();
        EXPECT_GT(live, 150) << day;
        EXPECT_LT(veiled, live / 2) << day;
        EXPECT_GT(veiled, live / 8) << day << ": still readable";
    }
}

TEST_F(Dashboard, VeilDrawsNoFaceAgainAndPollingUnderItPaintsNothing) {
    show(frame());
    QApplication::processEvents();
    auto& tach = board->panel().gauge("Tachometer");
    const int faces = tach.facesDrawn();
    fire(find<QTimer>("tmrUpdate"));
    QApplication::processEvents();
    ASSERT_FALSE(board->panel().veil->isHidden());
    PaintCounter veil(board->panel().veil);
    PaintCounter dial(&tach);
    for (int i = 0; i < 5; ++i) {
        fire(find<QTimer>("tmrUpdate"));
        QApplication::processEvents();
    }
    EXPECT_EQ(veil.paints, 0);
    EXPECT_EQ(dial.paints, 0);
    EXPECT_EQ(tach.facesDrawn(), faces);
}

TEST_F(Dashboard, VeilLetsClicksThrough) {
    EXPECT_TRUE(board->panel().veil->testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST_F(Dashboard, SecondTabShowingMovesThePanelOutOfSight) {
    bool second = false;
    board->secondTabShowing([&] { return second; });
    fire(find<QTimer>("tmrUpdate"));
    ASSERT_FALSE(find<QFrame>("fraNoConnect")->isHidden());
    second = true;
    fire(find<QTimer>("tmrUpdate"));
    EXPECT_TRUE(find<QFrame>("fraNoConnect")->isHidden());
}

TEST_F(Dashboard, PollsAtTheRateOfTheSetting) {
    fake.settings.set("System", "ADUR", "50");
    board->updateRateChanged();
    EXPECT_EQ(find<QTimer>("tmrUpdate")->interval(), 20);
    EXPECT_EQ(find<QTimer>("tmrUpdate")->timerType(), Qt::PreciseTimer);
    board->Kill_Timers();
    for (const char* name : {"tmrUpdate", "flashTimer", "tmrCHKE_Status"}) {
        EXPECT_FALSE(find<QTimer>(name)->isActive()) << name;
    }
}

TEST_F(Dashboard, ATemperatureAtItsAlarmComesIntoSightWhereItsPageIsNotOpen) {
    fake.session.folds.dashboard.toggle();
    board->foldsChanged();
    board->resize(500, board->maximumHeight());
    QApplication::processEvents();
    ASSERT_FALSE(board->panel().label("lblCLT").isVisible());
    fake.settings.set("System", "CLTAlarmValue", "88");
    show(frame());
    EXPECT_TRUE(board->panel().label("lblCLT").isVisible());
}

TEST_F(Dashboard, CoolantAtTheAlarmFlashesRedAndYellow) {
    fake.settings.set("System", "CLTAlarmValue", "88");
    show(frame());
    auto& coolant = board->panel().label("lblCLT");
    ASSERT_TRUE(find<QTimer>("flashTimer")->isActive());
    EXPECT_EQ(coolant.alarm(), QColor(255, 0, 0));
    fire(find<QTimer>("flashTimer"));
    EXPECT_EQ(coolant.alarm(), QColor(255, 255, 0));
    EXPECT_EQ(board->panel().label("lblMAT").alarm(), std::nullopt);
    fake.settings.set("System", "CLTAlarmValue", "89");
    show(frame());
    EXPECT_EQ(coolant.alarm(), std::nullopt);
    EXPECT_FALSE(find<QTimer>("flashTimer")->isActive());
}

TEST_F(Dashboard, OverRevAndCheckEngineLampsLight) {
    unit().set("REV_Limiter", 3249);
    auto bytes = frame();
    bytes[11] = 1;
    show(bytes);
    EXPECT_EQ(board->panel().overRevLamp->color(), QColor(255, 255, 0));
    EXPECT_EQ(board->panel().checkEngineLamp->color(), QColor(255, 0, 0));
    unit().set("REV_Limiter", 3250);
    show(frame());
    EXPECT_FALSE(board->panel().overRevLamp->lit());
    EXPECT_FALSE(board->panel().checkEngineLamp->lit());
}

TEST_F(Dashboard, CheckEngineAreaStepsThroughItsCodes) {
    auto* area = find<QLabel>("lblCheckEngine");
    fake.session.codes.Update_CHKE("21 - TPS Sensor Failed High");
    fake.session.codes.Update_CHKE("12 - Trigger Wheel Error");
    board->codesChanged();
    const QString first = area->text();
    fire(find<QTimer>("tmrCHKE_Status"));
    const QString second = area->text();
    EXPECT_THAT((std::vector{first, second}),
                testing::UnorderedElementsAre("TPS SEN\nFAIL HI", "TRIGGER\nERROR  "));
    fake.session.codes.Clear_CHKE();
    board->codesChanged();
    EXPECT_TRUE(area->text().isEmpty());
}

TEST_F(Dashboard, AUnitThatHasClearedItsCodesIsToldForAWhileThoughFramesAndCodesGoOn) {
    auto* area = find<QLabel>("lblCheckEngine");
    auto* line = find<QLineEdit>("txtGPIO");
    show(frame());
    fake.session.codes.Update_CHKE("21 - TPS Sensor Failed High");
    board->codesChanged();
    const QString pin = line->text();
    fake.forLink.heard({LinkEvent::CodesCleared});
    EXPECT_EQ(area->text(), "CODES  \nCLEARED");
    EXPECT_EQ(line->text(), "CODES CLEARED");
    fake.session.codes.Clear_CHKE();  // as with an answer that tells none
    board->codesChanged();
    show(frame());
    EXPECT_EQ(area->text(), "CODES  \nCLEARED");
    EXPECT_EQ(line->text(), "CODES CLEARED");
    for (int step = 0; step < 3; ++step) fire(find<QTimer>("tmrCHKE_Status"));
    EXPECT_EQ(area->text(), "");
    EXPECT_EQ(line->text(), pin);
}

TEST_F(Dashboard, PinsWithoutAFunctionAreNotListed) {
    show(frame());
    auto* list = find<QListWidget>("lstGPO");
    EXPECT_EQ(list->count(), 0);
    EXPECT_TRUE(list->isHidden());
}

TEST_F(Dashboard, ResetEmptiesTheLabelsAndRestsTheNeedles) {
    show(frame());
    windows.tell(&WindowNews::resetDashboard);
    std::vector<std::string> texts;
    for (const auto* label : board->findChildren<LiveLabel*>()) texts.push_back(label->text().toStdString());
    EXPECT_EQ(texts.size(), 27u);
    EXPECT_THAT(texts, Each(std::string()));
    EXPECT_NEAR(board->panel().gauge("Tachometer").angle(), -123, 0.001);
    EXPECT_FALSE(board->panel().checkEngineLamp->lit());
}

TEST_F(Dashboard, StoredColoursApplyAndAnEmptyOneTakesTheModesOwn) {
    EXPECT_EQ(board->panel().gauge("TPS").needleColor(), QColor(255, 0, 0));
    fake.settings.set("System", "NeedleColor", "65280");  // red + 256 * green + 65536 * blue
    makeBoard();
    EXPECT_EQ(board->panel().gauge("TPS").needleColor(), QColor(0, 255, 0));
    board->Set_Needle_Color("16711680");
    EXPECT_EQ(board->panel().gauge("TPS").needleColor(), QColor(0, 0, 255));
    board->Set_Needle_Color("");
    EXPECT_EQ(board->panel().gauge("TPS").needleColor(), QColor(255, 0, 0));
}

TEST_F(Dashboard, CaptionsAreElevenPixelsTallAndNothingIsCutInAnyRoom) {
    for (const QSize& room : {QSize(1366, 182), QSize(1920, 260), QSize(910, 120), QSize(683, 88)}) {
        board->resize(room);
        QApplication::processEvents();
        int shown = 0;
        for (const auto* label : board->findChildren<LiveLabel*>()) {
            if (!label->isVisible()) continue;
            ++shown;
            EXPECT_GE(QFontMetrics(label->captionFont()).capHeight(), 11) << room.width();
            EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->objectName().toStdString();
            EXPECT_GE(label->height(), label->minimumSizeHint().height())
                << label->objectName().toStdString();
        }
        EXPECT_GE(shown, 3) << room.width();
        for (const auto* gauge : board->findChildren<GaugeWidget*>()) {
            if (!gauge->isVisible()) continue;
            EXPECT_GE(QFontMetrics(gauge->numberFont()).capHeight(), 11) << room.width();
            EXPECT_GE(gauge->numbers().size(), 2u) << gauge->objectName().toStdString();
        }
    }
}

TEST_F(Dashboard, DayIsBrightAndNightIsDark) {
    const auto corner = [this] { return board->panel().grab().toImage().pixelColor(1, 1).lightness(); };
    board->Day_Mode();
    EXPECT_GT(corner(), 200);
    board->Night_Mode();
    EXPECT_LT(corner(), 60);
}

TEST_F(Dashboard, WithoutACalibrationTheRatioNeedleIsNotScaled) {
    fake.session.link.load();
    fake.session.link.Send_ORB_Command("E");
    fake.session.link.tick();
    fake.port.deliver(identifyReply(200000));  // an ORB A
    fake.session.link.tick();
    ASSERT_EQ(fake.session.link.linked().LinkedUnitKind, orbA);
    unit().AssignDirectIndex(7.35F, 2225);  // of the unit's object: half of petrol
    fake.session.live.AAFR = 14.5F;
    fake.clock.nowUs += 1'000'000;
    board->UPDATE_DISPLAY();
    EXPECT_NEAR(board->panel().gauge("AFR").angle(), (29 - 15) * 3.4 - 40, 1e-3);
    fake.session.CurrentUnit(0);
    fake.clock.nowUs += 1'000'000;
    board->UPDATE_DISPLAY();
    EXPECT_NEAR(board->panel().gauge("AFR").angle(), 0.5 * 48.7 - 96, 1e-3);
    EXPECT_EQ(fake.session.Units(orbA).DirectIndex(2225), 7.35F);
}

TEST_F(Dashboard, WithoutACalibrationOverRevStaysDark) {
    fake.session.CurrentUnit(0);
    fake.session.live.RPM = 3250;
    fake.clock.nowUs += 1'000'000;
    board->UPDATE_DISPLAY();
    EXPECT_EQ(text("lblTach"), "3250");
    EXPECT_FALSE(board->panel().overRevLamp->lit());
}

/// The whole program, because its style sheet and palette change together with the panel's colours.
class DashboardInProgram : public WindowTest {
 protected:
    static QColor backOf(const QWidget* widget, const QImage& picture, const QWidget* window) {
        const QPoint place = widget->mapTo(window, QPoint(widget->width() - 3, widget->height() - 3));
        return picture.pixelColor(place);
    }
};

TEST_F(DashboardInProgram, InputsAndOutputsAreReadableInTheModeThatWasSwitchedTo) {
    auto* list = find<QListWidget>("lstGPO");
    auto* chosen = find<QLineEdit>("txtGPIO");
    list->addItem("GPIO1  OFF");
    FrmDashBoard* board = windows.dashboard();
    QApplication::processEvents();
    const QFont font = typeFont(Type::Caption);
    board->panel().arrange();
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night, DisplayMode::Day}) {
        if (mode == DisplayMode::Day) {
            commands.dayMode();
        } else {
            commands.nightMode();
        }
        QApplication::processEvents();
        const QImage picture = board->grab().toImage();
        const LookColors look = lookColors(mode);
        EXPECT_EQ(backOf(list->viewport(), picture, board), look.surface) << static_cast<int>(mode);
        EXPECT_EQ(list->viewport()->palette().color(QPalette::Text), look.text) << static_cast<int>(mode);
        EXPECT_EQ(list->palette().color(QPalette::Text), look.text) << static_cast<int>(mode);
        EXPECT_EQ(chosen->palette().color(QPalette::Text), look.text) << static_cast<int>(mode);
        EXPECT_EQ(chosen->palette().color(QPalette::Base), look.surface) << static_cast<int>(mode);
        EXPECT_EQ(list->font().pointSizeF(), font.pointSizeF()) << static_cast<int>(mode);
        EXPECT_EQ(chosen->font().pointSizeF(), font.pointSizeF()) << static_cast<int>(mode);
    }
}

}  // namespace
}  // namespace zentaq
