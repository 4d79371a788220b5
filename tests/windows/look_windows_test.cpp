// What lies above other things has an edge, and a selection follows the keyboard, in windows as the toolkit
// makes them.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStyleOptionFrame>
#include <QTabWidget>
#include <QVBoxLayout>

#include "qt/contrast.h"
#include "qt/icons.h"
#include "qt/look.h"

namespace zentaq {
namespace {

class LookOfWindows : public testing::TestWithParam<DisplayMode> {
 protected:
    LookOfWindows() : before_(appliedLook(*qApp)) { applyLook(*qApp, GetParam()); }
    ~LookOfWindows() override { applyLook(*qApp, before_); }

    const LookColors& look() const { return lookColors(GetParam()); }

    /// The line around the whole picture, in one colour.
    void expectEdge(const QImage& picture) const {
        const int right = picture.width() - 1;
        const int bottom = picture.height() - 1;
        for (int x = 0; x <= right; ++x) {
            ASSERT_EQ(picture.pixelColor(x, 0), look().edge) << x;
            ASSERT_EQ(picture.pixelColor(x, bottom), look().edge) << x;
        }
        for (int y = 0; y <= bottom; ++y) {
            ASSERT_EQ(picture.pixelColor(0, y), look().edge) << y;
            ASSERT_EQ(picture.pixelColor(right, y), look().edge) << y;
        }
    }

 private:
    DisplayMode before_;
};

TEST_P(LookOfWindows, AMenuHasAnEdge) {
    QMenu menu;
    menu.addAction("Save");
    menu.addSeparator();
    menu.addAction("Program")->setEnabled(false);
    menu.resize(menu.sizeHint());
    const QImage picture = menu.grab().toImage();
    expectEdge(picture);
    EXPECT_EQ(picture.pixelColor(picture.width() / 2, 1), look().surface);
}

TEST_P(LookOfWindows, TheLineBetweenTwoGroupsOfAMenuIsSeen) {
    QMenu menu;
    menu.addAction("Save");
    const QAction* line = menu.addSeparator();
    menu.addAction("Program");
    menu.resize(menu.sizeHint());
    const QImage picture = menu.grab().toImage();
    const QRect area = menu.actionGeometry(const_cast<QAction*>(line));
    int seen = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const QColor point = picture.pixelColor(area.center().x(), y);
        if (contrast(point, look().surface) < leastMarkContrast) continue;
        ++seen;
        const int from = area.width() / 4;
        for (int x = area.left() + from; x <= area.right() - from; ++x) {
            ASSERT_EQ(picture.pixelColor(x, y), point) << x;
        }
    }
    EXPECT_EQ(seen, 1);
}

// The toolkit draws it as it draws one under the pointer, dark on a dark selection.
TEST_P(LookOfWindows, TheIconOfAChosenEntryHasTheColourOfItsText) {
    QMenu menu;
    QAction* save = menu.addAction(icon("Save"), "");
    menu.resize(menu.sizeHint());
    menu.show();
    menu.setActiveAction(save);
    const QImage picture = menu.grab().toImage();
    const auto points = [&](const QColor& color) {
        int found = 0;
        for (int y = 2; y < picture.height() - 2; ++y) {
            for (int x = 2; x < picture.width() - 2; ++x) found += picture.pixelColor(x, y) == color ? 1 : 0;
        }
        return found;
    };
    EXPECT_GT(points(look().accent), points(look().surface));
    EXPECT_GT(points(look().accentText), 10);
    EXPECT_EQ(points(look().text), 0);
}

TEST_P(LookOfWindows, ABoxHasAnEdge) {
    QMessageBox box(QMessageBox::Question, "Save", "Save the changes?", QMessageBox::Yes | QMessageBox::No);
    box.ensurePolished();
    box.resize(box.sizeHint());
    expectEdge(box.grab().toImage());
}

TEST_P(LookOfWindows, ADialogInsideOfAWindowHasNone) {
    QWidget window;
    auto* inside = new QDialog(&window, Qt::Widget);
    inside->resize(60, 40);
    window.resize(100, 80);
    EXPECT_EQ(window.grab().toImage().pixelColor(0, 0), look().background);
}

TEST_P(LookOfWindows, ATipHasAnEdge) {
    QImage picture(80, 30, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    QStyleOptionFrame option;
    option.rect = picture.rect();
    QPainter painter(&picture);
    QApplication::style()->drawPrimitive(QStyle::PE_PanelTipLabel, &option, &painter);
    painter.end();
    expectEdge(picture);
    EXPECT_EQ(picture.pixelColor(40, 15), look().surface);
}

TEST_P(LookOfWindows, ASelectionRestsWhenTheKeyboardGoesElsewhere) {
    QWidget window;
    auto* column = new QVBoxLayout(&window);
    auto* list = new QListWidget;
    list->addItems({"", "", ""});
    list->setCurrentRow(1);
    auto* field = new QLineEdit;
    column->addWidget(list);
    column->addWidget(field);
    window.show();
    QApplication::setActiveWindow(&window);
    const auto chosen = [&] {
        const QPoint middle = list->visualItemRect(list->item(1)).center();
        return list->viewport()->grab().toImage().pixelColor(middle);
    };
    list->setFocus();
    ASSERT_TRUE(list->hasFocus());
    EXPECT_EQ(chosen(), look().accent);
    field->setFocus();
    EXPECT_EQ(chosen(), look().restingSelection);
    list->setFocus();
    EXPECT_EQ(chosen(), look().accent);
}

// An editor of a list is inside of it: the row that is being changed is no resting one.
TEST_P(LookOfWindows, ASelectionHasTheKeyboardWhileAnEditorInItDoes) {
    QListWidget list;
    auto* row = new QListWidgetItem("", &list);
    row->setFlags(row->flags() | Qt::ItemIsEditable);
    auto* other = new QListWidgetItem("", &list);
    list.setSelectionMode(QAbstractItemView::MultiSelection);
    list.show();
    QApplication::setActiveWindow(&list);
    list.setFocus();
    list.setCurrentItem(row);
    other->setSelected(true);
    list.editItem(row);
    ASSERT_FALSE(list.hasFocus());
    const QPoint middle = list.visualItemRect(other).center();
    EXPECT_EQ(list.viewport()->grab().toImage().pixelColor(middle), look().accent);
}

TEST_P(LookOfWindows, ATabBarShowsItsFocusOnTheTabInFront) {
    QTabWidget tabs;
    tabs.addTab(new QWidget, "Engine");
    tabs.addTab(new QWidget, "Sensors");
    tabs.resize(300, 100);
    tabs.show();
    QApplication::setActiveWindow(&tabs);
    const auto framed = [&](int tab) {
        const QRect area = tabs.tabBar()->tabRect(tab);
        const QImage picture = tabs.tabBar()->grab().toImage();
        int points = 0;
        // Below the bar that the tab in front has anyway.
        for (int y = area.top() + area.height() / 3; y < area.bottom(); ++y) {
            for (int x = area.left(); x < area.right(); ++x)
                points += picture.pixelColor(x, y) == look().focus ? 1 : 0;
        }
        return points;
    };
    tabs.tabBar()->clearFocus();
    EXPECT_EQ(framed(0), 0);
    tabs.tabBar()->setFocus();
    EXPECT_GT(framed(0), 50);
    EXPECT_EQ(framed(1), 0);
}

// A badge in alarm is as dark as the frame's own color.
TEST_P(LookOfWindows, AFrameIsSeenOnEveryGround) {
    for (const auto ground : {&LookColors::background, &LookColors::badge, &LookColors::goodBadge,
                              &LookColors::changedBadge, &LookColors::warningBadge, &LookColors::alarmBadge,
                              &LookColors::highlight, &LookColors::accent, &LookColors::redZone}) {
        QImage picture(80, 30, QImage::Format_RGB32);
        picture.fill(look().*ground);
        QStyleOptionFocusRect option;
        option.rect = picture.rect();
        option.backgroundColor = look().*ground;
        QPainter painter(&picture);
        QApplication::style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter);
        painter.end();
        EXPECT_GE(contrast(picture.pixelColor(40, 0), look().*ground), leastMarkContrast);
        EXPECT_EQ(picture.pixelColor(40, 15), look().*ground);
    }
}

// Once, not with the next events: a window that is made in between would take the colours of the former mode.
TEST_P(LookOfWindows, TheModeIsInForceAtOnce) {
    const DisplayMode other = GetParam() == DisplayMode::Day ? DisplayMode::Night : DisplayMode::Day;
    QListWidget list;
    list.show();
    applyLook(*qApp, other);
    EXPECT_EQ(list.palette().color(QPalette::Base), lookColors(other).surface);
    EXPECT_EQ(list.viewport()->palette().color(QPalette::Base), lookColors(other).surface);
    applyLook(*qApp, GetParam());
    EXPECT_EQ(list.viewport()->palette().color(QPalette::Base), look().surface);
}

TEST_P(LookOfWindows, NothingMovesThatTellsNothing) {
    EXPECT_EQ(QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration), 0);
    EXPECT_EQ(QApplication::cursorFlashTime(), 0);
    for (const auto effect : {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo, Qt::UI_FadeTooltip})
        EXPECT_FALSE(QApplication::isEffectEnabled(effect));
}

INSTANTIATE_TEST_SUITE_P(ByDayAndNight, LookOfWindows, testing::Values(DisplayMode::Day, DisplayMode::Night),
                         [](const auto& mode) { return mode.param == DisplayMode::Day ? "Day" : "Night"; });

}  // namespace
}  // namespace zentaq
