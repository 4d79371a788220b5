#include "config/page_switches.h"

#include <algorithm>
#include <array>

namespace zentaq {

namespace {

/// The calibration with what is being switched.
class Switching {
 public:
    Switching(Unit& switched, const StartValue& start) : unit(switched), start_(start) {}

    void put(std::string_view member, double value, int element = 0) {
        if (unit.has(member)) noteRefusal(refused, unit.set(member, value, element));
    }
    void putAll(std::string_view member, double value) {
        const Parameter* row = unit.find(member);
        for (int i = 0; row != nullptr && i < row->count; ++i) put(member, value, i);
    }
    /// A member whose own value is its switch: 0 is off.
    void putOrZero(std::string_view member, bool on, double otherwise) {
        put(member, !on ? 0 : start_(member).value_or(otherwise));
    }
    double start(std::string_view member, double otherwise) { return start_(member).value_or(otherwise); }

    Unit& unit;
    std::vector<Refusal> refused;

 private:
    const StartValue& start_;
};

using Store = void (*)(Switching& to, bool on);

struct SwitchRow {
    std::string_view control;
    Store store;
    std::string_view group{};
};

template <int bit>
void storeControl(Switching& to, bool on) {
    to.unit.Set_Control(bit, on);
}

// ---- Throttle alone

void storeThrottleAlone(Switching& to, bool on) {
    if (on) return to.putAll("LOWBLD", 100);
    const Parameter* row = to.unit.find("LOWBLD");
    for (int i = 0; row != nullptr && i < row->count; ++i) to.put("LOWBLD", 0, i);
}

// ---- Triggers of acceleration: the highest threshold is none

void storeThrottleTrigger(Switching& to, bool on) {
    to.put("ACE0", on ? to.start("ACE0", 1.5) : static_cast<double>(to.unit.limits("ACE0").maximum));
}
void storePressureTrigger(Switching& to, bool on) {
    const Limits limits = to.unit.limits("ACE1");
    const double least = limits.minimum;
    const double most = limits.maximum;
    to.put("ACE1", on ? std::clamp(to.start("ACE1", least), least, most) : most);
}

// ---- Deceleration

void storeDecelerationPressure(Switching& to, bool on) {
    to.put("MAP_Active", on ? 1 : 0);
    // Without the condition the cell is 0, and a running unit is told that no pressure is too high.
    to.put("DCCL_3", on ? static_cast<double>(to.unit.MAPMax()) : 0);
}

void storeOverBoost(Switching& to, bool on) {
    to.put("MAP_Max", on ? static_cast<double>(to.unit.MAPMax()) : 0);
}

// ---- Rev limiter

constexpr double usualThreshold = 100;  ///< RPM from one stage to the next

void storeThreeStages(Switching& to, bool on) {
    if (!on) return;
    const double first = to.unit.get("OVR1THR");
    const double second = to.unit.get("OVR2THR");
    if (to.unit.get("opt_FullCut") != 0) to.put("opt_FullCut", 0);
    to.put("opt_3Stage", 1);
    to.put("OVR1THR", first != 0 ? first : to.start("OVR1THR", usualThreshold));
    to.put("OVR2THR", second != 0 ? second : to.start("OVR2THR", usualThreshold));
}
void storeFullCut(Switching& to, bool on) {
    if (on) to.put("opt_FullCut", 1);
}
/// The thresholds tell it from the three stages, which have the same bit.
void storeZeroAdvance(Switching& to, bool on) {
    if (!on) return;
    to.put("opt_FullCut", 0);
    to.put("opt_ZeroAdv", 1);
    to.put("OVR1THR", 0);
    to.put("OVR2THR", 0);
}
void storeNoFuelCut(Switching& to, bool on) {
    if (!on) return;
    to.put("opt_FuelCut", 0);
    to.unit.Set_Control2(progressiveCutBit, false);
}
void storeFuelCut(Switching& to, bool on) {
    if (!on) return;
    to.put("opt_FuelCut", 1);
    to.put("opt_ProgCut", 0);
}
void storeProgressiveCut(Switching& to, bool on) {
    if (!on) return;
    to.put("opt_FuelCut", 1);
    to.put("opt_ProgCut", 1);
    if (to.unit.get("CYL_OvrThr") == 0) to.put("CYL_OvrThr", to.start("CYL_OvrThr", 100));
}
void storeRevLimiter(Switching& to, bool on) {
    to.unit.Set_Control(revLimiterBit, on);
    if (!on) to.put("REV_Limit_Approach", 0);
}
void storeApproach(Switching& to, bool on) {
    to.putOrZero("REV_Limit_Approach", on, 200);
}

// ---- Others

void storeFixedPulse(Switching& to, bool on) {
    to.putOrZero("INJFIX_RPM", on, 400);
}
void storeMassFlow(Switching& to, bool on) {
    to.unit.Set_Control2(massFlowBit, on);
}
void storeTwoAmps(Switching& to, bool on) {
    if (on) to.put("AMP42", 0);
}
void storeFourAmps(Switching& to, bool on) {
    if (on) to.put("AMP42", 1);
}
void storeMargin(Switching& to, bool on) {
    // A margin that nobody has set answers as on, whatever its switch says.
    to.put("TPS_MARGIN_VALUE", to.unit.get("TPS_MARGIN_VALUE"));
    to.put("TPS_MARGIN_TOGGLE", on ? 1 : 0);
}

constexpr std::array switches{
    SwitchRow{"chk_Alpha_N", storeThrottleAlone},
    SwitchRow{"optACE0", storeThrottleTrigger},
    SwitchRow{"optACE1", storePressureTrigger},
    SwitchRow{"optMAP_Active", storeDecelerationPressure},
    SwitchRow{"optOverBoost", storeOverBoost},
    SwitchRow{"optREV_Active", storeRevLimiter},
    SwitchRow{"opt3Stage", storeThreeStages, "ignition"},
    SwitchRow{"optFullCut", storeFullCut, "ignition"},
    SwitchRow{"optZeroAdv", storeZeroAdvance, "ignition"},
    SwitchRow{"optNoFuelCut", storeNoFuelCut, "fuel"},
    SwitchRow{"optFuelCut", storeFuelCut, "fuel"},
    SwitchRow{"optProgCut", storeProgressiveCut, "fuel"},
    SwitchRow{"optIdle_Active", storeControl<idleControlBit>},
    SwitchRow{"optEGO_Param1", storeControl<egoFeedbackBit>},
    SwitchRow{"optInjFix_Active", storeFixedPulse},
    SwitchRow{"optInjAmp2", storeTwoAmps, "peak"},
    SwitchRow{"optInjAmp4", storeFourAmps, "peak"},
    SwitchRow{"optRevApproach", storeApproach},
    SwitchRow{"optMAPMAF", storeMassFlow},
    SwitchRow{"optMATSEN_OnOff", storeControl<airSensorBit>},
    SwitchRow{"chkTPS", storeMargin},
};

const SwitchRow* switchOf(std::string_view control) {
    const auto found = std::ranges::find(switches, control, &SwitchRow::control);
    return found == switches.end() ? nullptr : &*found;
}

}  // namespace

std::string_view groupOf(std::string_view control) {
    const SwitchRow* found = switchOf(control);
    return found == nullptr ? std::string_view() : found->group;
}

std::vector<Refusal> setSwitch(Unit& unit, const FieldRow& row, bool on, const StartValue& start) {
    Switching to(unit, start);
    if (const SwitchRow* found = switchOf(row.control)) {
        found->store(to, on);
    } else {
        to.put(row.member, on ? 1 : 0);
    }
    return std::move(to.refused);
}

}  // namespace zentaq
