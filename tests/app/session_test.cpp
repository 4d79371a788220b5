#include "app/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <fstream>
#include <numeric>

#include "app/fake_platform.h"
#include "app/main_commands.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;

class SessionTest : public ::testing::Test {
 protected:
    FakeSession fake;
    Session& session = fake.session;
    MainCommands commands{session};

    SessionTest() { session.makeUnits(); }

    std::string oldCalibration() const {
        std::vector<float> floats{3, 9.44f, 2099};
        floats.resize(3 + 2828, 0.0f);
        floats[3 + 39] = 1;  // bar rating
        floats[3 + 124] = 1;
        floats[3 + 148] = 10;  // scale1, ms
        const std::string path = fake.folder.path("old.ZQ4OA");
        std::ofstream file(path, std::ios::binary);
        for (const float value : floats) {
            const auto word = std::bit_cast<std::uint32_t>(value);
            file.write(reinterpret_cast<const char*>(&word), sizeof word);
        }
        return path;
    }
    static std::vector<std::uint8_t> sealed(std::vector<std::uint8_t> reply) {
        reply.push_back(static_cast<std::uint8_t>(std::accumulate(reply.begin() + 2, reply.end(), 0)));
        return reply;
    }
    void answer(std::vector<std::uint8_t> reply) {
        fake.port.deliver(std::move(reply));
        session.link.tick();
        session.link.tick();
    }
    void connect(const std::string& firmware) {
        session.link.load();
        session.link.Send_ORB_Command("E");
        session.link.tick();
        answer(sealed({0xFA, 0xA5, 0x55, 0, 0x03, 0x0D, 0x41}));  // 200001
        std::vector<std::uint8_t> reply{0xFA, 0xA5, 0x55};
        reply.insert(reply.end(), 24, ' ');
        reply.insert(reply.end(), firmware.begin(), firmware.end());
        reply.push_back(0);
        answer(sealed(reply));
    }
    bool told(const std::string& text) const {
        for (const Box& box : fake.dialogs.boxes) {
            if (box.text.find(text) != std::string::npos) return true;
        }
        return false;
    }
};

TEST_F(SessionTest, AnOldCalibrationInHandIsBroughtToTheFirmwareThatTheUnitTells) {
    fake.dialogs.files = {oldCalibration()};
    commands.open();
    Unit& unit = session.currentUnitObject();
    ASSERT_EQ(unit.FW_Release(), 2);
    connect("ZQA-405099");
    ASSERT_TRUE(session.link.linked().UnitIdentified);
    EXPECT_EQ(unit.FW_Release(), 5);
    // Rating 1: K = 876 / 1024, L = 100 / 1023. 10 * K = 8.5546875 to 3 places; 0 + 10 * L = 0.97751...
    EXPECT_FLOAT_EQ(unit.get("scale1"), 8.555f);
    EXPECT_NEAR(unit.DirectIndex(150), 0.977517, 1e-5);
    EXPECT_TRUE(told("Your BIN file has been updated to work with this firmware."));
    EXPECT_EQ(session.header().firmwareCode, 5099);
}

TEST_F(SessionTest, AUnitOfTheCalibrationsKindTurnsOnTheFlyOnAndItsLossOff) {
    fake.dialogs.files = {oldCalibration()};
    commands.open();
    EXPECT_FALSE(session.currentUnitObject().ONFLY_MODE());
    connect("ZQA-402099");
    EXPECT_TRUE(session.currentUnitObject().ONFLY_MODE());
    EXPECT_TRUE(session.link.linked().FirmwareTold);
    session.link.Send_ORB_Command("F");
    for (int i = 0; i < 90; ++i) session.link.tick();
    EXPECT_FALSE(session.currentUnitObject().ONFLY_MODE());
    EXPECT_FALSE(session.link.linked().FirmwareTold);
}

TEST_F(SessionTest, AFileOpenedAfterTheUnitWasFoundTakesChangesOnTheFlyToo) {
    connect("ZQA-402099");
    fake.dialogs.files = {oldCalibration()};
    commands.open();
    EXPECT_TRUE(session.currentUnitObject().ONFLY_MODE());
    ASSERT_TRUE(session.currentUnitObject().set("KNK_MIN", 50.0));
    session.link.tick();
    EXPECT_EQ(fake.port.written.back(), "P2S10411228048");
}

TEST_F(SessionTest, TheProgramsVersionStandsInFilesAsMinorAndRevision) {
    EXPECT_FLOAT_EQ(session.programVersion(), 10.2f);
}

TEST_F(SessionTest, ABusyPortDoesNotFillTheLog) {
    class Busy : public FakePort {
        void open(int) override { throw Failure("busy"); }
    } busy;
    Session other{Platform{busy, fake.ticker, fake.clock, fake.settings, fake.dialogs, fake.yield,
                           fake.folder.path(), fake.folder.path()}};
    other.link.load();
    const std::size_t lines = other.console.lines().size();
    for (int second = 0; second < 10; ++second) {
        fake.clock.nowUs += 1'000'000;
        other.poll(false);
    }
    EXPECT_EQ(other.console.lines().size(), lines);
}

TEST_F(SessionTest, TemperaturesAreFahrenheitOnlyByTheSetting) {
    EXPECT_FALSE(session.fahrenheit());
    fake.settings.set("System", "TemperatureToggle", "0");
    EXPECT_FALSE(session.fahrenheit());
    fake.settings.set("System", "TemperatureToggle", "1");
    EXPECT_TRUE(session.fahrenheit());
}

}  // namespace
}  // namespace zentaq
