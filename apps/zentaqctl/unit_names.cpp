#include "unit_names.h"

#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"

namespace zentaq::ctl {

namespace {

constexpr std::string_view family = "ORB ";

bool names(const UnitKind& kind, const std::string& text) {
    const std::string name = upper(kind.name);
    if (text == name || text == numberText(kind.slot)) return true;
    if (name.starts_with(family) && text == name.substr(family.size())) return true;
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
    return unitKindOf(text) != nullptr
               ? std::string()
               : shownBriefly(text) + " is no unit kind such as A, L, C, D, D6 or PZK-2";
}

}  // namespace zentaq::ctl
