// Dials, read-outs and lamps as a screen reader asks and hears them.
#include "windows/spoken_instrument.h"

#include <QAccessible>

#include "windows/frm_dashboard.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

/// Keeps what it would tell a listener.
template <typename Instrument>
class Heard : public Instrument {
 public:
    using Instrument::Instrument;

    bool listened = true;
    int count(QAccessible::Event type) const { return static_cast<int>(std::ranges::count(told_, type)); }

 protected:
    bool isHeard() const override { return listened; }
    void tell(QAccessible::Event event) override { told_.push_back(event); }

 private:
    std::vector<QAccessible::Event> told_;
};

const LiveLabel::Form speedForm{"lblTach", "RPM", "rpm", "00000"};

class SpokenInstruments : public WindowTest {
 protected:
    SpokenInstruments() {
        windows.open(window::dashboard, "", "");
        panel = &find<FrmDashBoard>("frmDashBoard")->panel();
    }
    static QAccessibleInterface& spoken(QObject& object) {
        return *QAccessible::queryAccessibleInterface(&object);
    }
    static std::string value(QObject& object) {
        return spoken(object).text(QAccessible::Value).toStdString();
    }

    FrmDashBoardPanel* panel = nullptr;
};

TEST_F(SpokenInstruments, AReadOutIsCalledByItsChannelAndSaysItsValueWithTheUnit) {
    LiveLabel& volts = panel->label("lblTPS");
    volts.setText("4.51");
    EXPECT_EQ(spoken(volts).role(), QAccessible::Indicator);
    EXPECT_EQ(value(volts), "4.51 V");
    EXPECT_EQ(spoken(volts).valueInterface()->currentValue().toDouble(), 4.51);
    EXPECT_NE(spoken(volts).text(QAccessible::Name), "");
    volts.setText("");
    EXPECT_EQ(value(volts), "no value");
    EXPECT_FALSE(spoken(volts).valueInterface()->currentValue().isValid());
}

TEST_F(SpokenInstruments, EveryDialSaysWhatItPointsTo) {
    for (const auto& [dial, readout, said] :
         {std::tuple("Tachometer", "lblTach", "12 rpm"), std::tuple("AFR", "lblAAFR", "12 :1"),
          std::tuple("TPS", "lblTPS", "12 V"), std::tuple("VOLT", "lblVolt", "12 V"),
          std::tuple("IAC", "lblIAC", "12 %")}) {
        SCOPED_TRACE(dial);
        panel->label(readout).setText("12");
        EXPECT_EQ(spoken(panel->gauge(dial)).role(), QAccessible::Dial);
        EXPECT_EQ(value(panel->gauge(dial)), said);
    }
    for (const char* dial : {"Coolant", "MAT"}) EXPECT_NE(value(panel->gauge(dial)), "") << dial;
}

TEST_F(SpokenInstruments, AnAlarmIsSaidAndToldOnceHoweverItsColorFlashes) {
    Heard<LiveLabel> coolant({"lblCLT", "CLT", "F", "000"}, nullptr);
    coolant.setText("240");
    for (const QColor& color : {QColor(Qt::red), QColor(Qt::yellow), QColor(Qt::red)})
        coolant.setAlarm(color);
    EXPECT_EQ(value(coolant), "240 F, in alarm");
    EXPECT_EQ(coolant.count(QAccessible::Alert), 1);
    coolant.setAlarm(std::nullopt);
    EXPECT_EQ(value(coolant), "240 F");
    EXPECT_EQ(coolant.count(QAccessible::Alert), 1);
}

TEST_F(SpokenInstruments, ALampIsOnOrOffAndTellsItAtOnce) {
    Heard<LiveLamp> lamp("shpCheckEngine", "CHECK ENGINE", nullptr);
    EXPECT_EQ(value(lamp), "off");
    lamp.light(QColor(Qt::red));
    EXPECT_EQ(value(lamp), "on");
    EXPECT_EQ(lamp.count(QAccessible::ValueChanged), 1);
    lamp.light(std::nullopt);
    EXPECT_EQ(lamp.count(QAccessible::ValueChanged), 2);
}

TEST_F(SpokenInstruments, WhatIsNotLiveSaysSo) {
    panel->label("lblTach").setText("3250");
    panel->setLive(false);
    EXPECT_EQ(value(panel->label("lblTach")), "3250 rpm, not live");
    EXPECT_EQ(value(panel->gauge("Tachometer")), "3250 rpm, not live");
    panel->setLive(true);
    EXPECT_EQ(value(panel->label("lblTach")), "3250 rpm");
}

TEST_F(SpokenInstruments, AValueThatChangesWithEveryFrameIsToldOnceAndThenWithItsLastText) {
    Heard<LiveLabel> speed(speedForm, nullptr);
    for (int frame = 0; frame < 100; ++frame) speed.setText(QString::number(3000 + frame));
    EXPECT_EQ(speed.count(QAccessible::ValueChanged), 1);
    // What came within the pause of a second is told behind it, once.
    while (speed.count(QAccessible::ValueChanged) < 2)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(value(speed), "3099 rpm");
}

TEST_F(SpokenInstruments, NothingIsToldWhileNobodyListens) {
    Heard<LiveLabel> speed(speedForm, nullptr);
    speed.listened = false;
    speed.setText("4000");
    speed.setAlarm(QColor(Qt::red));
    EXPECT_EQ(speed.count(QAccessible::ValueChanged), 0);
    EXPECT_EQ(speed.count(QAccessible::Alert), 0);
}

}  // namespace
}  // namespace zentaq
