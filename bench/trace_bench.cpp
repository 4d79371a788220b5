// What a wire trace costs: one wide frame, its command and its reply, in one lump and in five, with the
// writing of the file; and what the watching costs while no trace runs.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>
#include <vector>

#include "temporary_folder.h"
#include "testing/manual_clock.h"
#include "trace/wire_trace.h"

namespace zentaq {
namespace {

constexpr std::int64_t frameUs = 17'300;

std::vector<std::uint8_t> wideFrame() {
    std::vector<std::uint8_t> frame(65);
    for (std::size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<std::uint8_t>(i * 37);
    return frame;
}

void passFrames(benchmark::State& state, WireTrace& trace, ManualClock& clock) {
    const std::vector<std::uint8_t> frame = wideFrame();
    const auto lumps = static_cast<std::size_t>(state.range(0));
    const std::size_t size = frame.size() / lumps;
    for (auto _ : state) {
        trace.written("W", clock.monotonicUs());
        clock.advanceUs(frameUs);
        for (std::size_t i = 0; i < lumps; ++i) {
            trace.arrived(std::span(frame).subspan(i * size, size), clock.monotonicUs());
        }
        trace.delivered(frame.size(), clock.monotonicUs());
        trace.tend();
    }
}

void tracedFrame(benchmark::State& state) {
    const TemporaryFolder folder;
    ManualClock clock;
    WireTrace trace(clock);
    trace.start(folder.file("line.trace"), orbaKind().slot);
    passFrames(state, trace, clock);
}
BENCHMARK(tracedFrame)->Arg(1)->Arg(5)->Arg(65);

void frameWithoutTrace(benchmark::State& state) {
    ManualClock clock;
    WireTrace trace(clock);
    passFrames(state, trace, clock);
}
BENCHMARK(frameWithoutTrace)->Arg(1);

}  // namespace
}  // namespace zentaq
