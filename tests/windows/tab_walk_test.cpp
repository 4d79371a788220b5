// Every window by the keyboard alone: Tab reaches each control and is held by none, goes as the eye goes, and
// shows where it is.
#include "windows/tab_walk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include "qt/look.h"
#include "windows/every_window.h"
#include "windows/layout_faults.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// ---- The walk itself

class TabWalkTest : public testing::Test {
 protected:
    QWidget window;

    template <typename Control>
    Control* put(const char* name, const QRect& place) {
        auto* control = new Control(&window);
        control->setObjectName(name);
        control->setGeometry(place);
        return control;
    }
    void show() {
        window.resize(400, 300);
        window.show();
        window.activateWindow();
        for (int i = 0; i < 50 && !window.isActiveWindow(); ++i) QApplication::processEvents();
    }
};

TEST_F(TabWalkTest, GoesThroughEachControlOnceInBothDirections) {
    auto* one = put<QLineEdit>("txtOne", {10, 10, 100, 30});
    auto* two = put<QPushButton>("cmdTwo", {10, 50, 100, 30});
    auto* three = put<QPushButton>("cmdThree", {10, 90, 100, 30});
    show();
    one->setFocus();
    EXPECT_THAT(walkByTab(window).controls, ElementsAre(one, two, three));
    one->setFocus();
    EXPECT_THAT(walkByTab(window, true).controls, ElementsAre(one, three, two));
}

TEST_F(TabWalkTest, TellsAControlThatHoldsTheKey) {
    put<QPushButton>("cmdOne", {10, 10, 100, 30});
    auto* text = put<QPlainTextEdit>("txtHolding", {10, 50, 100, 60});
    show();
    EXPECT_EQ(walkByTab(window).holding, text);
    text->setTabChangesFocus(true);
    EXPECT_EQ(walkByTab(window).holding, nullptr);
}

TEST_F(TabWalkTest, LeavesOutWhatIsDisabledHiddenOrAnswersToArrows) {
    put<QPushButton>("cmdDisabled", {10, 10, 100, 30})->setEnabled(false);
    put<QPushButton>("cmdHidden", {10, 50, 100, 30})->hide();
    auto* chosen = put<QRadioButton>("optChosen", {10, 90, 100, 30});
    put<QRadioButton>("optOther", {10, 130, 100, 30});
    chosen->setChecked(true);
    show();
    EXPECT_THAT(tabControls(window), ElementsAre(chosen));
}

TEST_F(TabWalkTest, TellsAStepUpwardsInAColumnAndOneToTheLeftInARow) {
    auto* top = put<QPushButton>("cmdTop", {10, 10, 100, 30});
    auto* right = put<QPushButton>("cmdRight", {120, 10, 100, 30});
    auto* bottom = put<QPushButton>("cmdBottom", {10, 50, 100, 30});
    show();
    EXPECT_THAT(stepsAgainstTheEye({top, right, bottom}, window), IsEmpty());
    EXPECT_THAT(stepsAgainstTheEye({bottom, top, right}, window), IsEmpty()) << "a ring has no beginning";
    auto* last = put<QPushButton>("cmdLast", {10, 90, 100, 30});
    last->show();
    EXPECT_THAT(stepsAgainstTheEye({top, right, last, bottom}, window),
                ElementsAre(HasSubstr("cmdLast (QPushButton) at 10,90 to cmdBottom")));
    EXPECT_THAT(stepsAgainstTheEye({top, bottom, right, last}, window), IsEmpty()) << "to the next column";
}

TEST_F(TabWalkTest, AStepToTheNextColumnGoesWithTheEye) {
    auto* left = put<QPushButton>("cmdLeft", {10, 10, 100, 30});
    auto* below = put<QPushButton>("cmdBelow", {10, 200, 100, 30});
    auto* right = put<QPushButton>("cmdRight", {120, 10, 100, 30});
    auto* under = put<QPushButton>("cmdUnder", {120, 200, 100, 30});
    show();
    EXPECT_THAT(stepsAgainstTheEye({left, below, right, under}, window), IsEmpty());
}

/// Paints nothing of what it has.
class PlainArea : public QWidget {
 public:
    explicit PlainArea(QWidget* parent) : QWidget(parent) { setFocusPolicy(Qt::StrongFocus); }
};

TEST_F(TabWalkTest, AControlThatPaintsNoFocusIsTold) {
    auto* field = put<QLineEdit>("txtField", {10, 10, 100, 30});
    auto* area = put<PlainArea>("fraPlain", {10, 50, 100, 60});
    show();
    EXPECT_TRUE(showsFocus(*field));
    EXPECT_FALSE(showsFocus(*area));
}

// ---- The windows

class EveryWindowByTab : public EveryWindowTest, public testing::WithParamInterface<ShownWindow> {
 protected:
    static std::vector<std::string> missing(const std::vector<QWidget*>& wanted,
                                            const std::vector<QWidget*>& found) {
        std::vector<std::string> names;
        for (const QWidget* one : wanted) {
            if (std::find(found.begin(), found.end(), one) == found.end()) names.push_back(pathOf(*one));
        }
        return names;
    }
};

TEST_P(EveryWindowByTab, IsWalkedThroughWhole) {
    GetParam().show(*this, [](QWidget& window) {
        activate(window);
        ASSERT_TRUE(window.isVisible());
        if (tabControls(window).empty()) return;
        const TabWalk walk = walkByTab(window);
        const TabWalk back = walkByTab(window, true);
        const std::vector<QWidget*> wanted = tabControls(window);
        EXPECT_THAT(missing(wanted, walk.controls), IsEmpty()) << "by Tab";
        EXPECT_THAT(missing(wanted, back.controls), IsEmpty()) << "by Shift+Tab";
        for (const QWidget* holding : {walk.holding, back.holding}) {
            if (holding != nullptr) ADD_FAILURE() << pathOf(*holding) << " holds the key";
        }
    });
}

bool answersTheUser(const QWidget& one) {
    for (const char* kind : {"QAbstractButton", "QComboBox", "QLineEdit", "QAbstractSlider",
                             "QAbstractSpinBox", "QAbstractItemView", "QPlainTextEdit"}) {
        if (one.inherits(kind)) return true;
    }
    return false;
}

/// A bar that scrolls and a header follow the arrow keys of what they belong to; the buttons of the main tool
/// bar are entries of the menus.
bool hasKeysElsewhere(const QWidget& one) {
    return one.inherits("QScrollBar") || one.inherits("QHeaderView") ||
           one.parentWidget()->objectName() == QLatin1String("Toolbar1");
}

TEST_P(EveryWindowByTab, PassesNothingThatHasNoKeysElsewhere) {
    GetParam().show(*this, [](QWidget& window) {
        for (const QWidget* one : window.findChildren<QWidget*>()) {
            if (!answersTheUser(*one) || hasKeysElsewhere(*one) || isPartOfControl(*one)) continue;
            if (!one->isVisible() || !one->isEnabled()) continue;
            if ((one->focusPolicy() & Qt::TabFocus) != 0 || one->focusProxy() != nullptr) continue;
            ADD_FAILURE() << pathOf(*one);
        }
    });
}

TEST_P(EveryWindowByTab, GoesAsTheEyeGoes) {
    GetParam().show(*this, [](QWidget& window) {
        activate(window);
        if (tabControls(window).empty()) return;
        EXPECT_THAT(stepsAgainstTheEye(walkByTab(window).controls, window), IsEmpty());
    });
}

TEST_P(EveryWindowByTab, ShowsWhereItIsByDayAndByNight) {
    GetParam().show(*this, [](QWidget& window) {
        activate(window);
        if (tabControls(window).empty()) return;
        for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
            applyLook(*qApp, mode);
            QApplication::processEvents();
            for (QWidget* control : walkByTab(window).controls) {
                EXPECT_TRUE(showsFocus(*control))
                    << pathOf(*control) << (mode == DisplayMode::Day ? ", day" : "");
            }
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Every, EveryWindowByTab, testing::ValuesIn(everyWindow()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq
