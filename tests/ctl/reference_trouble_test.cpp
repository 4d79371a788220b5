// Commands that have to convert a calibration while the reference database cannot be asked: they end, and say
// what is missing.
#include <sqlite3.h>

#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

/// zentaqctl in a folder of its own, with a reference database that the test may spoil.
class ZentaqctlAlone : public ZentaqctlOnLink {
 protected:
    ZentaqctlAlone() {
        fs::create_directories(folder.file("app/bin/data"));
        fs::copy_file(ZENTAQ_APP_DIR "/zentaqctl", program);
        fs::copy_file(ZENTAQ_APP_DIR "/bin/data/zentaq410-02.pak", database);
        // Of a firmware before the linear sensor, with a sensor of 2 bar.
        float code = 2017;
        std::string bytes = contentOf(file);
        std::memcpy(bytes.data() + 8, &code, sizeof code);
        writeFile(file, bytes);
        plant(39, 2);
        plant(124, 2);
        plant(126, 0);
        plant(127, 0);
        plant(128, 0);
    }
    Outcome alone(const std::string& arguments) {
        const std::string out = folder.file("stdout.txt");
        const std::string error = folder.file("stderr.txt");
        const std::string command =
            inQuotes(program) + " " + arguments + " </dev/null >" + inQuotes(out) + " 2>" + inQuotes(error);
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(out), contentOf(error)};
    }
    /// What is the matter with the database, one after the other, and the words for it.
    void withEachTrouble(const std::function<void(const std::string& words)>& check) {
        const std::string whole = contentOf(database);
        fs::remove(database);
        check("the file is missing");
        writeFile(database, whole.substr(0, 4096) + std::string(whole.size() - 4096, '\xA5'));
        check("the file is damaged");
        writeFile(database, whole);
        sqlite3* other = nullptr;
        ASSERT_EQ(sqlite3_open(database.c_str(), &other), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
        check("it is locked: it is in use by another program; try again");
        sqlite3_close(other);
    }
    void expectNeeds(const Outcome& outcome, const std::string& words) const {
        EXPECT_EQ(outcome.exitCode, 1) << words;
        EXPECT_EQ(outcome.out, "") << words;
        expectOneLine(outcome.error);
        EXPECT_THAT(outcome.error, HasSubstr("of the reference database is needed to convert it"));
        EXPECT_THAT(outcome.error, HasSubstr(database + ": " + words));
    }

    std::string program = folder.file("app/zentaqctl");
    std::string database = folder.file("app/bin/data/zentaq410-02.pak");
    std::string output = folder.file("output");
};

TEST_F(ZentaqctlAlone, ImageForNewerFirmwareEndsWithoutTheDatabaseAndWritesNothing) {
    withEachTrouble([&](const std::string& words) {
        expectNeeds(alone("image " + inQuotes(file) + " --firmware 5.99 -o " + inQuotes(output)), words);
        EXPECT_FALSE(fs::exists(output));
    });
    EXPECT_EQ(alone("image " + inQuotes(file) + " --firmware 5.99 -o " + inQuotes(output)).exitCode, 0);
}

TEST_F(ZentaqctlAlone, ImageForNewerFirmwareEndsWhereTheDatabaseLacksTheSensor) {
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(database.c_str(), &other), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(other, "DELETE FROM MAPCals WHERE ID = 2", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    EXPECT_THAT(
        alone("image " + inQuotes(file) + " --firmware 5.99 -o " + inQuotes(output)),
        Fails(1, AllOf(isOneLine, HasSubstr("MAP sensor 2 of the reference database is needed to convert it"),
                       HasSubstr("no such sensor"))));
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(ZentaqctlAlone, ImportBinEndsWithoutTheDatabaseAndWritesNothing) {
    const std::string old = folder.file("old.BIN");
    writeFile(old, std::string(8704, '\0'));
    withEachTrouble([&](const std::string& words) {
        expectNeeds(alone("import-bin " + inQuotes(old) + " -o " + inQuotes(output)), words);
        EXPECT_FALSE(fs::exists(output));
    });
}

TEST_F(ZentaqctlAlone, SetOfTheReleaseEndsWithoutTheDatabaseAndChangesNothing) {
    const std::string before = contentOf(file);
    withEachTrouble([&](const std::string& words) {
        expectNeeds(alone("set " + inQuotes(file) + " FW_Release 5"), words);
        EXPECT_EQ(contentOf(file), before);
    });
}

TEST_F(ZentaqctlAlone, ProgramOfANewerUnitEndsWithoutTheDatabaseAndSendsNothing) {
    startUnit("A", {"--memory", memory});
    ASSERT_EQ(onUnit("identify").exitCode, 0);
    const std::string before = contentOf(memory);
    withEachTrouble([&](const std::string& words) {
        const Outcome outcome = alone("program --port " + inQuotes(port) + " " + inQuotes(file));
        expectNeeds(outcome, words);
        EXPECT_THAT(outcome.error, HasSubstr("Nothing was sent to the unit."));
        EXPECT_EQ(contentOf(memory), before);
    });
}

TEST_F(ZentaqctlAlone, ReadingAFileNeedsNoDatabase) {
    fs::remove(database);
    EXPECT_EQ(alone("get " + inQuotes(file) + " REV_Limiter").out, "7000\n");
    EXPECT_EQ(alone("set " + inQuotes(file) + " REV_Limiter 6500").exitCode, 0);
}

}  // namespace
}  // namespace zentaq
