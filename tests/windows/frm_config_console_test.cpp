#include "windows/frm_config_console.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include "app/console.h"
#include "app/fake_platform.h"

namespace zentaq {
namespace {

class ConsoleViewTest : public testing::Test {
 protected:
    FakeClock clock;
    Console console{clock};
    ConsoleView view{"lstLog", "System console", console.lines(), nullptr};

    ConsoleViewTest() {
        view.resize(700, 300);
        view.show();
    }
    void log(int count) {
        for (int i = 0; i < count; ++i) console.SysLog("line " + std::to_string(i));
        view.sync();
    }
    void press(int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&view, &down);
    }
    void click(const QPoint& place) {
        const QPoint global = view.viewport()->mapToGlobal(place);
        QMouseEvent down(QEvent::MouseButtonPress, place, global, Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &down);
        QMouseEvent up(QEvent::MouseButtonRelease, place, global, Qt::LeftButton, {}, {});
        QApplication::sendEvent(view.viewport(), &up);
    }
    QRect lastLine() const { return view.visualRect(view.model()->index(view.model()->rowCount() - 1, 0)); }
    bool lastLineInView() const { return view.viewport()->rect().contains(lastLine()); }
};

TEST_F(ConsoleViewTest, TheLastLineIsSelectedAndInView) {
    for (const int more : {1, 5, 100, 1000}) {
        log(more);
        EXPECT_EQ(view.currentIndex().row(), view.model()->rowCount() - 1);
        EXPECT_TRUE(view.selectionModel()->isSelected(view.currentIndex()));
        EXPECT_TRUE(lastLineInView()) << more;
    }
}

TEST_F(ConsoleViewTest, EveryLineStandsBelowTheOneBefore) {
    log(500);
    view.verticalScrollBar()->setValue(200);
    const auto place = [&](int row) { return view.visualRect(view.model()->index(row, 0)); };
    EXPECT_EQ(place(200).top(), 0);
    EXPECT_EQ(place(201).top(), place(200).bottom() + 1);
    EXPECT_EQ(place(199).bottom(), -1);
    EXPECT_GE(place(200).height(), view.fontMetrics().height());
}

TEST_F(ConsoleViewTest, APointAnswersTheLineUnderIt) {
    log(500);
    view.verticalScrollBar()->setValue(200);
    EXPECT_EQ(view.indexAt(view.visualRect(view.model()->index(205, 0)).center()).row(), 205);
    EXPECT_FALSE(view.indexAt(QPoint(5, -1)).isValid());
    const std::deque<std::string> none;
    const ConsoleView empty("lstLog", "", none, nullptr);
    EXPECT_FALSE(empty.indexAt(QPoint(5, 5)).isValid());
}

TEST_F(ConsoleViewTest, TheUserMayLookBackUntilTheNextLine) {
    log(500);
    view.verticalScrollBar()->setValue(0);
    view.sync();
    EXPECT_EQ(view.verticalScrollBar()->value(), 0) << "nothing new";
    log(1);
    EXPECT_TRUE(lastLineInView());
}

TEST_F(ConsoleViewTest, KeysWalkThroughTheLines) {
    log(500);
    press(Qt::Key_Home);
    EXPECT_EQ(view.currentIndex().row(), 0);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    press(Qt::Key_Down);
    EXPECT_EQ(view.currentIndex().row(), 1);
    press(Qt::Key_PageDown);
    EXPECT_GT(view.currentIndex().row(), 5);
    press(Qt::Key_End);
    EXPECT_EQ(view.currentIndex().row(), 499);
    press(Qt::Key_Down);
    EXPECT_EQ(view.currentIndex().row(), 499);
    EXPECT_TRUE(lastLineInView());
}

TEST_F(ConsoleViewTest, AClickSelectsItsLine) {
    log(500);
    view.verticalScrollBar()->setValue(100);
    click(view.visualRect(view.model()->index(103, 0)).center());
    EXPECT_EQ(view.currentIndex().row(), 103);
    EXPECT_EQ(view.selectionModel()->selectedIndexes().size(), 1);
}

TEST_F(ConsoleViewTest, ALowerWindowKeepsTheLastLineInView) {
    log(500);
    view.resize(700, 120);
    EXPECT_TRUE(lastLineInView());
    view.resize(700, 400);
    EXPECT_TRUE(lastLineInView());
}

TEST_F(ConsoleViewTest, LinesArePainted) {
    view.grab();
    const QImage before = view.grab().toImage();
    log(1);
    EXPECT_NE(view.grab().toImage(), before);
}

TEST_F(ConsoleViewTest, AListThatWasClearedStartsAnew) {
    ConsoleView comm("lstCommInfo", "Communication console", console.commLines(), nullptr);
    for (int i = 0; i < 100; ++i) console.CommLog("a");
    comm.sync();
    EXPECT_EQ(comm.model()->rowCount(), 100);
    console.CommLog("the 101st");
    comm.sync();
    EXPECT_EQ(comm.model()->rowCount(), 1);
    EXPECT_EQ(comm.currentIndex().data().toString(), "the 101st");
    EXPECT_EQ(comm.verticalScrollBar()->maximum(), 0);
}

}  // namespace
}  // namespace zentaq
