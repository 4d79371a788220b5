// The channels: every live value of a unit is a member of LiveValues and one row of `channels`. Frames are
// decoded into them, and dashboard, datalog, reference database, data points and zentaqctl show and keep what
// the row says.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <variant>

namespace zentaq {

/// Written by the decoders of frames. Temperatures are in degrees Celsius.
struct LiveValues {
    float RPM = 0;                             ///< rpm
    float MAP = 0;                             ///< pressure in the user's units, or air mass in MAF mode
    float TPS = 0;                             ///< volts
    float CLT = 0, MAT = 0;                    ///< degrees Celsius
    float BATTV = 0;                           ///< volts
    float KNOCK = 0;                           ///< percent of scale
    float EGOV = 0;                            ///< volts
    float PRIADV = 0, SECADV = 0, KNKRET = 0;  ///< degrees
    float GAMA = 0;                            ///< percent or raw
    float PRIDUTY = 0, SECDUTY = 0;            ///< percent
    float PRIPW = 0, SECPW = 0;                ///< ms
    float SECPERCENT = 0;                      ///< secondary as percent of primary
    float EGOC = 0;                            ///< percent
    float DAFR = 0, AAFR = 0;                  ///< ratio
    float IACP = 0, IACD = 0;                  ///< percent, code
    float INJ_TOG = 0;                         ///< ms
    float SEN_MAP = 0;                         ///< volts
    float INJ_VE = 0, INJ_MAT = 0, INJ_CLT = 0, INJ_BARO = 0, INJ_SE0 = 0, INJ_ASE0 = 0, INJ_ASE1 = 0;
    float MAPACCL = 0, TPSACCL = 0, INJ_ACE2 = 0, INJ_ACE5 = 0, INJ_ACE6 = 0;
    float INJ_VLTCOMP = 0;  ///< ms
    float SEN_BLEND = 0, INJ_STAGE = 0;
    float ADV_TBL = 0, ADV_CLT = 0, ADV_MAT = 0, ADV_BARO = 0, ADV_IDLE = 0;  ///< degrees
    float ISRPM = 0;                                                          ///< rpm
    bool CHKE = false;                                                        ///< behind the numbers

    std::uint64_t frames = 0;  ///< frames decoded since start; a view redraws when it moves
};

struct Channel {
    using Number = float LiveValues::*;
    using Lamp = bool LiveValues::*;
    /// `cycleMs`: what the engine takes between two injections. Not finite where there is nothing to show.
    using Computed = double (*)(const LiveValues& live, double cycleMs);
    static constexpr int asItStands = -1;

    struct LogColumn {
        std::string_view heading;   ///< empty: not in datalogs
        int decimals = asItStands;  ///< rounded to
    };
    struct Reading {
        std::string_view label;  ///< control of the dashboard; empty: the reading goes by the channel's name
        std::string_view caption;
        std::string_view unit;  ///< or one of `unitOfTemperature` and `unitOfPressure`
        std::string_view format;
    };
    struct Span {
        float low = 0;
        float high = 0;
    };
    enum Trait : unsigned {
        wideOnly = 1,  ///< narrow frames do not carry it
        ignition = 2,  ///< shown of units that only ignite, too
        glance = 4,    ///< in the one line a second of a monitor
    };

    std::string_view name;  ///< "PRIADV": of zentaqctl, and of the column in the reference database
    std::variant<std::monostate, Number, Lamp> value;  ///< nothing: no frame carries it
    LogColumn log;
    Reading reading;
    std::string_view dataPoint;  ///< in the list of the options
    Span span;                   ///< of its dial and graph
    unsigned traits = 0;
    Computed shown = nullptr;  ///< what the dashboard shows in place of the value

    constexpr bool is(Trait trait) const { return (traits & trait) != 0; }
    constexpr bool isLamp() const { return std::holds_alternative<Lamp>(value); }
    /// nullptr for a lamp and for what no frame carries.
    constexpr float* numberIn(LiveValues& live) const {
        const Number* number = std::get_if<Number>(&value);
        return number == nullptr ? nullptr : &(live.**number);
    }
    /// A lamp is 1 or 0; NaN for what no frame carries.
    constexpr float in(const LiveValues& live) const {
        if (const Lamp* lamp = std::get_if<Lamp>(&value)) return live.**lamp ? 1.0F : 0.0F;
        const Number* number = std::get_if<Number>(&value);
        return number == nullptr ? std::numeric_limits<float>::quiet_NaN() : live.**number;
    }
};

/// Units of readings that stand for the one in use: degrees of the user's scale, the unit of the pressure
/// sensor.
constexpr std::string_view unitOfTemperature = "T";
constexpr std::string_view unitOfPressure = "MAP";

namespace channelrows {

using L = LiveValues;

constexpr Channel row(std::string_view name, decltype(Channel::value) value, Channel::LogColumn log,
                      Channel::Reading reading, std::string_view dataPoint, Channel::Span span = {},
                      unsigned traits = 0, Channel::Computed shown = nullptr) {
    return {name, value, log, reading, dataPoint, span, traits, shown};
}
/// What only wide frames carry goes by its name among the data points, and by its heading on the dashboard.
constexpr Channel wide(std::string_view name, Channel::Number value, Channel::LogColumn log,
                       std::string_view unit, std::string_view format, Channel::Span span) {
    return {name, value, log, {{}, log.heading, unit, format}, name, span, Channel::wideOnly};
}

/// Only wide frames tell the duty; for the others it follows from the on time and the speed.
constexpr double duty(double told, double widthMs, double cycleMs, double rpm) {
    return told != 0 || widthMs == 0 || rpm == 0 ? told : widthMs / cycleMs * 100;
}
constexpr double primaryDuty(const L& live, double cycleMs) {
    return duty(live.PRIDUTY, live.PRIPW, cycleMs, live.RPM);
}
constexpr double secondaryDuty(const L& live, double cycleMs) {
    return duty(live.SECDUTY, live.SECPW, cycleMs, live.RPM);
}
constexpr double primaryOffTime(const L& live, double cycleMs) {
    return std::max(cycleMs - static_cast<double>(live.PRIPW), 0.0);
}
constexpr double secondaryOffTime(const L& live, double cycleMs) {
    return std::max(cycleMs - static_cast<double>(live.SECPW), 0.0);
}

}  // namespace channelrows

/// In the order of datalogs, of the database and of the data points.
inline constexpr auto channels = [] {
    using channelrows::L, channelrows::row, channelrows::wide;
    using enum Channel::Trait;
    constexpr auto degrees = unitOfTemperature;
    return std::to_array<Channel>({
        row("RPM", &L::RPM, {"RPM"}, {"lblTach", "Engine Speed", "rpm", "####0"}, "RPM", {0, 9000},
            ignition | glance),
        row("MAP", &L::MAP, {"MAP", 1}, {"lblMAP", "Manifold Pressure", unitOfPressure, "##0.0"}, "MAP",
            {0, 105}, ignition | glance),
        row("TPS", &L::TPS, {"TPS", 2}, {"lblTPS", "Throttle Position", "v", "0.00"},
            "Throttle Position Sensor", {0, 5}, ignition | glance),
        row("CLT", &L::CLT, {"CLT"}, {"lblCLT", "Coolant Temperature", degrees, "##0"}, "Coolant Temp",
            {-40, 150}, glance),
        row("MAT", &L::MAT, {"MAT"}, {"lblMAT", "Manifold Temperature", degrees, "##0"}, "Manifold Air Temp",
            {-40, 150}, glance),
        row("BATTV", &L::BATTV, {"Batt V", 1}, {"lblVolt", "Battery Voltage", "v", "#0.0"}, "Battery Voltage",
            {7, 18}, ignition | glance),
        row("KNOCK", &L::KNOCK, {"Knock", 0}, {"lblKNK", "Knock", "%", "##0"}, "KNOCK", {0, 100},
            ignition | glance),
        row("EGOV", &L::EGOV, {"EGO V", 2}, {"lblEGOV", "EGO Voltage", "v", "0.00"}, "EGO Volts", {0, 5}),
        row("CHKE", &L::CHKE, {"ChkEng"}, {{}, "Check Engine", {}, "0"}, "CHKE", {0, 1}, ignition | glance),
        row("PRIADV", &L::PRIADV, {"Pri Adv", 1}, {"lblADV", "Advance", "deg", "#0.0"}, "Ignition Advance",
            {0, 60}, ignition | glance),
        row("SECADV", &L::SECADV, {"Sec Adv", 1}, {"lblSADV", "Secondary Advance", "deg", "#0.0"},
            "Secondary Advance", {0, 60}, ignition),
        row("KNKRET", &L::KNKRET, {"Knock Retard", 1}, {"lblRetard", "Knock Retard", "deg", "#0.0"},
            "Knock Retard", {0, 30}, ignition),
        row("GAMA", &L::GAMA, {"GAMA"}, {"lblTFPW", "GAMA", "%", "##0"}, "GAMA", {0, 250}),
        // Datalogs of other programs bring it; nothing here tells or computes it.
        row("IPP", {}, {}, {}, "IPP"),
        row("PRIDUTY", &L::PRIDUTY, {"Pri Duty", 1}, {"lblPID", "Primary Injector Dutycycle", "%", "##0.0"},
            "Primary Dutycycle", {0, 100}, wideOnly | glance, channelrows::primaryDuty),
        row("PRIPW", &L::PRIPW, {"Pri Pulsewidth", 2}, {"lblPPW", "Primary Injector ON Time", "ms", "#0.00"},
            "Pulse ON Time", {0, 20}, glance),
        row("PRIOFFTIME", {}, {}, {"lblPOT", "Primary Injector OFF Time", "ms", "#0.00"}, "Pulse OFF Time",
            {0, 120}, 0, channelrows::primaryOffTime),
        row("SECDUTY", &L::SECDUTY, {"Secondary Duty", 1},
            {"lblSID", "Secondary Injector Dutycycle", "%", "##0.0"}, "Staged Dutycycle", {0, 100}, wideOnly,
            channelrows::secondaryDuty),
        row("SECPW", &L::SECPW, {"Secondary Pulsewidth", 2},
            {"lblSPW", "Secondary Injector ON Time", "ms", "#0.00"}, "Staged Pulse ON", {0, 20}),
        row("SECOFFTIME", {}, {}, {"lblSOT", "Secondary Injector OFF Time", "ms", "#0.00"},
            "Staged Pulse OFF", {0, 120}, 0, channelrows::secondaryOffTime),
        row("SECPERCENT", &L::SECPERCENT, {"Secondary Percent of Primary", 0},
            {"lblSIP", "Secondary Percent of Primary", "%", "##0"}, "Secondary Percent", {0, 100}),
        row("EGOC", &L::EGOC, {"EGO Correction"}, {"lblEGOC", "EGO Corrections", "%", "#0"}, "EGO Correction",
            {-50, 50}, glance),
        row("DAFR", &L::DAFR, {"Desired AFR", 2}, {"lblDAFR", "Desired Air-to-Fuel Ratio", ":1", "#0.00"},
            "DAFR", {9, 20}, glance),
        row("AAFR", &L::AAFR, {"Actual AFR", 2}, {"lblAAFR", "Actual Air-to-Fuel Ratio", ":1", "#0.00"},
            "AFR", {9, 20}, glance),
        row("IACP", &L::IACP, {"IAC Pos", 0}, {"lblIAC", "Idle Air Control", "%", "##0"}, "IAC Position",
            {0, 100}),
        row("IACD", &L::IACD, {"Step Direction"},
            {"lblIACDirection", "Idle Air Control Direction", {}, "##0"}, "IACD", {0, 255}),
        wide("INJ_TOG", &L::INJ_TOG, {"TOG", 3}, "ms", "#0.000", {0, 20}),
        wide("SEN_MAP", &L::SEN_MAP, {"MAP Raw Voltage", 3}, "v", "0.000", {0, 5}),
        wide("INJ_VE", &L::INJ_VE, {"VE Table"}, "%", "##0", {-50, 50}),
        wide("INJ_MAT", &L::INJ_MAT, {"MAT Correction"}, "%", "##0", {-50, 50}),
        wide("INJ_CLT", &L::INJ_CLT, {"CLT Correction"}, "%", "##0", {0, 60}),
        wide("INJ_BARO", &L::INJ_BARO, {"Barometric Correction"}, "%", "##0", {-50, 50}),
        wide("INJ_SE0", &L::INJ_SE0, {"SE0"}, "%", "##0", {0, 250}),
        wide("INJ_ASE0", &L::INJ_ASE0, {"ASE0"}, "%", "##0", {0, 250}),
        wide("INJ_ASE1", &L::INJ_ASE1, {"ASE1"}, "%", "##0", {0, 250}),
        wide("MAPACCL", &L::MAPACCL, {"MAP Acceleration", 3}, {}, "#0.000", {0, 7}),
        wide("TPSACCL", &L::TPSACCL, {"TPS Acceleration", 3}, "V/s", "#0.000", {0, 51}),
        wide("INJ_ACE2", &L::INJ_ACE2, {"ACE2"}, "%", "##0", {0, 250}),
        wide("INJ_ACE5", &L::INJ_ACE5, {"ACE5"}, "%", "##0", {0, 250}),
        wide("INJ_ACE6", &L::INJ_ACE6, {"ACE6"}, "%", "##0", {0, 250}),
        wide("INJ_VLTCOMP", &L::INJ_VLTCOMP, {"Voltage Comp"}, "ms", "#0.000", {-1, 1}),
        wide("SEN_BLEND", &L::SEN_BLEND, {"Blend"}, "%", "##0", {0, 100}),
        wide("INJ_STAGE", &L::INJ_STAGE, {"Staged Percentage"}, "%", "##0", {0, 100}),
        wide("ADV_TBL", &L::ADV_TBL, {"Table Advance"}, "deg", "#0.0", {0, 60}),
        wide("ADV_CLT", &L::ADV_CLT, {"Coolant Advance"}, "deg", "#0.0", {0, 60}),
        wide("ADV_MAT", &L::ADV_MAT, {"MAT Advance"}, "deg", "#0.0", {-30, 30}),
        wide("ADV_BARO", &L::ADV_BARO, {"Barometric Advance"}, "deg", "#0.0", {-30, 30}),
        wide("ADV_IDLE", &L::ADV_IDLE, {"Idle Advance"}, "deg", "#0.0", {-30, 30}),
        wide("ISRPM", &L::ISRPM, {"Idle Speed"}, "rpm", "####0", {0, 4000}),
    });
}();

/// Where datalogs and lists have the pins. A channel that comes later stands behind them, so that no column
/// and no stored place moves.
inline constexpr auto channelsBeforePins = std::span(channels).first(49);
inline constexpr auto channelsBehindPins = std::span(channels).subspan(channelsBeforePins.size());

/// As columns and lists name the pins; the pin of a name is its place.
constexpr auto pinNames = std::to_array<std::string_view>(
    {"GPIO1",  "GPIO2",  "GPIO3",  "GPIO4",  "GPIO5",  "GPIO6",  "GPIO7",  "GPIO8",  "GPIO9",  "GPIO10",
     "GPIO11", "GPIO12", "GPIO13", "GPIO14", "GPIO15", "GPIO16", "GPIO17", "GPIO18", "GPIO19", "GPIO20"});

// A live value without a row does not build.
static_assert(std::ranges::count_if(channels,
                                    [](const Channel& channel) {
                                        return std::holds_alternative<Channel::Number>(channel.value);
                                    }) *
                  sizeof(float) ==
              offsetof(LiveValues, CHKE));

/// The channel of a live value.
constexpr const Channel& channelOf(std::variant<std::monostate, Channel::Number, Channel::Lamp> value) {
    return *std::ranges::find(channels, value, &Channel::value);
}

/// Before the first frame nothing is known: all numbers are NaN.
constexpr void forgetNumbers(LiveValues& live) {
    for (const Channel& channel : channels) {
        if (float* number = channel.numberIn(live)) *number = std::numeric_limits<float>::quiet_NaN();
    }
}

}  // namespace zentaq
