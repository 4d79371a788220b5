// What one line costs a console that is on the screen, behind few lines and behind many.
// Run with QT_QPA_PLATFORM=offscreen.
#include <benchmark/benchmark.h>

#include <QApplication>

#include "app/console.h"
#include "qt/look.h"
#include "qt/qt_clock.h"
#include "windows/frm_config_console.h"

namespace zentaq {
namespace {

void fill(Console& console, std::int64_t lines) {
    for (std::int64_t i = 0; i < lines; ++i) console.SysLog("Program Initialized on a test bench");
}

/// A line is logged and the view brought up to date, with the events that this raises and its painting.
void lineShown(benchmark::State& state) {
    const QtClock clock;
    Console console(clock);
    ConsoleView view("lstLog", "System console", console.lines(), nullptr);
    view.resize(900, 300);
    view.show();
    fill(console, state.range(0));
    view.sync();
    QCoreApplication::processEvents();
    for (auto unused : state) {
        console.SysLog("  - Converting Data...");
        view.sync();
        QCoreApplication::processEvents();
    }
}
BENCHMARK(lineShown)->Arg(100)->Arg(100'000)->Iterations(200)->Unit(benchmark::kMicrosecond);

/// As the program does it: many lines between two redraws.
void hundredLinesShown(benchmark::State& state) {
    const QtClock clock;
    Console console(clock);
    ConsoleView view("lstLog", "System console", console.lines(), nullptr);
    view.resize(900, 300);
    view.show();
    fill(console, state.range(0));
    for (auto unused : state) {
        fill(console, 100);
        view.sync();
        QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * 100);
}
BENCHMARK(hundredLinesShown)->Arg(100)->Arg(100'000)->Iterations(200)->Unit(benchmark::kMicrosecond);

/// The model and the view's bookkeeping alone, without painting.
void lineSynced(benchmark::State& state) {
    const QtClock clock;
    Console console(clock);
    ConsoleView view("lstLog", "System console", console.lines(), nullptr);
    fill(console, state.range(0));
    view.sync();
    for (auto unused : state) {
        console.SysLog("  - Converting Data...");
        view.sync();
    }
}
BENCHMARK(lineSynced)->Arg(100)->Arg(100'000)->Iterations(200)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zentaq

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    zentaq::applyLook(application, zentaq::DisplayMode::Night);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
