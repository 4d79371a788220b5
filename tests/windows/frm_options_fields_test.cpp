#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/data_points.h"
#include "windows/frm_options_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class OptionsFields : public OptionsWindowTest {
 protected:
    void showing(OptionPage page) {
        if (!form) open();
        toPage(page);
    }
};

// ---- Check boxes and buttons, each with its caption

struct CheckCase {
    OptionPage page;
    const char* control;
    const char* caption;
    const char* key;
    bool atOnce;
    bool checkedAtFirst = false;
};

constexpr CheckCase boxes[] = {
    {OptionPage::Communications, "chkCOMM", "Show Communication Console", "CommCnsl", false},
    {OptionPage::Communications, "chkShowCommDialog", "Show Communications Dialog", "CommDialog", true, true},
    {OptionPage::Communications, "chkWireTrace", "Record what passes over the serial line", "WireTrace",
     false},
    {OptionPage::Start, "chkAutoLog", "Automatically Create System Log File", "AutoLog", false, true},
    {OptionPage::Start, "chkConsole", "Show Console at Start Up", "Cnsl", false},
    {OptionPage::Start, "chkFileOpen", "Start Program with BIN File Open Prompt", "FileOpen", false, true},
    {OptionPage::Display, "chkTemperature", "Show Temperature in Fahrenheit", "TemperatureToggle", true,
     true},
    {OptionPage::Tables, "chkGraphs", "Dock 2D Graphs in lower portion of the screen", "Graphs", false},
    {OptionPage::Tables, "chkColumnType", "Override Automatic Column Resizing with Fixed Width (Tables)",
     "Column_Type", true},
    {OptionPage::Tables, "chkAFRColors", "Overlay AFR Colors (R,G,Y) on Tables while monitoring",
     "TableColor", false},
    {OptionPage::Dashboard, "chkAutoMonitor", "Automatically begin monitoring ORB unit upon startup",
     "AutoMonitor", true},
};

TEST_F(OptionsFields, SpaceTurnsEachCheckBoxAndItsSettingFollowsInItsOwnTime) {
    fake.settings = {};
    for (const CheckCase& row : boxes) {
        SCOPED_TRACE(row.control);
        showing(row.page);
        auto* box = the<QCheckBox>(row.control);
        EXPECT_EQ(box->text().remove('&').toStdString(), row.caption);
        ASSERT_EQ(box->isChecked(), row.checkedAtFirst);
        const std::string before = stored(row.key);
        tabTo(row.control);
        sendKey(Qt::Key_Space, Qt::NoModifier, " ");
        const std::string turned = row.checkedAtFirst ? "0" : "1";
        EXPECT_EQ(box->isChecked(), !row.checkedAtFirst);
        EXPECT_EQ(stored(row.key), row.atOnce ? turned : before);
    }
    apply();
    for (const CheckCase& row : boxes) EXPECT_EQ(stored(row.key), row.checkedAtFirst ? "0" : "1") << row.key;
}

TEST_F(OptionsFields, ArrowsChooseWhatThePrintButtonPrints) {
    showing(OptionPage::Print);
    EXPECT_EQ(the<QRadioButton>("optPrintButton(0)")->text().remove('&'), "Print Current Form");
    EXPECT_EQ(the<QRadioButton>("optPrintButton(1)")->text().remove('&'), "Print BIN File");
    EXPECT_TRUE(the<QRadioButton>("optPrintButton(0)")->isChecked());
    tabTo("optPrintButton(0)");
    sendKey(Qt::Key_Down);
    EXPECT_TRUE(the<QRadioButton>("optPrintButton(1)")->isChecked());
    EXPECT_EQ(stored("Print"), "1");
    sendKey(Qt::Key_Up);
    EXPECT_EQ(stored("Print"), "0");
}

TEST_F(OptionsFields, ArrowsChooseTheCellColorsThatApplyStores) {
    showing(OptionPage::Tables);
    const auto* plain = the<QRadioButton>("optCellColors(0)");
    const auto* heat = the<QRadioButton>("optCellColors(1)");
    EXPECT_EQ(plain->text().remove('&'), "As always: VE in green and red, other tables plain");
    EXPECT_EQ(heat->text().remove('&'), "Heat scale: every table from blue to yellow");
    EXPECT_TRUE(plain->isChecked());
    tabTo("optCellColors(0)");
    sendKey(Qt::Key_Down);
    EXPECT_TRUE(heat->isChecked());
    EXPECT_EQ(stored("CellScale"), "");
    apply();
    EXPECT_EQ(stored("CellScale"), "1");
}

TEST_F(OptionsFields, TheModeButtonsAndLabelsCarryTheirCaptions) {
    showing(OptionPage::Dashboard);
    EXPECT_EQ(the<QRadioButton>("optMonitorMode(0)")->text().remove('&'), "Night Mode (Black)");
    EXPECT_EQ(the<QRadioButton>("optMonitorMode(1)")->text().remove('&'), "Day Mode (White)");
    EXPECT_EQ(the<QPushButton>("cmdAutoDetectPort")->text().remove('&'), "Auto Detect Port");
    EXPECT_EQ(the<QCheckBox>("chkAutoOutput")->text().remove('&'), "Enable Automatic Monitoring on ORB unit");
    QStringList captions;
    for (const QLabel* caption : form->findChildren<QLabel*>()) {
        if (caption->buddy() != nullptr) captions.append(caption->text().remove('&'));
    }
    for (const char* caption :
         {"COMM PORT", "Polling Rate in Seconds", "CLT Alarm", "MAT Alarm",
          "Adjustable Dashboard Update Rate", "Needle Color", "Dash Lights", "Dash Labels"})
        EXPECT_TRUE(captions.contains(QLatin1String(caption))) << caption;
}

// ---- The port

TEST_F(OptionsFields, ArrowsChooseAPortThatApplyStoresWithoutOpeningIt) {
    fake.settings.set("System", "CommPort", "7");  // gone; port 1 is there
    showing(OptionPage::Communications);
    auto* ports = the<QComboBox>("cmbCOMM");
    EXPECT_EQ(ports->currentData().toInt(), 7);
    EXPECT_THAT(ports->currentText().toStdString(), HasSubstr("(not present)"));
    const int opens = fake.port.opens;
    tabTo("cmbCOMM");
    sendKey(Qt::Key_Up);
    EXPECT_EQ(ports->currentData().toInt(), 1);
    EXPECT_EQ(stored("CommPort"), "7");
    apply();
    EXPECT_EQ(stored("CommPort"), "1");
    EXPECT_EQ(fake.session.link.commPort(), 1);
    EXPECT_EQ(fake.port.opens, opens);
}

// ---- The slider

TEST_F(OptionsFields, KeysMoveTheUpdateRateWhichIsStoredAtOnceAndNeverZero) {
    fake.settings.set("System", "ADUR", "20");
    showing(OptionPage::Dashboard);
    EXPECT_EQ(label("lblADUR"), "20");
    tabTo("sldDashAdjust");
    sendKey(Qt::Key_Right);
    EXPECT_EQ(label("lblADUR"), "21");
    EXPECT_EQ(stored("ADUR"), "21");
    sendKey(Qt::Key_PageUp);
    EXPECT_EQ(stored("ADUR"), "31");
    sendKey(Qt::Key_Home);
    EXPECT_EQ(stored("ADUR"), "1");
    sendKey(Qt::Key_Left);
    EXPECT_EQ(stored("ADUR"), "1");
    sendKey(Qt::Key_End);
    EXPECT_EQ(stored("ADUR"), "125");
    sendKey(Qt::Key_Right);
    EXPECT_EQ(label("lblADUR"), "125");
}

TEST_F(OptionsFields, TheDashboardsTimerFollowsTheSliderAtOnce) {
    fake.settings.set("System", "ADUR", "20");
    showing(OptionPage::Dashboard);
    const auto* timer = find<QTimer>("tmrUpdate");
    ASSERT_NE(timer, nullptr);
    tabTo("sldDashAdjust");
    sendKey(Qt::Key_Right);
    EXPECT_EQ(timer->interval(), 47);  // the whole part of 1000 / 21
    sendKey(Qt::Key_Home);
    EXPECT_EQ(timer->interval(), 1000);
}

TEST_F(OptionsFields, OpeningTheWindowStoresNothing) {
    fake.settings = {};
    open();
    for (const OptionRow& row : optionTable()) {
        if (row.key.empty()) continue;
        EXPECT_EQ(stored(std::string(row.key).c_str()), "") << row.key;
    }
}

// ---- Fields

TEST_F(OptionsFields, ARefusedEntryStaysInItsBoxWithTheFocusAndATakenOneIsStored) {
    fake.settings.set("System", "CLTAlarmValue", "98");
    showing(OptionPage::Display);
    EXPECT_EQ(text("txtCLTvalue"), "98");
    EXPECT_EQ(label("lblCLTunits"), "\u00B0C");
    enter("txtCLTvalue", "95,5");
    apply();
    EXPECT_EQ(stored("CLTAlarmValue"), "95.5");
    EXPECT_EQ(focusName(), "cmdApply");
    enter("txtCLTvalue", "150.5");
    apply();
    EXPECT_EQ(stored("CLTAlarmValue"), "95.5");
    EXPECT_EQ(text("txtCLTvalue"), "150.5");
    EXPECT_EQ(focusName(), "txtCLTvalue");
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("(-40 - 150\u00B0C) - Invalid Entry.")));
}

TEST_F(OptionsFields, TheTemperatureBoxConvertsBothAlarmsAtOnce) {
    fake.settings.set("System", "TemperatureToggle", "0");
    fake.settings.set("System", "CLTAlarmValue", "100");
    showing(OptionPage::Display);
    tabTo("chkTemperature");
    sendKey(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_EQ(text("txtCLTvalue"), "212");
    EXPECT_EQ(text("txtMATvalue"), "-");
    EXPECT_EQ(label("lblCLTunits"), "\u00B0F");
    EXPECT_EQ(label("lblMATunits"), "\u00B0F");
    EXPECT_TRUE(fake.session.fahrenheit());
    sendKey(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_EQ(text("txtCLTvalue"), "100");
    EXPECT_EQ(label("lblCLTunits"), "\u00B0C");
    EXPECT_EQ(stored("CLTAlarmValue"), "100");
}

// ---- Data points

TEST_F(OptionsFields, TheListShowsAllDataPointsInTheirOrder) {
    showing(OptionPage::DataPoints);
    auto* list = the<QListWidget>("viewList");
    ASSERT_EQ(list->count(), dataPointCount);
    for (int i = 0; i < list->count(); ++i) {
        EXPECT_EQ(list->item(i)->text().toStdString(), dataPointNames()[static_cast<std::size_t>(i)]);
    }
    EXPECT_EQ(label("lblViewCheck"), "Number of selected values: 0");
}

TEST_F(OptionsFields, SpaceChecksDataPointsAndMoreThanTenAreHintedAt) {
    showing(OptionPage::DataPoints);
    tabTo("viewList");
    for (int i = 0; i < 10; ++i) {
        sendKey(Qt::Key_Space, Qt::NoModifier, " ");
        sendKey(Qt::Key_Down);
    }
    EXPECT_EQ(label("lblViewCheck"), "Number of selected values: 10");
    EXPECT_FALSE(the<QLabel>("lblViewHint")->isVisible());
    EXPECT_EQ(fake.settings.get("Datalog", "Datalog1"), "");
    sendKey(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_EQ(label("lblViewCheck"), "Number of selected values: 11");
    EXPECT_TRUE(the<QLabel>("lblViewHint")->isVisible());
    apply();
    EXPECT_EQ(fake.settings.get("Datalog", "Datalog1"), "1");
    EXPECT_EQ(fake.settings.get("Datalog", "Datalog11"), "11");
    form.reset();
    showing(OptionPage::DataPoints);
    EXPECT_EQ(label("lblViewCheck"), "Number of selected values: 10");
    EXPECT_EQ(the<QListWidget>("viewList")->item(10)->checkState(), Qt::Unchecked);
    tabTo("viewList");
    sendKey(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_EQ(label("lblViewCheck"), "Number of selected values: 9");
}

}  // namespace
}  // namespace zentaq
