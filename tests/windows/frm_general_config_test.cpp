// frmGeneralConfig as a window: its life, its keys, what it stores and what it drops.
#include <QAction>
#include <QScrollBar>
#include <QWheelEvent>
#include <filesystem>
#include <fstream>

#include "qt/look.h"
#include "windows/frm_general_config_fixture.h"

namespace zentaq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class General : public GeneralWindow {
 protected:
    std::vector<std::string> tabStops() {
        std::vector<std::string> stops;
        constexpr int onceAround = 40;
        for (int i = 0; i < onceAround; ++i) {
            if (!stops.empty() && stops.front() == focusName()) return stops;
            stops.push_back(focusName());
            tab();
        }
        return stops;
    }
    std::string hint() { return label("lblHint"); }
    QColor inside(const std::string& control) { return find(control)->palette().color(QPalette::Base); }
};

TEST_F(General, IsAWindowOfItsOwnBesideTheMainWindow) {
    openNew();
    EXPECT_EQ(form->windowTitle(), "General Engine Configuration");
    EXPECT_EQ(form->objectName(), "frmGeneralConfig");
    EXPECT_TRUE(form->isWindow());
    EXPECT_FALSE(form->isModal());
    EXPECT_EQ(session.messages.ActiveFormName, "frmGeneralConfig");
}

TEST_F(General, ShowsEveryControlOfTheCoreOnce) {
    openNew();
    for (const std::string_view control : GeneralConfig::controls()) {
        const auto found = form->findChildren<QWidget*>(QString::fromStdString(std::string(control)));
        EXPECT_EQ(found.size(), 1) << control;
    }
}

TEST_F(General, EveryControlHasANameForTheScreenReaderAndAHelpTextBehindF2) {
    openPrepared();
    for (const std::string_view name : GeneralConfig::controls()) {
        const QWidget* control = find(std::string(name));
        EXPECT_FALSE(control->accessibleName().isEmpty()) << name;
        EXPECT_FALSE(control->accessibleName().contains(u'&')) << name;
        const auto help = session.database->help(control->property("fastHelpKey").toString().toStdString());
        ASSERT_TRUE(help.has_value()) << name;
        EXPECT_FALSE(help->text.empty()) << name;
    }
    EXPECT_EQ(find("txtRPM")->accessibleName(), "Maximum Engine Rev Limit (1000 to 20000)");
    EXPECT_EQ(find("txtRPM")->property("fastHelpKey"), "helprevl");
}

TEST_F(General, TheTabKeyWalksFromTheModelToTheInjectorsAndThenToTheKeys) {
    openPrepared();
    go("cmbORB_UNIT");
    EXPECT_THAT(tabStops(),
                ElementsAre("cmbORB_UNIT", "cmbEngine", "cmbCols", "cmbRows", "cmbMAP", "cmdMAPSensorManager",
                            "txtMAP", "txtMaxBoost", "txtRPM", "txtBHP", "cmbCams", "chkAlcohol", "txtTPS",
                            "txtINJ", "optInjAmp2", "txtLBHR", "txtPOT", "txtMIT", "txtUAP", "txtTOG",
                            "Toolbar1_Save", "Toolbar1_Cancel"));
}

TEST_F(General, AMnemonicOfACaptionLeadsToItsBox) {
    openPrepared();
    key(Qt::Key_R, Qt::AltModifier);
    EXPECT_EQ(focusName(), "txtRPM");
}

TEST_F(General, TheManagerButtonAsksForTheSensorManager) {
    openNew();
    int asked = 0;
    QObject::connect(form.get(), &FrmGeneralConfig::sensorManagerAsked, [&] { ++asked; });
    EXPECT_EQ(find<QPushButton>("cmdMAPSensorManager")->shortcut(), QKeySequence("Alt+M"));
    go("cmdMAPSensorManager");
    key(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_EQ(asked, 1);
}

TEST_F(General, OneLineTellsWhatIsStillMissing) {
    openNew();
    EXPECT_EQ(focusName(), "cmbORB_UNIT");
    EXPECT_EQ(hint(), "Choose a model");
    pick("cmbORB_UNIT", "ORB A Standard");
    EXPECT_EQ(hint(), "Choose an engine");
    pick("cmbEngine", fourCylinders);
    EXPECT_EQ(hint(), "Choose a MAP sensor");
    pick("cmbMAP", oneBar);
    EXPECT_EQ(hint(), "Ready to save");
    EXPECT_EQ(boxes(), 0u);
}

// ---- From nothing to a file

TEST_F(General, AFirstCalibrationIsMadeByKeyboardAlone) {
    openNew();
    pick("cmbORB_UNIT", "ORB A Standard");
    pick("cmbEngine", fourCylinders);
    pick("cmbMAP", oneBar);
    put("txtRPM", "6800");
    put("txtBHP", "200");
    put("txtINJ", "4");
    dialogs.files.push_back(fake.folder.path("first.ZQ4OA"));
    go("Toolbar1_Save");
    key(Qt::Key_Space, Qt::NoModifier, " ");

    ASSERT_EQ(dialogs.requests.size(), 1u);
    EXPECT_EQ(dialogs.requests[0].title, "Zentaq4 User Calibration Files");
    ASSERT_EQ(boxes(), 1u);
    EXPECT_EQ(boxText(), "Data has been saved Successfully!");
    EXPECT_EQ(savedTold, 1);
    EXPECT_EQ(closedTold, 1);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(session.CurrentFile, fake.folder.path("first.ZQ4OA"));
    EXPECT_EQ(session.header().fileState, "OLD");
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 6800.0f);
    std::ifstream file(fake.folder.path("first.ZQ4OA"), std::ios::binary);
    float kind = 0;
    file.read(reinterpret_cast<char*>(&kind), sizeof kind);
    EXPECT_EQ(kind, 3.0f);
}

TEST_F(General, TheSaveKeyTakesWhatIsBeingTyped) {
    openPrepared();
    typeOver("txtRPM", "6400");
    saveAs("typed.ZQ4OA");
    EXPECT_EQ(savedTold, 1);
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 6400.0f);
}

TEST_F(General, TheSaveKeyMeansTheFormWhileTheMainWindowHasTheSameKey) {
    openPrepared();
    QWidget main;
    QAction elsewhere;
    elsewhere.setShortcut(QKeySequence::Save);
    elsewhere.setShortcutContext(Qt::ApplicationShortcut);
    int triggered = 0;
    QObject::connect(&elsewhere, &QAction::triggered, [&] { ++triggered; });
    main.addAction(&elsewhere);
    main.show();
    form->activateWindow();
    QApplication::processEvents();
    // Some systems send the letter's control code along, which a list would search its entries for.
    const QString code(QChar(0x13));
    for (const char* control : {"txtRPM", "cmbMAP", "chkAlcohol", "cmbCams", "optInjAmp2", "txtTOG"}) {
        go(control);
        key(Qt::Key_S, Qt::ControlModifier);  // the file dialog is cancelled
        key(Qt::Key_S, Qt::ControlModifier, code);
    }
    EXPECT_EQ(triggered, 0);
    EXPECT_EQ(dialogs.requests.size(), 12u);
    EXPECT_EQ(chosen("cmbMAP"), oneBar);
}

TEST_F(General, ARefusedEntryKeepsTheSaveKeyFromSaving) {
    openPrepared();
    typeOver("txtRPM", "50");
    saveAs("never.ZQ4OA");
    EXPECT_EQ(boxes(), 1u);
    EXPECT_EQ(boxText(), "Warning 1001: Data Input Error\n(1000 to 20000 RPM) - Invalid Entry.");
    EXPECT_THAT(dialogs.requests, IsEmpty());
    EXPECT_EQ(savedTold, 0);
    EXPECT_EQ(focusName(), "txtRPM");
    EXPECT_EQ(shown("txtRPM"), "7000");
}

TEST_F(General, ACancelledFileDialogLeavesTheFormAsItWas) {
    openPrepared();
    put("txtRPM", "6400");
    key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(dialogs.requests.size(), 1u);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(savedTold, 0);
    EXPECT_EQ(shown("txtRPM"), "6400");
    EXPECT_EQ(session.header().fileState, "NEW");
}

// ---- Closing

TEST_F(General, AFormWithNothingEnteredClosesWithoutAsking) {
    openNew();
    escape();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(closedTold, 1);
    EXPECT_EQ(boxes(), 0u);
    EXPECT_EQ(session.header().fileState, "");
    EXPECT_THAT(session.console.lines(), Contains(HasSubstr("General Config App. Terminated.")));
}

TEST_F(General, AsksBeforeANewCalibrationIsDropped) {
    openPrepared();
    go("txtRPM");
    dialogs.answers = {Answer::No};
    escape();
    ASSERT_EQ(boxes(), 1u);
    EXPECT_EQ(dialogs.boxes[0].title, "General Engine Configuration");
    EXPECT_EQ(boxText(), "Drop the new calibration?");
    EXPECT_EQ(dialogs.boxes[0].buttons, Buttons::YesNo);
    EXPECT_TRUE(dialogs.boxes[0].declines) << "Enter keeps an hour's work";
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(closedTold, 0);
    dialogs.answers = {Answer::Yes};
    go("Toolbar1_Cancel");
    key(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_EQ(boxes(), 2u);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(closedTold, 1);
}

TEST_F(General, TheKeyThatClosesIsCancelForANewCalibrationAndCloseForOneInHand) {
    const auto caption = [this] { return form->findChild<QAction*>("Cancel")->text().toStdString(); };
    openPrepared();
    EXPECT_EQ(caption(), "Cancel");
    dialogs.answers = {Answer::Yes};
    escape();
    openInHand();
    EXPECT_EQ(caption(), "Close");
    EXPECT_EQ(form->findChild<QWidget*>("Toolbar1_Cancel")->accessibleName(), "Close");
}

TEST_F(General, TheFirstEscapeIsTheFieldsAndTheSecondTheWindows) {
    openPrepared();
    typeOver("txtRPM", "1");
    escape();
    EXPECT_EQ(shown("txtRPM"), "7000");
    EXPECT_EQ(boxes(), 0u);
    escape();
    EXPECT_EQ(boxText(), "Drop the new calibration?");
}

TEST_F(General, AWindowThatIsDeletedWhileOpenHasItsCalibrationDropped) {
    openInHand();
    openNew();
    pick("cmbORB_UNIT", "PZK-2");
    close();
    EXPECT_EQ(session.CurrentUnit(), 3.0f);
    EXPECT_EQ(session.header().fileState, "OLD");
}

TEST_F(General, AWindowThatIsOpenBeginsTheNewCalibrationThatIsAskedFor) {
    openInHand();
    session.header().fileState = "NEW";
    form->reload();
    EXPECT_EQ(hint(), "Choose a model");
    EXPECT_EQ(chosen("cmbORB_UNIT"), "");
    EXPECT_EQ(shown("txtRPM"), "");
    EXPECT_EQ(focusName(), "cmbORB_UNIT");
    pick("cmbORB_UNIT", "ORB L");
    EXPECT_EQ(session.CurrentUnit(), 4.0f);
    dialogs.answers = {Answer::Yes};
    escape();
    EXPECT_EQ(session.CurrentUnit(), 3.0f);
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 7000.0f);
}

TEST_F(General, ClosingDropsWhatIsBeingTypedWithoutACheck) {
    openInHand();
    typeOver("txtRPM", "50");
    form->close();
    EXPECT_EQ(boxes(), 0u);
    EXPECT_EQ(closedTold, 1);
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 7000.0f);
}

// ---- The calibration in hand

TEST_F(General, ShowsTheCalibrationInHandAndSavesItToItsFile) {
    openInHand();
    EXPECT_EQ(chosen("cmbORB_UNIT"), "ORB A Standard");
    EXPECT_EQ(chosen("cmbEngine"), fourCylinders);
    EXPECT_EQ(chosen("cmbMAP"), oneBar);
    EXPECT_EQ(shown("txtRPM"), "7000");
    EXPECT_EQ(hint(), "");
    EXPECT_FALSE(usable("cmbCols"));
    EXPECT_FALSE(usable("cmbRows"));
    put("txtRPM", "6500");
    EXPECT_TRUE(session.DataModified);
    key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(boxText(), "Data has been saved Successfully!");
    EXPECT_FALSE(session.DataModified);
    EXPECT_EQ(savedTold, 1);
    EXPECT_EQ(closedTold, 1);
}

TEST_F(General, ClosingKeepsWhatWasEnteredForTheCalibrationInHand) {
    openInHand();
    put("txtRPM", "6500");
    escape();
    EXPECT_EQ(boxes(), 0u) << "the main window offers to save it when it is left";
    EXPECT_EQ(closedTold, 1);
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 6500.0f);
    EXPECT_TRUE(session.DataModified);
}

TEST_F(General, ResetShowsTheValuesOfTheUnitAgainAndSendsNothing) {
    openInHand();
    unit().ONFLY_MODE(true);
    const auto written = fake.port.written.size();
    unit().AssignDirectIndex(6800, unit().find("REV_Limiter")->index);
    typeOver("txtRPM", "12");
    form->reset();
    EXPECT_EQ(shown("txtRPM"), "6800");
    session.link.tick();
    EXPECT_EQ(fake.port.written.size(), written);
    tab();
    EXPECT_EQ(boxes(), 0u);
}

TEST_F(General, ANewSensorStandsInTheListAndWhatIsTypedStays) {
    openInHand();
    typeOver("txtRPM", "65");
    session.database->addMapSensor(
        {.description = "My own sensor", .scale = 0.02f, .offset = 0.1f, .units = 1});
    EXPECT_EQ(find<QComboBox>("cmbMAP")->findText("My own sensor"), -1);
    form->sensorsChanged();
    EXPECT_GE(find<QComboBox>("cmbMAP")->findText("My own sensor"), 0);
    EXPECT_EQ(chosen("cmbMAP"), oneBar);
    EXPECT_EQ(shown("txtRPM"), "65");
    escape();
    EXPECT_EQ(shown("txtRPM"), "7000");
}

TEST_F(General, FieldsThatActOnTheRunningEngineTakeTheHighlightColour) {
    openInHand();
    const QColor highlight = lookColors(appliedLook(*qApp)).highlight;
    session.initializeOnFly(true);
    for (const char* control : {"txtRPM", "txtUAP", "txtPOT", "txtTPS", "txtMIT"})
        EXPECT_EQ(inside(control), highlight) << control;
    for (const char* control : {"txtBHP", "txtLBHR", "txtINJ", "txtMAP", "txtMaxBoost"})
        EXPECT_NE(inside(control), highlight) << control;
    session.initializeOnFly(false);
    EXPECT_NE(inside("txtRPM"), highlight);
}

TEST_F(General, TheHighlightFollowsDayAndNight) {
    openInHand();
    session.initializeOnFly(true);
    applyLook(*qApp, DisplayMode::Day);
    QApplication::processEvents();
    EXPECT_EQ(inside("txtRPM"), lookColors(DisplayMode::Day).highlight);
    EXPECT_EQ(inside("txtBHP"), lookColors(DisplayMode::Day).surface);
    applyLook(*qApp, DisplayMode::Night);
    QApplication::processEvents();
    EXPECT_EQ(inside("txtRPM"), lookColors(DisplayMode::Night).highlight);
    EXPECT_EQ(inside("txtBHP"), lookColors(DisplayMode::Night).surface);
}

// ---- One box, with real boxes on the screen

TEST_F(General, ARefusedEntryOpensOneBoxAndTheFieldHasTheFocusBehindIt) {
    const auto expectOneBox = [&] {
        EXPECT_EQ(boxes(), 1u);
        EXPECT_EQ(focusName(), "txtRPM");
        EXPECT_EQ(shown("txtRPM"), "7000");
        dialogs.boxes.clear();
    };
    openPrepared();
    dialogs.onScreen = true;
    put("txtRPM", "50");
    expectOneBox();
    typeOver("txtRPM", "50");
    tab();
    expectOneBox();
    dialogs.onScreen = false;
    windows.focusAfterWarning = find("cmbCams");  // another form takes the focus after the warning
    put("txtRPM", "50");
    expectOneBox();
}

TEST_F(General, TheNextFieldIsLeftInPeaceWhenTheFocusPassesIt) {
    openNew();
    dialogs.onScreen = true;
    typeOver("txtRPM", "7000");
    tab();
    EXPECT_EQ(boxes(), 1u);
    EXPECT_EQ(boxText(), noUnitText);
    EXPECT_EQ(focusName(), "txtRPM");
}

TEST_F(General, AClickThatLeavesARefusedFieldDoesNothingBehindTheBox) {
    openPrepared();
    dialogs.onScreen = true;
    typeOver("txtRPM", "50");
    auto* check = find<QCheckBox>("chkAlcohol");
    const QPoint place(check->height() / 2, check->height() / 2);
    check->setFocus(Qt::MouseFocusReason);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent click(type, place, check->mapToGlobal(place), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(check, &click);
    }
    QApplication::processEvents();
    EXPECT_FALSE(check->isChecked());
    EXPECT_EQ(boxes(), 1u);
    EXPECT_EQ(focusName(), "txtRPM");
}

TEST_F(General, AHelpBoxInFrontOfAHalfTypedNumberChecksNothing) {
    openPrepared();
    dialogs.onScreen = true;
    typeOver("txtRPM", "65");
    constexpr int help = 0;
    session.messages.Display_Message(help, "What the field means.");
    QApplication::processEvents();
    EXPECT_EQ(boxes(), 1u);
    EXPECT_EQ(boxText(), "What the field means.");
    EXPECT_EQ(shown("txtRPM"), "65");
    type("00");
    enter();
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 6500.0f);
}

TEST_F(General, GoingOnInAnotherWindowOfTheProgramTakesTheText) {
    openPrepared();
    typeOver("txtRPM", "6500");
    QLineEdit other;
    other.show();
    other.activateWindow();
    other.setFocus();
    QApplication::processEvents();
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 6500.0f);
}

// ---- Place and room

TEST_F(General, OpensWhereItWasClosed) {
    openNew();
    form->setGeometry(30, 40, 700, 420);
    escape();
    openNew();
    EXPECT_EQ(form->geometry(), QRect(30, 40, 700, 420));
}

TEST_F(General, FitsASmallLaptopWithoutScrolling) {
    openPrepared();
    constexpr int frame = 48;  // of a window manager, with its bar
    form->resize(1366, 768 - frame);
    QApplication::processEvents();
    const auto* scroll = find<QScrollArea>("scrGeneral");
    EXPECT_EQ(scroll->horizontalScrollBar()->maximum(), 0);
    EXPECT_EQ(scroll->verticalScrollBar()->maximum(), 0);
}

TEST_F(General, ANarrowWindowPutsTheInjectorsBelowAndNeverScrollsSideways) {
    openPrepared();
    const auto top = [&](const char* name) { return find(name)->mapTo(form.get(), QPoint()).y(); };
    form->resize(1366, 600);
    QApplication::processEvents();
    EXPECT_EQ(top("lblGroup4"), top("lblGroup1"));
    form->resize(800, 600);
    QApplication::processEvents();
    EXPECT_GT(top("lblGroup4"), top("lblGroup3"));
    EXPECT_EQ(find<QScrollArea>("scrGeneral")->horizontalScrollBar()->maximum(), 0);
    EXPECT_GT(find<QScrollArea>("scrGeneral")->verticalScrollBar()->maximum(), 0);
}

TEST_F(General, ScrollsToTheFieldThatTheTabKeyReaches) {
    openPrepared();
    form->resize(600, 300);
    QApplication::processEvents();
    go("txtTOG");
    EXPECT_FALSE(find("txtTOG")->visibleRegion().isEmpty());
    go("cmbORB_UNIT");
    EXPECT_FALSE(find("cmbORB_UNIT")->visibleRegion().isEmpty());
}

TEST_F(General, TheWheelOverAListChoosesNothing) {
    openPrepared();
    auto* list = find<QComboBox>("cmbORB_UNIT");
    const QPointF place(list->rect().center());
    QWheelEvent wheel(place, list->mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(list, &wheel);
    EXPECT_EQ(list->currentText(), "ORB A Standard");
}

TEST_F(General, LongNamesOfEnginesTakeALineOfTheirOwnInANarrowWindow) {
    openPrepared();
    const auto* list = find<QComboBox>("cmbEngine");
    const auto* caption = find<QLabel>("lblCaption_cmbEngine");
    form->resize(1366, 600);
    QApplication::processEvents();
    EXPECT_GT(list->x(), caption->geometry().right()) << "beside its caption";
    form->resize(list->fontMetrics().averageCharWidth() * 70, 400);
    QApplication::processEvents();
    EXPECT_GT(list->y(), caption->geometry().bottom()) << "below its caption";
    int longest = 0;
    for (int i = 0; i < list->count(); ++i)
        longest = std::max(longest, list->fontMetrics().horizontalAdvance(list->itemText(i)));
    EXPECT_GT(list->width(), longest);
}

TEST_F(GeneralWindow, ItsFirstSizeHasRoomForEveryEngineThatIsChosenInIt) {
    int grown = 0;
    for (int width = 700; width <= 1600; width += 50) {
        openNew();
        form->resize(width, 600);
        QApplication::processEvents();
        const auto* fields = form->findChild<QWidget*>("fraGeneral");
        const int room = form->sizeHint().height();
        const int former = fields->sizeHint().height();
        pick("cmbORB_UNIT", "ORB A Standard");
        QApplication::processEvents();
        EXPECT_LE(form->sizeHint().height(), room) << width;
        grown += fields->sizeHint().height() > former ? 1 : 0;
    }
    EXPECT_GT(grown, 0) << "a caption goes above its list for a longer name";
}

}  // namespace
}  // namespace zentaq
