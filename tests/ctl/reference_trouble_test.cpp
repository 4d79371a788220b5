// Commands that have to convert a calibration while the reference database cannot be asked: they end, and say
// what is missing.
#include "ctl/link_fixture.h"
#include "other_program.h"

namespace zentaq {
namespace {

/// zentaqctl in a folder of its own, with a reference database that the test may spoil.
class ZentaqctlAlone : public ZentaqctlOnLink {
 protected:
    ZentaqctlAlone() {
        withoutDatabase();
        fs::create_directories(folder.file("bin/data"));
        fs::copy_file(ZENTAQ_APP_DIR "/bin/data/zentaq410-02.pak", database);
        // Of a firmware before the linear sensor, with a sensor of 2 bar.
        constexpr int firmwareCode = -1;
        plant(firmwareCode, 2017);
        for (const int rating : {39, 124}) plant(rating, 2);
        for (const int linear : {126, 127, 128}) plant(linear, 0);
    }
    /// What is the matter with the database, one after the other, and the words for it.
    void withEachTrouble(const std::function<void(const std::string& words)>& check) {
        const std::string whole = contentOf(database);
        fs::remove(database);
        check("the file is missing");
        writeFile(database, whole.substr(0, 4096) + std::string(whole.size() - 4096, '\xA5'));
        check("the file is damaged");
        writeFile(database, whole);
        OtherProgram other(database);
        other.run("BEGIN EXCLUSIVE");
        check("it is locked: it is in use by another program; try again");
    }
    void expectNeeds(const Outcome& outcome, const std::string& words) const {
        EXPECT_EQ(outcome.exitCode, 1) << words;
        EXPECT_EQ(outcome.out, "") << words;
        expectOneLine(outcome.error);
        EXPECT_THAT(outcome.error, HasSubstr("of the reference database is needed to convert it"));
        EXPECT_THAT(outcome.error, HasSubstr(database + ": " + words));
    }

    std::string database = folder.file("bin/data/zentaq410-02.pak");
    std::string output = folder.file("output");
};

TEST_F(ZentaqctlAlone, ImageForNewerFirmwareEndsWithoutTheDatabaseAndWritesNothing) {
    withEachTrouble([&](const std::string& words) {
        expectNeeds(onFile("image", "--firmware 5.99 -o " + inQuotes(output)), words);
        EXPECT_FALSE(fs::exists(output));
    });
    EXPECT_EQ(onFile("image", "--firmware 5.99 -o " + inQuotes(output)).exitCode, 0);
}

TEST_F(ZentaqctlAlone, ImageForNewerFirmwareEndsWhereTheDatabaseLacksTheSensor) {
    OtherProgram(database).run("DELETE FROM MAPCals WHERE ID = 2");
    EXPECT_THAT(
        onFile("image", "--firmware 5.99 -o " + inQuotes(output)),
        Fails(1, AllOf(isOneLine, HasSubstr("MAP sensor 2 of the reference database is needed to convert it"),
                       HasSubstr("no such sensor"))));
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(ZentaqctlAlone, ImportBinEndsWithoutTheDatabaseAndWritesNothing) {
    const std::string old = folder.file("old.BIN");
    writeFile(old, std::string(8704, '\0'));
    withEachTrouble([&](const std::string& words) {
        expectNeeds(run("import-bin " + inQuotes(old) + " -o " + inQuotes(output)), words);
        EXPECT_FALSE(fs::exists(output));
    });
}

TEST_F(ZentaqctlAlone, SetOfTheReleaseEndsWithoutTheDatabaseAndChangesNothing) {
    const std::string before = contentOf(file);
    withEachTrouble([&](const std::string& words) {
        expectNeeds(onFile("set", "FW_Release 5"), words);
        EXPECT_EQ(contentOf(file), before);
    });
}

TEST_F(ZentaqctlAlone, ProgramOfANewerUnitEndsWithoutTheDatabaseAndSendsNothing) {
    startUnit("A", {"--memory", memory});
    ASSERT_EQ(onUnit("identify").exitCode, 0);
    const std::string before = contentOf(memory);
    withEachTrouble([&](const std::string& words) {
        const Outcome outcome = programFile();
        expectNeeds(outcome, words);
        EXPECT_THAT(outcome.error, HasSubstr("Nothing was sent to the unit."));
        EXPECT_EQ(contentOf(memory), before);
    });
}

TEST_F(ZentaqctlAlone, ReadingAFileNeedsNoDatabase) {
    fs::remove(database);
    EXPECT_EQ(onFile("get", "REV_Limiter").out, "7000\n");
    EXPECT_EQ(onFile("set", "REV_Limiter 6500").exitCode, 0);
}

}  // namespace
}  // namespace zentaq
