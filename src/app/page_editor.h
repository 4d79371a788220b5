// The pages of the workspace without their window: what every control shows and offers, and what an entry
// does. The window shows what this answers and hands every entry to it.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/session.h"
#include "config/display.h"

namespace zentaq {

class PageEditor {
 public:
    explicit PageEditor(Session& session);

    /// The controls of a page and the sentences in their place, with the entries of lists; `Field::former`
    /// says what the calibration held when it was opened, where that is another value.
    Display page(int number);

    /// Leaving the box of a field with this text, choosing this entry of its list, or a click on its option
    /// or box to check ("1" or "0"): checks, stores, sends. False: refused, the user has been told, and the
    /// calibration holds what it held. A text that the field shows is taken without a check or a change.
    bool enter(int page, std::string_view control, int element, std::string_view text);

    /// The same for the notes: at most 500 characters are taken.
    bool enterNotes(std::string_view text);

 private:
    Unit& unit() { return session_.currentUnitObject(); }
    bool enterNumber(const FieldRow& row, int element, std::string_view text);
    EntryOutcome checked(const FieldRow& row, int element, std::string_view entry);
    bool choose(const FieldRow& row, std::string_view text);
    bool chooseEngineByName(std::string_view text);
    bool chooseSensorByName(std::string_view text);
    bool chooseEgoPreset(std::string_view text);
    bool chooseFuel(std::string_view text);
    bool flip(const FieldRow& row, bool on);
    std::vector<std::string> choicesOf(const FieldRow& row);
    void nameChoices(Field& field);
    void markFormer(int number, Display& shown);
    std::optional<double> startOf(std::string_view member);
    bool refuseChoice();
    bool done(const FieldRow& row);

    Session& session_;
};

}  // namespace zentaq
