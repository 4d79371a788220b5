// The controls of frmGeneralConfig as data: what each is called and which member of the unit it shows.
// Ranges come from the member, but for the figures that only this form checks.
#pragma once

#include <span>
#include <string_view>

#include "app/general_config.h"

namespace zentaq {

/// What an entry makes new.
enum class Computes { Nothing, Pulse, FlowAndPulse };

struct GeneralRow {
    std::string_view control;
    GeneralKind kind = GeneralKind::Text;
    std::string_view caption;
    std::string_view member;  ///< empty for a list that stands for several members
    std::string_view help;    ///< key in table FastHelp
    Computes computes = Computes::Nothing;
    bool limitsInCaption = false;
};

/// In the order of the form.
std::span<const GeneralRow> generalRows();
/// Throws NoSuchMember for a name that is no control of the form.
const GeneralRow& generalRow(std::string_view control);

inline constexpr std::string_view streetCam = "Street / Stock";
inline constexpr std::string_view raceCam = "Race / High Perf";

/// Rows and columns that the tables of a new calibration may begin with.
inline constexpr int fewestCells = 8;
inline constexpr int mostCells = 16;

}  // namespace zentaq
