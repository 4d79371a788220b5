// The memory image and its S-record text: made before every programming run. Aim: below 0.3 ms together.
#include <benchmark/benchmark.h>

#include "calibration_bench.h"

namespace zentaq {
namespace {

void imageAndSRecords(benchmark::State& state) {
    const auto calibration = bench::sample();
    for (auto _ : state) {
        calibration->unit.ConvertData();
        benchmark::DoNotOptimize(calibration->unit.sRecordText());
    }
}
BENCHMARK(imageAndSRecords)->Unit(benchmark::kMicrosecond);

void imageAlone(benchmark::State& state) {
    const auto calibration = bench::sample();
    for (auto _ : state) {
        calibration->unit.ConvertData();
        benchmark::DoNotOptimize(calibration->unit.ImageData().data());
    }
}
BENCHMARK(imageAlone)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zentaq
