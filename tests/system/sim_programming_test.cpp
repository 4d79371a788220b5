// The program's link on a simulated unit of each kind, in virtual time: found, identified, watched,
// changed on the fly and programmed with a calibration of its kind.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "link/link.h"
#include "link/recording_link_host.h"
#include "live/frame_decoder.h"
#include "platform/serial_port.h"
#include "platform/yield.h"
#include "sim/faults.h"
#include "sim/image_check.h"
#include "sim/sim_helpers.h"
#include "temporary_folder.h"
#include "testing/manual_clock.h"

namespace zentaq {
namespace {

/// A port with a simulated unit at its other end. Replies are there at the next tick.
class UnitPort : public SerialPort {
 public:
    explicit UnitPort(sim::SimulatedUnit& unit) : unit_(unit) {}

    void open(int) override { open_ = true; }
    void close() override { open_ = false; }
    bool isOpen() const override { return open_; }
    void write(std::string_view bytes) override {
        const sim::Bytes burst(bytes.begin(), bytes.end());
        for (const auto& piece : faults.apply(burst, unit_.feed(burst)).pieces) {
            received_.insert(received_.end(), piece.bytes.begin(), piece.bytes.end());
        }
    }
    std::vector<std::uint8_t> read() override { return std::exchange(received_, {}); }
    void setReceiveThreshold(int bytes) override { threshold_ = bytes; }
    std::vector<PortInfo> list() const override { return {}; }

    /// What goes wrong on the way; delays are left out.
    sim::FaultInjector faults;

    void pass() {
        unit_.advance(0.001);
        if (threshold_ > 0 && std::ssize(received_) >= threshold_) raise(CommEvent::DataReceived);
    }

 private:
    sim::SimulatedUnit& unit_;
    std::vector<std::uint8_t> received_;
    int threshold_ = 0;
    bool open_ = false;
};

sim::UnitIdentity identityWith(const sim::UnitProfile& profile, std::optional<std::string> firmware) {
    sim::UnitIdentity identity = sim::defaultIdentity(profile);
    identity.firmware = firmware.value_or(identity.firmware);
    return identity;
}

/// A link and the unit on it.
struct Bench {
    explicit Bench(std::string_view model, std::optional<std::string> firmware = {})
        : profile(*sim::findProfile(model)), unit(profile, identityWith(profile, std::move(firmware))) {
        host.unitHost.applicationFolder(folder.path());
    }
    void ticks(int count) {
        for (int i = 0; i < count; ++i) {
            clock.advanceUs(1000);
            port.pass();
            link.tick();
        }
    }
    void identify() {
        link.RS232_Initialize(1);
        link.Send_ORB_Command("E");
        ticks(50);
    }
    /// Programs the calibration in hand and waits until the transfer has ended, well or badly.
    void program() {
        link.Program_Unit(TransferMode::Calibration, {});
        for (int i = 0; i < 10'000 && host.messages.empty(); ++i) ticks(1);
    }
    sim::Bytes image() { return host.unit(host.current).memoryBytes(); }

    TemporaryFolder folder;
    const sim::UnitProfile& profile;
    sim::SimulatedUnit unit;
    ManualClock clock;
    UnitPort port{unit};
    RecordingLinkHost host;
    LiveValues live;
    FrameDecoder decoder{live};
    NoYield yield;
    Link link{port, host, decoder, live, clock, yield};
};

/// The calibration that comes with the program for a kind.
std::string sampleOf(const UnitKind& kind) {
    const auto folder = std::filesystem::path(ZENTAQ_APP_DIR) / "samples";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == kind.extension) return entry.path().string();
    }
    return {};
}

constexpr int programmed = 1002;
constexpr int notProgrammed = 1003;

struct ModelCase {
    const char* model;
    int slot;
    int release;
    bool wide;
    std::size_t rows;
    int subType;  ///< as the link shows it; 0 where it tells none
};

constexpr ModelCase models[] = {{"A", 3, 5, true, 147, 1},   {"A 6/12", 3, 5, true, 147, 2},
                                {"A r", 3, 5, true, 147, 3}, {"L", 4, 7, true, 147, 0},
                                {"C", 6, 3, true, 137, 0},   {"D", 7, 5, true, 147, 0},
                                {"D6", 8, 5, true, 147, 0},  {"PZK-2", 5, 5, false, 64, 0}};

class SimProgramming : public testing::TestWithParam<ModelCase> {
 protected:
    void SetUp() override {
        bench.host.current = GetParam().slot;
        const std::string sample = sampleOf(calibration().kind());
        ASSERT_FALSE(sample.empty());
        calibration().FileOpen(sample);
        bench.identify();
        ASSERT_TRUE(bench.link.linked().UnitIdentified);
    }
    Unit& calibration() { return bench.host.unit(GetParam().slot); }

    Bench bench{GetParam().model};
};

TEST_P(SimProgramming, UnitIsIdentifiedAsWhatItIs) {
    EXPECT_EQ(bench.link.linked().LinkedUnitKind, GetParam().slot);
    EXPECT_EQ(bench.link.linked().WideMonitor, GetParam().wide);
    EXPECT_EQ(bench.link.linked().UnitSubType, GetParam().subType);
    EXPECT_EQ(calibration().FW_Release(), GetParam().release);
    EXPECT_EQ(calibration().FW_Build(), 99);
    EXPECT_TRUE(calibration().ValidFirmware(calibration().FirmWare()));
    EXPECT_TRUE(bench.host.boxes.empty());
}

TEST_P(SimProgramming, CalibrationOfTheKindIsTakenAndHeld) {
    bench.program();
    ASSERT_EQ(bench.host.messages, std::vector<int>{programmed});
    const sim::Bytes image = bench.image();
    ASSERT_EQ(image.size(), GetParam().rows * 16);
    ASSERT_GE(bench.unit.memory().size(), image.size());
    EXPECT_TRUE(std::equal(image.begin(), image.end(), bench.unit.memory().begin()));
    EXPECT_FALSE(bench.unit.hasUnsavedChanges());
    // It is a whole calibration that stands there now.
    EXPECT_GT(std::count_if(image.begin(), image.end(), [](std::uint8_t byte) { return byte != 0; }), 200);
    bench.link.Send_ORB_Command("B");
    bench.ticks(50);
    const std::string name = bench.link.linked().UnitBinName;
    EXPECT_FALSE(name.empty());
    EXPECT_TRUE(name.starts_with(calibration().BiName().substr(0, 8))) << name;
}

TEST_P(SimProgramming, ImageTextIsAcceptedWithoutALinkToo) {
    calibration().ConvertData();
    std::string why;
    EXPECT_TRUE(sim::acceptsImage(GetParam().model, calibration().sRecordText(), &why)) << why;
}

TEST_P(SimProgramming, LiveFramesShowARunningEngine) {
    bench.link.Send_ORB_Command(GetParam().wide ? "W" : "F");
    bench.ticks(20);
    EXPECT_NEAR(bench.live.RPM, 850, 30);
    EXPECT_EQ(bench.host.frameCount, 1);
}

TEST_P(SimProgramming, ChangeOnTheFlyIsKeptOnceStored) {
    bench.link.SEND_ONFLY(Unit::onTheFlyRecord(34, 128, 1));
    bench.ticks(20);
    EXPECT_EQ(bench.unit.memory().at(34), 128);
    EXPECT_TRUE(bench.unit.hasUnsavedChanges());
    bench.link.Send_ORB_Command("S");
    bench.ticks(20);
    bench.unit.powerCycle();
    EXPECT_EQ(bench.unit.memory().at(34), 128);
}

TEST_P(SimProgramming, RefusedLineEndsTheTransferAndTheOldCalibrationStays) {
    const sim::Bytes before = bench.unit.memory();
    bench.port.faults = sim::FaultInjector({sim::parseFault("refuse@line#12")});
    bench.program();
    EXPECT_EQ(bench.host.messages, std::vector<int>{notProgrammed});
    EXPECT_EQ(bench.unit.memory(), before);
    bench.ticks(3000);  // the unit gives the transfer up as well
    bench.link.Send_ORB_Command("B");
    bench.ticks(50);
    EXPECT_TRUE(bench.link.linked().UnitIdentified);
}

TEST_P(SimProgramming, SilentUnitEndsTheTransferByTimeOut) {
    const sim::Bytes before = bench.unit.memory();
    bench.port.faults = sim::FaultInjector({sim::parseFault("silence@line#3")});
    bench.program();
    EXPECT_EQ(bench.host.messages, std::vector<int>{notProgrammed});
    EXPECT_EQ(bench.unit.memory(), before);
    EXPECT_EQ(bench.link.linked().LinkedUnitKind, 0);
}

INSTANTIATE_TEST_SUITE_P(Models, SimProgramming, testing::ValuesIn(models),
                         [](const auto& row) { return sim::test::plainName(row.param.model); });

struct OtherCase {
    int image;          ///< slot of the calibration
    const char* model;  ///< of the unit
    const char* why;    ///< start of the reason; empty: bytes and addresses are as good as its own
};

/// Slots of the images as the firmware of the kind's own unit wants them: 147 lines of A, L, D; 137 of C;
/// 64 of the PZK-2.
constexpr OtherCase others[] = {
    {3, "L", ""},
    {3, "D", ""},
    {3, "C", "line 138 was refused: S1131990"},
    {3, "PZK-2", "line 65 was refused: S1131500"},
    {4, "A", ""},
    {4, "C", "line 138 was refused: S1131990"},
    {4, "PZK-2", "line 65 was refused: S1131500"},
    {6, "A", "line 138 was refused: S9030000FC"},
    {6, "L", "line 138 was refused: S9030000FC"},
    {6, "D", "line 138 was refused: S9030000FC"},
    {6, "PZK-2", "line 65 was refused: S1131500"},
    {7, "C", "line 138 was refused: S1131990"},
    {7, "D6", ""},
    {7, "PZK-2", "line 65 was refused: S1131500"},
    {5, "A", "line 65 was refused: S9030000FC"},
    {5, "L", "line 65 was refused: S9030000FC"},
    {5, "C", "line 65 was refused: S9030000FC"},
    {5, "D6", "line 65 was refused: S9030000FC"},
};

TEST(SimProgrammingOfAnotherKind, IsRefusedWhereItsLengthShowsIt) {
    for (const OtherCase& row : others) {
        RecordingLinkHost host;
        Unit& calibration = host.unit(row.image);
        calibration.FileOpen(sampleOf(calibration.kind()));
        calibration.FW_Release(row.image == 4 ? 7 : row.image == 6 ? 3 : 5);
        calibration.ConvertData();
        std::string why;
        const bool accepted = sim::acceptsImage(row.model, calibration.sRecordText(), &why);
        EXPECT_EQ(accepted, std::string(row.why).empty()) << row.image << row.model;
        EXPECT_TRUE(why.starts_with(row.why)) << row.image << row.model << why;
    }
}

TEST(SimProgrammingOfAnotherKind, IsToldByTheLinkAndTheOldCalibrationStays) {
    Bench bench("A");
    bench.identify();
    ASSERT_TRUE(bench.link.linked().UnitIdentified);
    bench.host.current = 5;
    Unit& calibration = bench.host.unit(5);
    calibration.FileOpen(sampleOf(calibration.kind()));
    const sim::Bytes before = bench.unit.memory();
    bench.program();
    EXPECT_EQ(bench.host.messages, std::vector<int>{notProgrammed});
    EXPECT_EQ(bench.unit.memory(), before);
}

struct FirmwareCase {
    const char* model;
    int slot;
    const char* firmware;
    std::size_t rows;
    bool wide;
};

TEST(SimProgrammingByFirmware, ImageFollowsTheUnitOnTheLink) {
    constexpr FirmwareCase cases[] = {
        {"A", 3, "ZQA-404099", 137, false}, {"L", 4, "ZQL-406099", 147, false},
        {"C", 6, "ZQC-405001", 147, true},  {"C", 6, "ZQC-402001", 137, false},
        {"D", 7, "ZQD-404001", 137, false}, {"PZK-2", 5, "ZPK-404006", 64, false}};
    for (const FirmwareCase& row : cases) {
        Bench bench(row.model, row.firmware);
        bench.host.current = row.slot;
        Unit& calibration = bench.host.unit(row.slot);
        calibration.FileOpen(sampleOf(calibration.kind()));
        bench.identify();
        EXPECT_EQ(bench.link.linked().WideMonitor, row.wide) << row.firmware;
        bench.program();
        EXPECT_EQ(bench.host.messages, std::vector<int>{programmed}) << row.firmware;
        const sim::Bytes image = bench.image();
        ASSERT_EQ(image.size(), row.rows * 16) << row.firmware;
        EXPECT_TRUE(std::equal(image.begin(), image.end(), bench.unit.memory().begin())) << row.firmware;
    }
}

}  // namespace
}  // namespace zentaq
