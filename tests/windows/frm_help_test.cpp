#include "windows/frm_help.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <memory>

#include "qt/look.h"
#include "temporary_folder.h"
#include "testing/memory_settings.h"
#include "windows/key_press.h"

namespace zentaq {
namespace {

/// A guide of three pages, the second one longer than the window.
class Help : public ::testing::Test {
 protected:
    Help() {
        applyLook(*qApp, DisplayMode::Night);
        page("index", "<h1 id=\"top\">Guide</h1><p>Read <a href=\"fuel.html\">Fuel</a> first.</p>");
        page("fuel",
             "<h1 id=\"top\">Fuel</h1><p>A pulse of fuel. <a href=\"https://example.invalid/\">Net</a> "
             "<a href=\"/etc/hostname\">File</a></p>" +
                 filler() +
                 "<h2 id=\"start\"><a name=\"start\"></a>Start</h2><p>The prime pulse is first.</p>");
        page("idle", "<h1 id=\"top\">Idle</h1><p>The motor has a duty.</p>");
        folder.write("guide.tsv",
                     "index\t1\t\tGuide\tRead Fuel first.\n"
                     "fuel\t1\t\tFuel\tA pulse of fuel. Net\n"
                     "fuel\t2\tstart\tStart\tThe prime pulse is first.\n"
                     "idle\t1\t\tIdle\tThe motor has a duty.\n");
        window = std::make_unique<FrmHelp>(folder.path().string(), settings, nullptr);
        window->open({});
        QApplication::processEvents();
    }
    ~Help() override { applyLook(*qApp, DisplayMode::Night); }

    static std::string filler() {
        std::string text;
        for (int i = 0; i < 80; ++i) text += "<p>Nothing of interest stands here.</p>";
        return text;
    }
    void page(const std::string& chapter, const std::string& body) {
        folder.write(chapter + ".html",
                     "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><link rel=\"stylesheet\" "
                     "href=\"guide.css\"></head><body>" +
                         body + "</body></html>");
    }
    template <typename Control>
    Control& the(const char* name) {
        auto* found = window->findChild<Control*>(QLatin1String(name));
        if (found == nullptr) throw std::runtime_error(name);
        return *found;
    }
    GuidePage& shown() { return the<GuidePage>("txtPage"); }
    QListWidget& hits() { return the<QListWidget>("lstHits"); }

    MemorySettings settings;
    TemporaryFolder folder;
    std::unique_ptr<FrmHelp> window;
};

TEST_F(Help, OpensWithTheContentsAndTheTreeOfChapters) {
    EXPECT_EQ(shown().topic(), "index");
    auto& tree = the<QTreeWidget>("treeContents");
    ASSERT_EQ(tree.topLevelItemCount(), 2);
    EXPECT_EQ(tree.topLevelItem(0)->text(0), "Fuel");
    ASSERT_EQ(tree.topLevelItem(0)->childCount(), 1);
    EXPECT_EQ(tree.topLevelItem(0)->child(0)->text(0), "Start");
    EXPECT_EQ(tree.topLevelItem(1)->text(0), "Idle");
    EXPECT_EQ(window->windowTitle(), "Guide - Zentaq4 User Guide");
}

TEST_F(Help, ATopicIsShownAtItsPlaceAndMarkedInTheTree) {
    window->open("fuel#start");
    QApplication::processEvents();
    EXPECT_EQ(shown().topic(), "fuel#start");
    EXPECT_GT(shown().verticalScrollBar()->value(), 100);
    EXPECT_EQ(the<QTreeWidget>("treeContents").currentItem()->text(0), "Start");
    EXPECT_EQ(window->windowTitle(), "Fuel - Zentaq4 User Guide");
}

TEST_F(Help, TheChapterOnTheScreenIsOpenInTheTreeAndTheFormerOneClosed) {
    auto& tree = the<QTreeWidget>("treeContents");
    window->open("fuel#start");
    EXPECT_TRUE(tree.topLevelItem(0)->isExpanded());
    window->open("idle");
    EXPECT_FALSE(tree.topLevelItem(0)->isExpanded());
    EXPECT_EQ(tree.currentItem()->text(0), "Idle");
}

TEST_F(Help, AnUnknownTopicShowsTheContents) {
    window->open("idle");
    window->open("fuel#gone");
    EXPECT_EQ(shown().topic(), "index");
}

TEST_F(Help, EnterInTheTreeOpensAPlace) {
    auto& tree = the<QTreeWidget>("treeContents");
    tree.setFocus();
    tree.setCurrentItem(tree.topLevelItem(1));
    pressKey(Qt::Key_Return);
    EXPECT_EQ(shown().topic(), "idle");
}

TEST_F(Help, SearchingListsHitsWithTheirSentenceAndEnterOpensTheFirst) {
    pressKey(Qt::Key_L, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), &the<QLineEdit>("txtSearch"));
    typeText("pulse prime");
    ASSERT_EQ(hits().count(), 1);
    EXPECT_TRUE(hits().isVisible());
    EXPECT_EQ(hits().item(0)->text(), "Fuel: Start");
    EXPECT_EQ(hits().item(0)->data(Qt::AccessibleTextRole).toString(),
              "Fuel: Start. The prime pulse is first.");
    pressKey(Qt::Key_Return);
    EXPECT_EQ(shown().topic(), "fuel#start");
    // "pulse" stands twice in the page, "prime" once.
    EXPECT_EQ(shown().markedPlaces(), 3);
    EXPECT_EQ(QApplication::focusWidget(), &shown());
}

TEST_F(Help, DownGoesToTheHitsAndEnterOpensTheChosenOne) {
    pressKey(Qt::Key_L, Qt::ControlModifier);
    typeText("the");
    ASSERT_EQ(hits().count(), 2);
    pressKey(Qt::Key_Down);
    ASSERT_EQ(QApplication::focusWidget(), &hits());
    EXPECT_EQ(hits().currentItem()->text(), "Fuel: Start");
    pressKey(Qt::Key_Down);
    pressKey(Qt::Key_Return);
    EXPECT_EQ(shown().topic(), "idle");
}

TEST_F(Help, WithoutAHitTheListSaysSoAndEnterDoesNothing) {
    pressKey(Qt::Key_L, Qt::ControlModifier);
    typeText("xylophone");
    ASSERT_EQ(hits().count(), 1);
    EXPECT_EQ(hits().item(0)->text(), "Nothing found");
    pressKey(Qt::Key_Return);
    EXPECT_EQ(shown().topic(), "index");
}

TEST_F(Help, AnEmptySearchBringsTheTreeBackAndWipesTheMarks) {
    window->open("fuel");
    the<QLineEdit>("txtSearch").setText("pulse");
    EXPECT_EQ(shown().markedPlaces(), 2);
    the<QLineEdit>("txtSearch").clear();
    EXPECT_EQ(shown().markedPlaces(), 0);
    EXPECT_TRUE(the<QTreeWidget>("treeContents").isVisible());
}

TEST_F(Help, MarksStandAtBeginningsOfWordsOnly) {
    window->open("fuel");
    the<QLineEdit>("txtSearch").setText("ulse");
    EXPECT_EQ(shown().markedPlaces(), 0);
}

TEST_F(Help, AltAndArrowsGoBackAndForward) {
    window->open("fuel");
    window->open("idle");
    pressKey(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(shown().topic(), "fuel");
    pressKey(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(shown().topic(), "index");
    pressKey(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(shown().topic(), "fuel");
    pressKey(Qt::Key_Home, Qt::AltModifier);
    EXPECT_EQ(shown().topic(), "index");
}

TEST_F(Help, FindsInThePageForwardBackwardAndAroundTheEnd) {
    window->open("fuel");
    EXPECT_FALSE(the<QWidget>("fraFind").isVisible());
    pressKey(Qt::Key_F, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), &the<QLineEdit>("txtFind"));
    typeText("pulse");
    pressKey(Qt::Key_Return);
    const int first = shown().textCursor().selectionStart();
    EXPECT_EQ(shown().textCursor().selectedText(), "pulse");
    pressKey(Qt::Key_F3);
    const int second = shown().textCursor().selectionStart();
    EXPECT_GT(second, first);
    pressKey(Qt::Key_F3);
    EXPECT_EQ(shown().textCursor().selectionStart(), first);
    pressKey(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(shown().textCursor().selectionStart(), second);
}

TEST_F(Help, WhatIsNotInThePageIsTold) {
    pressKey(Qt::Key_F, Qt::ControlModifier);
    typeText("motor");
    pressKey(Qt::Key_Return);
    EXPECT_EQ(the<QLabel>("lblFound").text(), "Not in this page");
    window->open("idle");
    EXPECT_EQ(the<QLabel>("lblFound").text(), "");
}

TEST_F(Help, EscClosesTheFindBarAndThenTheWindow) {
    pressKey(Qt::Key_F, Qt::ControlModifier);
    pressKey(Qt::Key_Escape);
    EXPECT_FALSE(the<QWidget>("fraFind").isVisible());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &shown());
    pressKey(Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Help, EscClosesFromTheSearchBoxToo) {
    pressKey(Qt::Key_L, Qt::ControlModifier);
    pressKey(Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

/// The main window programs the unit with this key, from whatever window.
TEST_F(Help, ThePrintKeyDoesNotReachTheMainWindow) {
    QWidget frame;
    QAction program(&frame);
    program.setShortcut(QKeySequence::Print);
    program.setShortcutContext(Qt::ApplicationShortcut);
    frame.addAction(&program);
    int programmed = 0;
    QObject::connect(&program, &QAction::triggered, [&] { ++programmed; });
    frame.show();
    frame.activateWindow();
    QApplication::processEvents();
    pressKey(Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(programmed, 1);
    window->open("fuel");
    QApplication::processEvents();
    pressKey(Qt::Key_P, Qt::ControlModifier);
    pressKey(Qt::Key_L, Qt::ControlModifier);
    pressKey(Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(programmed, 1);
}

TEST_F(Help, LinksToChaptersAreFollowedByKeyboard) {
    pressKey(Qt::Key_Tab);
    pressKey(Qt::Key_Return);
    EXPECT_EQ(shown().topic(), "fuel");
}

TEST_F(Help, LinksOutOfTheGuideAreNotFollowedAndTold) {
    window->open("fuel");
    QStringList refused;
    QObject::connect(&shown(), &GuidePage::outsideRefused,
                     [&](const QString& address) { refused += address; });
    pressKey(Qt::Key_Tab);
    pressKey(Qt::Key_Return);
    EXPECT_EQ(shown().topic(), "fuel");
    pressKey(Qt::Key_Tab);
    pressKey(Qt::Key_Return);
    EXPECT_EQ(shown().topic(), "fuel");
    EXPECT_EQ(refused, QStringList({"https://example.invalid/", "file:///etc/hostname"}));
    EXPECT_TRUE(the<QLabel>("lblNotice").isVisible());
    EXPECT_EQ(the<QLabel>("lblNotice").text(), "This link leads out of the guide: file:///etc/hostname");
    window->open("idle");
    EXPECT_FALSE(the<QLabel>("lblNotice").isVisible());
}

QColor inkOf(const QTextDocument& page, const char* text) {
    const QTextCursor place = page.find(QLatin1String(text));
    return place.charFormat().foreground().color();
}

TEST_F(Help, ThePageTakesTheColoursOfDayAndNightAndKeepsItsPlace) {
    window->open("fuel#start");
    QApplication::processEvents();
    EXPECT_EQ(inkOf(*shown().document(), "prime pulse"), lookColors(DisplayMode::Night).text);
    const int place = shown().verticalScrollBar()->value();
    applyLook(*qApp, DisplayMode::Day);
    QApplication::processEvents();
    EXPECT_EQ(inkOf(*shown().document(), "prime pulse"), lookColors(DisplayMode::Day).text);
    EXPECT_EQ(shown().verticalScrollBar()->value(), place);
    EXPECT_EQ(shown().viewport()->palette().color(QPalette::Base), lookColors(DisplayMode::Day).surface);
}

TEST_F(Help, AMissingGuideIsToldInThePlaceOfThePage) {
    FrmHelp lost(folder.path("nowhere"), settings, nullptr);
    lost.open("fuel");
    QApplication::processEvents();
    const auto* text = lost.findChild<GuidePage*>("txtPage");
    EXPECT_TRUE(text->toPlainText().startsWith("The user guide is missing"));
    EXPECT_TRUE(text->toPlainText().contains(QString::fromStdString(folder.path("nowhere"))));
    EXPECT_FALSE(lost.findChild<QLineEdit*>("txtSearch")->isEnabled());
    EXPECT_TRUE(lost.isVisible());
    pressKey(Qt::Key_Escape);
    EXPECT_FALSE(lost.isVisible());
}

TEST_F(Help, EveryControlTellsItsNameToAScreenReader) {
    for (const char* name : {"Toolbar1", "txtSearch", "treeContents", "lstHits", "txtPage", "txtFind"}) {
        EXPECT_FALSE(the<QWidget>(name).accessibleName().isEmpty()) << name;
    }
    for (const char* name : {"lblFound", "lblNotice"}) {
        EXPECT_FALSE(the<QWidget>(name).accessibleDescription().isEmpty()) << name;
    }
    EXPECT_EQ(window->objectName(), "frmHelp");
    EXPECT_EQ(window->accessibleName(), "User guide");
}

TEST_F(Help, TheWindowComesBackInTheSizeThatItHad) {
    window->resize(640, 480);
    QApplication::processEvents();
    window->close();
    FrmHelp again(folder.path().string(), settings, nullptr);
    again.open({});
    QApplication::processEvents();
    EXPECT_EQ(again.size(), QSize(640, 480));
}

TEST_F(Help, AChosenHitTellsWhetherTheListHasTheKeyboard) {
    window->activateWindow();
    QApplication::processEvents();
    auto& line = the<QLineEdit>("txtSearch");
    line.setFocus();
    line.setText("pulse");
    hits().setCurrentRow(0);
    const auto ground = [&] {
        QApplication::processEvents();
        const QRect row = hits().visualItemRect(hits().item(0));
        return hits().viewport()->grab().toImage().pixelColor(row.center().x(), row.top() + 3);
    };
    const LookColors colors = lookColors(DisplayMode::Night);
    EXPECT_EQ(ground(), colors.restingSelection);
    hits().setFocus();
    EXPECT_EQ(ground(), colors.accent);
}

TEST_F(Help, TheContentsComeBackAsWideAsTheUserMadeThem) {
    window->resize(1000, 480);
    QApplication::processEvents();
    auto& split = the<QSplitter>("splHelp");
    const int wider = split.sizes().first() + 100;
    split.setSizes({wider, 1000 - wider});
    Q_EMIT split.splitterMoved(wider, 1);
    const int left = split.sizes().first();
    window.reset();
    FrmHelp again(folder.path().string(), settings, nullptr);
    again.resize(1000, 480);
    again.open({});
    QApplication::processEvents();
    EXPECT_EQ(again.findChild<QSplitter*>("splHelp")->sizes().first(), left);
}

}  // namespace
}  // namespace zentaq
