// clsECU: raw bytes and counts of the unit to the texts that a tuner reads, and the fuelling estimates of a
// cell. Live values are stored by reading these texts back, so a format here fixes the rounding of a live
// value.
#pragma once

#include <array>
#include <string>

#include "unit/unit.h"

namespace zentaq {

/// How the temperature members answer.
enum class TemperatureMode { Celsius = 1, Fahrenheit = 2 };

/// What a 16-bit pulse count of a frame means: the narrow frame of the ORB A counts in steps of 1/125 ms, and
/// its fuel factor in 1/255; every other frame carries whole microseconds and whole percents.
struct PulseScale {
    bool fastFlag = false;     ///< the frame is a wide one
    bool internalLog = false;  ///< the value is kept in the coarse scale whatever the unit
};

/// kept: `KPAtoUnit` and `UAP` belong to the class as windows know it, whether one asks for them or not.
/// The scaling members hold no state and may be called without an object. All throw Overflow when the result
/// is no finite number, for example with a sensor of scale 0. Bytes are 0 to 255; `word` members take the
/// high byte first.
class Ecu {
 public:
    static constexpr int listSize = 256;

    static std::string RPM(int high, int low);       ///< "####0", rpm
    static std::string Advance(double x);            ///< "##.0", degrees without the engine's offset
    static std::string Secondary_Advance(double x);  ///< "##.0", as Advance
    static std::string Knock_Retard(double x);       ///< "##.0", degrees
    static std::string MAP(Unit& unit, double x);    ///< "###.0", user's pressure unit; x may carry quarters
    static std::string KPAtoUnit(const Unit& unit, double kpa);  ///< "###.0"
    static std::string MAF(double x);                            ///< "###.0", percent; x may carry tenths
    static std::string CLT(double x, TemperatureMode mode);      ///< "##0"
    static std::string MAT(double x, TemperatureMode mode);      ///< "##0"
    static std::string TFPW(const Unit& unit, int high, int low, PulseScale scale);  ///< "##0"
    static std::string KNOCK(double x);                      ///< "##0", percent of scale
    static std::string TPS(double x);                        ///< "#.00", volts
    static std::string EGO_Voltage(double x);                ///< "#.00", volts
    static std::string Voltage(const Unit& unit, double x);  ///< "##.0", volts of the battery
    static std::string UAP(int high, int low);               ///< "#0.0##"
    static std::string SPW(const Unit& unit, int high, int low, PulseScale scale);  ///< "##.#00", ms
    static std::string PPW(const Unit& unit, int high, int low, PulseScale scale);  ///< as SPW
    /// "##.00". The inverse of the image byte of a target ratio: AFR / (x / 255 + 0.5).
    static std::string Actual_AFR(Unit& unit, double x);
    static std::string Desired_AFR(Unit& unit, double x);
    /// "##0", percent: 128 is no correction, above it the unit adds fuel, below it takes fuel away.
    static std::string EGO_Correction(double x);
    /// "##0", percent between the limits, held to 0 to 100.
    static std::string IAC(double x, double minDuty, double maxDuty);
    /// "##0", secondary as percent of primary; "0" when the primary is 0.
    static std::string POPD(double secondary, double primary);
    /// What a pin does now: "ON" and "OFF" of a switch, "nn%" of a duty, "nn MPH" of a speed input, "n.nn V"
    /// of an analogue input, "DISABLED" of a pin without a function; the plain number for an unknown
    /// function.
    static std::string GPIO_Display(const Unit& unit, int function, int raw);

    // ---- The two lists of cell estimates, by table index 0 to 255. BoundsError outside.
    /// On time of a cell in ms at a pressure in the user's unit, as "##.#0"; kept in the list.
    /// `applySpw`: times the staged share of the cell.
    std::string Injector_Pulsewidth(Unit& unit, int index, float pressure, bool applySpw);
    /// Duty in percent of the pulse width kept for a cell, as "##0"; kept in the list.
    std::string Injector_DutyCycle(Unit& unit, float rpm, int index);
    std::string Get_PulseWidth(int index) const;  ///< "#0.00"
    std::string Get_DutyCycle(int index) const;   ///< "##0"
    float pulseWidthMs(int index) const;
    float dutyPercent(int index) const;

    /// Injections are `factor / rpm` seconds apart: 120 for a sequential engine, which injects once in two
    /// turns, else 60. Sequential is PHDSEQ 3, as the engine table has it, or 0, as a dashboard without a
    /// calibration has it, with Engine_Type 0 or 3.
    static double engineCycleFactor(Unit& unit);

 private:
    std::array<float, listSize> pulseWidth_{};
    std::array<float, listSize> duty_{};
};

}  // namespace zentaq
