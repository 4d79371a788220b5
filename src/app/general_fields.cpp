#include "app/general_fields.h"

#include <algorithm>
#include <vector>

#include "base/errors.h"
#include "unit/parameter_names.h"

namespace zentaq {

namespace {

using enum Computes;

/// A field of this form alone.
GeneralRow own(std::string_view control, std::string_view member, std::string_view caption,
               std::string_view help, Computes computes, FieldKind kind = FieldKind::Number) {
    GeneralRow row;
    row.control = control;
    row.member = member;
    row.kind = kind;
    row.caption = caption;
    row.help = help;
    row.computes = computes;
    return row;
}

/// A list that stands for several members, or for none.
GeneralRow list(std::string_view control, std::string_view caption, std::string_view help) {
    return own(control, {}, caption, help, Nothing, FieldKind::Choice);
}

GeneralRow ofPages(std::string_view control, Computes computes) {
    return {*fieldOf(control), computes};
}

GeneralRow withLimits(GeneralRow row) {
    row.limitsInCaption = true;
    return row;
}

const std::vector<GeneralRow>& table() {
    // "MT" of txtMIT is the member of the shortest pulse, the only one that the turn-on time can mean.
    static const std::vector<GeneralRow> rows{
        list("cmbORB_UNIT", "ORB Unit", "helpunit"),
        list("cmbEngine", "Engine Type", "helpengine"),
        list("cmbMAP", "MAP Sensor Installed", "helpmapsel"),
        own("txtMAP", "MAP_BAR", "MAP Sensor Installed", "helpmaprange", FlowAndPulse),
        withLimits(ofPages("txtMaxBoost", Pulse)),
        withLimits(own("txtRPM", "REV_Limiter", "Maximum Engine &Rev Limit (1000 to 20000) ", "helprevl",
                       FlowAndPulse)),
        ofPages("cmbCams", FlowAndPulse),
        own("txtTPS", "TPS_FCV", "TPS Fully Closed Throttle Voltage", "helpdace3", Nothing),
        ofPages("txtBHP", FlowAndPulse),
        ofPages("chkAlcohol", FlowAndPulse),
        withLimits(ofPages("txtINJ", FlowAndPulse)),
        ofPages("optInjAmp2", Nothing),
        ofPages("optInjAmp4", Nothing),
        ofPages("txtLBHR", Pulse),
        ofPages("txtTOG", Nothing),
        ofPages("txtUAP", Nothing),
        ofPages("txtPOT", Nothing),
        ofPages("txtMIT", Nothing),
        list("cmbCols", "Columns", "helptbldim"),
        list("cmbRows", "Rows", "helptbldim"),
    };
    return rows;
}

}  // namespace

std::span<const GeneralRow> generalRows() {
    return table();
}

const GeneralRow& generalRow(std::string_view control) {
    const auto found = std::ranges::find(table(), control, &GeneralRow::control);
    if (found == table().end()) throw NoSuchMember("frmGeneralConfig has no control " + std::string(control));
    return *found;
}

std::string_view captionOf(const GeneralRow& row) {
    return row.caption.empty() ? nameOfParameter(row.member) : row.caption;
}

std::span<const std::string_view> GeneralConfig::controls() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> all;
        for (const GeneralRow& row : table()) all.push_back(row.control);
        return all;
    }();
    return names;
}

}  // namespace zentaq
