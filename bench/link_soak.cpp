// A day of the link in minutes, or a storm of replies; tells what has happened and what was broken.
//   link_soak [hours [seed [model]]]
//   link_soak --storm replies [seed]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "link/soak_replies.h"
#include "link/soak_rig.h"

namespace zentaq {
namespace {

class Stopwatch {
 public:
    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
    }

 private:
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

int fail(const std::string& what) {
    std::printf("BROKEN: %s\n", what.c_str());
    return 1;
}

int storm(long replies, unsigned seed) {
    const Stopwatch watch;
    ReplyStorm storm;
    ReplySource source(seed);
    for (long i = 0; i < replies; ++i) {
        const ReplySource::Reply reply = source.next();
        const std::string broken = storm.strike(reply.kind, reply.command, reply.bytes);
        if (!broken.empty()) return fail("reply " + std::to_string(i) + ": " + broken);
    }
    std::printf("%ld replies in %.1f s\n", replies, watch.seconds());
    return 0;
}

int soak(const SoakOptions& options) {
    const Stopwatch watch;
    Soak soak(options);
    soak.run();
    const SoakCounts& counts = soak.counts();
    std::printf("unit %s, seed %u: %lld ticks in %.1f s\n", std::string(options.model).c_str(), options.seed,
                static_cast<long long>(counts.ticks), watch.seconds());
    for (const auto& [what, count] : counts.of) {
        std::printf("  %-28s %lld\n", what.c_str(), static_cast<long long>(count));
    }
    std::printf("  longest recovery %lld ticks, longest reply %zu bytes, most bytes held %zu\n",
                static_cast<long long>(counts.longestRecoveryTicks), counts.longestReply,
                counts.mostBytesHeld);
    return soak.broken().empty() ? 0 : fail(soak.broken());
}

}  // namespace
}  // namespace zentaq

int main(int argc, char** argv) {
    using namespace zentaq;
    const auto numberAt = [&](int index, double fallback) {
        return argc > index ? std::strtod(argv[index], nullptr) : fallback;
    };
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--storm") {
        return storm(static_cast<long>(numberAt(2, 1e6)), static_cast<unsigned>(numberAt(3, 1)));
    }
    SoakOptions options;
    options.ticks = static_cast<std::int64_t>(numberAt(1, 24) * 3'600'000);
    options.seed = static_cast<unsigned>(numberAt(2, 1));
    if (argc > 3) options.model = argv[3];
    if (sim::findProfile(options.model) == nullptr) {
        std::fprintf(stderr, "There is no unit \"%s\": the models are %s\n", argv[3],
                     sim::modelList().c_str());
        return 2;
    }
    return soak(options);
}
