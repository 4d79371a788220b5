// Searching a datalog: the line for the condition, the hits in the list and in the plot.
#include "windows/log_find_bar.h"

#include <gmock/gmock.h>

#include <QCompleter>
#include <QLineEdit>

#include "windows/log_plot_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

/// RPM is 1000 at 0 s and goes up by 50 a second, up to 2000 at 20 s.
class LogFind : public LogPlotTest {
 protected:
    LogFind() {
        QObject::connect(view.get(), &LogPlotView::timeChosen, view.get(),
                         [this](double seconds) { chosen.push_back(seconds); });
    }
    std::vector<double> chosen;  ///< the times that were asked for

    /// The box has the keyboard, and its line gets the keys from it.
    LogConditionEntry& entry() { return *find<LogConditionEntry>("cboLogCondition"); }
    QLineEdit& line() { return *entry().lineEdit(); }
    LogFindBar& bar() { return *find<LogFindBar>("fraFindInLog"); }
    QString said() { return bar().said().text(); }
    LogHitList& list() { return *find<LogHitList>("lstHits"); }
    QString cell(int row, int column) { return list().model()->index(row, column).data().toString(); }

    void press(int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, key == Qt::Key_Return ? "\r" : "");
        QApplication::sendEvent(&entry(), &down);
        finish();
    }
    void finish() {
        while (bar().searching()) settle();
        settle();
    }
    void search(const QString& condition) {
        line().setText(condition);
        press(Qt::Key_Return);
    }
    void type(const QString& text) {
        for (const QChar letter : text) {
            QKeyEvent down(QEvent::KeyPress, 0, Qt::NoModifier, letter);
            QApplication::sendEvent(&entry(), &down);
        }
        settle();
    }
    QAbstractItemView& words() { return *line().parent()->findChild<QCompleter*>()->popup(); }
};

TEST_F(LogFind, ListsTheHitsAndShadesThem) {
    search("RPM >= 1100 and RPM < 1200 or RPM = 1500");
    EXPECT_THAT(area().scene().hits, ElementsAre(LogHit{100, 199}, LogHit{500, 500}));
    EXPECT_EQ(said(), "2 hits, 2 s of 20 s");
    ASSERT_EQ(list().model()->rowCount(), 2);
    EXPECT_EQ(cell(0, 0), "00:02.00");
    EXPECT_EQ(cell(0, 1), "00:03.98");
    EXPECT_EQ(cell(0, 2), "1.98");
    EXPECT_EQ(cell(1, 2), "0.00");
    EXPECT_EQ(list().model()->index(0, 0).data(Qt::ToolTipRole), "100 rows of the log, from row 101");
}

TEST_F(LogFind, EnterOnceMoreGoesFromHitToHit) {
    search("RPM >= 1100 and RPM < 1200 or RPM = 1500");
    EXPECT_TRUE(chosen.empty());
    press(Qt::Key_Return);
    view->nextHit(1);
    view->nextHit(1);
    view->nextHit(-1);
    view->cursorAt(3);
    find<QToolButton>("cmdHitAfter")->click();
    EXPECT_THAT(chosen, ElementsAre(2, 10, 2, 10, 10)) << "behind the last one comes the first";
}

TEST_F(LogFind, AHitThatIsChosenInTheListIsGoneTo) {
    search("RPM = 1500");
    Q_EMIT list().activated(list().model()->index(0, 0));
    EXPECT_THAT(chosen, ElementsAre(10));
}

TEST_F(LogFind, AConditionThatIsWrongIsSaidAndItsPlaceSelected) {
    search("RPM = 1500");
    search("RPM > 3000 and BOOST > 2");
    EXPECT_TRUE(said().contains("BOOST")) << said().toStdString();
    EXPECT_EQ(line().selectedText(), "BOOST > 2");
    EXPECT_TRUE(area().scene().hits.empty()) << "those of another condition would be taken for its own";
    EXPECT_EQ(list().model()->rowCount(), 0);
    EXPECT_FALSE(find<QToolButton>("cmdHitAfter")->isEnabled());
}

TEST_F(LogFind, NothingFoundIsSaid) {
    search("RPM > 9000");
    EXPECT_EQ(said(), "No row of the log holds");
}

TEST_F(LogFind, AnEmptyConditionTakesTheShadingAway) {
    search("RPM = 1500");
    search("  ");
    EXPECT_EQ(said(), "");
    EXPECT_TRUE(area().scene().hits.empty());
}

TEST_F(LogFind, WhatIsSearchedForInOneLogIsSearchedForInTheNext) {
    search("MAP > 50");
    EXPECT_THAT(area().scene().hits, ElementsAre(LogHit{500, 500}));
    const LogColumns other = plotLog(300, 20);
    view->showLog(&other, "other.dat");
    EXPECT_TRUE(area().scene().hits.empty());
    finish();
    EXPECT_THAT(area().scene().hits, ElementsAre(LogHit{20, 20}));
    DatalogHead head;
    head.columns = {"Frame", "RPM"};
    LogColumns without;
    without.begin(head);
    without.append(std::vector<double>{0, 1});
    view->showLog(&without, "without.dat");
    finish();
    EXPECT_TRUE(said().contains("MAP")) << said().toStdString();
    EXPECT_TRUE(area().scene().hits.empty());
    view->showLog(nullptr, {});
    EXPECT_FALSE(line().isEnabled());
}

TEST_F(LogFind, RowsThatComeLaterAreSearchedToo) {
    search("MAP > 50");
    log.append(std::vector<double>{1001, 2001, 80, 1.5, 2, 14.7, 14.2, 10});
    view->grown();
    finish();
    EXPECT_THAT(area().scene().hits, ElementsAre(LogHit{500, 500}, LogHit{1001, 1001}));
}

TEST_F(LogFind, ALongLogIsSearchedBetweenPictures) {
    log = plotLog(200'000, 150'000);
    view->showLog(&log, "long.dat");
    line().setText("MAP > 50 and RPM > 0 and abs(AAFR - DAFR) > 0.1");
    bar().find();
    EXPECT_TRUE(bar().searching()) << "nothing was waited for";
    finish();
    EXPECT_THAT(area().scene().hits, ElementsAre(LogHit{150'000, 150'000}));
}

TEST_F(LogFind, FormerConditionsAreOfferedAgain) {
    search("MAP > 50");
    search("RPM > 1500");
    auto* entry = find<LogConditionEntry>("cboLogCondition");
    entry->showPopup();
    ASSERT_EQ(entry->count(), 2);
    EXPECT_EQ(entry->itemText(0), "RPM > 1500");
    EXPECT_EQ(entry->itemText(1), "MAP > 50");
    EXPECT_EQ(line().text(), "RPM > 1500") << "what is typed stays";
    entry->hidePopup();
}

TEST_F(LogFind, EnterSearchesForWhatWasTypedLetterByLetter) {
    line().setFocus();
    type("RPM >= 1500 and MAP < 80");
    ASSERT_FALSE(words().isVisible());
    press(Qt::Key_Return);
    EXPECT_EQ(said(), "1 hit, 10 s of 20 s");
}

TEST_F(LogFind, NamesOfChannelsAreCompletedInTheMiddleOfACondition) {
    line().setFocus();
    type("RPM > 3000 and da");
    ASSERT_TRUE(words().isVisible());
    EXPECT_EQ(words().model()->rowCount(), 1);
    EXPECT_EQ(words().model()->index(0, 0).data(), "DAFR   Desired Air-to-Fuel Ratio");
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(&words(), &down);
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r");
    QApplication::sendEvent(&words(), &enter);
    settle();
    EXPECT_EQ(line().text(), "RPM > 3000 and DAFR");
    EXPECT_FALSE(bar().searching());
    EXPECT_EQ(said(), "") << "Enter took the word, and did not search";
}

}  // namespace
}  // namespace zentaq
