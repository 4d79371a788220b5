#include "windows/dashboard_faces.h"

#include "base/channels.h"
#include "live/gauges.h"

namespace zentaq {
namespace {

using Tick = GaugeFace::Tick;

constexpr int highRevScale = 18000;

constexpr Channel::Span spanOf(Channel::Number value) {
    return channelOf(value).span;
}

/// Ticks over a span; those on a whole `major` bear the value divided by `divisor`.
std::vector<Tick> ticks(DialAngle angle, Channel::Span span, int minor, int major, int divisor = 1) {
    std::vector<Tick> result;
    const int low = static_cast<int>(span.low);
    for (int value = low; value <= static_cast<int>(span.high); value += minor) {
        const bool numbered = (value - low) % major == 0;
        result.push_back({angle(value), numbered ? QString::number(value / divisor) : QString()});
    }
    return result;
}

}  // namespace

DialAngles dialAngles(int revScale) {
    DialAngles angles;
    angles.revScale = revScale;
    angles.tachometer =
        revScale == highRevScale
            ? DialAngle([](double rpm) { return tachAngle(static_cast<float>(rpm), highRevScale); })
            : DialAngle([](double rpm) { return tachAngle(static_cast<float>(rpm), 9000); });
    angles.throttle = [](double volts) { return throttleAngle(static_cast<float>(volts)); };
    angles.volt = [](double volts) { return voltAngle(static_cast<float>(volts)); };
    angles.idle = [](double percent) { return idleAngle(static_cast<float>(percent)); };
    angles.coolant = [](double celsius) { return temperatureAngle(static_cast<float>(celsius)); };
    angles.manifoldAir = angles.coolant;
    angles.mixture = [](double ratio) { return afrAngle(static_cast<float>(ratio), std::nullopt); };
    return angles;
}

GaugeFace tachometerFace(const DialAngles& angles) {
    const int red = angles.revScale * 8 / 9;
    return {.name = "Tachometer",
            .caption = "x 1000",
            .bounds = {-1.04, -1.04, 2.08, 2.08},
            .captionAt = {-0.18, 0.66},
            .ticks = ticks(angles.tachometer, {0, static_cast<float>(angles.revScale)}, angles.revScale / 36,
                           angles.revScale / 9, 1000),
            .zones = {{angles.tachometer(red), angles.tachometer(angles.revScale), &DashColors::redZone}},
            .twoLines = false,
            .restAngle = -123};
}

GaugeFace throttleFace(const DialAngles& angles) {
    GaugeFace face{.name = "TPS",
                   .caption = {},
                   .bounds = {-0.94, -1.05, 1.52, 1.2},
                   .ticks = {},
                   .zones = {},
                   .restAngle = angles.throttle(spanOf(&LiveValues::TPS).low)};
    for (int tenths = 0; tenths <= 50; tenths += 5) {
        const bool numbered = tenths % 10 == 0;
        face.ticks.push_back(
            {angles.throttle(tenths / 10.0), numbered ? QString::number(tenths / 10) : QString()});
    }
    return face;
}

GaugeFace voltFace(const DialAngles& angles) {
    constexpr Channel::Span span = spanOf(&LiveValues::BATTV);
    GaugeFace face{.name = "VOLT",
                   .caption = {},
                   .bounds = {-0.96, -0.15, 1.5, 1.2},
                   .ticks = ticks(angles.volt, span, 1, 12),
                   .zones = {{angles.volt(span.low), angles.volt(11), &DashColors::redZone},
                             {angles.volt(15.5), angles.volt(span.high), &DashColors::redZone}},
                   .restAngle = angles.volt(span.low)};
    for (const int numbered : {8, 12, 16}) {
        face.ticks[static_cast<std::size_t>(numbered - 7)].label = QString::number(numbered);
    }
    face.ticks.front().label.clear();
    return face;
}

GaugeFace idleFace(const DialAngles& angles) {
    return {.name = "IAC",
            .caption = {},
            .bounds = {-0.96, -0.15, 1.5, 1.2},
            .ticks = ticks(angles.idle, spanOf(&LiveValues::IACP), 10, 50),
            .zones = {},
            .restAngle = angles.idle(spanOf(&LiveValues::IACP).low)};
}

GaugeFace temperatureFace(const QString& name, DialAngle angle, bool fahrenheit) {
    constexpr Channel::Span span = spanOf(&LiveValues::CLT);
    GaugeFace face{.name = name,
                   .caption = {},
                   .bounds = {-0.15, -0.76, 1.2, 1.58},
                   .ticks = {},
                   .zones = {{angle(110), angle(span.high), &DashColors::redZone}},
                   .restAngle = angle(span.low)};
    const int highest = fahrenheit ? 300 : 150;
    const int step = fahrenheit ? 20 : 10;
    const int numbered = fahrenheit ? 100 : 50;
    for (int value = -40; value <= highest; value += step) {
        const double celsius = fahrenheit ? (value - 32) / 1.8 : value;
        face.ticks.push_back({angle(celsius), value % numbered == 0 ? QString::number(value) : QString()});
    }
    return face;
}

GaugeFace mixtureFace(const DialAngles& angles) {
    GaugeFace face{.name = "AFR",
                   .caption = "AFR",
                   .bounds = {-1.05, -1.02, 1.23, 1.94},
                   .captionAt = {-0.1, 0.8},
                   .captionOnBack = true,
                   .ticks = {},
                   .zones = {},
                   .twoLines = true,
                   .restAngle = angles.mixture(spanOf(&LiveValues::AAFR).low)};
    for (int tenths = 90; tenths < 140; tenths += 5) {
        const bool numbered = tenths % 20 == 0;
        face.ticks.push_back(
            {angles.mixture(tenths / 10.0), numbered ? QString::number(tenths / 10) : QString()});
    }
    // The scale has a gap at 14 where neither formula holds: the number stands in the middle of it.
    face.ticks.push_back({(angles.mixture(13.99) + angles.mixture(14.01)) / 2, "14"});
    face.ticks.push_back({angles.mixture(14.5), {}});
    face.ticks.push_back({angles.mixture(14.99), "15"});
    for (int value = 16; value <= 20; ++value) {
        face.ticks.push_back({angles.mixture(value), value == 20 ? QString("20") : QString()});
    }
    return face;
}

}  // namespace zentaq
