#include "config/curve_graph.h"

#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "config/ego_curve.h"
#include "config/shown_value.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

using L = LiveValues;

constexpr auto kinds = std::to_array<CurveKind>({
    {"TPS_Blend", "TPS/MAP Blend", 1, {"BLDTBL", "BND_RPMT", 50}, {"LOWBLD", "BND_TPST", 1}, &L::RPM},
    {"Warm_Up", "Warm-Up Enrichments", 6, {}, {"CHKTBL", "WE", 1}, &L::CLT},
    {"CLT_ADV", "Coolant Advance", 12, {}, {"CLTTBL", "CLT_DAT", 0.5}, &L::CLT},
    {"MAT_DEN", "MAT Density Advance/Retard", 14, {}, {"MATADV", "MAT_DAT", 0.5}, &L::MAT},
    {"MAT_ENR", "MAT Fuel Enrichment", 7, {}, {"MATENH", "MAT_FUEL", 0.5}, &L::MAT},
    // The ratio stands across, the sensor's volts up.
    {"EGO_CAL", "EGO Calibration", 38, {"Y", "EGO_AFRatio", 0.05}, {"X", "EGO_Volts", 0.01}},
    {"DPTS", "Dual Plug Timing Split", 13, {"RPMTBL"}, {"SPLITBL", "DualPLG", 0.5}, &L::RPM},
});

constexpr double lowestCelsius = -40;
constexpr double highestCelsius = 150;
constexpr double marksAcross = 10;
constexpr double marksUp = 6;
/// A zero of the scale up stands as far to the right as the other texts do.
constexpr const char* zeroAcross = "0";
constexpr const char* zeroUp = "   0";

bool ofTemperature(const CurveKind& kind) {
    return kind.across.member.empty();
}

/// The retard input of a unit that only ignites has volts where others have the air's temperature.
bool ofRetardInput(const Unit& unit, const CurveKind& kind) {
    return ofTemperature(kind) && kind.live == &L::MAT && unit.kind().retardInputVolts != 0;
}

std::string degreesOf(const Unit& unit) {
    return unit.host().fahrenheit() ? "\u00B0F)" : "\u00B0C)";
}

std::string labelAcross(Unit& unit, const CurveKind& kind) {
    if (kind.name == "TPS_Blend") return "Engine Speed (RPM)";
    if (kind.name == "EGO_CAL") return "Air Fuel Ratio = " + numberText(unit.get("AFR"));
    // kept: spelled so
    if (kind.name == "DPTS") return "Dual Plug Timig Split(RPM)";
    if (ofRetardInput(unit, kind)) return "Retard Input (Volts)";
    return (kind.live == &L::CLT ? "Coolant Temperature (deg " : "MAT Temperature (deg ") + degreesOf(unit);
}

std::string labelUp(const CurveKind& kind) {
    if (kind.name == "TPS_Blend") return "TPS Blend (%)";
    if (kind.name == "Warm_Up") return "Fundamental PW Enrichment (% FPW)";
    if (kind.name == "CLT_ADV") return "Additional Ignition Advance (0 to 60\u00B0)";
    if (kind.name == "MAT_DEN") return "Ignition Advance (-30 to 30\u00B0)";
    if (kind.name == "MAT_ENR") return "Fundamental PulseWidth (-50 to 50)";
    if (kind.name == "EGO_CAL") return "EGO Volts";
    return "Additional Ignition Advance (0 to 30\u00B0)";
}

/// Decimals of a step: 2 for 0.05.
int decimalsOf(double step) {
    int decimals = 0;
    for (double rest = step; std::fabs(rest - std::round(rest)) > 1e-9 && decimals < 4; rest *= 10)
        ++decimals;
    return decimals;
}

/// The row of the page that has the curve's boxes; DualPLG's page has their axis with them.
const FieldRow* rowOf(const CurveKind& kind) {
    const auto rows = fieldsOfPage(kind.page);
    const auto found = std::ranges::find(rows, kind.up.control, &FieldRow::control);
    return found == rows.end() ? nullptr : &*found;
}

}  // namespace

std::span<const CurveKind> curveKinds() {
    return kinds;
}

const CurveKind* curveOfPage(int page) {
    const auto found = std::ranges::find(kinds, page, &CurveKind::page);
    return found == kinds.end() ? nullptr : &*found;
}

const CurveKind* curveNamed(std::string_view name) {
    const auto found = std::ranges::find(kinds, name, &CurveKind::name);
    return found == kinds.end() ? nullptr : &*found;
}

bool hasCurve(Unit& unit, const CurveKind& kind) {
    const FieldRow* row = rowOf(kind);
    return row != nullptr && fieldExists(unit, *row) &&
           (kind.across.member.empty() || unit.has(kind.across.member)) && shownElements(unit, *row) > 1;
}

CurveGraph::CurveGraph(Unit& unit, const CurveKind& kind) : unit_(unit), kind_(kind), row_(rowOf(kind)) {
    GRAPH_LAYOUT();
}

// ---- Layout

std::vector<ChartPoint> CurveGraph::readPoints() const {
    const auto count = std::min(static_cast<std::size_t>(shownElements(unit_, *row_)), mostPoints);
    std::vector<ChartPoint> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        const int element = static_cast<int>(i);
        points[i].y = static_cast<double>(unit_.get(kind_.up.member, element));
        points[i].x = kind_.across.member.empty()
                          ? numberOf(shownStop(unit_, row_->axis, element, static_cast<int>(count)))
                          : static_cast<double>(unit_.get(kind_.across.member, element));
    }
    return points;
}

bool CurveGraph::GRAPH_LAYOUT() {
    std::vector<ChartPoint> points;
    skipFailing([&] { points = readPoints(); });
    const std::string before = across_.title;
    const double highBefore = across_.high;
    const bool same = points == points_;
    points_ = std::move(points);
    std::optional<ChartPoint> lowest;
    std::optional<ChartPoint> highest;
    for (const ChartPoint& at : points_) {
        if (!isPlace(at)) continue;
        if (!lowest) lowest = highest = at;
        lowest = {std::min(lowest->x, at.x), std::min(lowest->y, at.y)};
        highest = {std::max(highest->x, at.x), std::max(highest->y, at.y)};
    }
    ChartPoint low = lowest.value_or(ChartPoint{});
    ChartPoint high = highest.value_or(ChartPoint{});
    if (ofTemperature(kind_) && !ofRetardInput(unit_, kind_)) {
        low.x = lowestCelsius;
        high.x = unit_.host().fahrenheit() ? toFahrenheit(highestCelsius) : highestCelsius;
    }
    across_ = chartScale(low.x, high.x, !ofTemperature(kind_), marksAcross, zeroAcross);
    up_ = chartScale(low.y, high.y, true, marksUp, zeroUp);
    label();
    return !same || before != across_.title || highBefore != across_.high;
}

void CurveGraph::label() {
    across_.title = labelAcross(unit_, kind_);
    up_.title = labelUp(kind_);
}

// ---- The engine

double CurveGraph::getLiveVal(const LiveValues& live) const {
    if (kind_.live == nullptr || ofRetardInput(unit_, kind_)) return 0;
    const float value = live.*kind_.live;
    const bool turned = ofTemperature(kind_) && unit_.host().fahrenheit();
    return static_cast<double>(turned ? toFahrenheit(value) : value);
}

bool CurveGraph::redrawDot(const LiveValues& live) {
    if (kind_.live == nullptr || ofRetardInput(unit_, kind_)) return false;
    const double value = getLiveVal(live);
    if (!std::isfinite(value) || live_ == value) return false;
    live_ = value;
    std::shift_right(trace_.begin(), trace_.end(), 1);
    trace_.front() = value;
    traced_ = std::min(traced_ + 1, traceLength);
    return true;
}

void CurveGraph::forgetLive() {
    live_.reset();
    traced_ = 0;
}

/// Straight between two points; level beyond the ends, as the unit takes it.
double CurveGraph::heightAt(double x) const {
    const ChartPoint* left = nullptr;
    const ChartPoint* right = nullptr;
    for (const ChartPoint& at : points_) {
        if (!isPlace(at)) continue;
        if (at.x <= x && (left == nullptr || at.x >= left->x)) left = &at;
        if (at.x >= x && (right == nullptr || at.x < right->x)) right = &at;
    }
    if (left == nullptr) return right == nullptr ? 0 : right->y;
    if (right == nullptr || right->x == left->x) return left->y;
    return left->y + (right->y - left->y) * (x - left->x) / (right->x - left->x);
}

std::optional<ChartPoint> CurveGraph::dot() const {
    if (!live_ || points_.empty()) return {};
    const double x = std::clamp(*live_, across_.low, across_.high);
    return ChartPoint{x, heightAt(x)};
}

std::vector<ChartPoint> CurveGraph::trace() const {
    std::vector<ChartPoint> places;
    if (points_.empty()) return places;
    for (std::size_t i = 0; i < traced_; ++i) {
        const double x = std::clamp(trace_[i], across_.low, across_.high);
        places.push_back({x, heightAt(x)});
    }
    return places;
}

// ---- Changes

Limits CurveGraph::rangeOf(std::size_t point, CurveWay way) const {
    const auto element = static_cast<int>(point);
    const CurveSide& moved = side(way);
    Limits range = moved.member == "Y" ? egoRatioLimits(unit_, element) : unit_.limits(moved.member, element);
    // Volts of a sensor and speeds of a curve stay in their order.
    const bool ordered = moved.member == "X" || moved.member == "BLDTBL";
    if (!ordered) return range;
    const auto step = static_cast<float>(moved.step);
    if (point > 0) range.minimum = std::max(range.minimum, unit_.get(moved.member, element - 1) + step);
    if (point + 1 < points_.size())
        range.maximum = std::min(range.maximum, unit_.get(moved.member, element + 1) - step);
    return range;
}

std::string CurveGraph::entryFor(std::size_t point, CurveWay way, double value) const {
    if (!movable(way) || point >= points_.size() || !std::isfinite(value)) return {};
    const CurveSide& moved = side(way);
    std::string entry;
    skipFailing([&] {
        const Limits range = rangeOf(point, way);
        if (!(range.minimum <= range.maximum)) return;
        const double rounded = std::round(value / moved.step) * moved.step;
        const double within =
            std::clamp(rounded, static_cast<double>(range.minimum), static_cast<double>(range.maximum));
        entry = numberText(roundTo(within, decimalsOf(moved.step)));
    });
    return entry;
}

std::string CurveGraph::entryAfter(std::size_t point, CurveWay way, int steps) const {
    if (!movable(way) || point >= points_.size()) return {};
    const double now = way == CurveWay::Up ? points_[point].y : points_[point].x;
    return entryFor(point, way, now + steps * side(way).step);
}

std::string CurveGraph::shown(std::size_t point, CurveWay way) const {
    const auto element = static_cast<int>(point);
    const CurveSide& told = side(way);
    if (told.member.empty()) {
        return shownStop(unit_, row_->axis, element, static_cast<int>(points_.size())) + " " +
               shownStopUnit(unit_, row_->axis);
    }
    const Parameter& parameter = *unit_.find(told.member);
    const std::string in = shownUnit(unit_, parameter, {});
    return shownValue(unit_, parameter, {}, element) + (in.empty() ? "" : " " + in);
}

std::string CurveGraph::inWords(std::size_t point) const {
    if (point >= points_.size()) return {};
    std::string words = "Point " + numberText(static_cast<int>(point) + 1) + " of " +
                        numberText(static_cast<int>(points_.size()));
    skipFailing([&] { words += ": " + shown(point, CurveWay::Across) + ", " + shown(point, CurveWay::Up); });
    return words;
}

}  // namespace zentaq
