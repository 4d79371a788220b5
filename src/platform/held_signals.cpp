#include "platform/held_signals.h"

#include <array>
#include <atomic>

namespace zentaq {

namespace {

constexpr std::size_t signalCount = 65;
/// Written by a handler, on whatever thread the system chose.
std::array<std::atomic<bool>, signalCount> came;
static_assert(std::atomic<bool>::is_always_lock_free);

void remember(int number) {
    came.at(static_cast<std::size_t>(number)) = true;
}

/// A handler alone would let the system repeat a write to the terminal for ever.
bool isJustIgnored(int number) {
    return number == SIGTTOU || number == SIGPIPE;
}

}  // namespace

// Handlers and no blocked signals: a block holds for one thread, and a window program has several.
HeldSignals::HeldSignals(std::initializer_list<int> numbers) {
    for (const int number : numbers) {
        struct sigaction before {};
        if (::sigaction(number, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) continue;
        struct sigaction held {};
        held.sa_handler = isJustIgnored(number) ? SIG_IGN : remember;
        held.sa_flags = SA_RESTART;
        ::sigemptyset(&held.sa_mask);
        came.at(static_cast<std::size_t>(number)) = false;
        if (::sigaction(number, &held, nullptr) == 0) former_.emplace_back(number, before);
    }
}

HeldSignals::~HeldSignals() {
    for (const auto& [number, before] : former_) ::sigaction(number, &before, nullptr);
    for (const auto& [number, before] : former_) {
        if (came.at(static_cast<std::size_t>(number)).exchange(false)) ::raise(number);
    }
}

}  // namespace zentaq
