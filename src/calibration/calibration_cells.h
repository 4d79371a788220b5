// A calibration file taken apart bit by bit, and what each of its cells stands for on a unit kind.
// Listing, comparing and merging work on this; nothing here repairs or rounds.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "unit/axis_kinds.h"
#include "unit/parameter.h"
#include "unit/table_kinds.h"
#include "unit/unit_kind.h"

namespace zentaq {

/// The bits of a 32-bit float. Bits and not floats, so that -0 and every NaN stay what they are.
using CellBits = std::uint32_t;

float floatOf(CellBits bits);
CellBits bitsOf(float value);

/// The shortest decimal text that gives the same float again; "inf", "-inf", "nan:7fc00001".
std::string exactText(CellBits bits);

/// The float nearest to a text, or the exact one of a form that exactText gives. Nothing for a text that is
/// no number. Throws Overflow for one that no float can hold.
std::optional<CellBits> exactBits(std::string_view text);

/// The value of a cell that holds a whole number from 0 to 255, as a sum of bits needs.
std::optional<int> byteOf(CellBits bits);

/// A file as it stands.
struct CalibrationBytes {
    static constexpr std::size_t headerFloats = 3;
    static constexpr std::size_t floatBytes = 4;
    static constexpr std::size_t headerBytes = headerFloats * floatBytes;

    std::array<CellBits, headerFloats> header{};  ///< unit kind, program version, firmware code
    const UnitKind* kind = nullptr;               ///< nullptr for a kind that is not known
    std::vector<CellBits> cells;                  ///< at most those of the kind's calibration
    std::string surplus;                          ///< what stands behind the last of them

    /// Throws Failure when the file ends inside its header.
    static CalibrationBytes of(std::string_view fileBytes);
    std::string bytes() const;
    std::size_t length() const;
    /// 0 behind the end of a short file, as opening it gives.
    CellBits cell(int index) const;
    int count() const { return static_cast<int>(cells.size()); }
};

/// `of` for a file of a known kind; throws Failure for another.
CalibrationBytes knownCalibration(std::string_view fileBytes);

/// Cells that a file of a kind has at most: those that a save writes, or all of a calibration for no kind.
int mostCells(const UnitKind* kind);

enum class CellRole : std::uint8_t {
    Loose,         ///< no member
    ControlByte,   ///< `number` 0 to 2
    Cylinders,     ///< cylinders in the high nibble, events in the low one; as a whole no member
    Member,        ///< `row`, `element`
    Units,         ///< code of the user's pressure unit
    PinFunction,   ///< of pin `number`
    PinParameter,  ///< of pin `number`, `element` 0 to 7
    OutputTable,   ///< `number` 1 or 2, `element` 0 to 255
    AxisKinds,     ///< of output table `number`: rows in the high nibble, columns in the low one
    Rows,          ///< of output table `number`, 0 for the main tables
    Columns,
    RowStop,  ///< of output table `number`, `element` 0 to 15
    ColumnStop,
    FuelTrimSent,  ///< `element` 0 to 7
    TrimSent,      ///< `element` 0 to 15
    Name,          ///< `element` 0 to 23
    Notes,         ///< `element` 0 to 499
};

/// The parts of a cell that holds two numbers of four bits.
inline constexpr int highNibble = 0xF0;
inline constexpr int lowNibble = 0x0F;

struct CellPlace {
    CellRole role = CellRole::Loose;
    int number = 0;
    int element = 0;
    const Parameter* row = nullptr;

    bool isTable() const;
    bool isSentTrim() const { return role == CellRole::FuelTrimSent || role == CellRole::TrimSent; }
};

/// What the cells of a kind stand for. Each has one meaning; a member that shares the cell of another, or
/// follows from others, has no place of its own.
class CalibrationCells {
 public:
    static constexpr int nameLength = 24;
    static constexpr int notesLength = 500;
    static constexpr int blockCells = 9;

    /// With nullptr all cells are without a member.
    explicit CalibrationCells(const UnitKind* kind);

    const CellPlace& place(int cell) const { return places_.at(static_cast<std::size_t>(cell)); }
    /// All cells in the order in which they are listed: control bytes, members in the order of their table,
    /// pins, output tables, trims as the unit takes them, name, notes, cells without a member.
    const std::vector<int>& order() const { return order_; }
    /// "KNK_MIN", "ADV[3,5]", "GPIO[0].function", "cell[19]".
    std::string keyOf(int cell) const;
    std::string memberOf(const CellPlace& place) const;
    std::string elementOf(int cell) const;

    /// The cell of the last fuel trim, which holds the first character of the notes as well; nothing on a
    /// kind without fuel trims.
    std::optional<int> sharedNoteCell() const { return sharedNote_; }

 private:
    void claim(int cell, const CellPlace& place);
    void claimMembers();
    void claimPins();
    void claimOutputTables();
    void claimTexts();

    const UnitKind* kind_;
    std::vector<CellPlace> places_;
    std::vector<int> order_;
    std::vector<bool> taken_;
    std::optional<int> sharedNote_;
};

/// Names of the options that stand for a bit of a control byte (0 to 2): none, one or two.
class OptionNames {
 public:
    explicit OptionNames(const UnitKind& kind);
    const std::vector<std::string_view>& of(int controlByte, int bit) const;

 private:
    std::array<std::array<std::vector<std::string_view>, 8>, 3> names_;
};

/// The value that the last fuel trim cannot have but a character of the notes has.
bool holdsNoteCharacter(CellBits bits);

/// Cells of one character each as text in quotes, a line behind each line break; zeros at the end are left
/// out. Nothing when a cell holds no character.
std::optional<std::vector<std::string>> quotedLines(std::span<const CellBits> cells);
/// The same in one line.
std::optional<std::string> quotedText(std::span<const CellBits> cells);
/// The cells of one such line. Throws Failure with the reason for a text that is not of the form.
std::vector<CellBits> charactersOfQuoted(std::string_view quoted);

/// Release and build that a firmware code tells; nothing for a code that tells none.
std::optional<FirmwareVersion> firmwareOf(CellBits code);

}  // namespace zentaq
