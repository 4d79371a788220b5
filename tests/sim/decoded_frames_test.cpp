// What the program reads out of the frames of each simulated kind: the engine's own values.
#include <gtest/gtest.h>

#include "link/recording_link_host.h"
#include "link/reply_decoding.h"
#include "live/frame_decoder.h"
#include "sim/engine_model.h"
#include "sim/simulated_unit.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

struct DecodedCase {
    const char* model;
    int slot;
    std::size_t widePins;
    std::size_t listedPins;  ///< 0: the program does not ask
};

constexpr DecodedCase decodedCases[] = {
    {"A", 3, 8, 0},   {"A 6/12", 3, 8, 0}, {"A r", 3, 8, 0}, {"L", 4, 9, 9},
    {"C", 6, 13, 13}, {"D", 7, 5, 7},      {"D6", 8, 5, 7},  {"PZK-2", 5, 0, 4},
};

// In the full pull: every value is away from 0.
constexpr double pullSeconds = 22.4;
constexpr double ratioOfPetrol = 14.7;

class DecodedFrames : public testing::TestWithParam<DecodedCase> {
 protected:
    DecodedFrames() {
        storeDashboardDefaults(unit);
        unit.AssignDirectIndex(static_cast<float>(ratioOfPetrol), unit.kind().cells.ratio);
        unit.GPIOData().fill(-1);
        engine.advance(pullSeconds);
        simulated.advance(pullSeconds);
        simulated.setCode(1, 1);
    }

    const UnitProfile& profile = *findProfile(GetParam().model);
    SimulatedUnit simulated{profile, defaultIdentity(profile)};
    EngineModel engine{{.serial = defaultIdentity(profile).serial, .drive = nullptr}};
    QuietHost host;
    Unit unit{*unitKindOfSlot(GetParam().slot), host};
    zentaq::LiveValues live;
    FrameDecoder decoder{live};

    // Half a step of the byte plus what the value's text rounds off.
    void expectIgnition(double pressureStep) const {
        const LiveValues real = engine.values();
        EXPECT_NEAR(live.RPM, real.rpm, 0.51);
        EXPECT_NEAR(live.MAP, real.mapKpa, pressureStep / 2 + 0.06);
        EXPECT_NEAR(live.TPS, real.tpsVolts, 0.5 / 51 + 0.006);
        EXPECT_NEAR(live.KNOCK, real.knockPercent, 0.2 + 0.51);
        EXPECT_NEAR(live.PRIADV, real.primaryAdvance, 0.5 / 4.25 + 0.06);
        EXPECT_NEAR(live.SECADV, real.secondaryAdvance, 0.5 / 4.25 + 0.06);
        EXPECT_NEAR(live.KNKRET, real.knockRetard, 0.5 / 8.5 + 0.06);
        EXPECT_NEAR(live.BATTV, real.batteryVolts, 0.04 + 0.06);
    }
    void expectFuel(double pulseStep) const {
        const LiveValues real = engine.values();
        EXPECT_NEAR(live.CLT, real.coolantC, 0.38 + 0.51);
        EXPECT_NEAR(live.MAT, real.airC, 0.38 + 0.51);
        EXPECT_NEAR(live.GAMA, real.gammaPercent, 0.5 + 0.51);
        EXPECT_NEAR(live.DAFR, real.desiredAfr, 0.03);
        EXPECT_NEAR(live.AAFR, real.actualAfr, 0.03);
        EXPECT_NEAR(live.EGOC, real.egoCorrectionPercent, 0.51);
        EXPECT_NEAR(live.EGOV, real.egoVolts, 0.5 / 51 + 0.006);
        EXPECT_NEAR(live.PRIPW, real.primaryPulseMs, pulseStep / 2 + 0.001);
        EXPECT_NEAR(live.SECPW, real.secondaryPulseMs, pulseStep / 2 + 0.001);
    }
    void expectIdle() const {
        EXPECT_NEAR(live.IACP, engine.values().idlePositionPercent, 0.2 + 0.51);
        EXPECT_EQ(live.IACD, engine.values().idleDirection);
    }
    void expectPins(std::size_t count) const {
        const LiveValues real = engine.values();
        for (std::size_t pin = 0; pin < count; ++pin)
            EXPECT_NEAR(unit.GPIOData()[pin], real.gpio[pin], 0.51) << pin;
    }
};

constexpr double narrowPressureStep = 1 / (51 * 0.05295);
constexpr double widePressureStep = narrowPressureStep / 4;

TEST_P(DecodedFrames, NarrowFrameShowsTheEngine) {
    decoder.Monitor(unit, ask(simulated, "F"));
    EXPECT_GT(live.RPM, 3000);
    expectIgnition(narrowPressureStep);
    EXPECT_TRUE(live.CHKE);
    if (GetParam().slot == 5) {
        EXPECT_EQ(live.PRIPW, 0);
        return;
    }
    expectFuel(GetParam().slot == 3 ? 1.0 / 125 : 0.001);
    expectIdle();
    if (GetParam().slot == 3) expectPins(8);
}

TEST_P(DecodedFrames, WideFrameShowsTheEngineAndItsCorrections) {
    const Bytes reply = ask(simulated, "W");
    ASSERT_EQ(!reply.empty(), unit.kind().hasWideMonitor());
    if (reply.empty()) return;
    ASSERT_TRUE(frameSumIsRight(reply, unit.kind().sizes.wCmdLen));
    decoder.MonitorW(unit, reply);
    expectIgnition(widePressureStep);
    expectFuel(0.001);
    expectIdle();
    EXPECT_TRUE(live.CHKE);
    const LiveValues real = engine.values();
    EXPECT_NEAR(live.PRIDUTY, real.primaryDutyPercent, 0.2);
    EXPECT_NEAR(live.INJ_TOG, real.injectionGapMs, 0.0006);
    EXPECT_NEAR(live.SEN_MAP, real.mapSensorVolts, 0.5 / 204.6 + 0.0001);
    EXPECT_NEAR(live.INJ_VE, real.veCorrection, 0.51);
    EXPECT_NEAR(live.INJ_CLT, real.coolantCorrection, 0.51);
    EXPECT_NEAR(live.INJ_VLTCOMP, real.voltageCompensationMs, 0.0041);
    EXPECT_NEAR(live.ADV_TBL, real.tableAdvance, 0.12);
    EXPECT_NEAR(live.ADV_MAT, real.airAdvance, 0.12);
    EXPECT_NEAR(live.ISRPM, real.idleTargetRpm, 8);
    expectPins(GetParam().widePins);
    for (std::size_t pin = GetParam().widePins; pin < 16; ++pin) EXPECT_EQ(unit.GPIOData()[pin], -1) << pin;
}

TEST_P(DecodedFrames, PinListShowsTheOutputs) {
    if (GetParam().listedPins == 0) return;
    decoder.Monitor_GPIO(unit, ask(simulated, "I"));
    expectPins(GetParam().listedPins);
}

TEST_P(DecodedFrames, LogRecordShowsTheEngineOfItsMoment) {
    UnitIdentity identity = defaultIdentity(profile);
    identity.logRecords = 300;
    SimulatedUnit logged(profile, identity);
    Bytes record;
    for (int i = 0; i < 224; ++i) record = ask(logged, "D");  // ten records a second
    ASSERT_FALSE(isEndOfLog(record));
    decoder.Internal_Data_Conv(unit, record);
    expectIgnition(narrowPressureStep);
    if (GetParam().slot != 5) expectFuel(0.001);
}

TEST_P(DecodedFrames, IdentityIsThatOfTheKind) {
    const auto serial = decodeSerial(ask(simulated, "E"));
    ASSERT_TRUE(serial);
    ASSERT_NE(unitKindOfSerial(serial->serialNumber), nullptr);
    EXPECT_EQ(unitKindOfSerial(serial->serialNumber)->slot, GetParam().slot);
    const Bytes reply = ask(simulated, "B");
    ASSERT_EQ(std::ssize(reply), unit.kind().sizes.binFirmLen);
    EXPECT_TRUE(unit.ValidFirmware(firmwareBytes(reply)));
    EXPECT_EQ(firmwareNumber(firmwareBytes(reply)), (FirmwareVersion{unit.kind().expected.release, 99}));
    EXPECT_EQ(ask(simulated, "D").size(), static_cast<std::size_t>(unit.kind().sizes.dataRecordLen));
}

TEST_P(DecodedFrames, OctalSerialReplyIsTheSameNumber) {
    UnitIdentity identity = defaultIdentity(profile);
    identity.serialFormat = SerialFormat::Octal;
    SimulatedUnit octal(profile, identity);
    const auto serial = decodeSerial(ask(octal, "E"));
    ASSERT_TRUE(serial);
    EXPECT_EQ(serial->serialNumber, static_cast<std::int32_t>(identity.serial));
    EXPECT_FALSE(serial->oldFirmware);
}

INSTANTIATE_TEST_SUITE_P(Models, DecodedFrames, testing::ValuesIn(decodedCases),
                         [](const auto& row) { return plainName(row.param.model); });

TEST(DecodedIdentity, OldSerialReplyIsThatOfAnOldUnit) {
    const UnitProfile& profile = *findProfile("A");
    UnitIdentity identity = defaultIdentity(profile);
    identity.serial = 1234;
    identity.serialFormat = SerialFormat::Old;
    SimulatedUnit unit(profile, identity);
    const auto serial = decodeSerial(ask(unit, "E"));
    ASSERT_TRUE(serial);
    EXPECT_EQ(serial->serialNumber, 1234);
    EXPECT_TRUE(serial->oldFirmware);
}

}  // namespace
}  // namespace zentaq::sim
