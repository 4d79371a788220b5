// Speed on the wire: the whole program with its windows against a simulated unit at 38400 baud.
// Figures are set against what the wire itself allows, ten bits a byte.
#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include "system/flight_rig.h"

namespace zentaq {
namespace {

constexpr double byteSeconds = 10.0 / 38400;

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Bench {
    explicit Bench(const QStringList& options) {
        std::filesystem::create_directory(folder.path("app"));
        std::filesystem::copy_file(anySample(), calibration);
        unit = std::make_unique<UnitProcess>(folder.path("unit"), folder.path("memory.bin"), options);
        program = std::make_unique<Program>(*static_cast<QApplication*>(QCoreApplication::instance()),
                                            folder.path("app"), folder.path("unit"));
        program->kernel.load();
        Program::waitFor([this] { return program->identified(); }, 20'000);
        program->open(calibration);
    }
    TemporaryFolder folder;
    std::string calibration = folder.path("bench.ZQ4OA");
    std::unique_ptr<UnitProcess> unit;
    std::unique_ptr<Program> program;
};

/// Live frames a second for ten seconds with dashboard and an open table, as a share of the wire's own limit.
void frames(benchmark::State& state, const QStringList& options, int replyBytes) {
    Bench bench(options);
    bench.program->commands.openTable("VE", "Volumetric Efficiency Table");
    Program::runFor(500);
    constexpr double seconds = 10;
    const double limit = 1 / ((1 + replyBytes) * byteSeconds);
    for (auto _ : state) {
        const auto before = bench.program->session.live.frames;
        const double cpuBefore = cpuSeconds();
        Program::runFor(static_cast<int>(seconds * 1000));
        const double rate = static_cast<double>(bench.program->session.live.frames - before) / seconds;
        state.counters["frames/s"] = rate;
        state.counters["limit/s"] = limit;
        state.counters["share_%"] = 100 * rate / limit;
        state.counters["cpu_%"] = 100 * (cpuSeconds() - cpuBefore) / seconds;
    }
}

void wideFrames(benchmark::State& state) {
    frames(state, {}, 65);
}
BENCHMARK(wideFrames)->Iterations(1)->Unit(benchmark::kSecond);

void narrowFrames(benchmark::State& state) {
    frames(state, {"--firmware", "ZQA-404099"}, 35);
}
BENCHMARK(narrowFrames)->Iterations(1)->Unit(benchmark::kSecond);

/// A whole programming run against wire time plus the 10 ms gaps.
void programming(benchmark::State& state) {
    Bench bench({});
    Session& session = bench.program->session;
    double factor = 0;
    for (auto _ : state) {
        bench.program->dialogs.boxes.clear();
        const std::int64_t start = session.platform().clock.monotonicUs();
        bench.program->commands.programOrb();
        Program::waitFor([&] { return !bench.program->dialogs.boxes.empty(); }, 60'000);
        const double took = static_cast<double>(session.platform().clock.monotonicUs() - start) / 1e6;
        const std::string text = session.currentUnitObject().sRecordText();
        std::size_t bytes = 2 + 2, lines = 0;  // "P1" and its reply
        for (const char c : text) {
            lines += c == '\n' ? 1 : 0;
            bytes += c != '\r' && c != '\n' ? 1 : 0;
        }
        const double wire =
            static_cast<double>(bytes + 2 * lines) * byteSeconds + static_cast<double>(lines) * 0.010;
        factor = took / wire;
        state.counters["took_s"] = took;
        state.counters["wire_s"] = wire;
        state.counters["times"] = factor;
    }
}
BENCHMARK(programming)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace zentaq

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM",
            qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
