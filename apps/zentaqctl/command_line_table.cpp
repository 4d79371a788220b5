// The command line of `table`: showing one, writing one back, and the editor's operations on it.
#include <tuple>

#include "base/shown_text.h"
#include "command_line.h"
#include "commands.h"
#include "unit/table_kinds.h"

namespace zentaq::ctl {

namespace {

void workOnTable(const Context& context, const Arguments& given) {
    const TableWork& work = given.table;
    const auto& [file, name, output] = std::tie(given.file, given.member, given.output);
    if (given.from) return setTable(context, file, name, *given.from, output);
    if (!work.interpolated.empty()) return interpolateTable(context, file, name, work.interpolated, output);
    if (!work.smoothed.empty())
        return smoothTable(context, file, name, work.smoothed, *work.strength, output);
    if (!work.lineOption.empty())
        return changeTableLines(context, file, name, work.lineOption, work.line, output);
    if (!work.view.empty()) return showTableView(context, file, name, work.view);
    if (!work.formula.empty()) return applyToTable(context, file, name, work.formula, work.cells, output);
    if (!work.columns.empty() || !work.rows.empty())
        return rebinTable(context, file, name, work.columns, work.rows, output);
    showTable(context, file, name);
}

std::string filled(const std::string& text) {
    return text.empty() ? "nothing is given" : std::string();
}

}  // namespace

void CommandLine::addTable() {
    CLI::App* table =
        addOnFile("table",
                  "Show a table with its axes, separated by tabs, highest row on top; write one "
                  "back; or change it as the editor does, one option at a time",
                  workOnTable);
    std::vector<std::string> names;
    for (const TableKind& each : tableKinds()) names.emplace_back(each.name);
    table->add_option("NAME", given_.member, "Table")->required()->check(CLI::IsMember(names));
    const std::vector<CLI::Option*> changes = addTableChanges(table);
    CLI::Option* json = table->add_flag("--json", given_.json, "Answer in JSON, lowest row first");
    for (CLI::Option* change : changes) json->excludes(change);
    CLI::Option* view =
        table->add_option("--view", given_.table.view, "Show what VE or SPW means for the injectors")
            ->check(CLI::IsMember(std::vector<std::string>{"pulsewidth", "dutycycle"}));
    for (CLI::Option* change : changes) view->excludes(change);
    CLI::Option* output = addOutput(table, "With a change: write here and leave FILE as it is");
    takeCutToo(table);
    table->final_callback([output, changes] {
        const auto given = [](const CLI::Option* option) { return !option->empty(); };
        if (!given(output) || std::any_of(changes.begin(), changes.end(), given)) return;
        throw CLI::RequiredError("A change such as --from or --apply");
    });
}

std::vector<CLI::Option*> CommandLine::addTableChanges(CLI::App* table) {
    TableWork& work = given_.table;
    const CLI::Validator block(wrongBlock, "R1,C1:R2,C2");
    std::vector<CLI::Option*> changes;
    changes.push_back(table->add_option(
        "--from", given_.from, "Take cells and axes from a text of the same form; - is the standard input"));
    changes.push_back(
        table->add_option("--interpolate", work.interpolated, "Fill these cells from their four corners")
            ->check(block));
    CLI::Option* smooth =
        table->add_option("--smooth", work.smoothed, "Even these cells out among each other")->check(block);
    CLI::Option* strength = table->add_option("--strength", work.strength, "1 (gentlest) to 5 (strongest)");
    smooth->needs(strength);
    strength->needs(smooth);
    changes.push_back(smooth);
    constexpr std::pair<const char*, const char*> lines[] = {
        {"--add-column", "Put a column in front of this one"},
        {"--add-row", "Put a row below this one"},
        {"--remove-column", "Take this column away"},
        {"--remove-row", "Take this row away"}};
    for (const auto& [option, what] : lines) {
        changes.push_back(table->add_option_function<int>(
            option,
            [&work, name = std::string(option)](const int& line) {
                work.lineOption = name;
                work.line = line;
            },
            std::string(what) + "; the tables on the same axes follow"));
    }
    CLI::Option* apply =
        table->add_option("--apply", work.formula, "Change cells: =12, +3, -2, *1.05, /2, +5% or -5%")
            ->check(CLI::Validator(filled, "FORMULA"));
    CLI::Option* cells = table->add_option("--cells", work.cells, "The cells of --apply")->check(block);
    apply->needs(cells);
    cells->needs(apply);
    changes.push_back(apply);
    CLI::Option* rebin =
        table
            ->add_option("--rebin", work.columns,
                         "New column headers, lowest first, with the values between the old ones")
            ->check(CLI::Validator(filled, "HEADERS"));
    CLI::Option* rows = table->add_option("--rows", work.rows, "The same for the rows, with --rebin or alone")
                            ->check(CLI::Validator(filled, "HEADERS"));
    for (std::size_t i = 0; i < changes.size(); ++i) {
        rebin->excludes(changes[i]);
        rows->excludes(changes[i]);
        for (std::size_t j = 0; j < i; ++j) changes[i]->excludes(changes[j]);
    }
    changes.push_back(rebin);
    changes.push_back(rows);
    return changes;
}

}  // namespace zentaq::ctl
