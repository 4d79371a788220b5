#include "sim/frame_layout.h"

#include <gtest/gtest.h>

#include "sim/map_sensor.h"
#include "sim/unit_profile.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

struct ExpectedByte {
    std::size_t byte;
    unsigned raw;
    const char* why;
    bool word = false;  ///< two bytes, the high one first
};

ExpectedByte wordAt(std::size_t byte, unsigned raw, const char* why) {
    return {byte, raw, why, true};
}

LiveValues handPicked() {
    LiveValues live;
    live.rpm = 3000;
    live.tpsVolts = 3;
    live.mapKpa = 100;
    live.mapSensorVolts = mapSensorVolts(100);  // 5.295 - 0.54738 = 4.74762
    live.wideLoad = 968.514;                    // 4.74762 * 204
    live.coolantC = 88;
    live.airC = 25;
    live.batteryVolts = 13.8;
    live.knockPercent = 20;
    live.egoVolts = 0.8;
    live.checkEngine = 1;
    live.primaryAdvance = 20;
    live.secondaryAdvance = 16;
    live.knockRetard = 2;
    live.gammaPercent = 100;
    live.primaryDutyPercent = 40;
    live.secondaryDutyPercent = 20;
    live.primaryPulseMs = 8;
    live.secondaryPulseMs = 2;
    live.egoCorrectionPercent = 5;
    live.desiredAfr = 14;
    live.actualAfr = 12;
    live.idlePositionPercent = 40;
    live.idleDuty = 102.6;  // 1 + 40 % of 254
    live.idleDirection = 1;
    live.injectionGapMs = 12;
    live.veCorrection = -4;
    live.coolantCorrection = 7;
    live.voltageCompensationMs = 0.2;
    live.tableAdvance = 24;
    live.airAdvance = -8;
    live.idleTargetRpm = 848;
    for (int i = 0; i < 16; ++i) live.gpio[static_cast<std::size_t>(i)] = 200 + i;
    return live;
}

void expectBytes(const Bytes& reply, const std::vector<ExpectedByte>& expected) {
    for (const auto& row : expected) {
        EXPECT_EQ(row.word ? test::word(reply, row.byte) : reply.at(row.byte), row.raw)
            << "byte " << row.byte << ": " << row.why;
    }
}

TEST(FrameLayout, NarrowFrameOfOrbAHasNoHeadAndNoChecksum) {
    const Bytes reply = encodeFrame(findProfile("A")->narrow, handPicked());
    ASSERT_EQ(reply.size(), 35u);
    expectBytes(reply, {wordAt(0, 0x0BB8, "3000 rpm = 0BB8"),
                        {2, 85, "20 degrees * 4.25"},
                        {3, 242, "4.74762 V * 51 = 242.13"},
                        {4, 172, "(88 + 40) * 255 / 190 = 171.8"},
                        wordAt(5, 255, "100 % * 2.55 = 00FF"),
                        {7, 51, "20 % * 2.55"},
                        {8, 87, "(25 + 40) * 255 / 190 = 87.2"},
                        {9, 153, "3 V * 51"},
                        {10, 205, "13.8 V / 0.067432 = 204.7"},
                        {11, 1, "lamp"},
                        {12, 200, "first output"},
                        {13, 202, "third"},
                        {14, 203, "fourth"},
                        {15, 185, "actual (14.7 / 12 - 0.5) * 255 = 184.9"},
                        {16, 133, "+5 % around 128"},
                        {17, 140, "desired (14.7 / 14 - 0.5) * 255 = 140.25"},
                        {18, 0, "not used"},
                        {19, 41, "0.8 V * 51 = 40.8"},
                        wordAt(21, 250, "2 ms * 125 = 00FA"),
                        wordAt(23, 0x03E8, "8 ms * 125 = 03E8"),
                        {25, 204, "fifth"},
                        {28, 207, "eighth"},
                        {29, 201, "second"},
                        {31, 68, "16 degrees * 4.25"},
                        {32, 17, "2 degrees * 8.5"},
                        {33, 103, "1 + 40 % of 254 = 102.6"},
                        {34, 1, "direction: the last byte is data"}});
}

TEST(FrameLayout, WideFrameOfOrbACarriesHeadValuesOutputsAndChecksum) {
    const Bytes reply = encodeFrame(findProfile("A")->wide, handPicked());
    ASSERT_EQ(reply.size(), 65u);
    EXPECT_TRUE(test::isSealed(reply));
    expectBytes(reply, {wordAt(3, 0x0BB8, "3000 rpm"),
                        {5, 153, "3 V * 51"},
                        wordAt(6, 0x03C9, "4.74762 V * 204 = 968.5 up to 969 = 03C9"),
                        {8, 172, "coolant"},
                        {9, 87, "air"},
                        {10, 51, "knock"},
                        {11, 85, "primary"},
                        {12, 68, "secondary"},
                        {13, 17, "retard"},
                        wordAt(14, 100, "gamma as it stands"),
                        {16, 140, "desired comes first here"},
                        {17, 185, "actual"},
                        {18, 133, "correction"},
                        {19, 41, "oxygen sensor"},
                        wordAt(20, 0x1F40, "8 ms * 1000 = 1F40"),
                        wordAt(22, 0x07D0, "2 ms * 1000 = 07D0"),
                        {24, 102, "40 % * 2.55"},
                        {25, 51, "20 % * 2.55"},
                        {26, 102, "40 % * 2.55"},
                        {27, 1, "direction"},
                        {28, 205, "battery"},
                        {29, 1, "lamp"},
                        wordAt(30, 0x2EE0, "12 ms * 1000 = 2EE0"),
                        wordAt(32, 0x03CB, "4.74762 V * 204.6 = 971.4 = 03CB"),
                        {34, 46, "-4 % around 50"},
                        {35, 50, "none"},
                        {36, 7, "raw"},
                        {37, 50, "none"},
                        {46, 150, "0.2 ms * 125 + 125"},
                        {50, 102, "24 degrees * 4.25"},
                        {52, 94, "-8 degrees * 4.25 + 128"},
                        {53, 128, "none"},
                        {55, 53, "848 rpm / 16"},
                        {56, 200, "first output"},
                        {57, 201, "second"},
                        {63, 207, "eighth"}});
}

TEST(FrameLayout, NarrowFrameOfTheOtherKindsHasHeadFineStepsAndChecksum) {
    for (const char* model : {"L", "C", "D", "D6"}) {
        const Bytes reply = encodeFrame(findProfile(model)->narrow, handPicked());
        ASSERT_EQ(reply.size(), 28u) << model;
        expectBytes(reply, {{0, 0xFA, "head"},
                            {1, 0xA5, "head"},
                            {2, 0x55, "head"},
                            wordAt(3, 0x0BB8, "3000 rpm = 0BB8"),
                            {5, 153, "throttle, 3 V * 51"},
                            {6, 242, "pressure, 4.74762 V * 51"},
                            {7, 172, "coolant"},
                            {8, 87, "air"},
                            {9, 51, "knock"},
                            {10, 85, "primary"},
                            {11, 68, "secondary"},
                            {12, 17, "retard"},
                            wordAt(13, 100, "gamma as it stands"),
                            {15, 140, "desired before actual"},
                            {16, 185, "actual"},
                            {17, 133, "correction"},
                            {18, 41, "oxygen sensor"},
                            wordAt(19, 0x1F40, "8 ms * 1000 = 1F40"),
                            wordAt(21, 0x07D0, "2 ms * 1000 = 07D0"),
                            {23, 103, "idle motor"},
                            {24, 1, "direction"},
                            {25, 176, "13.8 V / 0.078431 = 175.95"},
                            {26, 1, "lamp"},
                            {27, 41, "the bytes from the third on add up to 2345 = 9 * 256 + 41"}});
    }
}

TEST(FrameLayout, NarrowFrameOfThePzk2HasIgnitionOnlyAndItsThrottleAtByte8) {
    const Bytes reply = encodeFrame(findProfile("PZK-2")->narrow, handPicked());
    ASSERT_EQ(reply.size(), 28u);
    expectBytes(reply, {wordAt(3, 0x0BB8, "rpm"),
                        {5, 0, "no throttle here"},
                        {6, 242, "pressure"},
                        {7, 0, "none"},
                        {8, 153, "throttle"},
                        {9, 51, "knock"},
                        {10, 85, "primary"},
                        {11, 68, "second"},
                        {12, 17, "retard"},
                        {13, 0, "no fuel"},
                        {14, 0, "no fuel"},
                        {15, 0, "no fuel"},
                        {19, 0, "no fuel"},
                        {20, 0, "no fuel"},
                        {23, 0, "no idle"},
                        {24, 0, "no idle"},
                        {25, 176, "battery"},
                        {26, 1, "lamp"},
                        {27, 49, "the bytes from the third on add up to 1073 = 4 * 256 + 49"}});
}

struct WideEnd {
    const char* model;
    std::size_t length;
    std::size_t pins;
    int battery;
};

TEST(FrameLayout, WideFramesDifferInBatteryScaleAndPins) {
    // 13.8 V / 0.067432 = 204.7 on the ORB A, / 0.078431 = 175.95 on the others
    constexpr WideEnd ends[] = {{"A", 65, 8, 205},  {"A r", 65, 8, 205}, {"L", 66, 9, 176},
                                {"C", 70, 13, 176}, {"D", 62, 5, 176},   {"D6", 62, 5, 176}};
    const Bytes orbA = encodeFrame(findProfile("A")->wide, handPicked());
    for (const WideEnd& end : ends) {
        const Bytes reply = encodeFrame(findProfile(end.model)->wide, handPicked());
        ASSERT_EQ(reply.size(), end.length) << end.model;
        EXPECT_TRUE(test::isSealed(reply)) << end.model;
        EXPECT_EQ(reply[28], end.battery) << end.model;
        for (std::size_t i = 3; i < 56; ++i) {
            if (i != 28) {
                EXPECT_EQ(reply[i], orbA[i]) << end.model << i;
            }
        }
        EXPECT_EQ(end.length, 56 + end.pins + 1) << "pins and checksum end the frame";
        for (std::size_t pin = 0; pin < end.pins; ++pin) EXPECT_EQ(reply[56 + pin], 200 + pin) << end.model;
    }
}

TEST(FrameLayout, PinListsHoldThePinsOfTheKind) {
    struct List {
        const char* model;
        std::size_t pins;
    };
    for (const List& list : {List{"L", 9}, List{"C", 13}, List{"D", 7}, List{"PZK-2", 4}}) {
        const Bytes reply = encodeFrame(findProfile(list.model)->inputs, handPicked());
        ASSERT_EQ(reply.size(), 21u) << list.model;
        for (std::size_t pin = 0; pin < list.pins; ++pin) EXPECT_EQ(reply[3 + pin], 200 + pin) << list.model;
        for (std::size_t at = 3 + list.pins; at < 20; ++at) EXPECT_EQ(reply[at], 0) << list.model << at;
    }
}

TEST(FrameLayout, LogRecordsDifferInLengthAndBatteryScale) {
    struct Record {
        const char* model;
        std::size_t length;
    };
    for (const Record& record : {Record{"L", 36}, Record{"C", 40}, Record{"D", 34}}) {
        const Bytes reply = encodeFrame(findProfile(record.model)->logRecord, handPicked());
        ASSERT_EQ(reply.size(), record.length) << record.model;
        expectBytes(reply,
                    {{5, 153, "throttle"}, {15, 185, "actual"}, {16, 140, "desired"}, {24, 176, "battery"}});
    }
    const Bytes pzk2 = encodeFrame(findProfile("PZK-2")->logRecord, handPicked());
    ASSERT_EQ(pzk2.size(), 34u);
    expectBytes(pzk2, {{4, 0xB8, "rpm"},
                       {5, 153, "throttle"},
                       {6, 242, "pressure"},
                       {7, 0, "no coolant sensor"},
                       {10, 85, "advance"},
                       {15, 0, "no fuel"},
                       {24, 176, "battery"}});
}

TEST(FrameLayout, LogRecordHasActualBeforeDesiredRatio) {
    const Bytes reply = encodeFrame(findProfile("A")->logRecord, handPicked());
    ASSERT_EQ(reply.size(), 33u);
    EXPECT_TRUE(test::isSealed(reply));
    expectBytes(reply,
                {{3, 0x0B, "rpm"},    {4, 0xB8, "rpm"},     {5, 153, "throttle"},    {6, 242, "pressure"},
                 {7, 172, "coolant"}, {8, 87, "air"},       {9, 51, "knock"},        {10, 85, "primary"},
                 {11, 68, "second"},  {12, 17, "retard"},   {13, 0, "gamma"},        {14, 100, "gamma"},
                 {15, 185, "actual"}, {16, 140, "desired"}, {17, 133, "correction"}, {18, 41, "sensor"},
                 {19, 0x1F, "8 ms"},  {20, 0x40, "8 ms"},   {21, 0x07, "2 ms"},      {22, 0xD0, "2 ms"},
                 {23, 103, "idle"},   {24, 205, "battery"}});
}

TEST(FrameLayout, ValuesOutsideAFieldAreClippedToIt) {
    LiveValues live = handPicked();
    live.rpm = 70000;
    live.mapSensorVolts = -0.5;
    live.tpsVolts = 6;
    const Bytes reply = encodeFrame(findProfile("A")->narrow, live);
    EXPECT_EQ(test::word(reply, 0), 65535u);
    EXPECT_EQ(reply[3], 0);
    EXPECT_EQ(reply[9], 255);
}

TEST(FrameLayout, NoTwoFieldsOfALayoutShareAByte) {
    std::vector<const FrameLayout*> layouts;
    for (const UnitProfile* profile : allProfiles()) {
        layouts.insert(layouts.end(),
                       {&profile->narrow, &profile->wide, &profile->logRecord, &profile->inputs});
    }
    for (const FrameLayout* layout : layouts) {
        if (layout->length == 0) continue;
        std::vector<int> uses(static_cast<std::size_t>(layout->length));
        for (const auto& field : layout->fields) {
            for (int i = 0; i < field.width; ++i) ++uses.at(static_cast<std::size_t>(field.byte + i));
        }
        for (const auto& gpio : layout->gpio) ++uses.at(static_cast<std::size_t>(gpio.byte));
        for (std::size_t i = 0; i < uses.size(); ++i) EXPECT_LE(uses[i], 1) << layout->length << " at " << i;
        if (!layout->headed) continue;
        EXPECT_EQ(uses[0] + uses[1] + uses[2] + uses.back(), 0) << layout->length;
    }
}

}  // namespace
}  // namespace zentaq::sim
