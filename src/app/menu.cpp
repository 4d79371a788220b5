#include "app/menu.h"

#include <array>

#include "app/main_commands.h"
#include "unit/table_kinds.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

bool always(const Session&) {
    return true;
}

bool fileInHand(const Session& session) {
    return session.slotInHand() != 0;
}

bool fileNamed(const Session& session) {
    return !session.CurrentFile.empty();
}

/// A new calibration gets its file by the same command.
bool savable(const Session& session) {
    return fileNamed(session) || session.creating();
}

bool unitOnLink(const Session& session) {
    return session.link.linked().LinkedUnitKind != 0 && !session.link.transfer().pending();
}

bool noTransfer(const Session& session) {
    return !session.link.transfer().pending();
}

/// Also without a unit that answers: one that has lost its firmware is mended by this command. A unit of the
/// oldest firmware takes none.
bool firmwareUpgradable(const Session& session) {
    return !session.link.linked().OldFirmware && noTransfer(session);
}

/// Without a calibration the command itself tells what is missing.
bool tableOfUnit(const Session& session, std::string_view table) {
    const UnitKind* kind = unitKindOfSlot(session.slotInHand());
    return session.slotInHand() == 0 || (kind != nullptr && hasTable(*kind, table));
}

bool hasVe(const Session& session) {
    return tableOfUnit(session, "VE");
}

bool hasStaging(const Session& session) {
    return tableOfUnit(session, "SPW");
}

bool hasRatio(const Session& session) {
    return tableOfUnit(session, "AFR");
}

bool zeroAdvance(const Session& session) {
    return session.link.linked().zeroAdvance;
}

bool byDay(const Session& session) {
    return session.dayMode();
}

bool byNight(const Session& session) {
    return !session.dayMode();
}

bool messagesOpen(const Session& session) {
    return !session.folds.messages.folded();
}

bool treeOpen(const Session& session) {
    return !session.folds.tree.folded();
}

bool dashboardOpen(const Session& session) {
    return !session.folds.dashboard.folded();
}

bool recentFiles(const Session& session) {
    return !session.recentFiles.paths().empty();
}

/// Commands that come with a later release of the program.
constexpr auto later = nullptr;

/// Kept: these entries stand in the menu, have no handler and do nothing.
constexpr auto noHandler = nullptr;

constexpr MenuEntry command(MenuEntry entry, void (*run)(MainCommands&)) {
    entry.run = run;
    return entry;
}

constexpr MenuEntry behindEdits(MenuEntry entry, void (*run)(MainCommands&) = nullptr) {
    entry.afterEdits = true;
    return command(entry, run);
}

/// The first of those that belong together.
constexpr MenuEntry grouped(MenuEntry entry) {
    entry.group = true;
    return entry;
}

constexpr MenuEntry recent(MenuEntry entry) {
    entry.isMenu = true;
    return entry;
}

constexpr std::array menus{
    MenuEntry{"mnuFile", "&File", "", "", always},
    behindEdits({"mnuNew", "Create a &New Calibration File", "mnuFile", "Ctrl+N", always},
                [](MainCommands& commands) { commands.files.newCalibration(); }),
    behindEdits({"mnuOpen", "&Open an Existing Calibration File", "mnuFile", "Ctrl+O", always},
                [](MainCommands& commands) { commands.files.open(); }),
    recent({"mnuRecent", "Open &Recent", "mnuFile", "", recentFiles}),
    grouped(behindEdits({"mnuSave", "&Save", "mnuFile", "Ctrl+S", savable},
                        [](MainCommands& commands) { commands.saves.save(); })),
    behindEdits({"mnuSaveAs", "Save &As", "mnuFile", "Ctrl+Shift+S", fileInHand},
                [](MainCommands& commands) { commands.saves.saveAs(); }),
    grouped(MenuEntry{"mnuConvertBINFile", "Con&vert BIN File", "mnuFile", "", always}),
    MenuEntry{"mnuConvertORBA", "ORB &A", "mnuConvertBINFile", "", noHandler},
    MenuEntry{"mnuConvertORBALite", "ORB A-&Lite", "mnuConvertBINFile", "", noHandler},
    MenuEntry{"mnuPrint", "&Print", "mnuFile", "", always},
    behindEdits({"mnuPrintBIN", "&Calibration File", "mnuPrint", "", fileInHand},
                [](MainCommands& commands) { commands.printing.print(PrintCommands::calibrationFile); }),
    behindEdits({"mnuPrintCurrentForm", "Current &Form", "mnuPrint", "", always},
                [](MainCommands& commands) { commands.printing.print(PrintCommands::currentForm); }),
    grouped(behindEdits({"mnuClose", "&Close", "mnuFile", "Ctrl+W", fileNamed},
                        [](MainCommands& commands) { commands.files.close(); })),
    grouped(behindEdits({"mnuExit", "E&xit Program", "mnuFile", "Ctrl+Q", always})),

    MenuEntry{"mnuEdit", "&Edit", "", "", always},
    MenuEntry{"mnuEdit_Undo", "&Undo", "mnuEdit", "Ctrl+Z", always},
    grouped(MenuEntry{"mnuEdit_Cut", "Cu&t", "mnuEdit", "", always}),
    MenuEntry{"mnuEdit_Copy", "&Copy", "mnuEdit", "", always},
    MenuEntry{"mnuEdit_Paste", "&Paste", "mnuEdit", "", always},
    MenuEntry{"mnuEdit_Delete", "&Delete", "mnuEdit", "", always},
    grouped(MenuEntry{"mnuEdit_SelectAll", "Select &All", "mnuEdit", "", always}),

    MenuEntry{"mnuTools", "&Tools", "", "", always},
    behindEdits({"mnuProgramORB", "&Program ORB", "mnuTools", "Ctrl+P", always},
                [](MainCommands& commands) { commands.programming.programOrb(); }),
    behindEdits({"mnuStoreONFLY", "&Store Changes in ORB", "mnuTools", "Ctrl+T", unitOnLink},
                [](MainCommands& commands) { commands.unit.storeOnFly(); }),
    grouped(command({"mnuIdentifyORB", "&Identify ORB", "mnuTools", "", always},
                    [](MainCommands& commands) { commands.unit.identify(); })),
    command({"mnuAutoDetectPort", "Auto &Detect Port", "mnuTools", "", noTransfer},
            [](MainCommands& commands) { commands.unit.searchPorts(); }),
    grouped(command({"mnuMonitor_KillEngine", "&Kill Engine", "mnuTools", "Ctrl+Shift+K", always},
                    [](MainCommands& commands) { commands.unit.killEngine(); })),
    grouped(command({"mnuZeroAdv", "Set &Zero Advance", "mnuTools", "", unitOnLink, {}, {}, zeroAdvance},
                    [](MainCommands& commands) { commands.unit.zeroAdvance(); })),
    grouped(command({"mnuClearDashCodes", "&Refresh Codes", "mnuTools", "", unitOnLink},
                    [](MainCommands& commands) { commands.unit.refreshCodes(); })),
    command({"mnuORB_ClearCodes", "&Clear Error Codes", "mnuTools", "", unitOnLink},
            [](MainCommands& commands) { commands.unit.clearCodes(); }),
    grouped(command({"mnuMonitor_DayMode", "D&ay Mode", "mnuTools", "F7", always, {}, {}, byDay},
                    [](MainCommands& commands) { commands.dayMode(); })),
    command({"mnuMonitor_NightMode", "&Night Mode", "mnuTools", "F8", always, {}, {}, byNight},
            [](MainCommands& commands) { commands.nightMode(); }),
    MenuEntry{"mnuMonitor_ChangeColors", "Chan&ge DashBoard Colors", "mnuTools", "", always, window::options,
              monitorPage},
    grouped(
        MenuEntry{"mnuMAPSensors", "&MAP Sensor Manager...", "mnuTools", "", always, window::sensorEditor}),
    MenuEntry{"mnuOptions", "&Options...", "mnuTools", "Ctrl+,", always, window::options},
    MenuEntry{"mnuControlPanel", "Con&trol Panel", "mnuTools", "", always, window::options},
    grouped(behindEdits({"mnuFirmwareUpgrade", "&Firmware Upgrade", "mnuTools", "", firmwareUpgradable},
                        [](MainCommands& commands) { commands.programming.firmwareUpgrade(); })),

    MenuEntry{"mnuView", "&View", "", "", always},
    command({"mnuFoldMessages", "&Messages and Link", "mnuView", "F9", always, {}, {}, messagesOpen},
            [](MainCommands& commands) { commands.toggleMessages(); }),
    command({"mnuFoldTree", "Configuration &Tree", "mnuView", "Shift+F9", always, {}, {}, treeOpen},
            [](MainCommands& commands) { commands.toggleTree(); }),
    command({"mnuFoldDashboard", "&Dashboard", "mnuView", "Ctrl+F9", always, {}, {}, dashboardOpen},
            [](MainCommands& commands) { commands.toggleDashboard(); }),
    grouped(command({"mnuRestoreLayout", "&Restore Layout", "mnuView", "", always},
                    [](MainCommands& commands) { commands.restoreLayout(); })),

    MenuEntry{"mnuWindow", "&Window", "", "", always},
    MenuEntry{"mnuAdvTbl", "&Advance Table", "mnuWindow", "Ctrl+1", always, window::table, "ADV"},
    MenuEntry{"mnuVETbl", "&VE Table", "mnuWindow", "Ctrl+2", hasVe, window::table, "VE"},
    MenuEntry{"mnuStgTbl", "&Staging Table", "mnuWindow", "Ctrl+3", hasStaging, window::table, "SPW"},
    MenuEntry{"mnuEGOTbl", "&EGO Table", "mnuWindow", "Ctrl+4", hasRatio, window::table, "AFR"},
    grouped(MenuEntry{"mnuFlightRecorder", "&Flight Recorder", "mnuWindow", "Ctrl+5", always, window::config,
                      recorderTab}),

    MenuEntry{"mnuHelp", "&Help", "", "", always},
    command({"mnuHelpContents", "&Contents...", "mnuHelp", "F1", always},
            [](MainCommands& commands) { commands.help(); }),
    MenuEntry{"mnuFastHelp", "&Fast Help (Press F2)", "mnuHelp", "F2", always, window::fastHelp},
    grouped(MenuEntry{"mnuAbout", "&About Zentaq", "mnuHelp", "", always}),

    MenuEntry{"mnuPopupTable", "", "", "", always},
    MenuEntry{"mnuGraphTable", "&Graph", "mnuPopupTable", "", always},
    MenuEntry{"mnuInterpolate", "&Interpolate", "mnuPopupTable", "", always},
    MenuEntry{"mnuSmooth", "&Smooth", "mnuPopupTable", "", always},
    MenuEntry{"mnuSmooth_1", "Smooth &1 (gentlest)", "mnuSmooth", "", always},
    MenuEntry{"mnuSmooth_2", "Smooth &2", "mnuSmooth", "", always},
    MenuEntry{"mnuSmooth_3", "Smooth &3", "mnuSmooth", "", always},
    MenuEntry{"mnuSmooth_4", "Smooth &4", "mnuSmooth", "", always},
    MenuEntry{"mnuSmooth_5", "Smooth &5 (strongest)", "mnuSmooth", "", always},
    grouped(MenuEntry{"mnuNewCol", "Add &Column", "mnuPopupTable", "", always}),
    MenuEntry{"mnuNewRow", "Add &Row", "mnuPopupTable", "", always},
    MenuEntry{"mnuRmvCol", "Re&move Column", "mnuPopupTable", "", always},
    MenuEntry{"mnuRmvRow", "Remo&ve Row", "mnuPopupTable", "", always},
};

constexpr std::array buttons{
    ToolbarButton{"New", "mnuNew", "Create a new calibration"},
    ToolbarButton{"Open", "mnuOpen", "Open a calibration"},
    ToolbarButton{"Save", "mnuSave", "Save the calibration"},
    ToolbarButton{"Program", "mnuProgramORB", "Program the calibration into the unit"},
    ToolbarButton{"Print", "mnuPrintCurrentForm",
                  "Print what the option says: the form in front or the calibration"},
    ToolbarButton{"Options", "mnuOptions", "Options"},
    ToolbarButton{"Help", "mnuHelpContents", "Help"},
    ToolbarButton{"Shutdown", "mnuExit", "End the program"},
};

}  // namespace

std::span<const MenuEntry> menuTree() {
    return menus;
}

std::span<const ToolbarButton> toolbarButtons() {
    return buttons;
}

}  // namespace zentaq
