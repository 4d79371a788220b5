#include "app/general_fields.h"

#include <algorithm>
#include <array>

#include "base/errors.h"

namespace zentaq {

namespace {

// "MT" is the member of the shortest pulse, the only one that the field of the turn-on time can mean.
constexpr std::array rows{
    GeneralRow{
        .control = "cmbORB_UNIT", .kind = GeneralKind::Choice, .caption = "ORB Unit", .help = "helpunit"},
    GeneralRow{
        .control = "cmbEngine", .kind = GeneralKind::Choice, .caption = "Engine Type", .help = "helpengine"},
    GeneralRow{.control = "cmbMAP",
               .kind = GeneralKind::Choice,
               .caption = "MAP Sensor Installed",
               .help = "helpmapsel"},
    GeneralRow{.control = "txtMAP",
               .caption = "MAP Sensor Installed",
               .member = "MAP_BAR",
               .help = "helpmaprange",
               .computes = Computes::FlowAndPulse},
    GeneralRow{.control = "txtMaxBoost",
               .caption = "Max Boost Pressure",
               .member = "MAX_Boost",
               .help = "helpMboost",
               .computes = Computes::Pulse,
               .limitsInCaption = true},
    GeneralRow{.control = "txtRPM",
               .caption = "Maximum Engine &Rev Limit (1000 to 20000) ",
               .member = "REV_Limiter",
               .help = "helprevl",
               .computes = Computes::FlowAndPulse,
               .limitsInCaption = true},
    GeneralRow{.control = "cmbCams",
               .kind = GeneralKind::Choice,
               .caption = "Camshaft Style ",
               .member = "CAMSTL",
               .help = "helpCamtype",
               .computes = Computes::FlowAndPulse},
    GeneralRow{.control = "txtTPS",
               .caption = "TPS Fully Closed Throttle Voltage",
               .member = "TPS_FCV",
               .help = "helpdace3"},
    GeneralRow{.control = "txtBHP",
               .caption = "Estimated Brake HorsePower",
               .member = "BHP",
               .help = "helpBrakeHP",
               .computes = Computes::FlowAndPulse},
    GeneralRow{.control = "chkAlcohol",
               .kind = GeneralKind::Check,
               .caption = "Check Box if Engine Alcohol Fueled",
               .member = "Alcohol",
               .help = "helpfueltype",
               .computes = Computes::FlowAndPulse},
    GeneralRow{.control = "txtINJ",
               .caption = "Number of Injectors (1 to 24) ",
               .member = "INJ_Number",
               .help = "helpinjnum",
               .computes = Computes::FlowAndPulse,
               .limitsInCaption = true},
    GeneralRow{.control = "optInjAmp2",
               .kind = GeneralKind::Option,
               .caption = "2 Amp Inj Peak",
               .member = "AMP42",
               .help = "help42inj"},
    GeneralRow{.control = "optInjAmp4",
               .kind = GeneralKind::Option,
               .caption = "4 Amp Inj Peak",
               .member = "AMP42",
               .help = "help42inj"},
    GeneralRow{.control = "txtLBHR",
               .caption = "lb/hr",
               .member = "INJ_FlowRate",
               .help = "helpinjsize",
               .computes = Computes::Pulse},
    GeneralRow{
        .control = "txtTOG", .caption = "Time for One Gama (TOG)", .member = "RPM_Size", .help = "helptog"},
    GeneralRow{.control = "txtUAP",
               .caption = "Maximum Controllable PulseWidth",
               .member = "scale1",
               .help = "helptog"},
    GeneralRow{
        .control = "txtPOT", .caption = "Injector Offset Time (IOT)", .member = "INJ_On", .help = "helptiot"},
    GeneralRow{.control = "txtMIT",
               .caption = "Minimum Injector Turn-on Time (MIT)",
               .member = "MT",
               .help = "helpmtot"},
    GeneralRow{.control = "cmbCols", .kind = GeneralKind::Choice, .caption = "Columns", .help = "helptbldim"},
    GeneralRow{.control = "cmbRows", .kind = GeneralKind::Choice, .caption = "Rows", .help = "helptbldim"},
};

}  // namespace

std::span<const GeneralRow> generalRows() {
    return rows;
}

const GeneralRow& generalRow(std::string_view control) {
    const auto found = std::ranges::find(rows, control, &GeneralRow::control);
    if (found == rows.end()) throw NoSuchMember("frmGeneralConfig has no control " + std::string(control));
    return *found;
}

std::span<const std::string_view> GeneralConfig::controls() {
    static constexpr auto names = [] {
        std::array<std::string_view, rows.size()> all{};
        std::ranges::transform(rows, all.begin(), &GeneralRow::control);
        return all;
    }();
    return names;
}

}  // namespace zentaq
