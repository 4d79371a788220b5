#include "app/live_beside.h"

#include <algorithm>
#include <array>

#include "app/state_strip.h"
#include "base/number_text.h"

namespace zentaq {

namespace {

struct Beside {
    std::string_view member;
    std::string_view reading;
};

constexpr auto besides = std::to_array<Beside>({
    {"REV_Limiter", "lblTach"},
    {"REV_AuxLimiter", "lblTach"},
    {"KNK_RPM", "lblTach"},
    {"DCCL_0", "lblTach"},
    {"DCCL_1", "lblTach"},
    {"EGO_RPM", "lblTach"},
    {"EGO_RPML", "lblTach"},
    {"INJFIX_RPM", "lblTach"},
    {"IAC_RPM_HI", "lblTach"},
    {"IAC_RPM_LO", "lblTach"},
    {"MAFMax", "lblTach"},
    {"TPS_FCV", "lblTPS"},
    {"TPS_WOV", "lblTPS"},
    {"TPS_FailHigh", "lblTPS"},
    {"TPS_FailLow", "lblTPS"},
    {"TPS_Default", "lblTPS"},
    {"ACE0", "TPSACCL"},
    {"ACE1", "MAPACCL"},
    {"MAP_Default", "lblMAP"},
    {"MAP_Max", "lblMAP"},
    {"DCCL_3", "lblMAP"},
    {"EGO_MAP", "lblMAP"},
    {"MAP_FailHigh", "SEN_MAP"},
    {"MAP_FailLow", "SEN_MAP"},
    {"CLT_Default", "lblCLT"},
    {"EGO_TMP", "lblCLT"},
    {"SECLT", "lblCLT"},
    {"MAT_Default", "lblMAT"},
    {"KNK_MIN", "lblKNK"},
    {"KNK_MAX", "lblRetard"},
    {"EGO_LowVoltage", "lblEGOV"},
    {"EGO_HighVoltage", "lblEGOV"},
    {"EGO_LMT", "lblEGOC"},
    {"Reset_Duty", "lblIAC"},
    {"IAC_Start", "lblIAC"},
    {"Initial_Advance", "lblADV"},
    {"IS_ADV", "ADV_IDLE"},
    {"IS_RTD", "ADV_IDLE"},
    {"MT", "lblPPW"},
    {"SE0", "INJ_SE0"},
    {"ASE0", "INJ_ASE0"},
    {"ASE1", "INJ_ASE1"},
    {"ACE2", "INJ_ACE2"},
    {"ACE5", "INJ_ACE5"},
    {"ACE6", "INJ_ACE6"},
});

/// What only wide frames carry stands at 0 while a unit sends narrow ones.
bool isNotSent(const DashboardReading& reading) {
    const auto channel = std::ranges::find(channels, reading.name, &Channel::name);
    return channel != channels.end() && channel->is(Channel::wideOnly) && numberOf(reading.text) == 0;
}

}  // namespace

std::string_view readingBeside(std::string_view member) {
    const auto found = std::ranges::find(besides, member, &Beside::member);
    return found == besides.end() ? std::string_view() : found->reading;
}

std::vector<DashboardReading> readingsOfNow(Session& session) {
    const int linked = session.link.linked().LinkedUnitKind;
    if (linked == 0 || linked != session.slotInHand() || !gaugesLive(session)) return {};
    return dashboardReadings(session.live, session.currentUnitObject(),
                             DashboardSettings::from(session.settings()));
}

std::string liveBeside(const std::vector<DashboardReading>& readings, std::string_view member) {
    const std::string_view name = readingBeside(member);
    const DashboardReading* reading = name.empty() ? nullptr : findReading(readings, name);
    if (reading == nullptr || reading->text.empty() || isNotSent(*reading)) return {};
    return "now " + reading->text + (reading->unit.empty() ? "" : " " + reading->unit);
}

}  // namespace zentaq
