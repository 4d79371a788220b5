#include "windows/every_window.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QTabWidget>

#include "app/flight_record.h"
#include "app/overview.h"
#include "app/state_strip.h"
#include "qt/qt_dialogs.h"
#include "unit/gpio_functions.h"
#include "windows/frm_dashboard.h"
#include "windows/frm_graph_2d.h"
#include "windows/frm_graph_3d.h"
#include "windows/log_plot_view.h"
#include "windows/mdi_main_about.h"
#include "windows/state_strip_view.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {

EveryWindowTest::EveryWindowTest() {
    const std::string path = fake.folder.path("reference.pak");
    std::filesystem::copy_file(builtReference(), path);
    fake.session.database = Database::open(path);
    std::filesystem::create_directory_symlink(ZENTAQ_APP_DIR "/support", fake.folder.path("support"));
}

QRect EveryWindowTest::room() {
    return QGuiApplication::primaryScreen()->availableGeometry();
}

void EveryWindowTest::settle() {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

void EveryWindowTest::maximiseMain() {
    windows.main().setGeometry(room());
    activate(windows.main());
    settle();
}

void EveryWindowTest::modal(const std::function<void()>& run, const Look& look) {
    QTimer::singleShot(0, [&] {
        settle();
        QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        look(*box);
        box->close();
    });
    run();
    settle();
}

// ---- The main window

void EveryWindowTest::mainWindow(const Look& look) {
    maximiseMain();
    look(windows.main());
}

void EveryWindowTest::mainWithCalibration(const Look& look) {
    maximiseMain();
    openCalibration();
    settle();
    look(windows.main());
}

void EveryWindowTest::mainWithTable(const Look& look) {
    maximiseMain();
    openCalibration();
    giveRisingAxes(fake.session.currentUnitObject());
    windows.main().run("mnuVETbl");
    settle();
    look(windows.main());
}

void EveryWindowTest::mainWithPins(const Look& look) {
    maximiseMain();
    openCalibration();
    fake.session.currentUnitObject().Set_GPIO_Func(0, gpio_code::fullTable);
    fake.session.currentUnitObject().Set_GPIO_Param(0, 0, 1);
    windows.open(window::gpio);
    settle();
    find<QListWidget>("lstGPIO_Menu")->setCurrentRow(0);
    settle();
    look(windows.main());
}

void EveryWindowTest::mainWithFields(const QString& page, const Look& look) {
    maximiseMain();
    openCalibration();
    fake.session.currentUnitObject().set("CYL_Number", 4);
    auto* tree = find<QTreeWidget>("treeZentaq");
    tree->setCurrentItem(tree->findItems(page, Qt::MatchExactly | Qt::MatchRecursive).value(0));
    Q_EMIT tree->itemActivated(tree->currentItem(), 0);
    settle();
    look(windows.main());
}

void EveryWindowTest::undockedTable(const Look& look) {
    mainWithTable([](QWidget&) {});
    if (windows.table()->docked()) windows.table()->findChild<QAction*>("Docking")->trigger();
    settle();
    look(*windows.table());
}

void EveryWindowTest::mainWithSparkOnly(const Look& look) {
    maximiseMain();
    constexpr int pzk2 = 5;
    std::vector<float> floats = wholeFloats(pzk2);
    floats.resize(3 + 1701);
    fake.dialogs.files.push_back(writeFloats(fake.folder.path("spark.ZQ4PZK"), floats));
    commands.files.open();
    windows.main().run("mnuAdvTbl");
    settle();
    ASSERT_FALSE(fake.session.currentUnitObject().kind().fuelSide);
    look(windows.main());
}

void EveryWindowTest::mainInTrouble(const Look& look) {
    mainWithTable([](QWidget&) {});
    StripFacts facts = stripFacts(fake.session);
    facts.portOpen = facts.unitFound = facts.identified = facts.onFly = facts.kindAgrees = true;
    facts.changesNotStored = facts.modified = facts.zeroAdvance = facts.saving = true;
    facts.framesCome = false;
    facts.unit = "ORB A 200001";
    facts.notice = "Table stored";
    facts.panel3 = "ZQA5099";
    windows.main().findChild<StateStripView*>("stateStrip")->show(stripRows(facts));
    fake.session.codes.Update_CHKE("21 - TPS Sensor Failed High");
    windows.tell(&WindowNews::codesChanged);
    settle();
    look(windows.main());
}

// Half a minute of a log: a condition holds for a part of it.
void EveryWindowTest::mainWithLog(const QString& tab, const Look& look) {
    mainWithTable([](QWidget&) {});
    std::string text = "Frame,RPM,MAP,TPS,DAFR,AAFR,PRIADV\n";
    constexpr int rows = 1500;
    for (int frame = 1; frame <= rows; ++frame) {
        text += std::to_string(frame) + "," + std::to_string(1000 + 4 * (frame % 700)) + "," +
                std::to_string(30 + frame % 60) + ",2.5,14.7,14.2,20\n";
    }
    fake.session.recorder->LoadData(fake.folder.write("Sunday.dat", text));
    while (fake.session.recorder->busy()) {
        settle();
        fake.session.recorder->takeLoaded();
    }
    fake.session.windows().open(window::config, std::string(recorderTab));
    find<LogPlotView>("viewLogPlot")->searchFor("RPM > 2500 and MAP > 40");
    auto* tabs = find<QTabWidget>("tabLog");
    for (int i = 0; i < tabs->count(); ++i) {
        if (tabs->tabText(i) == tab) tabs->setCurrentIndex(i);
    }
    settle();
    look(windows.main());
}

void EveryWindowTest::mainWithDetail(const Look& look) {
    mainWithTable([](QWidget&) {});
    windows.dashboard()->showDetail(true);
    settle();
    look(windows.main());
}

void EveryWindowTest::mainFolded(const Look& look) {
    mainWithTable([](QWidget&) {});
    for (const char* fold : {"mnuFoldMessages", "mnuFoldTree", "mnuFoldDashboard"}) windows.main().run(fold);
    settle();
    look(windows.main());
}

void EveryWindowTest::menusOpen(const Look& look) {
    mainWithTable([](QWidget&) {});
    for (QAction* entry : windows.main().menuBar()->actions()) {
        QMenu* menu = entry->menu();
        menu->popup(room().topLeft());
        settle();
        look(*menu);
        menu->close();
        settle();
    }
}

// ---- Windows of their own

void EveryWindowTest::general(const Look& look) {
    maximiseMain();
    openCalibration();
    windows.openGeneralConfig();
    settle();
    look(*windows.generalConfig());
}

void EveryWindowTest::generalOfNewCalibration(const Look& look) {
    maximiseMain();
    windows.main().run("mnuNew");
    settle();
    for (const char* list : {"cmbORB_UNIT", "cmbEngine", "cmbMAP"}) {
        chooseLongest(*windows.generalConfig(), list);
    }
    settle();
    look(*windows.generalConfig());
}

void EveryWindowTest::chooseLongest(QWidget& window, const char* list) {
    auto* box = window.findChild<QComboBox*>(QLatin1String(list));
    int longest = 0;
    for (int i = 0; i < box->count(); ++i) {
        if (box->itemText(i).size() > box->itemText(longest).size()) longest = i;
    }
    ASSERT_GT(box->count(), longest) << list;
    box->setCurrentIndex(longest);
    Q_EMIT box->activated(longest);
}

void EveryWindowTest::openSensors() {
    maximiseMain();
    windows.openSensorEditor();
    settle();
    windows.sensorEditor()->findChild<QListWidget*>("lstMAPSensors")->setCurrentRow(0);
    settle();
}

void EveryWindowTest::sensors(const Look& look) {
    openSensors();
    look(*windows.sensorEditor());
}

void EveryWindowTest::sensorBeingEdited(const Look& look) {
    openSensors();
    fake.dialogs.answers.push_back(Answer::Yes);
    windows.sensorEditor()->findChild<QPushButton*>("cmdEdit")->click();
    settle();
    look(*windows.sensorEditor());
}

void EveryWindowTest::optionPage(int page, const Look& look) {
    maximiseMain();
    windows.main().run("mnuOptions");
    windows.options()->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(page);
    settle();
    look(*windows.options());
}

void EveryWindowTest::colorDialog(const Look& look) {
    maximiseMain();
    commands.nightMode();
    windows.main().run("mnuOptions");
    auto* choose = windows.options()->findChild<QAbstractButton*>("cmdChoose");
    windows.options()->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(4);
    settle();
    ASSERT_TRUE(choose->isEnabled());
    modal([&] { choose->click(); }, look);
}

void EveryWindowTest::guide(const Look& look) {
    maximiseMain();
    windows.main().run("mnuHelpContents");
    settle();
    look(*windows.help());
}

void EveryWindowTest::guideSearch(const Look& look) {
    maximiseMain();
    windows.main().run("mnuHelpContents");
    settle();
    windows.help()->findChild<QLineEdit*>("txtSearch")->setText("sensor");
    windows.help()->findChild<QAction*>("Find")->trigger();
    settle();
    look(*windows.help());
}

void EveryWindowTest::fastHelp(const Look& look) {
    maximiseMain();
    windows.main().run("mnuOptions");
    settle();
    activate(*windows.options());
    windows.options()->findChild<QWidget*>("cmbCOMM")->setFocus();
    settle();
    windows.open(window::fastHelp);
    settle();
    look(*windows.fastHelpWindow());
}

void EveryWindowTest::splash(const Look& look) {
    maximiseMain();
    FrmSplash splash("1.0", &windows.main());
    splash.status("Reading the reference database ...");
    settle();
    look(splash);
}

// ---- What waits for the user

void EveryWindowTest::about(const Look& look) {
    maximiseMain();
    openCalibration();
    modal([&] { FrmAbout(fake.session, &windows.main()).exec(); }, look);
}

void EveryWindowTest::tableDialog(const char* command, const Look& look) {
    mainWithTable([](QWidget&) {});
    modal([&] { windows.table()->findChild<QAction*>(QLatin1String(command))->trigger(); }, look);
}

void EveryWindowTest::surface(const Look& look) {
    mainWithTable([](QWidget&) {});
    for (int i = 0; i < 256; ++i) fake.session.currentUnitObject().set("VE", i % 16 * 2 - i / 16, i);
    windows.table()->findChild<QAction*>("Graph")->trigger();
    settle();
    look(*windows.main().findChild<FrmGraph3D*>("frmGraph_3D"));
}

void EveryWindowTest::curve(const Look& look) {
    mainWithCalibration([](QWidget&) {});
    openCurve(fake.session, "Warm_Up");
    settle();
    look(*windows.main().findChild<FrmGraph2D*>("frmGraph_2D"));
}

void EveryWindowTest::doubts(const Look& look) {
    mainWithCalibration([](QWidget&) {});
    modal([&] { windows.showDoubts(doubtsInHand(fake.session)); }, look);
}

void EveryWindowTest::mainWithDockedCurve(const Look& look) {
    mainWithCalibration([](QWidget&) {});
    fake.settings.set("System", "Graphs", "1");
    openCurve(fake.session, "DPTS");
    settle();
    look(windows.main());
}

void EveryWindowTest::mainWithOutputTable(const Look& look) {
    mainWithTable([](QWidget&) {});
    windows.openTable("GPO1", "Full Table - Table#1");
    settle();
    look(windows.main());
}

void EveryWindowTest::fileOpenPrompt(const Look& look) {
    maximiseMain();
    fake.dialogs.requests.clear();
    commands.files.open();
    ASSERT_FALSE(fake.dialogs.requests.empty());
    QtDialogs dialogs;
    dialogs.setParent(&windows.main());
    modal([&] { dialogs.openFile(fake.dialogs.requests.back()); }, look);
}

void EveryWindowTest::filePromptToSave(const Look& look) {
    maximiseMain();
    openCalibration();
    fake.dialogs.requests.clear();
    windows.main().run("mnuSaveAs");
    ASSERT_FALSE(fake.dialogs.requests.empty());
    QtDialogs dialogs;
    dialogs.setParent(&windows.main());
    modal([&] { dialogs.saveFile(fake.dialogs.requests.back()); }, look);
}

void EveryWindowTest::inputPrompt(const Look& look) {
    maximiseMain();
    QtDialogs dialogs;
    dialogs.setParent(&windows.main());
    modal([&] { dialogs.input("MAP Sensor Manager", "Enter a Description for this sensor.", ""); }, look);
}

/// Every numbered one.
void EveryWindowTest::messageBoxes(const Look& look) {
    maximiseMain();
    fake.dialogs.boxes.clear();
    Messages& messages = fake.session.messages;
    for (int code = 1000; code <= 1009; ++code) {
        messages.Display_Error(code);
        messages.Display_Warning(code, "(1000 to 20000)");
        messages.Display_Message(code, "The rev limit is where the unit cuts fuel and spark.");
    }
    const std::vector<Box> boxes = fake.dialogs.boxes;
    ASSERT_GT(boxes.size(), 20U);
    QtDialogs dialogs;
    dialogs.setParent(&windows.main());
    for (const Box& box : boxes) modal([&] { dialogs.show(box); }, look);
}

// ---- All of them

const std::vector<ShownWindow>& everyWindow() {
    using Program = EveryWindowTest;
    using Look = Program::Look;
    static const std::vector<ShownWindow> all{
        {"MainWindow", [](Program& p, const Look& look) { p.mainWindow(look); }},
        {"MainWithCalibration", [](Program& p, const Look& look) { p.mainWithCalibration(look); }},
        {"MainWithTable", [](Program& p, const Look& look) { p.mainWithTable(look); }},
        {"MainWithOutputTable", [](Program& p, const Look& look) { p.mainWithOutputTable(look); }},
        {"UndockedTable", [](Program& p, const Look& look) { p.undockedTable(look); }},
        {"MainWithSparkOnly", [](Program& p, const Look& look) { p.mainWithSparkOnly(look); }},
        {"MainInTrouble", [](Program& p, const Look& look) { p.mainInTrouble(look); }},
        {"MenusOpen", [](Program& p, const Look& look) { p.menusOpen(look); }},
        {"ColorDialog", [](Program& p, const Look& look) { p.colorDialog(look); }},
        {"MainFolded", [](Program& p, const Look& look) { p.mainFolded(look); }},
        {"MainWithLog", [](Program& p, const Look& look) { p.mainWithLog("Plots", look); }},
        {"MainWithHistogram", [](Program& p, const Look& look) { p.mainWithLog("Histogram", look); }},
        {"MainWithScatter", [](Program& p, const Look& look) { p.mainWithLog("Scatter", look); }},
        {"MainWithDetail", [](Program& p, const Look& look) { p.mainWithDetail(look); }},
        {"MainWithPins", [](Program& p, const Look& look) { p.mainWithPins(look); }},
        {"MainWithOptions", [](Program& p, const Look& look) { p.mainWithFields("Rev Limiter", look); }},
        {"MainWithCurves", [](Program& p, const Look& look) { p.mainWithFields("EGO Calibration", look); }},
        {"MainWithAxes", [](Program& p, const Look& look) { p.mainWithFields("Advanced Parameters", look); }},
        {"MainWithSensor", [](Program& p, const Look& look) { p.mainWithFields("MAP", look); }},
        {"MainWithTrims", [](Program& p, const Look& look) { p.mainWithFields("Cylinder Trims", look); }},
        {"MainWithNotes", [](Program& p, const Look& look) { p.mainWithFields("Notes", look); }},
        {"GeneralConfiguration", [](Program& p, const Look& look) { p.general(look); }},
        {"NewCalibration", [](Program& p, const Look& look) { p.generalOfNewCalibration(look); }},
        {"Sensors", [](Program& p, const Look& look) { p.sensors(look); }},
        {"SensorBeingEdited", [](Program& p, const Look& look) { p.sensorBeingEdited(look); }},
        {"OptionsPage1", [](Program& p, const Look& look) { p.optionPage(0, look); }},
        {"OptionsPage2", [](Program& p, const Look& look) { p.optionPage(1, look); }},
        {"OptionsPage3", [](Program& p, const Look& look) { p.optionPage(2, look); }},
        {"OptionsPage4", [](Program& p, const Look& look) { p.optionPage(3, look); }},
        {"OptionsPage5", [](Program& p, const Look& look) { p.optionPage(4, look); }},
        {"OptionsPage6", [](Program& p, const Look& look) { p.optionPage(5, look); }},
        {"OptionsPage7", [](Program& p, const Look& look) { p.optionPage(6, look); }},
        {"UserGuide", [](Program& p, const Look& look) { p.guide(look); }},
        {"UserGuideSearched", [](Program& p, const Look& look) { p.guideSearch(look); }},
        {"FastHelp", [](Program& p, const Look& look) { p.fastHelp(look); }},
        {"Splash", [](Program& p, const Look& look) { p.splash(look); }},
        {"About", [](Program& p, const Look& look) { p.about(look); }},
        {"Curve", [](Program& p, const Look& look) { p.curve(look); }},
        {"Doubts", [](Program& p, const Look& look) { p.doubts(look); }},
        {"MainWithDockedCurve", [](Program& p, const Look& look) { p.mainWithDockedCurve(look); }},
        {"MainWithPicture",
         [](Program& p, const Look& look) { p.mainWithFields("TPS/MAP Acceleration", look); }},
        {"Surface", [](Program& p, const Look& look) { p.surface(look); }},
        {"NewAxes", [](Program& p, const Look& look) { p.tableDialog("mnuRebin", look); }},
        {"KeysOfTheTable", [](Program& p, const Look& look) { p.tableDialog("Keys", look); }},
        {"FileOpenPrompt", [](Program& p, const Look& look) { p.fileOpenPrompt(look); }},
        {"FilePromptToSave", [](Program& p, const Look& look) { p.filePromptToSave(look); }},
        {"InputPrompt", [](Program& p, const Look& look) { p.inputPrompt(look); }},
        {"MessageBoxes", [](Program& p, const Look& look) { p.messageBoxes(look); }},
    };
    return all;
}

}  // namespace zentaq
