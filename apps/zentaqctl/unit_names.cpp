#include "unit_names.h"

#include <vector>

#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "near_names.h"
#include "unit/kinds_in_lists.h"

namespace zentaq::ctl {

namespace {

bool names(const UnitKind& kind, const std::string& text) {
    if (text == upper(kind.name) || text == upper(kind.label) || text == numberText(kind.slot)) return true;
    const std::string extension = upper(kind.extension);
    return text == upper(kind.className) || text == extension || text == extension.substr(1);
}

}  // namespace

const UnitKind* unitKindOf(std::string_view text) {
    const std::string wanted = upper(trimmed(text));
    for (const UnitKind& kind : unitKinds()) {
        if (names(kind, wanted)) return &kind;
    }
    return nullptr;
}

std::string validKind(const std::string& text) {
    if (unitKindOf(text) != nullptr) return {};
    std::vector<std::string> labels;
    for (const UnitKind* kind : kindsInLists()) labels.emplace_back(kind->label);
    return shownBriefly(text) + " is no unit kind such as " + joinedByOr(labels);
}

}  // namespace zentaq::ctl
