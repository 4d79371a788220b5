#include "app/main_commands.h"

#include <array>

#include "base/message_codes.h"
#include "base/settings_keys.h"
#include "config/pin_tables.h"
#include "config/tree.h"
#include "unit/table_kinds.h"

namespace zentaq {

void MainCommands::help() {
    session_.sysLog("HELP: Opening Help File.");
    session_.windows().open(window::help);
}

void MainCommands::dayMode() {
    session_.settings().set(settings::system, settings::MonitorMode, "1");
    session_.windows().tell(&WindowNews::look, true);
}

void MainCommands::nightMode() {
    session_.settings().set(settings::system, settings::MonitorMode, "0");
    session_.windows().tell(&WindowNews::look, false);
}

void MainCommands::toggle(Fold& fold) {
    session_.folds.toggle(fold);
    session_.windows().tell(&WindowNews::foldsChanged);
}

void MainCommands::toggleMessages() {
    toggle(session_.folds.messages);
}

void MainCommands::toggleTree() {
    toggle(session_.folds.tree);
}

void MainCommands::toggleDashboard() {
    toggle(session_.folds.dashboard);
}

void MainCommands::restoreLayout() {
    session_.folds.toDefault();
    session_.windows().tell(&WindowNews::foldsChanged);
    session_.windows().tell(&WindowNews::restoreLayout);
}

void MainCommands::openTable(const std::string& table, const std::string& title) {
    const auto again = [commands = *this, table, title]() mutable { commands.openTable(table, title); };
    if (session_.saving.putsOffWhileReading(title, again)) return;
    if (session_.slotInHand() == 0) return session_.messages.Display_Error(codes::NoCalibration);
    // What is entered into a table before its calibration has its default values would be lost with them.
    if (session_.creating()) return session_.windows().open(window::generalConfig);
    // The keys of the menu ask for tables of every kind.
    if (!hasTable(session_.currentUnitObject().kind(), table)) return;
    session_.windows().open(window::table, table, title);
}

void MainCommands::Load_Command(int code) {
    constexpr std::array tables{"ADV", "VE"};
    const bool ofTable = code == 0 || code == 1;
    if (!ofTable) return unit.loadCommand(code);
    const std::string table = tables[static_cast<std::size_t>(code)];
    openTable(table, tableTitle(table));
}

void MainCommands::editPinTable(int pin) {
    // The unit in hand may have changed since the list of its pins was made.
    const TableKind* table = tableOfPin(session_.currentUnitObject(), pin);
    if (table != nullptr) openTable(std::string(table->name), std::string(table->title));
}

int MainCommands::treeClick(const std::string& key) {
    constexpr int startPage = 0;
    constexpr std::string_view generalParameters = "root001";
    // The tree is about to be made anew.
    if (session_.slotInHand() == 0 || session_.saving.reading()) return startPage;
    for (const TreeNode& node : treeNodes(session_.currentUnitObject())) {
        if (node.key != key) continue;
        if (!node.table.empty()) openTable(node.table, node.title);
        if (node.key == generalParameters) session_.windows().open(window::generalConfig);
        if (node.page == managerPage) session_.windows().open(window::gpio);
        return node.page;
    }
    return startPage;
}

}  // namespace zentaq
