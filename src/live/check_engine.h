// The check-engine codes: which texts a unit's code words stand for, and the two short fields of the
// dashboard.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

/// The texts by code word and bit. A place without a code holds " ".
class CheckEngineTexts {
 public:
    static constexpr int rowCount = 12;
    static constexpr int bitCount = 8;

    /// `row` 1 to 12, `bit` 0 to 7; BoundsError outside. The ORB A has analogue inputs where the others have
    /// outputs.
    static std::string_view text(const UnitKind& kind, int row, int bit);
};

/// The texts of all set codes of a unit, by row and bit: a cleared bit is a set code, a word of 255 holds
/// none and a word of 0 all eight. Ask it once words have come from the unit; before that they are all 0.
std::vector<std::string> activeCodes(const Unit& unit);

/// What the dashboard shows of one code.
struct ShortCode {
    std::string top;     ///< 7 characters
    std::string bottom;  ///< 7 characters

    bool operator==(const ShortCode&) const = default;
};

/// The two fields of a code's text, each padded to 7 characters; nothing for a blank or unknown text.
std::optional<ShortCode> shortCode(std::string_view text);

/// The same on one line, behind how many there are: "2 codes: TPS SEN FAIL HI". Without a code the fields
/// alone, "CODES CLEARED".
std::string codeLine(const ShortCode& code, std::size_t count);

/// The line, and below it `texts`, all codes in full: as many as a tip has room for, and how many more there
/// are.
std::string codeTip(const ShortCode& code, const std::vector<std::string_view>& texts);

/// The code list of the dashboard: filled by texts, stepped through by a timer.
class CheckEngineDisplay {
 public:
    static constexpr int entryCount = 151;

    void Update_CHKE(std::string_view text);
    void Clear_CHKE();
    /// The unit has cleared its codes: says so for a while, unless a code comes.
    void tellCleared() { clearedSteps_ = stepsOfCleared; }
    bool empty() const;
    /// Of all filled entries, in the order of the steps.
    std::vector<std::string_view> texts() const;
    /// No code, and nothing to tell of codes either.
    bool silent() const { return empty() && clearedSteps_ == 0; }
    /// The next filled entry, beginning again behind the last. When no entry is filled: that codes were
    /// cleared, for as many steps as that is told, then nothing.
    std::optional<ShortCode> step();

 private:
    static constexpr int stepsOfCleared = 3;

    std::array<bool, entryCount> filled_{};
    int shownEntry_ = -1;
    int clearedSteps_ = 0;
};

}  // namespace zentaq
