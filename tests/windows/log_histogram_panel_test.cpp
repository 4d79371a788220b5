// A channel of a datalog over a table of the calibration in hand, on the recorder's page.
#include "windows/log_histogram_panel.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QTabWidget>
#include <chrono>
#include <thread>

#include "app/flight_record.h"
#include "windows/log_find_bar.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

/// Speeds of the table go up by 500 rpm and pressures by 5 kPa: the cell of row 15, column 2 is 1000 rpm at
/// 25 kPa.
class HistogramOverATable : public TableWindowsTest {
 protected:
    HistogramOverATable() {
        fake.folder.write("run.dat",
                          "Frame,RPM,MAP,AAFR\n"
                          "1,1100,26,14\n"
                          "2,1240,22.6,15\n"
                          "3,1250,27.5,16\n"
                          "4,1251,26,10\n");
        unit().set("VE", 12.4, 17);
    }
    void load(const std::string& name = "run.dat") {
        fake.session.recorder->LoadData(fake.folder.path(name));
        for (int i = 0; i < 500 && fake.session.recorder->busy(); ++i) {
            settle();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        finish();
    }
    void showPanel() {
        fake.session.windows().open(window::config, std::string(recorderTab));
        auto* tabs = find<QTabWidget>("tabLog");
        tabs->setCurrentWidget(&panel());
        finish();
    }
    void finish() {
        settle();
        while (panel().counting()) settle();
        settle();
    }
    LogHistogramPanel& panel() { return *find<LogHistogramPanel>("fraHistogram"); }
    QString at(int row, int column) {
        return panel().view().model()->index(row - 1, column - 1).data().toString();
    }
    QString told() { return find<QLabel>("lblHistogram")->text(); }
    void choose(const char* combo, const QString& text) {
        auto* box = find<QComboBox>(combo);
        const int place = box->findText(text);
        ASSERT_GE(place, 0) << text.toStdString();
        box->setCurrentIndex(place);
        finish();
    }
    void typeCondition(const QString& condition) {
        QLineEdit& line = *find<LogConditionEntry>("cboHistogramCondition")->lineEdit();
        line.setText(condition);
        Q_EMIT line.returnPressed();
        finish();
    }
};

TEST_F(HistogramOverATable, CountsTheRowsIntoTheCellsWhoseHeadersAreNearest) {
    load();
    showPanel();
    EXPECT_EQ(at(15, 2), "15.00") << "the mean of 14, 15 and 16: half way the lower header takes a row";
    EXPECT_EQ(at(15, 3), "10.00");
    EXPECT_EQ(at(1, 1), "") << "nobody was there";
    EXPECT_EQ(told(), "4 rows of 4 counted");
    choose("cboHistogramShows", "Minimum");
    EXPECT_EQ(at(15, 2), "14.00");
    choose("cboHistogramShows", "Maximum");
    EXPECT_EQ(at(15, 2), "16.00");
    choose("cboHistogramShows", "Count");
    EXPECT_EQ(at(15, 2), "3");
    choose("cboHistogramChannel", "Engine Speed");
    EXPECT_EQ(at(15, 2), "3");
    choose("cboHistogramShows", "Maximum");
    EXPECT_EQ(at(15, 2), "1250");
}

TEST_F(HistogramOverATable, StandsOnTheTablesOwnHeaders) {
    load();
    showPanel();
    EXPECT_EQ(panel().view().model()->headerData(1, Qt::Horizontal).toString(), "1000");
    EXPECT_EQ(panel().view().model()->headerData(14, Qt::Vertical).toString(), "25");
}

TEST_F(HistogramOverATable, CountsOnlyWhatTheConditionHoldsFor) {
    load();
    showPanel();
    typeCondition("MAP > 25");
    EXPECT_EQ(at(15, 2), "15.00");
    EXPECT_EQ(told(), "3 rows of 4 counted");
    typeCondition("MAP > 27");
    EXPECT_EQ(at(15, 2), "16.00");
    typeCondition("MAP >");
    EXPECT_TRUE(told().contains("place")) << told().toStdString();
    EXPECT_EQ(panel().view().model()->rowCount(), 0);
}

TEST_F(HistogramOverATable, TheTablesOwnValueStandsBesideAndIsSpoken) {
    load();
    showPanel();
    find<QCheckBox>("chkBeside")->setChecked(true);
    EXPECT_EQ(panel().view().cells().note(panel().view().model()->index(14, 1)), "12.4");
    const QString words = panel().view().model()->index(14, 1).data(Qt::AccessibleTextRole).toString();
    EXPECT_EQ(words,
              "Actual Air-to-Fuel Ratio at row 25, column 1000: mean 15.00, minimum 14.00, maximum 16.00, "
              "3 rows; the table holds 12.4");
}

TEST_F(HistogramOverATable, TheRowsOfACellAreSearchedInThePlot) {
    load();
    showPanel();
    Q_EMIT panel().view().doubleClicked(panel().view().model()->index(14, 1));
    auto& bar = *find<LogFindBar>("fraFindInLog");
    while (bar.searching()) settle();
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(find<LogConditionEntry>("cboLogCondition")->currentText(),
              "RPM > 750 and RPM <= 1250 and MAP > 22.5 and MAP <= 27.5");
    ASSERT_EQ(bar.search().hits().size(), 1U);
    EXPECT_EQ(bar.search().hits().front(), (LogHit{0, 2}));
}

TEST_F(HistogramOverATable, WhatIsMissingIsSaid) {
    showPanel();
    EXPECT_TRUE(told().startsWith("Open a datalog")) << told().toStdString();
    EXPECT_EQ(panel().view().model()->rowCount(), 0);
}

TEST_F(HistogramOverATable, WithoutACalibrationAsksForOne) {
    load();
    showPanel();
    EXPECT_EQ(at(15, 2), "15.00");
    commands.files.close();
    fake.session.windows().open(window::config, std::string(recorderTab));
    finish();
    EXPECT_TRUE(told().startsWith("Open a calibration")) << told().toStdString();
    EXPECT_EQ(panel().view().model()->rowCount(), 0);
}

TEST_F(HistogramOverATable, AnOutputTableWithoutAxesStaysAsItIs) {
    load();
    ASSERT_TRUE(hasEmptyAxis(unit(), "GPO1"));
    showPanel();
    choose("cboHistogramTable", qString(tableTitle("GPO1")));
    EXPECT_TRUE(told().contains("no axes yet")) << told().toStdString();
    EXPECT_TRUE(hasEmptyAxis(unit(), "GPO1")) << "looking at a log changes no calibration";
}

TEST_F(HistogramOverATable, FollowsTheCalibration) {
    load();
    showPanel();
    unit().set("RPMTBL", 900, 1);
    fake.session.windows().tell(&WindowNews::showUnit);
    finish();
    EXPECT_EQ(panel().view().model()->headerData(1, Qt::Horizontal).toString(), "900");
}

}  // namespace
}  // namespace zentaq
