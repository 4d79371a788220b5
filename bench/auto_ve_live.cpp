// AutoVE on an engine that needs other fuel than its table gives: ten minutes on the road in simulated time,
// with a sample every 20 ms as on the link, then the table is kept, and the same road again. Tells the fuel
// error of the cells that were visited, which is what the unit's own correction has to add or take away
// there.
//
//   auto_ve_live [MINUTES] [CALIBRATION]
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "config/quiet_calibration.h"
#include "sim/engine_calibration.h"
#include "sim/engine_model.h"
#include "tables/auto_ve_run.h"
#include "tables/table_model.h"

namespace {

using namespace zentaq;

constexpr double stepSeconds = 0.02;
constexpr double warmUpSeconds = 600;
constexpr int leastSamples = 50;  ///< a second: less is no visit

/// Of a cell: the sum of what the unit corrected there, and how often.
struct Visit {
    double sum = 0;
    int samples = 0;
};
using Visits = std::map<int, Visit>;

std::vector<std::uint8_t> memoryOf(Unit& unit) {
    unit.ConvertData();
    std::vector<std::uint8_t> memory;
    for (const float byte : unit.ImageData()) memory.push_back(static_cast<std::uint8_t>(byte));
    return memory;
}

int nearest(const TableSheet& sheet, bool columns, double value) {
    const auto& headers = sheet.headers(columns);
    int best = 0;
    for (int i = 1; i < (columns ? sheet.columns() : sheet.rows()); ++i) {
        const auto at = [&](int place) { return std::abs(static_cast<double>(headers[place]) - value); };
        if (at(i) < at(best)) best = i;
    }
    return best;
}

template <typename Sample>
void drive(sim::EngineModel& engine, double seconds, const Sample& sample) {
    const int steps = static_cast<int>(seconds / stepSeconds);
    for (int step = 0; step < steps; ++step) {
        engine.advance(stepSeconds);
        sample(engine.values());
    }
}

/// The road from its beginning on a warm engine.
Visits measured(Unit& unit, const TableSheet& sheet, std::uint32_t serial, double seconds, AutoVeRun* run) {
    sim::EngineModel engine({.serial = serial, .drive = {}});
    engine.program(sim::readEngineCalibration("ZQA", memoryOf(unit)));
    drive(engine, warmUpSeconds, [](const sim::LiveValues&) {});
    Visits visits;
    drive(engine, seconds, [&](const sim::LiveValues& live) {
        // A frame tells whole percents.
        const double correction = std::round(live.egoCorrectionPercent);
        Visit& visit = visits[nearest(sheet, false, live.mapKpa) * 16 + nearest(sheet, true, live.rpm)];
        visit.sum += correction;
        ++visit.samples;
        if (run != nullptr)
            run->Auto_VE(static_cast<float>(live.rpm), static_cast<float>(live.mapKpa),
                         static_cast<float>(correction));
    });
    return visits;
}

/// The mean over cells of the mean correction's size, percent; of cells that `both` have visited.
void tellError(const char* when, const Visits& visits, const Visits& both) {
    double sum = 0;
    int cells = 0;
    for (const auto& [cell, visit] : visits) {
        const auto other = both.find(cell);
        if (other == both.end() || other->second.samples < leastSamples || visit.samples < leastSamples)
            continue;
        sum += std::abs(visit.sum / visit.samples);
        ++cells;
    }
    std::printf("%s: %d cells, mean fuel error %.2f %%\n", when, cells, cells == 0 ? 0.0 : sum / cells);
}

}  // namespace

int main(int argc, char** argv) {
    const double seconds = 60 * (argc > 1 ? std::atof(argv[1]) : 10);
    const std::string file = argc > 2 ? argv[2] : ZENTAQ_APP_DIR "/samples/Street 2.0 Four.ZQ4OA";
    constexpr std::uint32_t serial = 200001;
    const auto calibration = QuietCalibration::open(file);
    Unit& unit = calibration->unit;
    Ecu ecu;
    const LiveValues live;
    PaintMemory paint;
    TableModel model(unit, ecu, live, paint);
    model.Setup_Grid("VE", {}, false);
    TableSheet& sheet = model.sheet();
    AutoVeRun run(sheet);
    const Visits before = measured(unit, sheet, serial, seconds, &run);
    const auto refused = sheet.saveEntireTable();
    const Visits after = measured(unit, sheet, serial, seconds, nullptr);
    tellError("before", before, after);
    tellError("after ", after, before);
    std::printf("EGO_LMT %.0f %%, %zu cells refused\n", static_cast<double>(unit.get("EGO_LMT")),
                refused.size());
    return 0;
}
