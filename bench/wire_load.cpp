// What monitoring at full rate costs the processor, and how the link's tick stands up to busy windows.
#include "wire_rig.h"

namespace zentaq::bench {
namespace {

/// CPU time of the whole program at full rate with the dashboard and a table in view.
void load(benchmark::State& state) {
    WireBench bench;
    if (!bench.ready) return state.SkipWithError("The unit was not found");
    MdiMain& main = bench.program->windows.main();
    main.showNormal();
    main.move(0, 0);
    main.resize(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    bench.openTable("VE", "Volumetric Efficiency Table");
    Program::runFor(1000);
    constexpr double seconds = 10;
    FrmDashBoard* dashboard = bench.program->windows.form<FrmDashBoard>();
    FrmTable* table = bench.program->windows.form<FrmTable>();
    for (auto unused : state) {
        const auto framesBefore = bench.session().live.frames;
        const int dashBefore = dashboard->redraws(), tableBefore = table->redraws();
        const double cpuBefore = cpuSeconds();
        Program::runFor(static_cast<int>(seconds * 1000));
        state.counters["cpu_%"] = 100 * (cpuSeconds() - cpuBefore) / seconds;
        state.counters["frames/s"] =
            static_cast<double>(bench.session().live.frames - framesBefore) / seconds;
        state.counters["dash/s"] = (dashboard->redraws() - dashBefore) / seconds;
        state.counters["table/s"] = (table->redraws() - tableBefore) / seconds;
        state.counters["width"] = main.width();
        state.counters["height"] = main.height();
    }
}
BENCHMARK(load)->Args({1366, 768})->Args({1920, 1080})->Iterations(1)->Unit(benchmark::kSecond);

/// The same with a page of settings in view, its curve following the engine.
void loadOfPage(benchmark::State& state) {
    WireBench bench;
    if (!bench.ready) return state.SkipWithError("The unit was not found");
    MdiMain& main = bench.program->windows.main();
    main.showNormal();
    main.move(0, 0);
    main.resize(1366, 768);
    if (bench.openPage("Warm-Up Enrichments", "WE_4") == nullptr) return state.SkipWithError("No such page");
    Program::runFor(1000);
    constexpr double seconds = 10;
    for (auto unused : state) {
        const auto framesBefore = bench.session().live.frames;
        const double cpuBefore = cpuSeconds();
        Program::runFor(static_cast<int>(seconds * 1000));
        state.counters["cpu_%"] = 100 * (cpuSeconds() - cpuBefore) / seconds;
        state.counters["frames/s"] =
            static_cast<double>(bench.session().live.frames - framesBefore) / seconds;
    }
}
BENCHMARK(loadOfPage)->Iterations(1)->Unit(benchmark::kSecond);

/// Counts the ticks of the link and the gaps between them, and runs them.
class TickMeter {
 public:
    explicit TickMeter(WireBench& bench) : bench_(bench) {
        bench_.session().platform().ticker.onTick([this] { tick(); });
    }
    ~TickMeter() {
        bench_.session().platform().ticker.onTick([&link = bench_.session().link] { link.tick(); });
    }
    TickMeter(const TickMeter&) = delete;
    TickMeter& operator=(const TickMeter&) = delete;

    double ticks() const { return static_cast<double>(gapsMs_.size()); }
    const std::vector<double>& gapsMs() const { return gapsMs_; }

 private:
    void tick() {
        const std::int64_t now = bench_.nowUs();
        gapsMs_.push_back(static_cast<double>(now - (last_ == 0 ? now : last_)) / 1000);
        last_ = now;
        bench_.session().link.tick();
    }

    WireBench& bench_;
    std::int64_t last_ = 0;
    std::vector<double> gapsMs_;
};

/// Windows that never rest: the frame changes its size, the table paints itself, the console scrolls, and now
/// and then a handler takes 50 ms.
class WindowStorm {
 public:
    explicit WindowStorm(WireBench& bench) {
        every(25, [&bench, small = false]() mutable {
            small = !small;
            bench.program->windows.main().resize(small ? QSize(1300, 740) : QSize(1366, 768));
        });
        every(10, [&bench] { bench.program->windows.form<FrmTable>()->grid().viewport()->update(); });
        every(5, [&bench] { bench.session().sysLog("A line of a console that scrolls"); });
        every(500, [&bench] {
            const std::int64_t end = bench.nowUs() + 50'000;
            while (bench.nowUs() < end) {
            }
        });
    }

 private:
    void every(int milliseconds, const std::function<void()>& job) {
        auto& timer = timers_.emplace_back(std::make_unique<QTimer>());
        QObject::connect(timer.get(), &QTimer::timeout, timer.get(), job);
        timer->start(milliseconds);
    }

    std::vector<std::unique_ptr<QTimer>> timers_;
};

/// 1000 ticks should be a second, whatever the windows do.
void ticks(benchmark::State& state) {
    WireBench bench;
    if (!bench.ready) return state.SkipWithError("The unit was not found");
    const bool stormy = state.range(0) != 0;
    bench.openTable("VE", "Volumetric Efficiency Table");
    constexpr double seconds = 10;
    for (auto unused : state) {
        std::unique_ptr<WindowStorm> storm;
        if (stormy) storm = std::make_unique<WindowStorm>(bench);
        const TickMeter meter(bench);
        const std::int64_t begin = bench.nowUs();
        const auto framesBefore = bench.session().live.frames;
        Program::runFor(static_cast<int>(seconds * 1000));
        const double took = static_cast<double>(bench.nowUs() - begin) / 1e6;
        state.counters["ticks/s"] = meter.ticks() / took;
        state.counters["gap99_ms"] = quantile(meter.gapsMs(), 0.99);
        state.counters["longest_ms"] = quantile(meter.gapsMs(), 1);
        state.counters["frames/s"] = static_cast<double>(bench.session().live.frames - framesBefore) / took;
        state.counters["lost"] = bench.session().link.linked().UnitIdentified ? 0 : 1;
    }
}
BENCHMARK(ticks)->ArgName("storm")->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace zentaq::bench
