// What a screen reader finds in the windows, asked as it asks.
#include <QAccessible>
#include <QComboBox>
#include <QLabel>

#include "windows/window_fixture.h"
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
    static std::string place(const QWidget* widget) {
        QString path = widget->objectName();
        for (const QWidget* above = widget->parentWidget(); above != nullptr; above = above->parentWidget()) {
            if (!above->objectName().isEmpty()) path.prepend(above->objectName() + QLatin1Char('/'));
        }
        return path.toStdString() + " (" + widget->metaObject()->className() + ")";
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
            << place(widget);
    }
    EXPECT_GT(labels, 50);
}

TEST_F(SpokenWindows, EveryControlThatTakesTheKeyboardHasAName) {
    int controls = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().startsWith("qt_")) continue;
        if (qobject_cast<QLabel*>(widget) != nullptr || inComboBox(*widget)) continue;
        ++controls;
        EXPECT_FALSE(said(widget, QAccessible::Name).isEmpty()) << place(widget);
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

}  // namespace
}  // namespace zentaq
