// AutoVE over the samples of an hour, 180,000 rows. Aim: under a second.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "tables/auto_ve.h"

namespace zentaq {
namespace {

constexpr int hourOfRows = 180'000;

void rowsOfAnHour(benchmark::State& state) {
    std::vector<AutoVeSample> samples;
    for (int row = 0; row < hourOfRows; ++row) {
        const double t = row * 0.02;
        samples.push_back({static_cast<float>(std::round(3500 + 2900 * std::sin(t / 7))),
                           static_cast<float>(60 + 38 * std::sin(t / 3)),
                           static_cast<float>(std::round(8 * std::sin(t / 5)))});
    }
    std::vector<float> speeds;
    std::vector<float> pressures;
    for (int i = 0; i < 16; ++i) {
        speeds.push_back(static_cast<float>(500 + 450 * i));
        pressures.push_back(static_cast<float>(20 + 6 * i));
    }
    const std::vector<float> base(256, 5);
    for (auto _ : state) {
        AutoVe rule;
        const AutoVeTable table{speeds, pressures, base, 20};
        for (const AutoVeSample& sample : samples) benchmark::DoNotOptimize(rule.add(table, sample));
    }
    state.SetItemsProcessed(state.iterations() * hourOfRows);
}
BENCHMARK(rowsOfAnHour)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zentaq
