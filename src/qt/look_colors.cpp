// The colours, and which may stand on which.
#include <array>

#include "qt/look.h"

namespace zentaq {

namespace {

constexpr auto colourRows = std::to_array<LookColor>({
    {"background", &LookColors::background, 0xEEF0F3, 0x14171C},
    {"surface", &LookColors::surface, 0xFFFFFF, 0x0B0D10},
    {"alternate", &LookColors::alternate, 0xF4F6F9, 0x12151A},
    {"button", &LookColors::button, 0xE0E4EA, 0x242A33},
    {"disabledGround", &LookColors::disabledGround, 0xE6E9ED, 0x1B1F26},
    {"text", &LookColors::text, 0x10141A, 0xF0F2F5},
    {"mutedText", &LookColors::mutedText, 0x3C4654, 0xB4BECA},
    {"disabledText", &LookColors::disabledText, 0x5C6470, 0x8A95A3},
    {"border", &LookColors::border, 0xB4BCC8, 0x3A424E},
    {"edge", &LookColors::edge, 0x66717F, 0x8D97A6},
    {"focus", &LookColors::focus, 0x0B4F9E, 0x6CB4FF},
    {"accent", &LookColors::accent, 0x0B4F9E, 0x6CB4FF},
    {"accentText", &LookColors::accentText, 0xFFFFFF, 0x06101C},
    {"restingSelection", &LookColors::restingSelection, 0xC9CFD8, 0x3A424E},
    {"restingText", &LookColors::restingText, 0x10141A, 0xF0F2F5},
    {"hover", &LookColors::hover, 0xD2D8E1, 0x313947},
    {"checked", &LookColors::checked, 0xC7DCF5, 0x1D3B5E},
    {"live", &LookColors::live, 0x00616B, 0x5FE0E8},
    {"changed", &LookColors::changed, 0x5B2A9D, 0xC9A6FF},
    {"good", &LookColors::good, 0x0B6B2C, 0x5CE084},
    {"warning", &LookColors::warning, 0x8A4B00, 0xFFC24D},
    {"alarm", &LookColors::alarm, 0xB01010, 0xFF7B72},
    {"highlight", &LookColors::highlight, 0xFFF3B0, 0x4A4008},
    {"highlightText", &LookColors::highlightText, 0x10141A, 0xFFF3B0},
    {"badge", &LookColors::badge, 0xD5DAE2, 0x2E3641},
    {"badgeText", &LookColors::badgeText, 0x10141A, 0xF0F2F5},
    {"goodBadge", &LookColors::goodBadge, 0xCBEBD5, 0x0F3D20},
    {"goodBadgeText", &LookColors::goodBadgeText, 0x07401C, 0xA6F0BC},
    {"changedBadge", &LookColors::changedBadge, 0xE4D7FA, 0x3B2363},
    {"changedBadgeText", &LookColors::changedBadgeText, 0x3A1870, 0xE6D6FF},
    {"warningBadge", &LookColors::warningBadge, 0xFFC24D, 0x5A3C00},
    {"warningBadgeText", &LookColors::warningBadgeText, 0x10141A, 0xFFD98A},
    {"alarmBadge", &LookColors::alarmBadge, 0xB01010, 0x8E1A1A},
    {"alarmBadgeText", &LookColors::alarmBadgeText, 0xFFFFFF, 0xFFFFFF},
    {"needle", &LookColors::needle, 0xFF0000, 0xFF0000},
    {"redZone", &LookColors::redZone, 0xB01010, 0xFF4D42},
    {"yellowZone", &LookColors::yellowZone, 0xA87400, 0xFFC24D},
    {"greenZone", &LookColors::greenZone, 0x0B6B2C, 0x5CE084},
    {"lampOff", &LookColors::lampOff, 0xE0E4EA, 0x242A33},
    {"sendLamp", &LookColors::sendLamp, 0xFF0000, 0xFF0000},
    {"receiveLamp", &LookColors::receiveLamp, 0x00C000, 0x00C000},
    {"lampText", &LookColors::lampText, 0x10141A, 0x10141A},
    {"liveMarker", &LookColors::liveMarker, 0xC2185B, 0xFF6FB5},
});

using Of = LookColors;
constexpr double asText = leastTextContrast;
constexpr double asMark = leastMarkContrast;

constexpr auto pairRows = std::to_array<LookPair>({
    {&Of::text, &Of::background, asText},
    {&Of::text, &Of::surface, asText},
    {&Of::text, &Of::alternate, asText},
    {&Of::text, &Of::button, asText},
    {&Of::text, &Of::hover, asText},
    {&Of::text, &Of::checked, asText},
    {&Of::text, &Of::lampOff, asText},
    {&Of::mutedText, &Of::background, asText},
    {&Of::mutedText, &Of::surface, asText},
    {&Of::mutedText, &Of::alternate, asText},
    {&Of::mutedText, &Of::button, asText},
    {&Of::mutedText, &Of::lampOff, asText},
    {&Of::mutedText, &Of::restingSelection, asText},
    {&Of::disabledText, &Of::background, asText},
    {&Of::disabledText, &Of::surface, asText},
    {&Of::disabledText, &Of::alternate, asText},
    {&Of::disabledText, &Of::disabledGround, asText},
    {&Of::disabledText, &Of::button, asText},
    {&Of::accent, &Of::background, asText},
    {&Of::accent, &Of::surface, asText},
    {&Of::accentText, &Of::accent, asText},
    {&Of::restingText, &Of::restingSelection, asText},
    {&Of::live, &Of::background, asText},
    {&Of::live, &Of::surface, asText},
    {&Of::live, &Of::alternate, asText},
    {&Of::changed, &Of::background, asText},
    {&Of::changed, &Of::surface, asText},
    {&Of::changed, &Of::alternate, asText},
    {&Of::good, &Of::background, asText},
    {&Of::good, &Of::surface, asText},
    {&Of::good, &Of::alternate, asText},
    {&Of::warning, &Of::background, asText},
    {&Of::warning, &Of::surface, asText},
    {&Of::warning, &Of::alternate, asText},
    {&Of::alarm, &Of::background, asText},
    {&Of::alarm, &Of::surface, asText},
    {&Of::alarm, &Of::alternate, asText},
    {&Of::highlightText, &Of::highlight, asText},
    {&Of::badgeText, &Of::badge, asText},
    {&Of::goodBadgeText, &Of::goodBadge, asText},
    {&Of::changedBadgeText, &Of::changedBadge, asText},
    {&Of::warningBadgeText, &Of::warningBadge, asText},
    {&Of::alarmBadgeText, &Of::alarmBadge, asText},
    {&Of::edge, &Of::background, asMark},
    {&Of::edge, &Of::surface, asMark},
    {&Of::edge, &Of::alternate, asMark},
    {&Of::edge, &Of::button, asMark},
    {&Of::edge, &Of::hover, asMark},
    {&Of::edge, &Of::checked, asMark},
    {&Of::edge, &Of::highlight, asMark},
    {&Of::edge, &Of::restingSelection, asMark},
    {&Of::focus, &Of::background, asMark},
    {&Of::focus, &Of::surface, asMark},
    {&Of::focus, &Of::alternate, asMark},
    {&Of::focus, &Of::button, asMark},
    {&Of::focus, &Of::hover, asMark},
    {&Of::focus, &Of::checked, asMark},
    {&Of::focus, &Of::highlight, asMark},
    {&Of::focus, &Of::restingSelection, asMark},
    {&Of::focus, &Of::disabledGround, asMark},
    {&Of::lampText, &Of::sendLamp, asText},
    {&Of::lampText, &Of::receiveLamp, asText},
    {&Of::needle, &Of::surface, asMark},
    {&Of::redZone, &Of::surface, asText},  // codes are written with it
    {&Of::yellowZone, &Of::surface, asMark},
    {&Of::greenZone, &Of::surface, asMark},
    {&Of::liveMarker, &Of::surface, asMark},
});

LookColors colorsOf(DisplayMode mode) {
    LookColors colors;
    for (const auto& [name, part, day, night] : colourRows) {
        colors.*part = QColor(mode == DisplayMode::Day ? day : night);
    }
    return colors;
}

}  // namespace

std::span<const LookColor> lookTable() {
    return colourRows;
}

std::span<const LookPair> lookPairs() {
    return pairRows;
}

std::span<const QColor> plotColors(DisplayMode mode) {
    static const std::array<QColor, 8> day{QColor(0x28, 0x69, 0xFF), QColor(0xBE, 0x50, 0x00),
                                           QColor(0x55, 0x00, 0x96), QColor(0xB4, 0x50, 0x5F),
                                           QColor(0x73, 0x14, 0x05), QColor(0x00, 0x00, 0xFA),
                                           QColor(0xA5, 0x55, 0xAF), QColor(0x6E, 0x0F, 0x4B)};
    static const std::array<QColor, 8> night{QColor(0x0F, 0xD7, 0xFF), QColor(0xFF, 0xE6, 0x1E),
                                             QColor(0xD7, 0x3C, 0x96), QColor(0x78, 0xFA, 0xCD),
                                             QColor(0x64, 0x6E, 0xFA), QColor(0xD2, 0xF0, 0x87),
                                             QColor(0xF5, 0x2D, 0x19), QColor(0xDC, 0x50, 0x5F)};
    return mode == DisplayMode::Day ? day : night;
}

const LookColors& lookColors(DisplayMode mode) {
    static const LookColors day = colorsOf(DisplayMode::Day);
    static const LookColors night = colorsOf(DisplayMode::Night);
    return mode == DisplayMode::Day ? day : night;
}

}  // namespace zentaq
