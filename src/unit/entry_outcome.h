// What comes of an entry: it is taken, or refused for a reason that the command in hand tells its user. These
// are the checks of every entry, whether typed, pasted or computed; none opens a box or changes a value.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "unit/parameter.h"

namespace zentaq {

class Entry;

/// Why an entry is not taken.
struct Refusal {
    int warning = 0;          ///< of `codes::Warning`; 0: there is nothing to tell
    std::string text = {};    ///< of the warning: "(2 to 100 units)"
    std::string entry = {};   ///< a number out of range, as the log names it: "101"
    std::string limits = {};  ///< "2 to 100"
    std::string where = {};   ///< the cell of a table that it was meant for: "cell 3,12"; else empty

    bool operator==(const Refusal&) const = default;
    /// The warning, as a program without boxes tells it.
    std::string line() const;
    /// One of many: "Invalid Entry: 101 -> (2 to 100 units)", with ", cell 3,12" where it tells one.
    std::string brief() const;

 private:
    std::string reason() const;
};

/// Whoever gets one tells it, hands it on, or says why it may be passed over.
class [[nodiscard]] EntryOutcome {
 public:
    EntryOutcome() = default;                                        ///< taken
    EntryOutcome(Refusal refusal) : refusal_(std::move(refusal)) {}  // NOLINT: a refusal is an outcome
    /// Nothing stored and nothing to tell: a member that the kind lacks, or one that follows from others.
    static EntryOutcome ignored() { return Refusal{}; }

    explicit operator bool() const { return !refusal_; }
    /// Of an entry that was not taken.
    const Refusal& refusal() const { return refusal_.value(); }

 private:
    std::optional<Refusal> refusal_;
};

/// Keeps what there is to tell of an entry, for the end of the command that made many.
/// `where` names the cell of a table that the entry was meant for.
void noteRefusal(std::vector<Refusal>& refused, const EntryOutcome& outcome, std::string where = {});

// ---- Of a text
EntryOutcome checkFilled(std::string_view text);
EntryOutcome checkNumeric(std::string_view text);
/// Filled, a number, and within the limits. A number that fits no 32-bit float lies within none.
EntryOutcome checkTyped(std::string_view text, const Limits& limits);
/// A stop of an axis must lie above the one to its left.
EntryOutcome checkAscending(std::string_view left, std::string_view right);

// ---- Of a number
EntryOutcome checkWhole(double number);
EntryOutcome checkLimits(float value, const Limits& limits);

// ---- Of a member
/// The limits in force; Limits::none() where there is no range. `value` is the entry, or no number when only
/// the limits are asked. Reading may repair cells.
Limits limitsOf(Unit& unit, const Parameter& row, int element, float value);
/// Throws TypeMismatch for a text that is no number.
EntryOutcome checkEntry(Unit& unit, const Parameter& row, const Entry& entry, int element);

}  // namespace zentaq
