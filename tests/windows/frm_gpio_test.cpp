#include "windows/frm_gpio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTabWidget>

#include "unit/gpio_functions.h"
#include "windows/key_press.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;

class GpioWindow : public TableWindowsTest {
 protected:
    GpioWindow() {
        // A calibration of zeros: rows of a sensor need one.
        unit().FW_Release(5);
        openManager();
    }
    void openManager() {
        auto* tree = find<QTreeWidget>("treeZentaq");
        const auto items =
            tree->findItems("General Purpose Input/Output", Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(items.size(), 1);
        Q_EMIT tree->itemActivated(items[0], 0);
        settle();
    }
    FrmGpio* manager() { return windows.form<FrmGpio>(); }
    QListWidget& pins() { return *manager()->findChild<QListWidget*>("lstGPIO_Menu"); }
    QComboBox& functions() { return *manager()->findChild<QComboBox*>("cmbGPIO"); }
    QTableWidget& rows() { return *manager()->findChild<QTableWidget*>("lstGPIO"); }
    EntryBox& box() { return *manager()->findChild<EntryBox*>("txtGPIOParam"); }
    void choose(const QString& function) {
        const int index = functions().findText(function);
        ASSERT_GE(index, 0) << function.toStdString();
        functions().setCurrentIndex(index);
        Q_EMIT functions().activated(index);
        settle();
    }
    void press(int row, int key = Qt::Key_Return, const QString& text = {}) {
        rows().setFocus();
        rows().setCurrentCell(row, 1);
        keyTo(rows(), key, text);
        settle();
    }
    void type(const QString& text) {
        box().setText(text);
        keyTo(box(), Qt::Key_Return);
        settle();
    }
    std::string openTable() {
        return windows.table() == nullptr ? ""
                                          : windows.table()->tableName() + " " + windows.table()->title();
    }
    QString text(int row, int column) { return rows().item(row, column)->text(); }
};

TEST_F(GpioWindow, ListsThePinsAndTheFunctionsOfTheFirstOne) {
    ASSERT_NE(manager(), nullptr);
    EXPECT_EQ(pins().count(), 8);
    EXPECT_EQ(pins().item(0)->text(), "1 (Output)             (pin W18)");
    EXPECT_EQ(pins().currentRow(), 0);
    EXPECT_EQ(functions().currentText(), "DISABLED");
    EXPECT_EQ(text(0, 0), "No Options to Configure");
    EXPECT_EQ(find<QTabWidget>("sstMenu")->currentWidget(), manager());
}

TEST_F(GpioWindow, AnotherFunctionClearsTheParametersOfItsPin) {
    choose("Shift Light");
    EXPECT_EQ(unit().Get_GPIOFUNC(0), 6);
    press(0);
    type("6200");
    EXPECT_EQ(unit().Get_GPIO_Param(0, 0), 6200);
    EXPECT_EQ(text(0, 1), "6200");
    EXPECT_EQ(text(0, 2), "RPM");
    EXPECT_EQ(text(0, 3), "0 to 20000 RPM");
    EXPECT_TRUE(fake.session.DataModified);
    choose("Nitrous Control");
    for (int i = 0; i < 8; ++i) EXPECT_EQ(unit().Get_GPIO_Param(0, i), 0) << i;
}

TEST_F(GpioWindow, WhileTheUnitTakesChangesAFunctionStays) {
    choose("Shift Light");
    unit().ONFLY_MODE(true);
    choose("Nitrous Control");
    EXPECT_EQ(lastBox().title, "Unit Connected");
    EXPECT_EQ(
        lastBox().text,
        "GPIO function cannot be changed ONFLY.\nPlease turn the unit off or disconnect the serial cable.");
    EXPECT_EQ(unit().Get_GPIOFUNC(0), 6);
    EXPECT_EQ(functions().currentText(), "Shift Light");
}

TEST_F(GpioWindow, AValueOutsideItsLimitsStaysAsItWas) {
    choose("Shift Light");
    press(0);
    type("20001");
    EXPECT_THAT(lastBox().text, HasSubstr("(0 to 20000 RPM)"));
    EXPECT_EQ(text(0, 1), "0");
    EXPECT_TRUE(box().isVisible());
    fake.dialogs.boxes.clear();
    keyTo(box(), Qt::Key_Escape);
    EXPECT_FALSE(box().isVisible());
    EXPECT_TRUE(rows().hasFocus());
}

TEST_F(GpioWindow, AnInputFunctionIsOfferedToOnePinOnly) {
    pins().setCurrentRow(4);
    choose("Fuel Trim");
    EXPECT_GE(functions().findText("Fuel Trim"), 0);
    pins().setCurrentRow(5);
    EXPECT_EQ(functions().findText("Fuel Trim"), -1);
}

TEST_F(GpioWindow, AStoredCodeThatTheListLacksLeavesItWithoutASelection) {
    unit().Set_GPIO_Func(0, 12);  // an input's function on an output
    windows.showUnit();
    EXPECT_EQ(functions().currentIndex(), -1);
}

TEST_F(GpioWindow, EditTableOpensTheTableOfItsNumberAndNoOther) {
    pins().setCurrentRow(1);
    choose("Full Table (PWM)");
    press(2);
    EXPECT_EQ(openTable(), "") << "number 0 is no table";
    press(1);
    type("2");
    press(2);
    EXPECT_EQ(openTable(), "GPO2 Full Table - Table#2");
    EXPECT_EQ(find<QTabWidget>("sstMenu")->currentWidget(), windows.table());
    EXPECT_NE(find<QTabWidget>("sstMenu")->indexOf(manager()), -1) << "both keep their places";
}

TEST_F(GpioWindow, WithoutAUnitThereIsNoDatalogToRetrieve) {
    pins().setCurrentRow(4);
    choose("Datalog Enable");
    press(2);
    EXPECT_EQ(lastBox().text, "No Unit Connected.");
}

TEST_F(GpioWindow, ADigitBeginsTheEntryAndWhatIsTypedComesBeforeACommand) {
    choose("Shift Light");
    press(0, Qt::Key_5, "5");
    ASSERT_TRUE(box().isVisible());
    EXPECT_EQ(box().text(), "5");
    box().setText("5500");
    windows.afterEdits("Save", [] {});
    EXPECT_EQ(unit().Get_GPIO_Param(0, 0), 5500);
}

TEST_F(GpioWindow, PulsesAMileFollowTireAxleAndSensorUntilTheyAreEntered) {
    pins().setCurrentRow(6);
    choose("Speed Input 1");
    const double turnsAMile = 63360 / (25 * 3.14159265358979);
    press(0);
    type("25");
    press(1);
    type("4");
    press(2);
    type("8");
    EXPECT_NEAR(text(3, 1).toDouble(), turnsAMile * 4 * 8, 1);
    press(3);
    type("20000");
    EXPECT_EQ(text(3, 1), "20000");
}

TEST_F(GpioWindow, GoesIntoAWindowOfItsOwnAndBack) {
    auto* docking = manager()->findChild<QAction*>("Docking");
    EXPECT_EQ(docking->text(), "Undock");
    docking->trigger();
    settle();
    EXPECT_TRUE(manager()->isWindow());
    EXPECT_EQ(manager()->windowTitle(), "GPIO Manager");
    EXPECT_EQ(docking->text(), "Dock ");
    docking->trigger();
    settle();
    EXPECT_FALSE(manager()->isWindow());
}

TEST_F(GpioWindow, PrintingAsksFirst) {
    int printed = 0;
    manager()->print = [&] { ++printed; };
    auto* key = manager()->findChild<QAction*>("Print");
    fake.dialogs.answers.push_back(Answer::No);
    key->trigger();
    EXPECT_EQ(printed, 0);
    fake.dialogs.answers.push_back(Answer::Yes);
    key->trigger();
    EXPECT_EQ(printed, 1);
}

TEST_F(GpioWindow, GoesWithTheCalibrationAndIsLogged) {
    commands.files.close();
    settle();
    EXPECT_EQ(manager(), nullptr);
    const auto& lines = fake.session.console.lines();
    EXPECT_THAT(lines, testing::Contains(HasSubstr("GPIO Manager App. Loaded.")));
    EXPECT_THAT(lines, testing::Contains(HasSubstr("GPIO Manager App. Terminated.")));
}

}  // namespace
}  // namespace zentaq
