// The recorder's page: what its keys do, wherever the keyboard is in it.
#include "windows/recorder_page.h"

#include <QLineEdit>
#include <QTableWidget>
#include <chrono>
#include <thread>

#include "app/flight_record.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class RecorderKeys : public WindowTest {
 protected:
    RecorderKeys() {
        std::string text = "Frame,RPM,MAP\n";
        for (int frame = 1; frame <= 500; ++frame)
            text += std::to_string(frame) + "," + std::to_string(frame % 100 == 0 ? 5000 : 1000) + ",30\n";
        activate(windows.main());
        fake.session.recorder->LoadData(fake.folder.write("run.dat", text));
        for (int i = 0; i < 500 && fake.session.recorder->busy(); ++i) {
            settle();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        fake.session.windows().open(window::config, std::string(recorderTab));
        settle();
    }
    static void settle() {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    }
    FlightRecord& recorder() { return *fake.session.recorder; }
    LogPlotArea& area() { return find<LogPlotView>("viewLogPlot")->area(); }
    LogConditionEntry& entry() { return *find<LogConditionEntry>("cboLogCondition"); }
    QLineEdit& line() { return *entry().lineEdit(); }
    void key(QWidget& target, int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const bool enter = code == Qt::Key_Return;
        QKeyEvent press(QEvent::KeyPress, code, modifiers, enter ? "\r" : "");
        QApplication::sendEvent(&target, &press);
        settle();
        while (find<LogFindBar>("fraFindInLog")->searching()) settle();
        settle();
    }
    void search() {
        line().setFocus();
        line().setText("RPM > 4000");
        key(entry(), Qt::Key_Return);
    }
};

TEST_F(RecorderKeys, GoFromHitToHitFromTheLineOfTheConditionAndFromTheButtons) {
    search();
    key(entry(), Qt::Key_F3);
    EXPECT_DOUBLE_EQ(recorder().seconds(), 2);
    key(entry(), Qt::Key_F3);
    EXPECT_DOUBLE_EQ(recorder().seconds(), 4);
    key(area(), Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(recorder().seconds(), 2);
    key(*find<QPushButton>("cmdFlightRecord_4"), Qt::Key_F3);
    EXPECT_DOUBLE_EQ(recorder().seconds(), 4);
}

TEST_F(RecorderKeys, OfThePlotWorkWhereverTheKeyboardIs) {
    RecorderPage& page = *find<RecorderPage>("fraFlightRecorder");
    page.setFocus();
    const double before = area().scene().window.to() - area().scene().window.from();
    key(page, Qt::Key_Plus);
    EXPECT_LT(area().scene().window.to() - area().scene().window.from(), before);
    EXPECT_FALSE(area().scene().a.has_value());
    key(*find<QPushButton>("cmdFlightRecord_4"), Qt::Key_A);
    EXPECT_TRUE(area().scene().a.has_value());
    key(area(), Qt::Key_B);
    EXPECT_TRUE(area().scene().b.has_value());
    find<QTabWidget>("tabLog")->setCurrentIndex(1);
    settle();
    key(page, Qt::Key_Escape);
    EXPECT_TRUE(area().scene().a.has_value()) << "nobody sees the plot now";
}

TEST_F(RecorderKeys, AreLettersWhileAConditionIsTyped) {
    line().setFocus();
    key(entry(), Qt::Key_Right);
    key(entry(), Qt::Key_S);
    EXPECT_EQ(recorder().row(), 0U);
}

TEST_F(RecorderKeys, FindGoesToTheLineOfTheCondition) {
    find<QTabWidget>("tabLog")->setCurrentIndex(1);
    find<RecorderPage>("fraFlightRecorder")->find();
    settle();
    EXPECT_TRUE(line().isVisible());
    EXPECT_TRUE(entry().hasFocus());
}

TEST_F(RecorderKeys, EscLeavesTheLineOfTheConditionForThePlotAndKeepsTheMeasuringCursors) {
    area().setFocus();
    key(area(), Qt::Key_A);
    search();
    ASSERT_TRUE(entry().hasFocus());
    key(entry(), Qt::Key_Escape);
    EXPECT_TRUE(area().hasFocus());
    EXPECT_TRUE(area().scene().a.has_value());
    EXPECT_EQ(line().text(), "RPM > 4000");
}

TEST_F(RecorderKeys, TheMeasuredValuesAreInSightWithoutScrolling) {
    windows.main().setWindowState(Qt::WindowNoState);
    windows.main().resize(1920, 1040);
    windows.main().show();
    key(area(), Qt::Key_A);
    key(area(), Qt::Key_B);
    const auto* table = find<QTableWidget>("tblMeasures");
    ASSERT_TRUE(table->isVisible());
    EXPECT_EQ(table->visibleRegion().boundingRect().height(), table->height());
    EXPECT_GT(table->rowCount(), 0);
}

}  // namespace
}  // namespace zentaq
