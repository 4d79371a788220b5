// The page of the input/output pins in the workspace, and the way from a pin to its output table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QPushButton>
#include <QTabWidget>

#include "unit/gpio_functions.h"
#include "windows/key_press.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class PinPage : public TableWindowsTest {
 protected:
    PinPage() {
        givePin(1, 2);
        givePin(3, 3);
        openPage("General Purpose Input/Output");
    }
    void givePin(int pin, float table) {
        unit().Set_GPIO_Func(pin, gpio_code::fullTable);
        unit().Set_GPIO_Param(pin, 0, table);
    }
    void openPage(const QString& node) {
        auto* tree = find<QTreeWidget>("treeZentaq");
        const auto items = tree->findItems(node, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(items.size(), 1) << node.toStdString();
        Q_EMIT tree->itemActivated(items[0], 0);
        settle();
    }
    QTreeWidget& list() { return *find<QTreeWidget>("lstPage"); }
    QPushButton& button() { return *find<QPushButton>("cmdEditTable"); }
    QTreeWidgetItem* pinItem(int row) { return list().topLevelItem(row); }
    QTreeWidgetItem* entryOf(int row) {
        for (int i = 0; i < pinItem(row)->childCount(); ++i) {
            if (pinItem(row)->child(i)->text(0) == "Edit Table") return pinItem(row)->child(i);
        }
        return nullptr;
    }
    /// "GPO2 Full Table - Table#2", or nothing where no table is open.
    std::string openTable() {
        return windows.table() == nullptr ? ""
                                          : windows.table()->tableName() + " " + windows.table()->title();
    }
};

TEST_F(PinPage, TellsThePinsWithTheirFunctions) {
    ASSERT_EQ(list().topLevelItemCount(), 8);
    EXPECT_EQ(pinItem(0)->text(0), "1 (Output)             (pin W18)");
    EXPECT_EQ(pinItem(0)->text(1), "DISABLED");
    EXPECT_EQ(pinItem(1)->text(1), "Full Table");
    EXPECT_EQ(entryOf(0), nullptr);
    ASSERT_NE(entryOf(1), nullptr);
    EXPECT_EQ(entryOf(1)->text(1), "Full Table - Table#2");
    EXPECT_TRUE(pinItem(1)->isExpanded());
}

TEST_F(PinPage, TheTableOpensByArrowsAndEnter) {
    list().setFocus();
    list().setCurrentItem(pinItem(0));
    for (int i = 0; i < 20 && list().currentItem() != entryOf(1); ++i) sendKey(Qt::Key_Down);
    ASSERT_EQ(list().currentItem(), entryOf(1));
    EXPECT_EQ(openTable(), "");
    sendKey(Qt::Key_Return);
    settle();
    EXPECT_EQ(openTable(), "GPO2 Full Table - Table#2");
    EXPECT_EQ(find<QTabWidget>("sstMenu")->currentWidget(), windows.table());
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}

TEST_F(PinPage, TheTableOpensByADoubleClick) {
    const QPointF place = list().visualItemRect(entryOf(1)).center();
    const QPointF onScreen = list().viewport()->mapToGlobal(place);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                            QEvent::MouseButtonRelease}) {
        const Qt::MouseButton held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent click(type, place, onScreen, Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(list().viewport(), &click);
    }
    settle();
    EXPECT_EQ(openTable(), "GPO2 Full Table - Table#2");
}

TEST_F(PinPage, TheTableOpensByTheButtonFromEveryRowOfItsPin) {
    list().setCurrentItem(pinItem(1));
    EXPECT_TRUE(button().isVisible());
    EXPECT_TRUE(button().isEnabled());
    list().setCurrentItem(pinItem(1)->child(0));
    EXPECT_TRUE(button().isEnabled());
    button().click();
    settle();
    EXPECT_EQ(openTable(), "GPO2 Full Table - Table#2");
}

TEST_F(PinPage, OtherRowsOpenNothing) {
    list().setFocus();
    for (QTreeWidgetItem* item : {pinItem(0), pinItem(1), pinItem(1)->child(0)}) {
        list().setCurrentItem(item);
        sendKey(Qt::Key_Return);
        settle();
        EXPECT_EQ(openTable(), "") << item->text(0).toStdString();
    }
    list().setCurrentItem(pinItem(0));
    EXPECT_FALSE(button().isEnabled());
}

TEST_F(PinPage, ANumberThatIsNoTableOpensNothingAndIsTold) {
    ASSERT_NE(entryOf(3), nullptr);
    EXPECT_EQ(entryOf(3)->text(1), "There is no table 3");
    EXPECT_EQ(entryOf(3)->text(3), "1 or 2");
    list().setFocus();
    list().setCurrentItem(entryOf(3));
    EXPECT_FALSE(button().isEnabled());
    sendKey(Qt::Key_Return);
    settle();
    EXPECT_EQ(openTable(), "");
}

TEST_F(PinPage, FollowsTheCalibrationAndLeavesTheUserOnHisRow) {
    list().setCurrentItem(entryOf(3));
    unit().Set_GPIO_Param(3, 0, 1);
    windows.showUnit();
    EXPECT_EQ(entryOf(3)->text(1), "Full Table - Table#1");
    EXPECT_EQ(list().currentItem(), entryOf(3));
    EXPECT_TRUE(button().isEnabled());
    unit().Set_GPIO_Func(3, 6);
    windows.showUnit();
    EXPECT_EQ(pinItem(3)->text(1), "Shift Light");
    EXPECT_EQ(entryOf(3), nullptr);
    EXPECT_EQ(list().currentItem(), pinItem(3));
    EXPECT_FALSE(button().isEnabled());
}

TEST_F(PinPage, WhatThePinHoldsNowIsWhatOpens) {
    list().setCurrentItem(entryOf(1));
    unit().Set_GPIO_Param(1, 0, 1);  // and the page was not told
    button().click();
    settle();
    EXPECT_EQ(openTable(), "GPO1 Full Table - Table#1");
}

TEST_F(PinPage, TheButtonStandsOnThisPageAlone) {
    EXPECT_TRUE(button().isVisible());
    openPage("Rev Limiter");
    EXPECT_FALSE(button().isVisible());
    EXPECT_EQ(find<QLabel>("lblPageTitle")->text(), "Rev Limiter");
}

TEST_F(PinPage, GoesWithTheCalibration) {
    commands.files.close();
    settle();
    EXPECT_EQ(find<QTabWidget>("sstMenu")->currentIndex(), 0);
    EXPECT_FALSE(find<QTabWidget>("sstMenu")->isTabVisible(1));
    EXPECT_EQ(list().topLevelItemCount(), 0);
    EXPECT_FALSE(button().isEnabled());
}

TEST_F(PinPage, IsSpoken) {
    const auto said = [](QObject* object) {
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(object);
        return spoken == nullptr ? QString() : spoken->text(QAccessible::Name);
    };
    EXPECT_EQ(said(&button()), "Edit Table");
    QAccessibleInterface* rows = QAccessible::queryAccessibleInterface(&list());
    ASSERT_NE(rows, nullptr);
    QStringList cells;
    for (int i = 0; i < rows->childCount(); ++i) cells.append(rows->child(i)->text(QAccessible::Name));
    EXPECT_TRUE(cells.contains("2 (Output)             (pin W19)"));
    EXPECT_TRUE(cells.contains("Edit Table"));
    EXPECT_TRUE(cells.contains("Full Table - Table#2"));
}

}  // namespace
}  // namespace zentaq
