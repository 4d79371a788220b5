// One live frame into live values: some 8 W or 14 F frames a second come over the wire.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "calibration_bench.h"
#include "live/frame_decoder.h"

namespace zentaq {
namespace {

/// Every byte differs from frame to frame, as on a running engine.
std::vector<std::uint8_t> frameOf(int length, unsigned seed) {
    std::vector<std::uint8_t> frame;
    for (int i = 0; i < length; ++i) {
        seed = seed * 1103515245U + 12345U;
        frame.push_back(static_cast<std::uint8_t>(seed >> 16U));
    }
    return frame;
}

template <typename Decode>
void decodeFrames(benchmark::State& state, int length, Decode&& decode) {
    constexpr unsigned frames = 16;
    std::vector<std::vector<std::uint8_t>> replies;
    for (unsigned i = 0; i < frames; ++i) replies.push_back(frameOf(length, i));
    std::size_t next = 0;
    for (auto _ : state) {
        decode(replies[next]);
        next = (next + 1) % frames;
    }
}

void decodeF(benchmark::State& state) {
    const auto calibration = bench::sample();
    LiveValues live;
    FrameDecoder decoder(live);
    decodeFrames(state, calibration->unit.kind().sizes.monitorLen, [&](const auto& reply) {
        decoder.Monitor(calibration->unit, reply);
        benchmark::DoNotOptimize(live.RPM);
    });
}
BENCHMARK(decodeF);

void decodeW(benchmark::State& state) {
    const auto calibration = bench::sample();
    LiveValues live;
    FrameDecoder decoder(live);
    decodeFrames(state, calibration->unit.kind().sizes.wCmdLen, [&](const auto& reply) {
        decoder.MonitorW(calibration->unit, reply);
        benchmark::DoNotOptimize(live.RPM);
    });
}
BENCHMARK(decodeW);

}  // namespace
}  // namespace zentaq
