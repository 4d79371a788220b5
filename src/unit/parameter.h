// One row of the parameter table: name, cell, count, range, image bytes, on-the-fly bytes, polling answer,
// unit and meaning. Readers, writers, checks, image, records, pages and the command line read this row.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace zentaq {

class Unit;
struct Parameter;

/// The limits of an entry at this moment, both included, with the text that a refusal shows.
struct Limits {
    float minimum = 0;
    float maximum = 0;
    std::string text;
    std::span<const float> listed = {};  ///< nothing else is taken; in the order that the text names them
    double step = 0;                     ///< entries are multiples of it; 0: any number
    std::string stepText = {};           ///< told when only the step is missed; empty: `text`

    /// Anything is accepted.
    static Limits none() {
        return {-std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(), {}};
    }
    bool unlimited() const { return minimum == -std::numeric_limits<float>::infinity(); }
};

struct NoRange {};
/// A range that never changes; its text is the system's own.
struct FixedRange {
    float minimum = 0;
    float maximum = 0;
};
/// Six numbers, ascending; nothing between them is accepted.
struct ListedValues {
    std::array<float, 6> values{};
};
/// A range made of other members at run time. `value` is the entry, or no number when only the limits are
/// asked.
using RangeOf = Limits (*)(Unit& unit, int element, float value);
using Range = std::variant<NoRange, FixedRange, ListedValues, RangeOf>;

/// How a number becomes image bytes. A word has its high byte first.
enum class Bytes : std::uint8_t { None, One, Word };

/// A number that no straight line describes. `value` is the cell, or the entry where the encoding says so.
using Encode = double (*)(Unit& unit, double value);

/// From a cell to image bytes: (v + shift) * factor / divisor, rounded half to even unless `whole` is false.
struct Encoding {
    Bytes bytes = Bytes::None;
    double shift = 0;
    double factor = 1;
    double divisor = 1;
    bool whole = true;
    Encode special = nullptr;  ///< takes the place of the straight line
    bool ofEntry = false;      ///< the entered value is sent, not the cell made of it
    int indexOffset = 0;       ///< byte index minus cell index, where they differ

    /// The number to split into bytes. Throws Overflow when a rounded number needs more than 16 bits.
    double number(Unit& unit, double value) const;
};

/// What a change sends to a running unit.
enum class Sending : std::uint8_t {
    AsImage,   ///< the image bytes of the new value
    Own,       ///< the row's own encoding
    ByWriter,  ///< the writer sends bytes of other cells
    Never      ///< nothing: the change takes effect with the next full programming
};

/// Whether a writer leaves something to send.
enum class After : std::uint8_t { Send, Nothing };

/// Reads or writes where the plain cell will not do. `element` counts from 0.
using ReadMember = float (*)(Unit& unit, const Parameter& row, int element);
using WriteMember = After (*)(Unit& unit, const Parameter& row, float value, int element);

struct Parameter {
    static constexpr int answersIndex = -2;
    static constexpr int ignoresPolling = -1;
    static constexpr int noCell = -1;

    std::string_view name;   ///< "KNK_MIN"; indexed members without Get_ and Set_: "VE"
    std::string_view alias;  ///< a second name, where the system uses two
    int index = noCell;      ///< cell of element 0; noCell for derived members
    int count = 1;
    int stride = 1;              ///< cells from one element to the next
    int polling = answersIndex;  ///< answer with IndexPolling for element 0, where it is not the index
    Range range = NoRange{};
    std::string_view rangeText;  ///< for a FixedRange and ListedValues
    Encoding image;
    Sending sending = Sending::AsImage;
    Encoding onTheFly;         ///< for Sending::Own
    bool obeysSilent = false;  ///< a table cell that SILENT_MODE keeps off the wire
    bool readOnly = false;     ///< derived: a write is ignored
    bool controlBit = false;   ///< an option: the index is a control byte and no cell
    ReadMember read = nullptr;
    WriteMember write = nullptr;  ///< stores the checked value
    std::string_view unit;        ///< "RPM", "%"; pressures say "MAP"
    std::string_view meaning;

    constexpr int cell(int element) const { return index + element * stride; }
    constexpr bool hasCell() const { return index >= 0; }
    constexpr bool polls() const { return polling != ignoresPolling && (polling >= 0 || hasCell()); }
    constexpr int pollingAnswer(int element) const {
        return (polling >= 0 ? polling : index) + element * stride;
    }
    /// The bytes that a change sends; None when it sends nothing.
    constexpr Encoding sent() const {
        if (sending == Sending::AsImage) return image;
        return sending == Sending::Own ? onTheFly : Encoding{};
    }
    /// Whether a change reaches a running unit at once.
    constexpr bool sentOnTheFly() const {
        return sending == Sending::ByWriter || (hasCell() && sent().bytes != Bytes::None);
    }
};

}  // namespace zentaq
