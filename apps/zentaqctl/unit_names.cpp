#include "unit_names.h"

#include "base/number_text.h"
#include "base/text.h"

namespace zentaq::ctl {

namespace {

constexpr int firstSlot = 3;
constexpr int lastSlot = 8;
constexpr std::string_view family = "ORB ";

bool names(const UnitKind& kind, const std::string& text) {
    const std::string model = upper(modelOf(kind));
    if (text == model || text == numberText(kind.slot)) return true;
    if (model.starts_with(family) && text == model.substr(family.size())) return true;
    const std::string extension = upper(kind.extension);
    return text == upper(kind.className) || text == extension || text == extension.substr(1);
}

}  // namespace

const UnitKind* unitKindOf(std::string_view text) {
    const std::string wanted = upper(trimmed(text));
    for (const UnitKind* kind : allUnitKinds()) {
        if (names(*kind, wanted)) return kind;
    }
    return nullptr;
}

std::vector<const UnitKind*> allUnitKinds() {
    std::vector<const UnitKind*> kinds;
    for (int slot = firstSlot; slot <= lastSlot; ++slot) {
        if (const UnitKind* kind = unitKindOfSlot(slot)) kinds.push_back(kind);
    }
    return kinds;
}

std::string modelOf(const UnitKind& kind) {
    const std::string model(kind.model);
    return kind.slot == lastSlot && !model.ends_with('6') ? model + "6" : model;
}

}  // namespace zentaq::ctl
