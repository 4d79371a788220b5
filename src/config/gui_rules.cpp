#include "config/gui_rules.h"

#include <algorithm>
#include <array>

#include "base/number_text.h"
#include "base/text.h"
#include "config/field_pages.h"
#include "config/tree.h"
#include "unit/member_index.h"
#include "unit/parameter_tables.h"

namespace zentaq {

namespace {

// Captions that tell the limits of a temperature, in the scale of the user.
struct TemperatureCaption {
    std::string_view control, celsius, fahrenheit;
};
constexpr std::array temperatureCaptions{
    TemperatureCaption{"txtCLT_SENSOR3", "CLT Failure Default Value (-40 to 150  \u00B0C)",
                       "CLT Failure Default Value (-40 to 302  \u00B0F)"},
    TemperatureCaption{"txtSENSOR_MAT3", "MAT Failure Default Value (-30 to 80  \u00B0C)",
                       "MAT Failure Default Value (-22 to 176  \u00B0F)"},
};

std::string captionOf(const Unit& unit, const FieldRow& row) {
    for (const TemperatureCaption& told : temperatureCaptions) {
        if (told.control == row.control) {
            return std::string(unit.host().fahrenheit() ? told.fahrenheit : told.celsius);
        }
    }
    if (!row.ignitionCaption.empty() && !unit.kind().fuelSide) return std::string(row.ignitionCaption);
    if (!row.caption.empty()) return std::string(row.caption);
    const Parameter* parameter = parameterOf(unit, row);
    if (parameter == nullptr) return {};
    return std::string(parameter->meaning.empty() ? parameter->name : parameter->meaning);
}

/// A page is visible when the tree of this calibration opens it and something on it can be shown. The
/// overview answers every click that has no page of its own.
std::vector<PageRule> pageRules(Unit& unit) {
    std::vector<PageRule> pages{
        {.number = overviewPage, .title = std::string(unit.kind().model), .help = {}, .visible = true}};
    for (const int number : fieldPageNumbers()) pages.push_back({.number = number, .title = {}, .help = {}});
    for (const TreeNode& node : treeNodes(unit)) {
        const auto page = std::ranges::find(pages, node.page, &PageRule::number);
        if (page == pages.end() || page->number == overviewPage) continue;
        page->title = node.text;
        page->help = node.help;
        page->visible = std::ranges::any_of(fieldsOfPage(node.page),
                                            [&](const FieldRow& row) { return fieldExists(unit, row); });
    }
    return pages;
}

bool switchedOn(Unit& unit, const FieldRow& row) {
    if (row.switchedBy.empty()) return true;
    const FieldRow* option = fieldOf(row.switchedBy);
    if (option == nullptr || !fieldExists(unit, *option)) return true;
    return fieldIsOn(unit, *option) && switchedOn(unit, *option);
}

std::vector<ControlRule> controlRules(Unit& unit, const std::vector<PageRule>& pages) {
    std::vector<ControlRule> controls;
    for (const FieldRow& row : fieldRows()) {
        const bool pageVisible = std::ranges::find(pages, row.page, &PageRule::number)->visible;
        const bool visible = pageVisible && fieldExists(unit, row);
        controls.push_back({.page = row.page,
                            .control = std::string(row.control),
                            .caption = captionOf(unit, row),
                            .visible = visible,
                            .enabled = visible && row.kind != FieldKind::Fact && switchedOn(unit, row)});
    }
    return controls;
}

/// No kind has a member that the ORB A lacks.
std::vector<std::string> lackingMembers(const Unit& unit) {
    std::vector<std::string> names;
    for (const Parameter& row : orbaParameters()) {
        if (!unit.has(row.name)) names.emplace_back(row.name);
    }
    return names;
}

std::string firmwareText(const Unit& unit) {
    if (!unit.kind().hasCalibration) return {};
    return numberText(unit.FW_Release()) + "." + formatNumber(unit.FW_Build(), "00");
}

}  // namespace

const PageRule* GuiRules::page(int number) const {
    const auto found = std::ranges::find(pages, number, &PageRule::number);
    return found == pages.end() ? nullptr : &*found;
}

bool GuiRules::pageVisible(int number) const {
    const PageRule* rule = page(number);
    return rule != nullptr && rule->visible;
}

const ControlRule* GuiRules::control(std::string_view name) const {
    const ControlRule* first = nullptr;
    for (const ControlRule& rule : controls) {
        if (upper(rule.control) != upper(name)) continue;
        if (rule.visible) return &rule;
        if (first == nullptr) first = &rule;
    }
    return first;
}

const ControlRule* GuiRules::control(int page, std::string_view name) const {
    const auto found = std::ranges::find_if(controls, [&](const ControlRule& rule) {
        return rule.page == page && upper(rule.control) == upper(name);
    });
    return found == controls.end() ? nullptr : &*found;
}

GuiRules guiRules(Unit& unit) {
    GuiRules rules;
    rules.pages = pageRules(unit);
    rules.controls = controlRules(unit, rules.pages);
    rules.lacking = lackingMembers(unit);
    rules.firmware = firmwareText(unit);
    return rules;
}

}  // namespace zentaq
