// The input/output manager without its window: pins, functions and parameters of a calibration as lists,
// the check of an entry, and the rules of choosing a function.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "unit/entry_outcome.h"
#include "unit/gpio_pins.h"
#include "unit/gpio_rows.h"
#include "unit/parameter.h"

namespace zentaq {

class Unit;

/// One row of the pin list.
struct GpioPinRow {
    std::string text;
    int pin = 0;
};

/// The functions that a pin may have.
struct GpioFunctionList {
    struct Item {
        std::string text;
        int code = 0;
    };
    static constexpr int nothing = -1;
    std::vector<Item> items;
    int selected = nothing;  ///< item of the stored code; `nothing` when the list does not have it
};

/// One row of the parameter list: the columns "Mode", "Value" and "Unit", and what its entry must be.
struct GpioParamRow {
    std::string mode;   ///< label and hint
    std::string label;  ///< with the function's name, with the system's own trailing blanks
    std::string hint;
    std::string value;  ///< in the shown unit; empty for an action
    std::string unit;
    int parameter = -1;  ///< what it edits, from 0; -1 for an action or a notice
    GpioRowForm form = GpioRowForm::Number;
    Limits limits;
};

/// What came of choosing a function.
enum class GpioChoice : std::uint8_t {
    Changed,    ///< all parameters of the pin are 0 now
    Unchanged,  ///< the pin has this function already; nothing was touched
    UnitInUse,  ///< refused: `gpioUnitInUseText` tells why, and the lists show the stored function
    NotOffered  ///< refused: `whyNot` tells why
};
inline constexpr std::string_view gpioUnitInUseText =
    "GPIO function cannot be changed ONFLY.\nPlease turn the unit off or disconnect the serial cable.";
inline constexpr std::string_view gpioUnitInUseTitle = "Unit Connected";

/// A function that only one input may have, and the pins that have it all the same.
struct GpioDouble {
    int code = 0;
    std::vector<int> pins;
    bool operator==(const GpioDouble&) const = default;
};

/// Pulses of a speed sensor on the drive shaft in one mile. The tire's diameter is in inches.
float gpioPulsesPerMile(float tireDiameter, float axleRatio, float pulsesPerTurn);

class GpioModel {
 public:
    explicit GpioModel(Unit& unit) : unit_(unit) {}

    /// The pins that the kind and its firmware have.
    std::vector<GpioPinRow> Show_GPIO() const;
    /// Two digits for each row: the pin behind it, "00010203040506".
    static std::string tagOf(const std::vector<GpioPinRow>& rows);

    /// The functions for a pin. Empty for a pin without a row.
    GpioFunctionList Show_GPIO_Func(int pin) const;

    /// The parameters of function `code` with the values of the pin. The list stays live until CloseGPIO.
    std::vector<GpioParamRow> Show_GPIO_Param(int pin, int code);
    void CloseGPIO() { live_ = false; }
    /// A list of parameters is shown: it must follow changes of scale and values.
    bool parametersLive() const { return live_; }

    /// Gives a pin another function that its list offers, with all parameters 0. BoundsError for a pin that
    /// the kind does not have.
    GpioChoice choose(int pin, int code);
    /// Why a pin may not have a function, on one line; empty where it may.
    std::string whyNot(int pin, int code) const;
    /// Lists never lead there, files may.
    std::vector<GpioDouble> doubled() const;
    /// What a file holds in spite of the lists, one line a pin. The code 0 of pins that were never set counts
    /// as none.
    std::vector<std::string> oddFunctions() const;

    /// Checks a typed value for a row of the pin's stored function and stores it; with ONFLY_MODE the unit is
    /// told. Rows without a value ignore it.
    EntryOutcome enter(int pin, int row, std::string_view text);

    /// The row that edits a parameter of the pin's stored function, as `enter` counts rows; -1 for none.
    int rowOf(int pin, int parameter) const;
    /// A parameter as its row shows it. One that no row edits: the cell as it stands.
    float shownParameter(int pin, int parameter) const;

    /// The stored code, whatever IndexPolling says. BoundsError for a pin that the kind does not have.
    int storedCode(int pin) const;

 private:
    bool offers(const GpioFunction& function, const GpioPin& pin) const;
    bool firmwareAllows(const GpioFunction& function) const;
    bool elsewhere(int code, int pin) const { return pinWith(code, pin) != nullptr; }
    const GpioPin* pinWith(int code, int besides) const;
    bool isOnSpeedPin(const GpioFunction& function, const GpioPin& pin) const;
    std::string whyNot(const GpioFunction& function, const GpioPin& pin) const;
    std::string offeredText(int pin) const;
    const GpioPins& pins() const;
    std::span<const GpioRow> rowsOf(int code) const;
    GpioParamRow shown(const GpioRow& row, int pin, int code) const;
    Limits limitsOf(const GpioRow& row, const std::string& word) const;
    float fromCell(const GpioRow& row, float cell) const;
    float toCell(const GpioRow& row, float value) const;
    void updatePulses(int pin, int parameter);

    Unit& unit_;
    bool live_ = false;
};

}  // namespace zentaq
