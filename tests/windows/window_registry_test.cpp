#include "windows/window_registry.h"

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class Registry : public WindowTest {
 protected:
    static bool stands(std::string_view name) {
        return std::ranges::any_of(QApplication::allWidgets(), [&](const QWidget* widget) {
            return widget->objectName().toStdString() == name;
        });
    }
};

TEST_F(Registry, EveryRowMakesAWindowThatBearsItsName) {
    openCalibration();
    for (const WindowRow& row : windowRows()) {
        windows.open(row.name, row.name == window::table ? "VE" : "", "VE");
        EXPECT_TRUE(stands(row.name)) << row.name;
    }
}

TEST_F(Registry, EveryEntryOfTheMenusStandsInThemOnce) {
    for (const MenuEntry& entry : menuEntries()) {
        const QString name = QString::fromUtf8(entry.name.data(), static_cast<qsizetype>(entry.name.size()));
        const auto actions = windows.main().findChildren<QAction*>(name).size();
        const auto menus = windows.main().findChildren<QMenu*>(name).size();
        EXPECT_EQ(actions + menus, 1) << entry.name;
    }
}

TEST_F(Registry, AnEntryOpensAWindowThatThereIs) {
    for (const MenuEntry& entry : menuEntries()) {
        if (entry.window.empty()) continue;
        EXPECT_TRUE(std::ranges::any_of(windowRows(), [&](const WindowRow& row) {
            return row.name == entry.window;
        })) << entry.name;
    }
}

TEST_F(Registry, AnUnknownNameIsOpenedAndClosedWithoutEffect) {
    windows.open("frmNowhere");
    EXPECT_TRUE(windows.close("frmNowhere"));
}

}  // namespace
}  // namespace zentaq
