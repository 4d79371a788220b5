// One change while the engine runs, from the member's name to the record handed to the link: this sits
// behind every keystroke in a table. Aim: below 2 us.
#include <benchmark/benchmark.h>

#include "calibration_bench.h"

namespace zentaq {
namespace {

/// Takes records as the link does, without keeping them.
class DroppingHost : public QuietHost {
 public:
    void sendOnFly(std::string_view record) override { benchmark::DoNotOptimize(record.data()); }
};

struct RunningUnit {
    DroppingHost host;
    Unit unit{orbaKind(), host};

    RunningUnit() {
        unit.FileOpen(bench::sampleFile);
        unit.ONFLY_MODE(true);
    }
};

void setTableCell(benchmark::State& state) {
    RunningUnit running;
    int step = 0;
    for (auto _ : state) {
        step = (step + 1) & 255;
        benchmark::DoNotOptimize(running.unit.set("VE", step % 50, step));
    }
}
BENCHMARK(setTableCell);

void setScalar(benchmark::State& state) {
    RunningUnit running;
    int step = 0;
    for (auto _ : state) {
        step = (step + 1) & 63;
        benchmark::DoNotOptimize(running.unit.set("KNK_MIN", step + 2));
    }
}
BENCHMARK(setScalar);

void setPressureAxis(benchmark::State& state) {
    RunningUnit running;
    int step = 0;
    for (auto _ : state) {
        step = (step + 1) & 63;
        benchmark::DoNotOptimize(running.unit.set("MAPTBL", step + 20, 3));
    }
}
BENCHMARK(setPressureAxis);

void setTypedText(benchmark::State& state) {
    RunningUnit running;
    const std::string typed = "12.5";
    for (auto _ : state) benchmark::DoNotOptimize(running.unit.set("VE", typed, 17));
}
BENCHMARK(setTypedText);

void recordAlone(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(Unit::onTheFlyRecord(34, 128, 1));
}
BENCHMARK(recordAlone);

}  // namespace
}  // namespace zentaq
