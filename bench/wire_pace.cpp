// Speed on the wire: the whole program with its windows against a simulated unit at 38400 baud.
// Figures are set against what the wire itself allows, ten bits a byte.
//   wire_pace [--benchmark_filter="frames|keystroke|load|ticks|programming"]
// Offscreen unless QT_QPA_PLATFORM says otherwise. With a display of its own, for what painting really costs:
//   xvfb-run -a -s "-screen 0 1920x1080x24" env QT_QPA_PLATFORM=xcb wire_pace
#include "wire_rig.h"

namespace zentaq::bench {
namespace {

/// One row of the measured kinds.
struct Wire {
    const char* name;
    const char* model;
    const char* firmware;
    const char* extension;
    const char* table;  ///< what is open on the screen
    char request;
    int replyBytes;
};

// A firmware below the first one with wide frames makes a unit answer in narrow ones. The PZK-2 has no other.
constexpr Wire wires[] = {
    {"wide A", "A", "ZQA-405099", ".ZQ4OA", "VE", 'W', 65},
    {"wide A 6/12", "A 6/12", "ZQA-405099", ".ZQ4OA", "VE", 'W', 65},
    {"wide A r", "A r", "ZQA-405099", ".ZQ4OA", "VE", 'W', 65},
    {"wide L", "L", "ZQL-407099", ".ZQ4OL", "VE", 'W', 66},
    {"wide C", "C", "ZQC-403099", ".ZQ4OC", "VE", 'W', 70},
    {"wide D", "D", "ZQD-405099", ".ZQ4OD", "VE", 'W', 62},
    {"wide D6", "D6", "ZQD-405099", ".ZQ4OD", "VE", 'W', 62},
    {"narrow A", "A", "ZQA-404099", ".ZQ4OA", "VE", 'F', 35},
    {"narrow A 6/12", "A 6/12", "ZQA-404099", ".ZQ4OA", "VE", 'F', 35},
    {"narrow A r", "A r", "ZQA-404099", ".ZQ4OA", "VE", 'F', 35},
    {"narrow L", "L", "ZQL-406099", ".ZQ4OL", "VE", 'F', 28},
    {"narrow C", "C", "ZQC-402099", ".ZQ4OC", "VE", 'F', 28},
    {"narrow D", "D", "ZQD-404099", ".ZQ4OD", "VE", 'F', 28},
    {"narrow D6", "D6", "ZQD-404099", ".ZQ4OD", "VE", 'F', 28},
    {"narrow PZK-2", "PZK-2", "ZPK-405099", ".ZQ4PZK", "ADV", 'F', 28},
};

struct Pace {
    double framesPerSecond = 0;
    double share = 0;     ///< percent of the frames that the wire alone would allow
    double wireBusy = 0;  ///< percent of the time in which bytes of any command pass
    double redraws = 0;   ///< of the dashboard, a second
    double inputs = 0;    ///< I replies a second
};

Pace measure(WireBench& bench, const Wire& wire, double seconds) {
    FrmDashBoard* dashboard = bench.program->windows.form<FrmDashBoard>();
    const int redrawsBefore = dashboard->redraws();
    const auto framesBefore = bench.session().live.frames;
    const std::int64_t begin = bench.nowUs();
    bench.meter.counts = {};
    Program::runFor(static_cast<int>(seconds * 1000));
    const double took = static_cast<double>(bench.nowUs() - begin) / 1e6;
    const double limit = 1 / ((1 + wire.replyBytes) * byteSeconds);
    Pace pace;
    pace.framesPerSecond = static_cast<double>(bench.session().live.frames - framesBefore) / took;
    pace.share = 100 * pace.framesPerSecond / limit;
    pace.wireBusy = 100 * static_cast<double>(bench.meter.counts.bytes) * byteSeconds / took;
    pace.redraws = (dashboard->redraws() - redrawsBefore) / took;
    pace.inputs = bench.meter.commands('I') / took;
    return pace;
}

/// Frames of one kind, first with the dashboard alone, then with an open table and one datalog record a frame
/// as well. The recorder has no window yet: the records are written by its writer on each decoded frame.
void frames(benchmark::State& state, const Wire& wire) {
    WireBench bench({"--unit", wire.model, "--firmware", wire.firmware}, wire.extension);
    if (!bench.ready) return state.SkipWithError("The unit was not found");
    const bool wide = wire.request == 'W';
    if (bench.session().link.linked().WideMonitor != wide) return state.SkipWithError("Other frames");
    constexpr double seconds = 4;
    for (auto unused : state) {
        Program::runFor(500);
        const Pace bare = measure(bench, wire, seconds);
        bench.openTable(wire.table, "Table");
        FrameRecorder recorder(bench.session(), bench.folder.path("bench.dat"));
        const Pace loaded = measure(bench, wire, seconds);
        if (!recorder.written()) return state.SkipWithError("Nothing was recorded");
        state.counters["limit/s"] = 1 / ((1 + wire.replyBytes) * byteSeconds);
        state.counters["bare/s"] = bare.framesPerSecond;
        state.counters["bare_%"] = bare.share;
        state.counters["busy_%"] = bare.wireBusy;
        state.counters["I/s"] = bare.inputs;
        state.counters["load/s"] = loaded.framesPerSecond;
        state.counters["load_%"] = loaded.share;
        state.counters["ldbusy_%"] = loaded.wireBusy;
        state.counters["draws/s"] = loaded.redraws;
    }
}

/// A whole programming run against wire time plus the 10 ms gaps.
void programming(benchmark::State& state) {
    WireBench bench;
    if (!bench.ready) return state.SkipWithError("The unit was not found");
    Session& session = bench.session();
    for (auto unused : state) {
        bench.program->dialogs.boxes.clear();
        const std::int64_t start = bench.nowUs();
        bench.program->commands.programming.programOrb();
        Program::waitFor([&] { return !bench.program->dialogs.boxes.empty(); }, 60'000);
        const double took = static_cast<double>(bench.nowUs() - start) / 1e6;
        const std::string text = session.currentUnitObject().sRecordText();
        std::size_t bytes = 2 + 2, lines = 0;  // "P1" and its reply
        for (const char c : text) {
            lines += c == '\n' ? 1 : 0;
            bytes += c != '\r' && c != '\n' ? 1 : 0;
        }
        const double wire =
            static_cast<double>(bytes + 2 * lines) * byteSeconds + static_cast<double>(lines) * 0.010;
        state.counters["took_s"] = took;
        state.counters["wire_s"] = wire;
        state.counters["times"] = took / wire;
    }
}
BENCHMARK(programming)->Iterations(1)->Unit(benchmark::kSecond);

void addFrames() {
    for (const Wire& wire : wires) {
        const std::string name = std::string("frames ") + wire.name;
        benchmark::RegisterBenchmark(name.c_str(), [&wire](benchmark::State& state) { frames(state, wire); })
            ->Iterations(1)
            ->Unit(benchmark::kSecond);
    }
}

}  // namespace
}  // namespace zentaq::bench

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    zentaq::bench::addFrames();
    // A table, unless the caller wants it otherwise: the last word counts.
    std::vector<char*> words(argv, argv + argc);
    std::string tabular = "--benchmark_counters_tabular=true";
    words.insert(words.begin() + 1, tabular.data());
    int count = static_cast<int>(words.size());
    words.push_back(nullptr);
    benchmark::Initialize(&count, words.data());
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
