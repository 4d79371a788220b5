#include "live/frame_decoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <variant>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "live/ecu.h"

namespace zentaq {

namespace {

/// One or two bytes of a frame.
struct Raw {
    int high = 0;
    int low = 0;    ///< 0 for a single byte
    int value = 0;  ///< the byte, or high * 256 + low
};

using Scaling = double (*)(Unit& unit, Raw raw);
using Number = Channel::Number;
using Lamp = Channel::Lamp;
struct Pin {
    int index;
};

/// Where a value stands in a frame, how it is scaled, where it goes.
struct FrameRow {
    int byte;
    int width;
    std::variant<Number, Lamp, Pin> target;
    Scaling scaling;
};

using FrameTable = std::span<const FrameRow>;

// ---- Scalings. Going through text is part of the value: PRIADV carries one decimal.
double plain(Unit&, Raw raw) {
    return raw.value;
}
template <auto textOf>
double text(Unit&, Raw raw) {
    return numberOf(textOf(raw.value));
}
template <auto textOf>
double textOfUnit(Unit& unit, Raw raw) {
    return numberOf(textOf(unit, raw.value));
}
template <auto textOf>
double temperature(Unit&, Raw raw) {
    return numberOf(textOf(raw.value, TemperatureMode::Celsius));
}
template <auto textOf>
double advanceBy(Unit& unit, Raw raw) {
    const double sum = numberOf(textOf(raw.value)) + static_cast<double>(unit.get("MOFFSET"));
    return numberOf(formatNumber(sum, "##.0"));
}
template <auto textOf, bool fastFlag>
double pulse(Unit& unit, Raw raw) {
    return numberOf(textOf(unit, raw.high, raw.low, PulseScale{.fastFlag = fastFlag}));
}
template <int divisor, int parts = 1, int zero = 0>
double over(Unit&, Raw raw) {
    return (raw.value - zero) / (static_cast<double>(divisor) / parts);
}

double rpm(Unit&, Raw raw) {
    return numberOf(Ecu::RPM(raw.high, raw.low));
}
double load(Unit& unit, Raw raw) {
    return numberOf(unit.Get_Control2(0) ? Ecu::MAF(raw.value) : Ecu::MAP(unit, raw.value));
}
double wideLoad(Unit& unit, Raw raw) {
    return numberOf(unit.Get_Control2(0) ? Ecu::MAF(raw.value / 10.0) : Ecu::MAP(unit, raw.value / 4.0));
}
double idleMotor(Unit& unit, Raw raw) {
    return numberOf(Ecu::IAC(raw.value, static_cast<double>(unit.get("MinDuty")),
                             static_cast<double>(unit.get("MaxDuty"))));
}
double duty(Unit&, Raw raw) {
    return raw.value / 255.0 * 100;
}
double wideIdleMotor(Unit&, Raw raw) {
    return roundHalfEven(raw.value / 2.55);
}
double pressureRate(Unit& unit, Raw raw) {
    return raw.value / (137 / (static_cast<double>(unit.MAPRange()) * 0.0388));
}
double voltageTime(Unit&, Raw raw) {
    return (raw.value - 125) * 8 / 1000.0;
}
double idleSpeed(Unit&, Raw raw) {
    return raw.value * 16;
}

constexpr Scaling advance = advanceBy<Ecu::Advance>;
constexpr Scaling secondaryAdvance = advanceBy<Ecu::Secondary_Advance>;
constexpr Scaling knockRetard = text<Ecu::Knock_Retard>;
constexpr Scaling coolant = temperature<Ecu::CLT>;
constexpr Scaling airTemperature = temperature<Ecu::MAT>;
constexpr Scaling gama = pulse<Ecu::TFPW, false>;
constexpr Scaling wideGama = pulse<Ecu::TFPW, true>;
constexpr Scaling primaryWidth = pulse<Ecu::PPW, false>;
constexpr Scaling secondaryWidth = pulse<Ecu::SPW, false>;
constexpr Scaling widePrimaryWidth = pulse<Ecu::PPW, true>;
constexpr Scaling wideSecondaryWidth = pulse<Ecu::SPW, true>;
constexpr Scaling knock = text<Ecu::KNOCK>;
constexpr Scaling throttle = text<Ecu::TPS>;
constexpr Scaling oxygenVolts = text<Ecu::EGO_Voltage>;
constexpr Scaling oxygenCorrection = text<Ecu::EGO_Correction>;
constexpr Scaling battery = textOfUnit<Ecu::Voltage>;
constexpr Scaling actualAfr = textOfUnit<Ecu::Actual_AFR>;
constexpr Scaling desiredAfr = textOfUnit<Ecu::Desired_AFR>;
constexpr Scaling thousandths = over<1000>;
constexpr Scaling converterVolts = over<1023, 5>;  // 204.6
constexpr Scaling around50 = over<1, 1, 50>;
constexpr Scaling throttleRate = over<5>;
constexpr Scaling degrees = over<17, 4>;  // 4.25
constexpr Scaling degreesAround0 = over<17, 4, 128>;

using L = LiveValues;

/// F reply of the ORB A; it has no head.
constexpr std::array narrowOfOrba{
    FrameRow{0, 2, &L::RPM, rpm},
    FrameRow{2, 1, &L::PRIADV, advance},
    FrameRow{3, 1, &L::MAP, load},
    FrameRow{4, 1, &L::CLT, coolant},
    FrameRow{5, 2, &L::GAMA, gama},
    FrameRow{7, 1, &L::KNOCK, knock},
    FrameRow{8, 1, &L::MAT, airTemperature},
    FrameRow{9, 1, &L::TPS, throttle},
    FrameRow{10, 1, &L::BATTV, battery},
    FrameRow{11, 1, &L::CHKE, plain},
    FrameRow{12, 1, Pin{0}, plain},
    FrameRow{13, 1, Pin{2}, plain},
    FrameRow{14, 1, Pin{3}, plain},
    FrameRow{15, 1, &L::AAFR, actualAfr},
    FrameRow{16, 1, &L::EGOC, oxygenCorrection},
    FrameRow{17, 1, &L::DAFR, desiredAfr},
    FrameRow{19, 1, &L::EGOV, oxygenVolts},
    FrameRow{21, 2, &L::SECPW, secondaryWidth},
    FrameRow{23, 2, &L::PRIPW, primaryWidth},
    FrameRow{25, 1, Pin{4}, plain},
    FrameRow{26, 1, Pin{5}, plain},
    FrameRow{27, 1, Pin{6}, plain},
    FrameRow{28, 1, Pin{7}, plain},
    FrameRow{29, 1, Pin{1}, plain},
    FrameRow{31, 1, &L::SECADV, secondaryAdvance},
    FrameRow{32, 1, &L::KNKRET, knockRetard},
    FrameRow{33, 1, &L::IACP, idleMotor},
    FrameRow{34, 1, &L::IACD, plain},
};

/// F reply of the other kinds with a fuel side.
constexpr std::array narrowOfOthers{
    FrameRow{3, 2, &L::RPM, rpm},
    FrameRow{5, 1, &L::TPS, throttle},
    FrameRow{6, 1, &L::MAP, load},
    FrameRow{7, 1, &L::CLT, coolant},
    FrameRow{8, 1, &L::MAT, airTemperature},
    FrameRow{9, 1, &L::KNOCK, knock},
    FrameRow{10, 1, &L::PRIADV, advance},
    FrameRow{11, 1, &L::SECADV, secondaryAdvance},
    FrameRow{12, 1, &L::KNKRET, knockRetard},
    FrameRow{13, 2, &L::GAMA, gama},
    FrameRow{15, 1, &L::DAFR, desiredAfr},
    FrameRow{16, 1, &L::AAFR, actualAfr},
    FrameRow{17, 1, &L::EGOC, oxygenCorrection},
    FrameRow{18, 1, &L::EGOV, oxygenVolts},
    FrameRow{19, 2, &L::PRIPW, primaryWidth},
    FrameRow{21, 2, &L::SECPW, secondaryWidth},
    FrameRow{23, 1, &L::IACP, idleMotor},
    FrameRow{24, 1, &L::IACD, plain},
    FrameRow{25, 1, &L::BATTV, battery},
    FrameRow{26, 1, &L::CHKE, plain},
};

/// F reply of the ignition-only kind: the throttle stands where the others have the air temperature.
constexpr std::array narrowOfPzk2{
    FrameRow{3, 2, &L::RPM, rpm},
    FrameRow{6, 1, &L::MAP, load},
    FrameRow{8, 1, &L::TPS, throttle},
    FrameRow{9, 1, &L::KNOCK, knock},
    FrameRow{10, 1, &L::PRIADV, advance},
    FrameRow{11, 1, &L::SECADV, secondaryAdvance},
    FrameRow{12, 1, &L::KNKRET, knockRetard},
    FrameRow{25, 1, &L::BATTV, battery},
    FrameRow{26, 1, &L::CHKE, plain},
};

/// W reply; the pins follow from byte 56 on. Byte 47 is sent but belongs to no live value.
constexpr std::array wideFrame{
    FrameRow{3, 2, &L::RPM, rpm},
    FrameRow{5, 1, &L::TPS, throttle},
    FrameRow{6, 2, &L::MAP, wideLoad},
    FrameRow{8, 1, &L::CLT, coolant},
    FrameRow{9, 1, &L::MAT, airTemperature},
    FrameRow{10, 1, &L::KNOCK, knock},
    FrameRow{11, 1, &L::PRIADV, advance},
    FrameRow{12, 1, &L::SECADV, secondaryAdvance},
    FrameRow{13, 1, &L::KNKRET, knockRetard},
    FrameRow{14, 2, &L::GAMA, wideGama},
    FrameRow{16, 1, &L::DAFR, desiredAfr},
    FrameRow{17, 1, &L::AAFR, actualAfr},
    FrameRow{18, 1, &L::EGOC, oxygenCorrection},
    FrameRow{19, 1, &L::EGOV, oxygenVolts},
    FrameRow{20, 2, &L::PRIPW, widePrimaryWidth},
    FrameRow{22, 2, &L::SECPW, wideSecondaryWidth},
    FrameRow{24, 1, &L::PRIDUTY, duty},
    FrameRow{25, 1, &L::SECDUTY, duty},
    FrameRow{26, 1, &L::IACP, wideIdleMotor},
    FrameRow{27, 1, &L::IACD, plain},
    FrameRow{28, 1, &L::BATTV, battery},
    FrameRow{29, 1, &L::CHKE, plain},
    FrameRow{30, 2, &L::INJ_TOG, thousandths},
    FrameRow{32, 2, &L::SEN_MAP, converterVolts},
    FrameRow{34, 1, &L::INJ_VE, around50},
    FrameRow{35, 1, &L::INJ_MAT, around50},
    FrameRow{36, 1, &L::INJ_CLT, plain},
    FrameRow{37, 1, &L::INJ_BARO, around50},
    FrameRow{38, 1, &L::INJ_SE0, plain},
    FrameRow{39, 1, &L::INJ_ASE0, plain},
    FrameRow{40, 1, &L::INJ_ASE1, plain},
    FrameRow{41, 1, &L::MAPACCL, pressureRate},
    FrameRow{42, 1, &L::TPSACCL, throttleRate},
    FrameRow{43, 1, &L::INJ_ACE2, plain},
    FrameRow{44, 1, &L::INJ_ACE5, plain},
    FrameRow{45, 1, &L::INJ_ACE6, plain},
    FrameRow{46, 1, &L::INJ_VLTCOMP, voltageTime},
    FrameRow{48, 1, &L::SEN_BLEND, plain},
    FrameRow{49, 1, &L::INJ_STAGE, plain},
    FrameRow{50, 1, &L::ADV_TBL, degrees},
    FrameRow{51, 1, &L::ADV_CLT, degrees},
    FrameRow{52, 1, &L::ADV_MAT, degreesAround0},
    FrameRow{53, 1, &L::ADV_BARO, degreesAround0},
    FrameRow{54, 1, &L::ADV_IDLE, degreesAround0},
    FrameRow{55, 1, &L::ISRPM, idleSpeed},
};

/// D reply, in the same places on every kind: shorter records have less behind them. Kept: AAFR and DAFR
/// stand in the reverse order of the narrow frame; the unit logs them so.
constexpr std::array internalRecord{
    FrameRow{3, 2, &L::RPM, rpm},
    FrameRow{5, 1, &L::TPS, throttle},
    FrameRow{6, 1, &L::MAP, load},
    FrameRow{7, 1, &L::CLT, coolant},
    FrameRow{8, 1, &L::MAT, airTemperature},
    FrameRow{9, 1, &L::KNOCK, knock},
    FrameRow{10, 1, &L::PRIADV, advance},
    FrameRow{11, 1, &L::SECADV, secondaryAdvance},
    FrameRow{12, 1, &L::KNKRET, knockRetard},
    FrameRow{13, 2, &L::GAMA, wideGama},
    FrameRow{15, 1, &L::AAFR, actualAfr},
    FrameRow{16, 1, &L::DAFR, desiredAfr},
    FrameRow{17, 1, &L::EGOC, oxygenCorrection},
    FrameRow{18, 1, &L::EGOV, oxygenVolts},
    FrameRow{19, 2, &L::PRIPW, widePrimaryWidth},
    FrameRow{21, 2, &L::SECPW, wideSecondaryWidth},
    FrameRow{23, 1, &L::IACP, idleMotor},
    FrameRow{24, 1, &L::BATTV, battery},
};

constexpr int firstWidePin = 56;

FrameTable narrowFrameOf(const UnitKind& kind) {
    switch (kind.narrowFrame) {
        case NarrowFrame::None:
            break;
        case NarrowFrame::OrbA:
            return narrowOfOrba;
        case NarrowFrame::Usual:
            return narrowOfOthers;
        case NarrowFrame::Ignition:
            return narrowOfPzk2;
    }
    return {};
}

/// The highest pin that the frames of a kind show, counted from 0.
int lastPin(const UnitKind& kind) {
    return kind.hasWideMonitor() ? kind.sizes.wCmdLen - 2 - firstWidePin : kind.numGpio;
}

Raw rawAt(std::span<const std::uint8_t> reply, const FrameRow& row) {
    const int first = reply[static_cast<std::size_t>(row.byte)];
    if (row.width == 1) return {first, 0, first};
    const int second = reply[static_cast<std::size_t>(row.byte) + 1];
    return {first, second, first * 256 + second};
}

struct Store {
    LiveValues& live;
    Unit& unit;
    double value;

    void operator()(Number number) const {
        if (!std::isfinite(value)) throw Overflow();
        live.*number = static_cast<float>(value);
    }
    void operator()(Lamp lamp) const { live.*lamp = value != 0; }
    void operator()(Pin pin) const {
        unit.GPIOData().at(static_cast<std::size_t>(pin.index)) = toInt16(value);
    }
};

void decode(FrameTable table, Unit& unit, LiveValues& live, std::span<const std::uint8_t> reply) {
    for (const FrameRow& row : table) {
        if (row.byte + row.width > std::ssize(reply)) continue;
        skipFailing([&] { std::visit(Store{live, unit, row.scaling(unit, rawAt(reply, row))}, row.target); });
    }
}

void decodePins(Unit& unit, std::span<const std::uint8_t> reply, int firstByte, int last) {
    for (int pin = 0; pin <= last; ++pin) {
        const int byte = firstByte + pin;
        if (byte >= std::ssize(reply)) return;
        unit.GPIOData().at(static_cast<std::size_t>(pin)) = reply[static_cast<std::size_t>(byte)];
    }
}

void showPins(Unit& unit, int last) {
    for (int pin = 0; pin <= last; ++pin) {
        const auto at = static_cast<std::size_t>(pin);
        skipFailing([&] {
            unit.GPIODisplay().at(at) =
                Ecu::GPIO_Display(unit, unit.Get_GPIOFUNC(pin), unit.GPIOData().at(at));
        });
    }
}

}  // namespace

void FrameDecoder::Monitor(Unit& unit, std::span<const std::uint8_t> reply) {
    const NarrowFrame frame = unit.kind().narrowFrame;
    if (frame == NarrowFrame::None) return;
    decode(narrowFrameOf(unit.kind()), unit, live_, reply);
    showPins(unit, lastPin(unit.kind()));
    skipFailing([&] {
        live_.SECPERCENT = static_cast<float>(
            numberOf(Ecu::POPD(static_cast<double>(live_.SECPW), static_cast<double>(live_.PRIPW))));
    });
    if (frame == NarrowFrame::OrbA) {  // so that a recorder writes zeros
        for (const Channel& channel : channels) {
            if (channel.is(Channel::wideOnly)) *channel.numberIn(live_) = 0;
        }
    }
    ++live_.frames;
}

void FrameDecoder::MonitorW(Unit& unit, std::span<const std::uint8_t> reply) {
    if (!unit.kind().hasWideMonitor()) return;
    decode(wideFrame, unit, live_, reply);
    const int last = lastPin(unit.kind());
    decodePins(unit, reply, firstWidePin, last);
    showPins(unit, last);
    ++live_.frames;
}

void FrameDecoder::Monitor_GPIO(Unit& unit, std::span<const std::uint8_t> reply) {
    const int last = unit.kind().lastPinOfReply;
    decodePins(unit, reply, 3, last);
    showPins(unit, last);
}

void FrameDecoder::Internal_Data_Conv(Unit& unit, std::span<const std::uint8_t> reply) {
    if (!unit.kind().hasCalibration) return;
    decode(internalRecord, unit, live_, reply);
    ++live_.frames;
}

namespace {

struct Collect {
    FrameContent& content;

    void operator()(Number number) const { content.values.push_back(&channelOf(number)); }
    void operator()(Lamp lamp) const { content.values.push_back(&channelOf(lamp)); }
    void operator()(Pin pin) const { content.pins.push_back(pin.index); }
};

FrameContent contentOf(FrameTable table, int last = -1) {
    FrameContent content;
    for (const FrameRow& row : table) std::visit(Collect{content}, row.target);
    for (int pin = 0; pin <= last; ++pin) content.pins.push_back(pin);
    std::ranges::sort(content.pins);
    return content;
}

}  // namespace

std::optional<FrameContent> contentOfFrame(const UnitKind& kind, char command) {
    if (!kind.hasCalibration) return {};
    if (command == 'F') return contentOf(narrowFrameOf(kind));
    if (command == 'W' && kind.hasWideMonitor()) return contentOf(wideFrame, lastPin(kind));
    if (command == 'I' && kind.lastPinOfReply >= 0) return contentOf({}, kind.lastPinOfReply);
    if (command == 'D') return contentOf(internalRecord);
    return {};
}

}  // namespace zentaq
