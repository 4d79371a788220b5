#include "windows/frm_edit_map_sensors.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <memory>

#include "app/sensor_fixture.h"
#include "qt/look.h"
#include "windows/key_press.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FrmEditMAPSensorsTest : public SensorSession {
 protected:
    std::unique_ptr<FrmEditMAPSensors> form;

    FrmEditMAPSensorsTest() { open(); }
    ~FrmEditMAPSensorsTest() override {
        form.reset();
        applyLook(*qApp, DisplayMode::Night);
    }

    void open() {
        form = std::make_unique<FrmEditMAPSensors>(session, nullptr);
        form->show();
        form->activateWindow();
        QApplication::processEvents();
    }
    template <typename Object>
    Object* find(const char* name) {
        Object* found = form->findChild<Object*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QListWidget* list() { return find<QListWidget>("lstMAPSensors"); }
    QLineEdit* box(int number) { return find<QLineEdit>(("txtPV_" + std::to_string(number)).c_str()); }
    QPushButton* button(const char* name) { return find<QPushButton>(name); }
    std::string general() { return find<QLabel>("lblGeneral")->text().toStdString(); }
    std::string status() { return find<QLabel>("lblStatus")->text().toStdString(); }
    SensorLinePicture* picture() { return find<SensorLinePicture>("picLine"); }
    std::vector<std::string> texts() {
        std::vector<std::string> all;
        for (int i = 0; i < sensorBoxes; ++i) all.push_back(box(i)->text().toStdString());
        return all;
    }

    static void pressTimes(int key, int times) {
        for (int i = 0; i < times; ++i) sendKey(key);
    }

    /// By keyboard: down the list to a sensor.
    void choose(const std::string& name) {
        list()->setFocus();
        sendKey(Qt::Key_Home);
        for (int i = 0; i < list()->count(); ++i) {
            if (list()->selectedItems().value(0) != nullptr &&
                list()->selectedItems().front()->text().toStdString() == name) {
                return;
            }
            sendKey(Qt::Key_Down);
        }
        FAIL() << name << " is not in the list";
    }
    void edit(const std::string& name) {
        choose(name);
        answer(Answer::Yes);
        sendKey(Qt::Key_Return);
        boxes().clear();
    }
    void createNew() {
        answer(Answer::Yes);
        button("cmdNew")->setFocus();
        sendKey(Qt::Key_Space);
        boxes().clear();
    }
    /// From the first box: the volts of a point, then its pressure.
    void goTo(SensorBox wanted) {
        constexpr std::array<int, sensorBoxes> tabs = {0, 2, 1, 3};
        pressTimes(Qt::Key_Tab, tabs[wanted]);
        ASSERT_EQ(focusName(), "txtPV_" + std::to_string(wanted));
    }
};

// ---- The form

TEST_F(FrmEditMAPSensorsTest, IsAWindowOfItsOwnWithItsTitle) {
    EXPECT_TRUE(form->isWindow());
    EXPECT_FALSE(form->isModal());
    EXPECT_EQ(form->objectName(), "frmEditMAPSensors");
    EXPECT_EQ(form->windowTitle(), "MAP Sensor Manager");
}

TEST_F(FrmEditMAPSensorsTest, HasTheToldControlsAndCaptions) {
    find<QTabWidget>("tabMAPSensors");
    const auto plain = [](const QString& text) { return QString(text).remove(u'&').toStdString(); };
    EXPECT_EQ(plain(find<QLabel>("lblInstalled")->text()), "Installed MAP Sensors:");
    EXPECT_EQ(find<QGroupBox>("fraInfo")->title(), "Sensor Info");
    EXPECT_EQ(plain(find<QLabel>("lblVolts")->text()), "Volts");
    EXPECT_EQ(plain(find<QLabel>("lblPressure")->text()), "Pressure");
    EXPECT_EQ(plain(button("cmdEdit")->text()), "Edit");
    EXPECT_EQ(plain(button("cmdNew")->text()), "Create New");
    EXPECT_EQ(plain(button("cmdSave")->text()), "Save Sensor");
    EXPECT_EQ(plain(button("cmdCancel")->text()), "Cancel");
    button("cmdRemove");
    button("cmdExit");
    std::vector<std::string> units;
    for (const char* name : {"optUnits_0", "optUnits_1", "optUnits_2", "optUnits_3", "optUnits_4"}) {
        units.push_back(plain(find<QRadioButton>(name)->text()));
    }
    EXPECT_THAT(units, ElementsAre("kPa", "mmHg", "PSIA", "inHg", "PSIG"));
}

TEST_F(FrmEditMAPSensorsTest, OpensWithTheListAndNothingSelected) {
    EXPECT_EQ(list()->count(), static_cast<int>(sensorCount()));
    EXPECT_THAT(list()->selectedItems(), IsEmpty());
    EXPECT_EQ(general(), "None Selected");
    EXPECT_EQ(focusName(), "lstMAPSensors");
}

TEST_F(FrmEditMAPSensorsTest, FitsASmallLaptop) {
    EXPECT_LE(form->minimumSizeHint().width(), 1366);
    EXPECT_LE(form->minimumSizeHint().height(), 700);
    EXPECT_LE(form->width(), 1366);
    EXPECT_LE(form->height(), 768);
}

TEST_F(FrmEditMAPSensorsTest, OnALowScreenTheEntryScrollsAndItsButtonsStayInSight) {
    form->resize(form->fontMetrics().averageCharWidth() * 70, form->fontMetrics().height() * 17);
    QApplication::processEvents();
    EXPECT_GT(form->findChild<QScrollArea*>("scrMAPSensors")->verticalScrollBar()->maximum(), 0);
    for (const char* name : {"cmdSave", "cmdCancel", "cmdExit"}) {
        EXPECT_EQ(button(name)->visibleRegion().boundingRect(), button(name)->rect()) << name;
    }
}

TEST_F(FrmEditMAPSensorsTest, EveryControlHasANameForAScreenReaderAndAKeyForTheHelp) {
    for (QWidget* control : form->findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus || control->objectName().startsWith("qt_")) continue;
        if (control->inherits("QTabBar")) continue;
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
    }
    const auto key = [](QWidget* control) { return control->property("fastHelpKey").toString(); };
    EXPECT_EQ(key(box(firstVolts)), "helpMAPvolts");
    EXPECT_EQ(key(box(secondVolts)), "helpMAPvolts");
    EXPECT_EQ(key(box(firstPressure)), "helpMAPpressure");
    EXPECT_EQ(key(box(secondPressure)), "helpMAPpressure");
    EXPECT_EQ(key(find<QRadioButton>("optUnits_3")), "helpMAPunits");
    EXPECT_EQ(key(list()), "helpMAPlist");
    EXPECT_EQ(key(form.get()), "helpMAPlist") << "what has no text of its own is about the list";
}

TEST_F(FrmEditMAPSensorsTest, EveryCommandAndFieldHasALetterOfItsOwn) {
    QSet<QChar> letters;
    const auto take = [&](const QString& caption, const QString& name) {
        const auto mark = caption.indexOf(u'&');
        ASSERT_GE(mark, 0) << name.toStdString();
        const QChar letter = caption.at(mark + 1).toLower();
        EXPECT_FALSE(letters.contains(letter)) << name.toStdString();
        letters.insert(letter);
    };
    for (const QAbstractButton* control : form->findChildren<QAbstractButton*>()) {
        if (!control->text().isEmpty()) take(control->text(), control->objectName());
    }
    for (const char* label : {"lblInstalled", "lblVolts", "lblPressure"}) {
        take(find<QLabel>(label)->text(), label);
        EXPECT_NE(find<QLabel>(label)->buddy(), nullptr);
    }
}

// ---- The list by keyboard

TEST_F(FrmEditMAPSensorsTest, TheFirstArrowSelectsTheFirstSensor) {
    sendKey(Qt::Key_Down);
    EXPECT_EQ(list()->selectedItems().front()->text().toStdString(), oneBar);
    EXPECT_EQ(general(), "Range:\n10 - 105\nUnits: kPa");
    sendKey(Qt::Key_Down);
    EXPECT_EQ(general(), "Range:\n9 - 208\nUnits: kPa");
}

TEST_F(FrmEditMAPSensorsTest, DeleteAsksAndRemoves) {
    choose(oneBar);
    answer(Answer::Yes);
    sendKey(Qt::Key_Delete);
    EXPECT_EQ(lastBox().text, "Remove 1 BAR (10-105 kPa)?");
    EXPECT_FALSE(isStored(oneBar));
    EXPECT_EQ(list()->count(), static_cast<int>(sensorCount()));
    EXPECT_EQ(general(), "None Selected");
    EXPECT_EQ(focusName(), "lstMAPSensors");
}

TEST_F(FrmEditMAPSensorsTest, EnterEditsTheSelectedSensor) {
    edit(sharp);
    EXPECT_THAT(texts(), ElementsAre("0.5", "4.5", "35", "235"));
    EXPECT_EQ(focusName(), "txtPV_0");
    EXPECT_EQ(box(0)->selectedText(), "0.5");
    EXPECT_TRUE(find<QRadioButton>("optUnits_0")->isChecked());
    EXPECT_FALSE(list()->isEnabled());
    EXPECT_EQ(status(), "Editing Sharp (kPa).");
}

TEST_F(FrmEditMAPSensorsTest, TabGoesFromPointToPointThenToTheUnitThenToSave) {
    edit(sharp);
    std::vector<std::string> visited;
    for (int i = 0; i < 7; ++i) {
        visited.push_back(focusName());
        sendKey(Qt::Key_Tab);
    }
    EXPECT_THAT(visited, ElementsAre("txtPV_0", "txtPV_2", "txtPV_1", "txtPV_3", "optUnits_0", "cmdSave",
                                     "cmdCancel"));
}

TEST_F(FrmEditMAPSensorsTest, EscapeEndsAnEntryAndThenTheForm) {
    int closings = 0;
    form->onClosed([&] { ++closings; });
    edit(sharp);
    typeInstead("1");
    sendKey(Qt::Key_Escape);
    EXPECT_EQ(closings, 0);
    EXPECT_THAT(texts(), ElementsAre("", "", "", ""));
    EXPECT_EQ(focusName(), "lstMAPSensors");
    EXPECT_FLOAT_EQ(stored(sharp).scale, 0.02F);
    sendKey(Qt::Key_Escape);
    EXPECT_EQ(closings, 1);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(FrmEditMAPSensorsTest, ClosingKeepsThePlaceOfTheForm) {
    form->resize(form->width(), form->minimumSizeHint().height() + 30);
    const int height = form->height();
    button("cmdExit")->setFocus();
    sendKey(Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    open();
    EXPECT_EQ(form->height(), height);
}

TEST_F(FrmEditMAPSensorsTest, ALongNameTakesASecondLineAndIsNotCut) {
    const std::string name =
        "1 Bar Gauge, 0.5-4.5 V from -14.7 to 15 PSIG, off the shelf number 1234567 (PSIG)";
    MapSensorRow row;
    row.description = name;
    row.scale = 0.1F;
    row.offset = 1.1F;
    row.units = 3;
    session.database->addMapSensor(row);
    form->sensorsChanged();
    QListWidget* shown = list();
    const auto found = shown->findItems(QString::fromStdString(name), Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1);
    const int oneLine = shown->visualItemRect(shown->item(0)).height();
    form->resize(form->minimumSizeHint());
    shown->scrollToItem(found.front());
    EXPECT_GE(shown->visualItemRect(found.front()).height(), 2 * shown->fontMetrics().height());
    EXPECT_LT(oneLine, 2 * shown->fontMetrics().height());
    EXPECT_LE(shown->visualItemRect(found.front()).right(), shown->viewport()->width());
    EXPECT_EQ(shown->horizontalScrollBar()->maximum(), 0);
}

// ---- A new sensor by keyboard

TEST_F(FrmEditMAPSensorsTest, ANewSensorIsTypedAndSavedWithoutAMouse) {
    createNew();
    EXPECT_EQ(focusName(), "txtPV_0");
    typeInstead("0.5");
    sendKey(Qt::Key_Tab);
    typeInstead("20");
    sendKey(Qt::Key_Tab);
    typeInstead("4.5");
    sendKey(Qt::Key_Tab);
    typeInstead("250");
    sendKey(Qt::Key_Tab);
    pressTimes(Qt::Key_Right, 2);  // from kPa over mmHg to PSIA
    EXPECT_EQ(focusName(), "optUnits_2");
    type("Bob's turbo");
    sendKey(Qt::Key_Return);
    const MapSensorRow row = stored("Bob's turbo (PSIA)");
    EXPECT_FLOAT_EQ(row.scale, 4.0F / 230.0F);
    EXPECT_FLOAT_EQ(row.offset, 35.0F / 230.0F);
    EXPECT_EQ(row.units, 2);
    EXPECT_EQ(list()->selectedItems().front()->text(), "Bob's turbo (PSIA)");
    EXPECT_EQ(general(), "Range:\n-9 - 279\nUnits: PSIA");
    EXPECT_EQ(status(), "Saved: Bob's turbo (PSIA)");
    EXPECT_EQ(focusName(), "lstMAPSensors");
    EXPECT_EQ(sensorChanges(), 1);
}

TEST_F(FrmEditMAPSensorsTest, ACancelledNameKeepsWhatWasTyped) {
    createNew();
    for (const auto& [number, text] : {std::pair{firstVolts, "0.5"}, std::pair{firstPressure, "20"},
                                       std::pair{secondVolts, "4.5"}, std::pair{secondPressure, "250"}}) {
        box(number)->setText(text);
    }
    type("");
    sendKey(Qt::Key_Return);
    EXPECT_THAT(texts(), ElementsAre("0.5", "4.5", "20", "250"));
    EXPECT_TRUE(box(0)->isEnabled());
}

// ---- Each box: what is typed, and what comes of it

struct BoxCase {
    const char* name;
    SensorBox box;
    const char* typed;
    const char* title;  ///< of the box that tells; "" when the entry is saved
    const char* text;
    float scale;  ///< stored
    const char* focus;
};

void PrintTo(const BoxCase& row, std::ostream* out) {
    *out << row.name;
}

class EntryOfOneBox : public FrmEditMAPSensorsTest, public testing::WithParamInterface<BoxCase> {};

// The other boxes hold 0.5 V at 35 kPa and 4.5 V at 235 kPa; slope 4 / 200 as stored.
TEST_P(EntryOfOneBox, IsStoredOrToldAndTheBoxAtFaultHasTheFocus) {
    const BoxCase& row = GetParam();
    edit(sharp);
    goTo(row.box);
    typeInstead(row.typed);
    sendKey(Qt::Key_Return);
    EXPECT_EQ(lastBox().title, row.title);
    EXPECT_EQ(lastBox().text, row.text);
    EXPECT_FLOAT_EQ(stored(sharp).scale, row.scale);
    EXPECT_EQ(focusName(), row.focus);
}

constexpr auto lst = "lstMAPSensors";
constexpr auto badEntry = "Invalid entry";
constexpr auto badRange = "Entry out of Range";
constexpr auto badOrder = "Entry out of Order";
constexpr float kept = 0.02F;

INSTANTIATE_TEST_SUITE_P(
    Fields, EntryOfOneBox,
    testing::Values(
        BoxCase{"FirstVoltsTaken", firstVolts, "1", "", "", 3.5F / 200, lst},
        BoxCase{"FirstVoltsRefused", firstVolts, "-0.1", badRange, "-0.1 is out of range.  Must be 0 - 5v",
                kept, "txtPV_0"},
        BoxCase{"SecondVoltsTakenWithAComma", secondVolts, "4,7", "", "", 4.2F / 200, lst},
        BoxCase{"SecondVoltsRefused", secondVolts, "five", badEntry, "five not a valid number", kept,
                "txtPV_1"},
        BoxCase{"FirstVoltsEqualToTheSecond", firstVolts, "4.5", badEntry,
                "Both volts are the same, so the sensor has no slope.\nPlease enter two different volts.",
                kept, "txtPV_1"},
        BoxCase{"FirstPressureTaken", firstPressure, "-100", "", "", 4.0F / 335, lst},
        BoxCase{"FirstPressureRefused", firstPressure, "300", badOrder,
                "300 Must be smaller than 235\nPlease rearrange your entries.", kept, "txtPV_2"},
        BoxCase{"SecondPressureTaken", secondPressure, "435", "", "", 4.0F / 400, lst},
        BoxCase{"SecondPressureRefused", secondPressure, "", badEntry, " not a valid number", kept,
                "txtPV_3"}),
    [](const auto& given) { return std::string(given.param.name); });

// ---- What can work now

TEST_F(FrmEditMAPSensorsTest, ButtonsThatCannotWorkSayWhy) {
    EXPECT_FALSE(button("cmdEdit")->isEnabled());
    EXPECT_EQ(button("cmdEdit")->toolTip(), "Choose a sensor in the list first.");
    EXPECT_FALSE(button("cmdRemove")->isEnabled());
    EXPECT_FALSE(button("cmdSave")->isEnabled());
    EXPECT_EQ(button("cmdSave")->toolTip(), "Choose Edit or Create New first.");
    EXPECT_TRUE(button("cmdNew")->isEnabled());
    EXPECT_EQ(button("cmdNew")->toolTip(), "");
    edit(sharp);
    EXPECT_FALSE(button("cmdNew")->isEnabled());
    EXPECT_EQ(button("cmdNew")->toolTip(), "Save or cancel the sensor in hand first.");
    EXPECT_TRUE(button("cmdSave")->isEnabled());
    EXPECT_TRUE(button("cmdCancel")->isEnabled());
}

TEST_F(FrmEditMAPSensorsTest, WithoutADatabaseNothingCanBeStartedAndTheFormSaysSo) {
    session.database.reset();
    open();
    EXPECT_EQ(list()->count(), 0);
    for (const char* name : {"cmdEdit", "cmdNew", "cmdRemove", "cmdSave"}) {
        EXPECT_FALSE(button(name)->isEnabled()) << name;
        EXPECT_EQ(button(name)->toolTip(), "The reference database could not be opened.");
    }
    EXPECT_EQ(status(), "The reference database could not be opened.");
    sendKey(Qt::Key_Down);
    sendKey(Qt::Key_Delete);
    sendKey(Qt::Key_Return);
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(FrmEditMAPSensorsTest, AListThatWasLockedComesBackWithTheWindow) {
    {
        const WritingProgram other(path);
        open();
        EXPECT_EQ(list()->count(), 0);
        EXPECT_NE(status(), "");
    }
    QWidget other;
    other.show();
    other.activateWindow();
    QApplication::processEvents();
    form->activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(list()->count(), static_cast<int>(sensorCount()));
    EXPECT_EQ(status(), "");
}

TEST_F(FrmEditMAPSensorsTest, ASensorAddedElsewhereAppearsAndWhatIsTypedStays) {
    edit(sharp);
    typeInstead("1.25");
    add("Elsewhere (kPa)", 0.03F, 0.1F, 1);
    form->sensorsChanged();
    EXPECT_EQ(list()->count(), static_cast<int>(sensorCount()));
    EXPECT_EQ(box(0)->text(), "1.25");
    sendKey(Qt::Key_Return);
    EXPECT_FLOAT_EQ(stored(sharp).scale, 3.25F / 200);
}

// ---- The picture

/// The edges of a line are mixed with what lies under it.
bool nearly(const QColor& seen, const QColor& wanted) {
    constexpr int mixed = 12;
    return std::abs(seen.red() - wanted.red()) <= mixed && std::abs(seen.green() - wanted.green()) <= mixed &&
           std::abs(seen.blue() - wanted.blue()) <= mixed;
}

/// At the point or right beside it: where the line falls between two points is the picture's size.
bool nearlyAround(const QImage& picture, const QPoint& point, const QColor& wanted) {
    for (int dx = -1; dx <= 1; ++dx) {
        for (int dy = -1; dy <= 1; ++dy) {
            if (nearly(picture.pixelColor(point + QPoint(dx, dy)), wanted)) return true;
        }
    }
    return false;
}

TEST_F(FrmEditMAPSensorsTest, ThePictureFollowsTheTyping) {
    edit(sharp);
    EXPECT_TRUE(picture()->sketch().drawn);
    EXPECT_EQ(picture()->accessibleDescription(),
              "Line from 10 kPa at 0 V to 260 kPa at 5 V, through 0.5 V at 35 kPa and 4.5 V at 235 kPa.");
    typeInstead("9");
    EXPECT_FALSE(picture()->sketch().drawn);
    EXPECT_EQ(picture()->accessibleDescription(),
              "No line. Low point volts: 9 is out of range.  Must be 0 - 5v");
    typeInstead("0");
    EXPECT_TRUE(picture()->sketch().drawn);
}

TEST_F(FrmEditMAPSensorsTest, ThePictureTakesTheChosenUnit) {
    edit(sharp);
    find<QRadioButton>("optUnits_2")->click();
    EXPECT_EQ(picture()->sketch().unit, "PSIA");
}

TEST_F(FrmEditMAPSensorsTest, TheLineIsDrawnByDayAndByNightAndOnlyForAGoodEntry) {
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        applyLook(*qApp, mode);
        choose(sharp);
        const QImage good = picture()->grab().toImage();
        const QPoint middle = picture()->place(2.5, 135).toPoint();  // half way between 10 and 260
        EXPECT_TRUE(nearlyAround(good, middle, lookColors(mode).accent));
        EXPECT_EQ(good.pixelColor(2, 2), lookColors(mode).surface);
        edit(sharp);
        typeInstead("");
        const QImage bad = picture()->grab().toImage();
        for (int x = 0; x < bad.width(); ++x) {
            ASSERT_FALSE(nearly(bad.pixelColor(x, middle.y()), lookColors(mode).accent)) << x;
        }
        sendKey(Qt::Key_Escape);
    }
}

TEST_F(FrmEditMAPSensorsTest, ThePointsOfAnEntryAreMarked) {
    edit(sharp);
    const QImage image = picture()->grab().toImage();
    const QColor marker = lookColors(DisplayMode::Night).liveMarker;
    EXPECT_EQ(image.pixelColor(picture()->place(0.5, 35).toPoint()), marker);
    EXPECT_EQ(image.pixelColor(picture()->place(4.5, 235).toPoint()), marker);
}

TEST_F(FrmEditMAPSensorsTest, ANameIsShownEscapedAndUsedAsItIs) {
    const std::string odd = "Turbo\x1B[31m\n<b>\xE2\x80\xAE";
    const std::string shown = "Turbo\\x1B[31m\\n<b>\\u{202E}";
    add(odd, 0.03F, -0.3F, 1);
    form->sensorsChanged();
    choose(shown);
    EXPECT_FALSE(general().empty());
    EXPECT_FALSE(picture()->accessibleDescription().contains(u'\x1B'));
    edit(shown);
    EXPECT_EQ(status().find('\x1B'), std::string::npos) << status();
    typeInstead("0.5");
    answer(Answer::Yes);
    button("cmdSave")->click();
    EXPECT_TRUE(boxes().empty()) << boxes().back().text;
    EXPECT_TRUE(isStored(odd)) << "the stored name stays";
    EXPECT_EQ(status(), "Saved: " + shown);
    fake.dialogs.answers.push_back(Answer::Yes);
    choose(shown);
    button("cmdRemove")->click();
    EXPECT_FALSE(isStored(odd));
    EXPECT_EQ(status(), "Removed: " + shown);
}

}  // namespace
}  // namespace zentaq
