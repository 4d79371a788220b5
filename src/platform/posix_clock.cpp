#include "platform/posix_clock.h"

#include <array>
#include <chrono>
#include <ctime>

namespace zentaq {

namespace {

std::string localTime(const char* pattern) {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::tzset();  // the zone may have changed since the start
    if (::localtime_r(&now, &parts) == nullptr) return {};
    std::array<char, 64> text{};
    return {text.data(), std::strftime(text.data(), text.size(), pattern, &parts)};
}

}  // namespace

std::int64_t PosixClock::monotonicUs() const {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(sinceStart).count();
}

std::string PosixClock::timeText() const {
    return localTime("%H:%M:%S");
}

std::string PosixClock::stampText() const {
    return localTime("%Y%m%d_%H%M%S");
}

std::string PosixClock::dateText() const {
    return localTime("%x");
}

}  // namespace zentaq
