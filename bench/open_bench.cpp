// Opening a calibration file: read whole, checked, repaired. Aim: below 2 ms.
#include <benchmark/benchmark.h>

#include "calibration_bench.h"

namespace zentaq {
namespace {

void openCalibration(benchmark::State& state) {
    QuietCalibration calibration(orbaKind());
    for (auto _ : state) {
        calibration.unit.FileOpen(bench::sampleFile);
        benchmark::DoNotOptimize(calibration.unit.DirectIndex(58));
    }
}
BENCHMARK(openCalibration)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zentaq
