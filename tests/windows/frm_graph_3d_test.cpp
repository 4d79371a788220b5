// The surface windows: keys, changes that the open grid shows at once, eleven side by side.
#include "windows/frm_graph_3d.h"

#include <QPainter>

#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class SurfaceWindow : public TableWindowsTest {
 protected:
    SurfaceWindow() {
        openVe();
        fake.dialogs.boxes.clear();
        fake.session.DataModified = false;
    }
    FrmGraph3D* graph(int number = 1) {
        const QString name = number == 1 ? "frmGraph_3D" : QString("frmGraph_3D%1").arg(number);
        return windows.main().findChild<FrmGraph3D*>(name);
    }
    FrmGraph3D& opened() {
        tableAction("Graph")->trigger();
        settle();
        return *graph();
    }
    void press(int code, const QString& text = {}) { keyTo(*graph()->picture(), code, text); }
    QString text(const char* label) { return graph()->findChild<QLabel*>(label)->text(); }
    std::string shown(int row, int column) {
        return grid().model()->index(row - 1, column - 1).data().toString().toStdString();
    }
    std::string notice() { return fake.session.notices.text(fake.clock.monotonicUs()); }
};

TEST_F(SurfaceWindow, OpensOnTheTableWithItsTitleItsHintAndItsCursor) {
    FrmGraph3D& window = opened();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.windowTitle(), "VE Enhanced");
    EXPECT_EQ(text("RPM_Text"), "500");
    EXPECT_EQ(text("MAP_Text"), "20");
    EXPECT_EQ(text("Value_Text"), "0.00");
    EXPECT_THAT(text("lblHint").toStdString(), HasSubstr("Use + or - Keys"));
    EXPECT_NE(window.findChild<QPushButton*>("cmdClose"), nullptr);
}

TEST_F(SurfaceWindow, ArrowsMoveTheCursorUpwardInTheTable) {
    opened();
    press(Qt::Key_Up);
    press(Qt::Key_Right);
    EXPECT_EQ(text("MAP_Text"), "25");
    EXPECT_EQ(text("RPM_Text"), "1000");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(text("MAP_Text"), "95") << "around the end";
    press(Qt::Key_Shift);
    press(Qt::Key_Control);
    EXPECT_EQ(text("MAP_Text"), "95");
}

TEST_F(SurfaceWindow, PlusChangesTheTableAndTheOpenGridShowsItAtOnce) {
    opened();
    press(Qt::Key_Plus, "+");
    press(Qt::Key_Equal, "=");
    EXPECT_EQ(ve(0), 2);
    EXPECT_EQ(shown(16, 1), "2");
    EXPECT_EQ(text("Value_Text"), "2.00");
    EXPECT_TRUE(fake.session.DataModified);
    press(Qt::Key_Minus, "-");
    EXPECT_EQ(ve(0), 1);
    EXPECT_EQ(shown(16, 1), "1");
}

TEST_F(SurfaceWindow, WhatDiscardBringsBackStaysAsTheTableWasBuilt) {
    unit().set("VE", 7, 0);
    form().Setup_Grid("", "");
    opened();
    press(Qt::Key_Plus, "+");
    EXPECT_EQ(ve(0), 8);
    EXPECT_EQ(form().model()->sheet().undoCopy(0), 7);
}

TEST_F(SurfaceWindow, AChangeInTheGridShowsInTheSurface) {
    opened();
    stand(16, 1);
    type("12");
    key(Qt::Key_Return, "\r");
    windows.refresh();  // as its timer does
    EXPECT_EQ(text("Value_Text"), "12.00");
}

TEST_F(SurfaceWindow, AChangeInOneSurfaceShowsInAnother) {
    opened();
    tableAction("Graph")->trigger();
    settle();
    press(Qt::Key_Plus, "+");
    windows.refresh();
    EXPECT_EQ(graph(2)->findChild<QLabel*>("Value_Text")->text(), "1.00");
}

TEST_F(SurfaceWindow, TheEngineIsShownOnlyWhereItsUnitIsOfTheKindInHand) {
    opened();
    fake.session.live.RPM = 1500;
    fake.session.live.MAP = 30;
    fake.session.frames.tell();
    EXPECT_FALSE(graph()->model()->livePoint().visible) << "no unit is on the link";
}

TEST_F(SurfaceWindow, WhatIsTypedInTheGridIsEnteredBeforeItsKeyCounts) {
    opened();
    stand(16, 1);
    type("12");
    ASSERT_TRUE(form().inputBox().isVisible());
    press(Qt::Key_Plus, "+");
    EXPECT_EQ(ve(0), 13);
}

TEST_F(SurfaceWindow, ARefusedStepIsToldOnceAndChangesNothing) {
    unit().set("VE", 50, 0);
    form().Setup_Grid("", "");
    opened();
    press(Qt::Key_Plus, "+");
    EXPECT_EQ(fake.dialogs.boxes.size(), 1U);
    EXPECT_THAT(lastBox().text, HasSubstr("(-50 to 50%)"));
    EXPECT_EQ(ve(0), 50);
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(SurfaceWindow, AViewIsDrawnAndNotChanged) {
    tableAction("Pulsewidth")->trigger();
    FrmGraph3D& window = opened();
    EXPECT_EQ(window.windowTitle(), "Fundamental PW");
    EXPECT_THAT(text("lblHint").toStdString(), HasSubstr("not Editable"));
    press(Qt::Key_Plus, "+");
    EXPECT_EQ(ve(0), 0);
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty());
}

TEST_F(SurfaceWindow, ElevenStandSideBySideAndTheTwelfthIsTold) {
    for (int i = 0; i < 12; ++i) tableAction("Graph")->trigger();
    settle();
    for (int number = 1; number <= 11; ++number) {
        ASSERT_NE(graph(number), nullptr) << number;
        EXPECT_TRUE(graph(number)->isVisible()) << number;
    }
    EXPECT_THAT(notice(), HasSubstr("Eleven graphs are open"));
    graph(4)->close();
    settle();
    EXPECT_EQ(graph(4), nullptr);
    tableAction("Graph")->trigger();
    settle();
    EXPECT_NE(graph(4), nullptr) << "its place was free";
}

TEST_F(SurfaceWindow, ThePopUpOpensItToo) {
    find<QAction>("mnuGraphTable")->trigger();
    settle();
    EXPECT_NE(graph(), nullptr);
}

TEST_F(SurfaceWindow, GoesWithTheCalibration) {
    opened();
    commands.files.close();
    settle();
    EXPECT_EQ(graph(), nullptr);
}

TEST_F(SurfaceWindow, EscapeClosesIt) {
    opened();
    press(Qt::Key_Escape);
    settle();
    EXPECT_EQ(graph(), nullptr);
}

TEST_F(SurfaceWindow, F1TellsOfItsKeys) {
    const std::string path = fake.folder.path("reference.pak");
    std::filesystem::copy_file(builtReference(), path);
    fake.session.database = Database::open(path);
    opened();
    EXPECT_EQ(graph()->property("fastHelpKey"), "helparrow");
    activate(*graph());
    graph()->picture()->setFocus();
    press(Qt::Key_F1);
    settle();
    ASSERT_NE(windows.fastHelpWindow(), nullptr);
    EXPECT_TRUE(windows.fastHelpWindow()->isVisible());
    EXPECT_EQ(windows.fastHelpWindow()->findChild<QLabel*>("lblTopic")->text(), "Arrow Keys");
}

TEST_F(SurfaceWindow, TheSurfaceCoversWhatLiesBehindIt) {
    for (int i = 0; i < 256; ++i) unit().set("VE", i < 16 ? 50 : -50, i);  // a wall in front
    FrmGraph3D& window = opened();
    window.model()->moveTo(16, 16);
    QImage picture(900, 700, QImage::Format_RGB32);
    QPainter painter(&picture);
    window.picture()->draw(painter, picture.rect());
    painter.end();
    // The wall falls from the first row to the second: green of +50 in the middle of the picture, and nothing
    // of the red plain behind it.
    int green = 0;
    int red = 0;
    for (int x = 400; x < 500; ++x) {
        const QColor at = picture.pixelColor(x, 350);
        green += at.green() > at.red() + 40 ? 1 : 0;
        red += at.red() > at.green() + 40 ? 1 : 0;
    }
    EXPECT_GT(green, 50);
    EXPECT_EQ(red, 0);
}

TEST_F(SurfaceWindow, AClickPicksTheNearestPoint) {
    FrmGraph3D& window = opened();
    window.model()->moveTo(5, 9);
    const QPointF place(window.picture()->width() / 2.0, window.picture()->height() / 2.0);
    const GridCell cell = window.picture()->nearest(place);
    QMouseEvent press(QEvent::MouseButtonPress, place, window.picture()->mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.picture(), &press);
    EXPECT_EQ(window.model()->row(), cell.row);
    EXPECT_EQ(window.model()->column(), cell.column);
}

TEST_F(SurfaceWindow, AScreenReaderHearsTheCursor) {
    FrmGraph3D& window = opened();
    press(Qt::Key_Right);
    EXPECT_EQ(window.picture()->accessibleName(), "VE Enhanced: 0.00 at row 20 kPa, column 1000 RPM");
    EXPECT_THAT(window.picture()->accessibleDescription().toStdString(),
                HasSubstr("Engine Speed (RPM) to the right"));
}

}  // namespace
}  // namespace zentaq
