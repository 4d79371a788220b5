// The curve graphs: which settings of a unit are curves, and one of them as a graph, with its labels, its
// frame, its points, the engine's present place on it and the places where it was.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "config/chart.h"
#include "config/field_pages.h"
#include "unit/unit.h"

namespace zentaq {

/// One direction of a curve.
struct CurveSide {
    std::string_view member{};   ///< whose cells are the values; empty: the stops of the page's axis
    std::string_view control{};  ///< that edits them; empty: they are not changed from the graph
    double step = 1;             ///< of one press of a key; changes are rounded to it
};

struct CurveKind {
    std::string_view name;  ///< "TPS_Blend"
    std::string_view title;
    int page = 0;
    CurveSide across;
    CurveSide up;
    Channel::Number live = nullptr;  ///< on the scale across; none: the curve has no live value
};

std::span<const CurveKind> curveKinds();
/// nullptr for a page without a curve.
const CurveKind* curveOfPage(int page);
const CurveKind* curveNamed(std::string_view name);
/// Whether the kind of unit has it.
bool hasCurve(Unit& unit, const CurveKind& kind);

/// Across is 0, up is 1.
enum class CurveWay { Across, Up };

class CurveGraph {
 public:
    static constexpr std::size_t mostPoints = 24;
    static constexpr std::size_t traceLength = 24;

    /// `kind` is one of `curveKinds()` and the unit has it. Reads the curve.
    CurveGraph(Unit& unit, const CurveKind& kind);

    const CurveKind& kind() const { return kind_; }
    const std::vector<ChartPoint>& points() const { return points_; }
    const ChartScale& across() const { return across_; }
    const ChartScale& up() const { return up_; }

    /// Reads the curve again and computes labels and frame. False: it is as it was.
    bool GRAPH_LAYOUT();

    // ---- The engine
    /// The live value on the scale across. kept: the EGO curve has none, and answers 0.
    double getLiveVal(const LiveValues& live) const;
    /// Takes the live value. True: it is another one than before, and the dot stands elsewhere.
    bool redrawDot(const LiveValues& live);
    /// Where the dot stands; nothing before the first value, and for a curve without one.
    std::optional<ChartPoint> dot() const;
    /// Where it stood, the last place first.
    std::vector<ChartPoint> trace() const;
    /// The engine's place is not known any more.
    void forgetLive();

    // ---- Changes
    /// The one of the two ways that a graph can change.
    bool movable(CurveWay way) const { return !side(way).control.empty(); }
    /// What an entry of this value at a point is: rounded to the step, within the range of the member and,
    /// across, between its neighbors. Empty where it cannot be moved so.
    std::string entryFor(std::size_t point, CurveWay way, double value) const;
    /// The same for `steps` steps from where it is.
    std::string entryAfter(std::size_t point, CurveWay way, int steps) const;

    /// "Point 3 of 20: 20 °C, 12 %. (0 to 250%)"
    std::string inWords(std::size_t point) const;

 private:
    const CurveSide& side(CurveWay way) const { return way == CurveWay::Up ? kind_.up : kind_.across; }
    Limits rangeOf(std::size_t point, CurveWay way) const;
    std::vector<ChartPoint> readPoints() const;
    std::string shown(std::size_t point, CurveWay way) const;
    double heightAt(double x) const;
    void label();

    Unit& unit_;
    const CurveKind& kind_;
    const FieldRow* row_;  ///< of the page, whose axis the stops are
    std::vector<ChartPoint> points_;
    ChartScale across_;
    ChartScale up_;
    std::array<double, traceLength> trace_{};
    std::size_t traced_ = 0;
    std::optional<double> live_;
};

}  // namespace zentaq
