#include "config/field_finder.h"

#include <algorithm>

#include "base/field.h"
#include "base/text.h"
#include "config/field_pages.h"
#include "config/gui_rules.h"

namespace zentaq {

namespace {

constexpr std::size_t mostHits = 30;

bool hasAll(const std::string& text, const std::vector<std::string>& words) {
    return std::ranges::all_of(words,
                               [&](const std::string& word) { return text.find(word) != std::string::npos; });
}

std::vector<std::string> wordsOf(std::string_view query) {
    std::vector<std::string> words;
    for (std::string& word : split(upper(query), ' ')) {
        if (!word.empty()) words.push_back(std::move(word));
    }
    return words;
}

}  // namespace

std::vector<FoundField> findFields(Unit& unit, std::string_view query, const HelpOf& helpOf) {
    const std::vector<std::string> words = wordsOf(query);
    if (words.empty() || !unit.kind().hasCalibration) return {};
    const GuiRules rules = guiRules(unit);
    const auto rows = fieldRows();
    std::vector<FoundField> byName;
    std::vector<FoundField> byHelp;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const ControlRule& rule = rules.controls[i];
        if (!rule.visible) continue;
        const PageRule& page = *rules.page(rows[i].page);
        FoundField field{rows[i].page, page.title, std::string(rows[i].control), plainCaption(rule.caption),
                         std::string(rows[i].member)};
        const std::string name = upper(field.caption + ' ' + field.member);
        const std::string key = rows[i].help.empty() ? page.help : std::string(rows[i].help);
        if (hasAll(name, words)) {
            byName.push_back(std::move(field));
        } else if (hasAll(name + ' ' + upper(page.title) + ' ' + upper(helpOf(key)), words)) {
            byHelp.push_back(std::move(field));
        }
    }
    byName.insert(byName.end(), byHelp.begin(), byHelp.end());
    if (byName.size() > mostHits) byName.resize(mostHits);
    return byName;
}

}  // namespace zentaq
