// What the user does while a calibration file is read: keys, menus, tree and the window's own button come
// behind the opening, whatever the platform lets in.
#include <gtest/gtest.h>

#include <QCloseEvent>
#include <QCursor>
#include <QTreeWidget>

#include "qt/qt_yield.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class ReadingWindows : public TableWindowsTest {
 protected:
    ReadingWindows() {
        settle();
        fake.dialogs.boxes.clear();
        fake.session.DataModified = false;
    }
    void settle() {
        for (int i = 0; i < 3; ++i) {
            fake.ticker.run(1);
            QCoreApplication::processEvents();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void openMeanwhile(std::function<void()> meanwhile) {
        fake.yield.meanwhile = std::move(meanwhile);
        fake.dialogs.files.push_back(calibrationFile());
        commands.files.open();
        EXPECT_FALSE(fake.yield.meanwhile) << "the reading yields";
    }
};

/// Counts what the pointer does over the program's windows.
class PointerMoves : public QObject {
 public:
    PointerMoves() { qApp->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::MouseMove) ++count;
        return false;
    }
    int count = 0;
};

TEST_F(ReadingWindows, WhatTheUserDoesMeanwhileStaysInTheQueueUntilTheFileIsInHand) {
    const PointerMoves moves;
    openMeanwhile([&] {
        QCursor::setPos(windows.main().mapToGlobal(windows.main().rect().center()));
        QtYield().yieldWithoutInput();
        EXPECT_EQ(moves.count, 0);
    });
    settle();
    EXPECT_GT(moves.count, 0) << "it was dropped";
}

TEST_F(ReadingWindows, AMenuEntryComesBehindTheOpening) {
    openMeanwhile([&] {
        find<QAction>("mnuClose")->trigger();
        EXPECT_FALSE(fake.session.CurrentFile.empty());
        EXPECT_EQ(fake.session.slotInHand(), 3);
    });
    EXPECT_FALSE(fake.session.CurrentFile.empty());
    settle();
    EXPECT_EQ(fake.session.CurrentFile, "");
    EXPECT_EQ(fake.session.slotInHand(), 0);
}

TEST_F(ReadingWindows, TheButtonOfTheWindowEndsTheProgramBehindTheOpening) {
    openMeanwhile([&] {
        QCloseEvent closing;
        QApplication::sendEvent(&windows.main(), &closing);
        EXPECT_FALSE(closing.isAccepted());
        EXPECT_FALSE(windows.closed());
    });
    EXPECT_FALSE(windows.closed());
    settle();
    EXPECT_TRUE(windows.closed());
}

TEST_F(ReadingWindows, AClickInTheTreeTakesNothingOutOfTheFormerCalibration) {
    auto* tree = find<QTreeWidget>("treeZentaq");
    QTreeWidgetItem* table = tree->findItems("*", Qt::MatchWildcard | Qt::MatchRecursive).last();
    for (QTreeWidgetItem* item : tree->findItems("*", Qt::MatchWildcard | Qt::MatchRecursive)) {
        if (item->text(0).contains("VE")) table = item;
    }
    openMeanwhile([&] {
        Q_EMIT tree->itemClicked(table, 0);
        EXPECT_EQ(windows.table(), nullptr);
    });
    EXPECT_EQ(windows.table(), nullptr);
}

TEST_F(ReadingWindows, ABoxOfTheLinkWaitsUntilTheFileIsInHand) {
    openMeanwhile([&] {
        fake.session.inform("A word of the link.");
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        EXPECT_TRUE(fake.dialogs.boxes.empty());
    });
    for (int i = 0; i < 100 && fake.dialogs.boxes.empty(); ++i) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].text, "A word of the link.");
}

}  // namespace
}  // namespace zentaq
