// What a screen reader finds in the windows, asked as it asks.
#include <QAccessible>
#include <QComboBox>
#include <QLabel>

#include "windows/every_window.h"
#include "windows/layout_faults.h"
#include "windows/window_registry.h"

namespace zentaq {
namespace {

class SpokenWindows : public WindowTest {
 protected:
    SpokenWindows() {
        openCalibration();
        for (const WindowRow& row : windowRows()) {
            windows.open(row.name, row.name == window::table ? "VE" : "", "VE");
        }
        QApplication::processEvents();
    }

    static QString said(QObject* object, QAccessible::Text which) {
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(object);
        return spoken == nullptr ? QString() : spoken->text(which);
    }
    /// Its list and its field, which are said by its own name.
    static bool inComboBox(const QWidget& widget) {
        for (const QWidget* above = widget.parentWidget(); above != nullptr; above = above->parentWidget()) {
            if (qobject_cast<const QComboBox*>(above) != nullptr) return true;
        }
        return false;
    }
};

TEST_F(SpokenWindows, EveryLabelIsSaidAsItStands) {
    int labels = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        const auto* label = qobject_cast<QLabel*>(widget);
        if (label == nullptr || label->text().isEmpty()) continue;
        ++labels;
        EXPECT_EQ(said(widget, QAccessible::Name).toStdString(),
                  QString(label->text()).remove(u'&').toStdString())
            << pathOf(*widget);
    }
    EXPECT_GT(labels, 50);
}

TEST_F(SpokenWindows, EveryControlThatTakesTheKeyboardHasAName) {
    int controls = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().startsWith("qt_")) continue;
        if (qobject_cast<QLabel*>(widget) != nullptr || inComboBox(*widget)) continue;
        ++controls;
        EXPECT_FALSE(said(widget, QAccessible::Name).isEmpty()) << pathOf(*widget);
    }
    EXPECT_GT(controls, 80);
}

TEST_F(SpokenWindows, AStateIsSaidWithItsMeaningAndAnewWhenItChanges) {
    openCalibration();
    auto* state = find<StripButton>("StatusBar1_Panel2");
    fake.session.currentUnitObject().ONFLY_MODE(true);
    windows.main().refresh();
    EXPECT_EQ(said(state, QAccessible::Name), "ONFLY");
    EXPECT_EQ(said(state, QAccessible::Description),
              "On the fly: changes act on the running engine at once. Press to read what that means.");
    fake.session.currentUnitObject().ONFLY_MODE(false);
    windows.main().refresh();
    EXPECT_EQ(said(state, QAccessible::Name), "");
    EXPECT_FALSE(state->isVisible());
}

TEST_F(SpokenWindows, TheFrameIsCalledByItsFile) {
    EXPECT_THAT(said(&windows.main(), QAccessible::Name).toStdString(), testing::HasSubstr("tune.ZQ4OA"));
    commands.files.close();
    EXPECT_EQ(said(&windows.main(), QAccessible::Name), "Norvalia Zentaq Engine Management System");
}

// ---- Every window as a listener goes through it

/// What stands in a window, from the window itself to the parts that have none below them.
class Listener {
 public:
    explicit Listener(QWidget& window) { hear(QAccessible::queryAccessibleInterface(&window)); }

    const std::vector<QAccessibleInterface*>& all() const { return heard_; }

 private:
    /// Cells and scroll bars are the toolkit's; an entry of a list is called by its text.
    static bool isEntry(QAccessible::Role role) {
        return role == QAccessible::Cell || role == QAccessible::ListItem || role == QAccessible::TreeItem ||
               role == QAccessible::ScrollBar || role == QAccessible::ColumnHeader ||
               role == QAccessible::RowHeader;
    }
    void hear(QAccessibleInterface* one) {
        if (one == nullptr || one->state().invisible || isEntry(one->role())) return;
        heard_.push_back(one);
        if (one->role() == QAccessible::ComboBox) return;  // its list and its field are said by its own name
        for (int i = 0; i < one->childCount(); ++i) {
            if (QAccessibleInterface* child = one->child(i); child != nullptr && !isWindow(*child))
                hear(child);
        }
    }
    static bool isWindow(const QAccessibleInterface& one) {
        const auto* widget = qobject_cast<QWidget*>(one.object());
        return widget != nullptr && widget->isWindow();
    }

    std::vector<QAccessibleInterface*> heard_;
};

class EverySpokenWindow : public EveryWindowTest, public testing::WithParamInterface<ShownWindow> {
 protected:
    /// A field with a list says its text as its name, and is called by its label.
    static std::string nameOf(QAccessibleInterface& one) {
        const auto* widget = qobject_cast<QWidget*>(one.object());
        if (one.role() == QAccessible::ComboBox && widget != nullptr &&
            !one.relations(QAccessible::Label).empty())
            return widget->accessibleName().toStdString();
        return one.text(QAccessible::Name).toStdString();
    }
    static std::string placeOf(QAccessibleInterface& one) {
        const auto* widget = qobject_cast<QWidget*>(one.object());
        const std::string role = ", role " + std::to_string(one.role()) + ", \"" + nameOf(one) + '"';
        return (widget == nullptr ? std::string("no widget") : pathOf(*widget)) + role;
    }
    static bool hasValue(QAccessibleInterface& one) {
        if (!one.text(QAccessible::Value).isEmpty()) return true;
        QAccessibleValueInterface* value = one.valueInterface();
        return value != nullptr && value->currentValue().isValid();
    }
    static bool isPressed(QAccessible::Role role) {
        return role == QAccessible::Button || role == QAccessible::CheckBox ||
               role == QAccessible::RadioButton || role == QAccessible::ButtonMenu ||
               role == QAccessible::ButtonDropDown;
    }
    static bool tellsValue(QAccessible::Role role) {
        return role == QAccessible::Dial || role == QAccessible::Indicator || role == QAccessible::Slider ||
               role == QAccessible::ProgressBar || role == QAccessible::SpinBox;
    }
};

TEST_P(EverySpokenWindow, HasANameOfItsOwnAndNamedToolBars) {
    GetParam().show(*this, [](QWidget& window) {
        EXPECT_NE(nameOf(*QAccessible::queryAccessibleInterface(&window)), "");
        const Listener listener(window);
        for (QAccessibleInterface* one : listener.all()) {
            if (one->role() != QAccessible::ToolBar) continue;
            EXPECT_NE(nameOf(*one), "") << placeOf(*one);
            EXPECT_NE(nameOf(*one), "Toolbar") << placeOf(*one) << ": which one?";
        }
    });
}

TEST_P(EverySpokenWindow, NamesWhatTakesTheKeyboardAndSaysTheValueOfWhatShowsOne) {
    GetParam().show(*this, [](QWidget& window) {
        const Listener listener(window);
        for (QAccessibleInterface* one : listener.all()) {
            const bool shows = tellsValue(one->role());
            const bool acts = shows || isPressed(one->role()) || one->state().focusable;
            EXPECT_TRUE(nameOf(*one) != "" || !acts) << placeOf(*one);
            EXPECT_TRUE(!shows || hasValue(*one)) << placeOf(*one);
        }
    });
}

TEST_P(EverySpokenWindow, SaysEachLabelAsItStands) {
    GetParam().show(*this, [](QWidget& window) {
        for (const QLabel* label : window.findChildren<QLabel*>()) {
            if (label->text().isEmpty() || !label->isVisible()) continue;
            EXPECT_EQ(QAccessible::queryAccessibleInterface(const_cast<QLabel*>(label))
                          ->text(QAccessible::Name)
                          .toStdString(),
                      QString(label->text()).remove(u'&').toStdString())
                << pathOf(*label);
        }
    });
}

TEST_P(EverySpokenWindow, HasNoTwoControlsThatSoundTheSame) {
    GetParam().show(*this, [](QWidget& window) {
        std::map<std::pair<int, std::string>, QAccessibleInterface*> heard;
        const Listener listener(window);
        for (QAccessibleInterface* one : listener.all()) {
            if (!one->state().focusable) continue;
            const auto [former, isNew] = heard.insert({{one->role(), nameOf(*one)}, one});
            EXPECT_TRUE(isNew) << placeOf(*one) << " and " << placeOf(*former->second);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Every, EverySpokenWindow, testing::ValuesIn(everyWindow()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq
