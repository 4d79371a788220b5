// The operations on a whole table of 16 by 16 cells: the grid worked out, written back and read again, as the
// window does it. Aim: below 1 ms each.
#include <benchmark/benchmark.h>

#include "calibration_bench.h"
#include "tables/edit_commands.h"
#include "tables/rebin.h"
#include "tables/table_context.h"
#include "tables/table_model.h"

namespace zentaq {
namespace {

struct WholeTable {
    QuietHost host;
    Unit unit{orbaKind(), host};
    Ecu ecu;
    LiveValues live;
    PaintMemory paint;
    TableModel model{unit, ecu, live, paint};
    Calibration before;

    explicit WholeTable(const char* table) {
        unit.FileOpen(bench::sampleFile);
        model.Setup_Grid(table, "Table", false);
        before = unit.calibration();
    }
    /// As it was, for the next turn.
    void again() {
        unit.calibration(before);
        model.rebuild();
        model.cursor().select(1, 1, model.sheet().rows(), model.sheet().columns());
    }
};

void command(benchmark::State& state, const char* table, const char* name) {
    WholeTable whole(table);
    const EditCommand& wanted = *editCommandOf(name);
    for (auto _ : state) {
        state.PauseTiming();
        whole.again();
        state.ResumeTiming();
        benchmark::DoNotOptimize(wanted.run(whole.model));
    }
}
BENCHMARK_CAPTURE(command, interpolate, "VE", "mnuInterpolate");
BENCHMARK_CAPTURE(command, smoothGentlest, "VE", "mnuSmooth_1");
BENCHMARK_CAPTURE(command, smoothStrongest, "VE", "mnuSmooth_5");
BENCHMARK_CAPTURE(command, smoothRatio, "AFR", "mnuSmooth_5");
BENCHMARK_CAPTURE(command, blend, "VE", "mnuBlend");
BENCHMARK_CAPTURE(command, removeColumn, "VE", "mnuRmvCol");
BENCHMARK_CAPTURE(command, removeRow, "VE", "mnuRmvRow");

void formula(benchmark::State& state) {
    WholeTable whole("VE");
    for (auto _ : state) {
        state.PauseTiming();
        whole.again();
        state.ResumeTiming();
        benchmark::DoNotOptimize(applyFormula(whole.model, "*1.05"));
    }
}
BENCHMARK(formula);

void newAxes(benchmark::State& state) {
    WholeTable whole("VE");
    TableAxes axes = axesOf(whole.model.sheet());
    for (float& header : axes.columns) header += 40;
    for (auto _ : state) {
        state.PauseTiming();
        whole.again();
        state.ResumeTiming();
        benchmark::DoNotOptimize(store(whole.model.sheet(), rebinned(whole.model.sheet(), axes)));
    }
}
BENCHMARK(newAxes);

void compareWithAnother(benchmark::State& state) {
    WholeTable whole("VE");
    whole.again();
    for (auto _ : state) whole.model.compare(whole.before, whole.unit.kind(), "before");
}
BENCHMARK(compareWithAnother);

void contextOfTheWholeTable(benchmark::State& state) {
    WholeTable whole("VE");
    whole.again();
    for (auto _ : state) benchmark::DoNotOptimize(contextLine(whole.model));
}
BENCHMARK(contextOfTheWholeTable);

}  // namespace
}  // namespace zentaq
