// What comes while a calibration file is read, since reading lets events in: it is meant for a calibration in
// hand, and comes behind the opening.
#include <fstream>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class Reading : public CommandTest {
 protected:
    std::string former = file("former.ZQ4OA", 3);
    std::string next = file("next.ZQ4OL", 4);

    Reading() {
        fake.ticker.start();
        open(former);
        fake.ticker.run(2);
        forget();
    }
    std::string file(const std::string& name, float kind) const {
        std::vector<float> floats = wholeFloats(kind, kind == 4 ? 7099.0F : 5099.0F);
        floats[3 + 58] = 6500;
        return writeFloats(fake.folder.path(name), floats);
    }
    void openMeanwhile(const std::string& path, std::function<void()> meanwhile) {
        fake.yield.meanwhile = std::move(meanwhile);
        open(path);
        EXPECT_FALSE(fake.yield.meanwhile) << "the reading yields";
    }
    /// Boxes, dialogs and windows so far.
    std::size_t seen() const {
        return fake.dialogs.boxes.size() + fake.dialogs.requests.size() + fake.windows.calls.size();
    }
};

TEST_F(Reading, TheFormerCalibrationIsInHandUntilTheNextHasBeenRead) {
    openMeanwhile(next, [&] {
        EXPECT_EQ(session.slotInHand(), 3);
        EXPECT_EQ(session.CurrentFile, former);
        EXPECT_EQ(unit().BinFile(), former);
    });
    EXPECT_EQ(session.slotInHand(), 4);
    EXPECT_EQ(session.CurrentFile, next);
}

struct Given {
    const char* name;
    void (*command)(MainCommands& commands);
};

class CommandWhileReading : public Reading, public ::testing::WithParamInterface<Given> {};

TEST_P(CommandWhileReading, ComesBehindTheOpening) {
    openMeanwhile(next, [&] {
        const std::size_t before = seen();
        const std::size_t written = fake.port.written.size();
        for (int i = 0; i < 2; ++i) GetParam().command(commands);
        EXPECT_EQ(seen(), before);
        EXPECT_EQ(fake.port.written.size(), written);
        EXPECT_EQ(session.header().fileState, "OLD");
    });
    EXPECT_EQ(session.CurrentFile, next);
    EXPECT_FALSE(session.saving.reading());
    EXPECT_TRUE(logged("waits until the file has been read."));
    forget();
    fake.ticker.run(2);
    EXPECT_GT(seen() + (session.link.CurrentCommand().empty() ? 0 : 1), 0u) << "it was dropped";
    const std::size_t once = seen();
    fake.ticker.run(20);
    EXPECT_EQ(seen(), once) << "given twice, it begins anew once";
}

INSTANTIATE_TEST_SUITE_P(
    Reading, CommandWhileReading,
    ::testing::Values(Given{"New", [](MainCommands& c) { c.files.newCalibration(); }},
                      Given{"Open", [](MainCommands& c) { c.files.open(); }},
                      Given{"Save", [](MainCommands& c) { c.saves.save(); }},
                      Given{"SaveAs", [](MainCommands& c) { c.saves.saveAs(); }},
                      Given{"Close", [](MainCommands& c) { c.files.close(); }},
                      Given{"Program", [](MainCommands& c) { c.programming.programOrb(); }},
                      Given{"Firmware", [](MainCommands& c) { c.programming.firmwareUpgrade(); }}),
    [](const auto& test) { return test.param.name; });

TEST_F(Reading, ASaveThatComesMeanwhileIsOneOfTheFileThatWasOpened) {
    unit().set("REV_Limiter", 7000.0);  // of the former, which nobody wanted to keep
    const std::string before = TemporaryFolder::read(former);
    openMeanwhile(next, [&] { commands.saves.save(); });
    fake.ticker.run(2);
    EXPECT_EQ(TemporaryFolder::read(former), before);
    EXPECT_EQ(session.CurrentFile, next);
    EXPECT_EQ(box().title, "Data Saved.");
}

TEST_F(Reading, ATableThatIsAskedForMeanwhileIsOneOfTheNextCalibration) {
    openMeanwhile(next, [&] {
        commands.openTable("VE", "VE Table");
        EXPECT_THAT(fake.windows.calls, Not(Contains(HasSubstr("table VE"))));
    });
    fake.ticker.run(2);
    EXPECT_THAT(fake.windows.calls, Contains("table VE VE Table"));
}

TEST_F(Reading, TheProgramEndsBehindTheOpening) {
    openMeanwhile(next, [&] {
        kernel.closeRequested();
        EXPECT_THAT(fake.windows.calls, Not(Contains("closeMain")));
    });
    EXPECT_EQ(session.CurrentFile, next);
    fake.ticker.run(2);
    EXPECT_THAT(fake.windows.calls, Contains("closeMain"));
}

TEST_F(Reading, KillEngineGoesOutMeanwhile) {
    session.link.ORB_Initialize();
    ASSERT_TRUE(fake.port.isOpen());
    openMeanwhile(next, [&] {
        commands.unit.killEngine();
        for (int tick = 0; tick < 20'000; ++tick) session.link.tick();
        EXPECT_THAT(fake.port.written, Contains("K"));
    });
}

TEST_F(Reading, AFileThatCannotBeReadLetsWhatWaitedActOnTheFormerOne) {
    std::ofstream(next, std::ios::binary | std::ios::app) << std::string(9000, 'x');
    fake.dialogs.answers = {Answer::No};
    fake.dialogs.files.push_back(next);
    fake.yield.meanwhile = [&] { commands.saves.save(); };
    commands.files.open();
    EXPECT_EQ(session.CurrentFile, former);
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_FALSE(session.saving.reading());
}

TEST_F(Reading, AnOldFileIsReadTheSameWay) {
    const std::string old = fake.folder.path("old.BIN");
    std::ofstream(old, std::ios::binary) << std::string(9312, '\0');
    openMeanwhile(old, [&] {
        EXPECT_EQ(session.slotInHand(), 3);
        commands.files.close();
        EXPECT_EQ(session.CurrentFile, former);
    });
    EXPECT_EQ(session.CurrentFile, old);
    fake.ticker.run(2);
    EXPECT_EQ(session.CurrentFile, "") << "closed behind the opening";
}

}  // namespace
}  // namespace zentaq
