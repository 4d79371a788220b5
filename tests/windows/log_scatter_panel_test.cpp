// Two channels of a datalog against each other, colored by a third.
#include "windows/log_scatter_panel.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QWheelEvent>

#include "qt/look.h"
#include "testing/memory_settings.h"
#include "windows/log_plot_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

/// Speeds from 1000 to 2000 rpm, pressures of 20 kPa with 100 in one row.
class LogScatterView : public testing::Test {
 protected:
    LogScatterView() : log(plotLog(1001)), panel(settings, nullptr) {
        panel.resize(900, 500);
        QObject::connect(&panel, &LogScatterPanel::timeChosen, &panel,
                         [this](double seconds) { chosen.push_back(seconds); });
        panel.showLog(&log);
        panel.show();
        finish();
    }
    void finish() {
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
        while (panel.counting()) QApplication::processEvents();
        QApplication::processEvents();
    }
    QString told() { return panel.findChild<ElidedLabel*>("lblScatter")->text(); }
    LogScatterPicture& picture() { return *panel.findChild<LogScatterPicture*>(); }
    QComboBox& combo(const char* name) { return *panel.findChild<QComboBox*>(name); }
    void choose(const char* name, const QString& caption) {
        ASSERT_GE(combo(name).findText(caption), 0);
        combo(name).setCurrentIndex(combo(name).findText(caption));
        finish();
    }
    void mouse(QEvent::Type type, QPointF place) {
        QMouseEvent event(type, place, picture().mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&picture(), &event);
        finish();
    }
    void key(int code) {
        QKeyEvent press(QEvent::KeyPress, code, {});
        QApplication::sendEvent(&picture(), &press);
        finish();
    }
    /// Colors of the picture, without those that many pixels have.
    int pixelsOf(QRgb color) {
        const QImage image = picture().grab().toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) count += int{image.pixel(x, y) == color};
        return count;
    }

    MemorySettings settings;
    LogColumns log;
    LogScatterPanel panel;
    std::vector<double> chosen;
};

TEST_F(LogScatterView, ShowsAllRowsOfTheChannelsThatAreChosen) {
    EXPECT_EQ(told(), "1001 of 1001 rows");
    EXPECT_EQ(panel.scatter().x(), (ScatterRange{1000, 2000}));
    EXPECT_EQ(panel.scatter().y(), (ScatterRange{20, 100}));
    choose("cboY", "Throttle Position");
    EXPECT_EQ(panel.scatter().y(), (ScatterRange{0.5, 2.5})) << "what stands still has room around it";
}

TEST_F(LogScatterView, DrawsADotForEachPlaceWithRows) {
    choose("cboColour", "(none)");
    const QRgb dot = plotColors().front().rgb();
    EXPECT_GT(pixelsOf(dot), 100);
    panel.findChild<LogConditionEntry*>("cboScatterCondition")->setEditText("MAP > 50");
    Q_EMIT panel.findChild<LogConditionEntry*>("cboScatterCondition")->entered();
    finish();
    EXPECT_EQ(told(), "1 of 1001 rows");
    const int one = pixelsOf(dot);
    EXPECT_GT(one, 0);
    EXPECT_LT(one, 50) << "the spike alone";
}

TEST_F(LogScatterView, AConditionThatIsWrongIsSaid) {
    auto* entry = panel.findChild<LogConditionEntry*>("cboScatterCondition");
    entry->setEditText("MAP > > 50");
    Q_EMIT entry->entered();
    finish();
    EXPECT_TRUE(told().contains("place")) << told().toStdString();
}

TEST_F(LogScatterView, KeysZoomAroundTheMiddleAndBack) {
    key(Qt::Key_Plus);
    EXPECT_EQ(panel.scatter().x(), (ScatterRange{1250, 1750}));
    EXPECT_EQ(panel.scatter().y(), (ScatterRange{40, 80}));
    EXPECT_EQ(told(), "0 of 1001 rows in the part that is shown");
    key(Qt::Key_0);
    EXPECT_EQ(told(), "1001 of 1001 rows");
}

TEST_F(LogScatterView, ABoxWithTheMouseZoomsAndADoubleClickShowsAll) {
    mouse(QEvent::MouseButtonPress, {200, 50});
    mouse(QEvent::MouseMove, {400, 200});
    mouse(QEvent::MouseButtonRelease, {400, 200});
    EXPECT_GT(panel.scatter().x().low, 1000);
    EXPECT_LT(panel.scatter().x().high, 2000);
    EXPECT_LT(panel.scatter().y().high, 100.5);
    EXPECT_GT(panel.scatter().y().low, 20);
    mouse(QEvent::MouseButtonDblClick, {300, 100});
    EXPECT_EQ(panel.scatter().x(), (ScatterRange{1000, 2000}));
}

TEST_F(LogScatterView, TheWheelZooms) {
    QWheelEvent event({300, 100}, picture().mapToGlobal(QPointF(300, 100)), {}, {0, 120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&picture(), &event);
    finish();
    EXPECT_NEAR(panel.scatter().x().high - panel.scatter().x().low, 800, 1e-6);
    EXPECT_NEAR(panel.scatter().y().high - panel.scatter().y().low, 64, 1e-6);
}

TEST_F(LogScatterView, AClickOnADotGoesToItsFirstRow) {
    panel.findChild<LogConditionEntry*>("cboScatterCondition")->setEditText("MAP > 50");
    Q_EMIT panel.findChild<LogConditionEntry*>("cboScatterCondition")->entered();
    finish();
    choose("cboColour", "(none)");
    const QImage image = picture().grab().toImage();
    QPointF dot;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) == plotColors().front().rgb()) dot = QPointF(x, y);
    mouse(QEvent::MouseButtonPress, dot);
    mouse(QEvent::MouseButtonRelease, dot);
    EXPECT_THAT(chosen, ElementsAre(10)) << "row 500 at 50 a second";
}

TEST_F(LogScatterView, FollowsALogThatGrows) {
    log.append(std::vector<double>{1001, 6000, 20, 1.5, 2, 14.7, 14.2, 10});
    panel.grown();
    finish();
    EXPECT_EQ(panel.scatter().x(), (ScatterRange{1000, 6000}));
    EXPECT_EQ(told(), "1002 of 1002 rows");
}

TEST_F(LogScatterView, WithoutALogSaysWhatToDo) {
    panel.showLog(nullptr);
    EXPECT_EQ(told(), "Open a datalog to see its channels against each other.");
    mouse(QEvent::MouseButtonPress, {300, 100});
    mouse(QEvent::MouseButtonRelease, {300, 100});
    key(Qt::Key_Plus);
    EXPECT_TRUE(chosen.empty());
}

TEST_F(LogScatterView, MarksWhereTheLogIsNow) {
    choose("cboColour", "(none)");
    const QRgb marker = lookNow().liveMarker.rgb();
    panel.cursorAt(10);
    finish();
    const int with = pixelsOf(marker);
    key(Qt::Key_Plus);
    panel.cursorAt(0);
    finish();
    EXPECT_GT(with, 0);
    EXPECT_EQ(pixelsOf(marker), 0) << "outside of what is shown";
}

}  // namespace
}  // namespace zentaq
