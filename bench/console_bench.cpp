// What one line of the system log costs, with a long session behind it, with and without the log file.
#include <benchmark/benchmark.h>

#include <string>

#include "app/console.h"
#include "temporary_folder.h"
#include "testing/manual_clock.h"

namespace zentaq {
namespace {

constexpr int linesBefore = 100'000;

void fill(Console& console) {
    for (int i = 0; i < linesBefore; ++i) console.SysLog("a line of a long session");
}

void lineOnScreen(benchmark::State& state) {
    const ManualClock clock;
    Console console(clock);
    fill(console);
    for (auto unused : state) console.SysLog("COMM: Listening on Port #1");
}
BENCHMARK(lineOnScreen)->Unit(benchmark::kMicrosecond)->Iterations(100'000);

void lineInTwoHalves(benchmark::State& state) {
    const ManualClock clock;
    Console console(clock);
    fill(console);
    const std::string text(120, 'x');
    for (auto unused : state) console.SysLog(text);
}
BENCHMARK(lineInTwoHalves)->Unit(benchmark::kMicrosecond)->Iterations(100'000);

void lineOnScreenAndInFile(benchmark::State& state) {
    const TemporaryFolder folder;
    const ManualClock clock;
    Console console(clock);
    console.logFile(folder.path("zentaq.log"));
    fill(console);
    console.LogToFile(true);
    for (auto unused : state) console.SysLog("COMM: Listening on Port #1");
}
BENCHMARK(lineOnScreenAndInFile)->Unit(benchmark::kMicrosecond)->Iterations(100'000);

void commLine(benchmark::State& state) {
    const ManualClock clock;
    Console console(clock);
    for (auto unused : state) benchmark::DoNotOptimize(console.CommLog("W -> 50 bytes"));
}
BENCHMARK(commLine)->Unit(benchmark::kMicrosecond)->Iterations(100'000);

}  // namespace
}  // namespace zentaq
