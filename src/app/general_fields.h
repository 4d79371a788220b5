// The fields of frmGeneralConfig as data. What stands on a configuration page as well is that page's row;
// ranges come from the member, but for the figures that only this form checks.
#pragma once

#include <span>
#include <string_view>

#include "app/general_config.h"
#include "config/field_pages.h"

namespace zentaq {

/// What an entry makes new.
enum class Computes { Nothing, Pulse, FlowAndPulse };

struct GeneralRow : FieldRow {
    Computes computes = Computes::Nothing;
    bool limitsInCaption = false;
};

/// In the order of the form.
std::span<const GeneralRow> generalRows();
/// Throws NoSuchMember for a name that is no control of the form.
const GeneralRow& generalRow(std::string_view control);
/// The row's own caption, else its member's name.
std::string_view captionOf(const GeneralRow& row);

/// Rows and columns that the tables of a new calibration may begin with.
inline constexpr int fewestCells = 8;
inline constexpr int mostCells = 16;

}  // namespace zentaq
