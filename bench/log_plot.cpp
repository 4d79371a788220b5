// The plot of a log of 8 hours (1,440,000 rows) with 24 channels at 1920 by 1080: from a key to the drawn
// picture. Aim: below 16 ms for a step of pan and of zoom, which is 60 pictures a second, with one to four
// channels in a pane. All 24 noisy ones in one pane are the worst case, and no aim.
#include "windows/log_plot_view.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <cmath>

#include "base/channels.h"
#include "qt/look.h"
#include "testing/memory_settings.h"

namespace zentaq {
namespace {

constexpr std::size_t rowsOfEightHours = 1'440'000;
constexpr std::size_t plotted = 24;

/// Engine-like: slow waves with noise on them, so that every column of pixels has a stretch to draw.
LogColumns eightHours() {
    DatalogHead head;
    head.columns = {"Frame"};
    for (const Channel& channel : channels) {
        if (head.columns.size() <= plotted) head.columns.emplace_back(channel.name);
    }
    LogColumns log;
    log.begin(head, rowsOfEightHours);
    std::vector<double> row(head.columns.size());
    std::uint32_t noise = 1;
    for (std::size_t i = 0; i < rowsOfEightHours; ++i) {
        row[0] = static_cast<double>(i);
        for (std::size_t c = 1; c < row.size(); ++c) {
            noise = noise * 1664525 + 1013904223;
            const double phase = std::fmod(static_cast<double>(i), 1885.0 * static_cast<double>(c));
            const double wave = std::abs(phase / (942.5 * static_cast<double>(c)) - 1) * 2 - 1;
            row[c] = 50 + 40 * wave + static_cast<double>(noise >> 24) / 32;
        }
        log.append(row);
    }
    return log;
}

struct Plot {
    MemorySettings settings;
    LogPlotView view{settings, nullptr};

    explicit Plot(const LogColumns& log, std::size_t inPane) {
        view.resize(1920, 1080);
        std::vector<PlotPane> panes;
        for (std::size_t c = 1; c <= plotted; ++c) {
            if ((c - 1) % inPane == 0) panes.emplace_back();
            panes.back().channels.push_back(log.names()[c]);
        }
        view.area().panes(panes);
        view.showLog(&log, "bench");
        view.show();
        draw();
    }
    void draw() {
        view.area().drawNow();
        QApplication::processEvents();
    }
};

const LogColumns& sharedLog() {
    static const LogColumns log = eightHours();
    return log;
}

/// `range(0)`: channels in a pane; `range(1)`: seconds that are shown.
void pan(benchmark::State& state) {
    Plot plot(sharedLog(), static_cast<std::size_t>(state.range(0)));
    const double middle = plot.view.area().scene().window.to() / 2;
    const double shown = static_cast<double>(state.range(1));
    plot.view.area().zoomBy(shown / plot.view.area().scene().window.length());
    plot.view.cursorAt(middle);
    plot.draw();
    int step = 0;
    for (auto _ : state) {
        plot.view.area().moveBy(step++ % 20 < 10 ? 0.02 : -0.02);
        plot.draw();
    }
}
BENCHMARK(pan)->ArgsProduct({{1, 4, 24}, {25000, 3600, 300, 30, 3}})->Unit(benchmark::kMillisecond);

void zoom(benchmark::State& state) {
    Plot plot(sharedLog(), static_cast<std::size_t>(state.range(0)));
    int step = 0;
    for (auto _ : state) {
        plot.view.area().zoomBy(step++ % 20 < 10 ? 0.8 : 1.25);
        plot.draw();
    }
}
BENCHMARK(zoom)->Arg(1)->Arg(4)->Arg(24)->Unit(benchmark::kMillisecond);

/// The log plays: only the cursor and the values move.
void play(benchmark::State& state) {
    Plot plot(sharedLog(), static_cast<std::size_t>(state.range(0)));
    double seconds = 0;
    for (auto _ : state) {
        plot.view.cursorAt(seconds += secondsPerFrame);
        plot.draw();
    }
}
BENCHMARK(play)->Arg(4)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zentaq

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    zentaq::applyLook(application, zentaq::DisplayMode::Night);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
