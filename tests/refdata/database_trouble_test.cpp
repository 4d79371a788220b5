// The reference database in trouble: gone, closed, locked, cut, overwritten, or without what belongs in it.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <random>

#include "base/errors.h"
#include "other_program.h"
#include "refdata/schema.h"
#include "refdata_fixture.h"

namespace zentaq::refdata {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Permissions hold no administrator back, so the work is done as a user that they do hold back.
class AsOrdinaryUser {
 public:
    AsOrdinaryUser() : administrator_(::geteuid() == 0) {
        constexpr uid_t nobody = 65534;
        if (administrator_ && ::seteuid(nobody) != 0) ADD_FAILURE() << "cannot change the user";
    }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;
    ~AsOrdinaryUser() {
        if (administrator_ && ::seteuid(0) != 0) ADD_FAILURE() << "cannot change the user back";
    }

 private:
    bool administrator_;
};

constexpr auto everybody = fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                           fs::perms::others_read | fs::perms::others_exec;
constexpr auto readOnlyForAll = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;

using Call = std::function<void(Database&)>;

std::vector<std::pair<std::string, Call>> readers() {
    return {{"engine", [](Database& file) { file.engine(3, 1); }},
            {"engineByName", [](Database& file) { file.engineByName("1 Cylinder", 3); }},
            {"engines", [](Database& file) { file.engines(3, 1); }},
            {"mapSensor", [](Database& file) { file.mapSensor(1); }},
            {"mapSensorByName", [](Database& file) { file.mapSensorByName("1 BAR (10-105 kPa)"); }},
            {"mapSensorByValues", [](Database& file) { file.mapSensorByValues(0.02F, -0.2F); }},
            {"mapSensors", [](Database& file) { file.mapSensors(); }},
            {"defaults", [](Database& file) { file.defaults("ADV"); }},
            {"defaultsSets", [](Database& file) { file.defaultsSets(); }},
            {"help", [](Database& file) { file.help("helpknock"); }},
            {"tips", [](Database& file) { file.tips(); }},
            {"tip", [](Database& file) { file.tip(1); }},
            {"config", [](Database& file) { file.config("/a.ZQ4OA"); }}};
}

std::vector<std::pair<std::string, Call>> writers() {
    return {{"addMapSensor",
             [](Database& file) {
                 file.addMapSensor({0, "New", 0.05F, 0, 1});
             }},
            {"updateMapSensor",
             [](Database& file) {
                 file.updateMapSensor({0, "1 BAR (10-105 kPa)", 0.05F, 0, 1});
             }},
            {"deleteMapSensor", [](Database& file) { file.deleteMapSensor("1 BAR (10-105 kPa)"); }},
            {"storeConfig", [](Database& file) {
                 file.storeConfig({"/a.ZQ4OA", 3, "ORB A Standard"});
             }}};
}

std::vector<std::pair<std::string, Call>> allCalls() {
    auto all = readers();
    for (auto& call : writers()) all.push_back(std::move(call));
    return all;
}

class DatabaseTrouble : public ReferenceDatabase {
 protected:
    std::string openFailure() const { return openFailure(path); }
    static std::string openFailure(const std::string& file) {
        return failureOf<FileError>([&] { Database::open(file); });
    }
    static std::string refusal(const std::string& file, const std::string& reason) {
        return "Cannot open the reference database " + file + ": " + reason;
    }
    std::string refusal(const std::string& reason) const { return refusal(path, reason); }

    /// Whatever state the file is in, opening and every call end in an answer or a Failure.
    /// True when the file opened.
    bool useAsFarAsItGoes(const std::vector<std::pair<std::string, Call>>& calls) const {
        try {
            Database database = Database::open(path);
            for (const auto& [name, call] : calls) {
                try {
                    call(database);
                } catch (const Failure&) {
                }
            }
            return true;
        } catch (const FileError&) {
            return false;
        }
    }
};

/// How long a call on a locked file may take.
constexpr std::chrono::milliseconds longest{200};

/// The time of a piece of work. A busy machine may be late now and then, but not each time: a run that took
/// too long is repeated.
std::chrono::milliseconds timeOf(const std::function<void()>& work) {
    std::chrono::milliseconds took{};
    for (int attempt = 0; attempt < 5; ++attempt) {
        const auto start = std::chrono::steady_clock::now();
        work();
        took =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
        if (took <= longest) break;
    }
    return took;
}

// ---- No such file, or no file at all

TEST_F(DatabaseTrouble, WhatIsNoFileIsRefusedWithTheReasonAndKeepsNobodyWaiting) {
    const std::string missing = "the file is missing";
    const std::string noFile = "it is not a file";
    const std::string link = folder.file("link.pak");
    fs::create_symlink(folder.file("gone.pak"), link);
    const std::string pipe = folder.file("pipe.pak");
    ASSERT_EQ(::mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    for (const auto& [file, reason] :
         {std::pair(folder.file("gone.pak"), missing),
          std::pair(folder.file("nowhere/bin/zentaq410-02.pak"), missing), std::pair(std::string(), missing),
          std::pair(path + "/zentaq410-02.pak", missing), std::pair(link, missing),
          std::pair(folder.path().string(), noFile), std::pair(pipe, noFile),
          std::pair(std::string("/dev/null"), noFile)}) {
        EXPECT_EQ(openFailure(file), refusal(file, reason));
    }
    for (const char* name : {"gone.pak", "nowhere"}) {
        EXPECT_FALSE(fs::exists(folder.file(name))) << "nothing is created";
    }
}

TEST_F(DatabaseTrouble, ALinkToItselfCannotBeRead) {
    const std::string link = folder.file("link.pak");
    fs::create_symlink(link, link);
    EXPECT_THAT(openFailure(link), HasSubstr("the file cannot be read"));
}

TEST_F(DatabaseTrouble, ALinkToTheFileWorks) {
    const std::string link = folder.file("link.pak");
    fs::create_symlink(path, link);
    EXPECT_TRUE(Database::open(link).mapSensor(1));
}

TEST_F(DatabaseTrouble, ANameTooLongForTheDiskCannotBeRead) {
    EXPECT_THAT(openFailure(folder.file(std::string(300, 'x'))), HasSubstr("the file cannot be read"));
}

// ---- Permissions

TEST_F(DatabaseTrouble, AFileWithoutPermissionCannotBeRead) {
    fs::permissions(folder.path(), everybody);
    fs::permissions(path, fs::perms::none);
    const AsOrdinaryUser user;
    EXPECT_EQ(openFailure(), refusal("the file cannot be read"));
}

TEST_F(DatabaseTrouble, AFileInAClosedFolderCannotBeRead) {
    fs::permissions(folder.path(), fs::perms::none);
    std::string failure;
    {
        const AsOrdinaryUser user;
        failure = openFailure();
    }
    fs::permissions(folder.path(), everybody);
    EXPECT_THAT(failure, HasSubstr("the file cannot be read ("));
}

TEST_F(DatabaseTrouble, AReadOnlyFileWorksForReadingAndRefusesEachWrite) {
    EXPECT_FALSE(open().readOnly());
    fs::permissions(path, readOnlyForAll);
    const std::string before = contentOf(path);
    Database database = open();
    EXPECT_TRUE(database.readOnly());
    for (const auto& [name, call] : readers()) EXPECT_NO_THROW(call(database)) << name;
    for (const auto& [name, call] : writers()) {
        EXPECT_EQ(failureOf<Failure>([&] { call(database); }),
                  "Reference database " + path + ": the file is write-protected")
            << name;
    }
    EXPECT_EQ(contentOf(path), before);
}

// An administrator installed the program: its owner may write the file, the tuner at the wheel may not.
TEST_F(DatabaseTrouble, AFileThatOnlyItsOwnerMayWriteIsReadOnlyForOthers) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a file of another user";
    fs::permissions(folder.path(), everybody);
    fs::permissions(path, fs::perms::owner_write | readOnlyForAll);
    EXPECT_FALSE(open().readOnly());
    const AsOrdinaryUser user;
    Database database = open();
    EXPECT_TRUE(database.readOnly());
    for (const auto& [name, call] : readers()) EXPECT_NO_THROW(call(database)) << name;
    for (const auto& [name, call] : writers()) EXPECT_THROW(call(database), Failure) << name;
}

// A change needs room for its journal beside the file.
TEST_F(DatabaseTrouble, AFileInAFolderThatTakesNoJournalReadsAndFailsToWrite) {
    fs::permissions(path, fs::perms::all);
    fs::permissions(folder.path(), everybody & ~fs::perms::owner_write);
    {
        const AsOrdinaryUser user;
        Database database = open();
        for (const auto& [name, call] : readers()) EXPECT_NO_THROW(call(database)) << name;
        EXPECT_THROW(database.storeConfig({"/a.ZQ4OA", 3, "ORB A Standard"}), Failure);
        EXPECT_FALSE(database.config("/a.ZQ4OA"));
    }
    fs::permissions(folder.path(), everybody);
}

// ---- In use by another program

TEST_F(DatabaseTrouble, ALockedFileCannotBeOpenedAndSaysSoWithinAFifthOfASecond) {
    OtherProgram other(path);
    other.run("BEGIN EXCLUSIVE");
    std::string failure;
    EXPECT_LE(timeOf([&] { failure = openFailure(); }), longest);
    EXPECT_EQ(failure, refusal("it is locked: it is in use by another program; try again"));
    other.run("COMMIT");
    EXPECT_TRUE(open().mapSensor(1));
}

TEST_F(DatabaseTrouble, EachCallOnALockedFileFailsWithinAFifthOfASecondAndWorksAfterwards) {
    Database database = open();
    database.defaults("ADV");
    OtherProgram other(path);
    other.run("BEGIN EXCLUSIVE");
    for (const auto& [name, call] : allCalls()) {
        std::string failure;
        const auto took = timeOf([&] { failure = failureOf<Failure>([&] { call(database); }); });
        EXPECT_EQ(failure,
                  "Reference database " + path + ": it is locked: it is in use by another program; try again")
            << name;
        EXPECT_LE(took, longest) << name << " " << took.count();
    }
    other.run("COMMIT");
    for (const auto& [name, call] : allCalls()) EXPECT_NO_THROW(call(database)) << name;
    EXPECT_TRUE(database.config("/a.ZQ4OA"));
}

TEST_F(DatabaseTrouble, WhileAnotherProgramWritesTheFileCanBeReadAndNotWritten) {
    Database database = open();
    OtherProgram other(path);
    other.run("BEGIN IMMEDIATE");
    for (const auto& [name, call] : readers()) EXPECT_NO_THROW(call(database)) << name;
    EXPECT_EQ(failureOf<Failure>([&] { database.deleteMapSensor("New"); }),
              "Reference database " + path + ": it is locked: it is in use by another program; try again");
    other.run("COMMIT");
    EXPECT_NO_THROW(database.deleteMapSensor("New"));
}

TEST_F(DatabaseTrouble, AnotherProgramThatReadsKeepsNobodyFromReading) {
    Database database = open();
    OtherProgram other(path);
    other.run("BEGIN; SELECT * FROM Tips");
    for (const auto& [name, call] : readers()) EXPECT_NO_THROW(call(database)) << name;
}

TEST_F(DatabaseTrouble, DefaultsThatAnotherProgramChangesAreReadAfresh) {
    const Database database = open();
    EXPECT_EQ(database.defaults("KNK_MIN"), std::vector<float>{50});
    OtherProgram(path).run("UPDATE Defaults SET KNK_MIN = 60 WHERE KNK_MIN IS NOT NULL");
    EXPECT_EQ(database.defaults("KNK_MIN"), std::vector<float>{60});
}

// ---- Damage

TEST_F(DatabaseTrouble, AFileCutAnywhereIsRefused) {
    const std::string whole = contentOf(path);
    for (std::size_t length : {0U, 1U, 15U, 16U, 17U, 99U, 100U, 101U, 4095U, 4096U, 4097U, 8192U}) {
        writeFile(path, whole.substr(0, length));
        EXPECT_THAT(openFailure(),
                    testing::AnyOf(HasSubstr("the file is not a database"), HasSubstr("the file is damaged")))
            << length;
    }
    for (std::size_t part = 1; part < 16; ++part) {
        writeFile(path, whole.substr(0, whole.size() * part / 16));
        EXPECT_THAT(openFailure(), HasSubstr("the file is damaged")) << part;
    }
}

TEST_F(DatabaseTrouble, GarbageIsNoDatabase) {
    std::mt19937 random(7);
    std::string garbage(50'000, ' ');
    std::ranges::generate(garbage, [&] { return static_cast<char>(random()); });
    for (const std::string& content : {garbage, std::string(50'000, '\0'), std::string(),
                                       std::string("This is a note and no database at all.")}) {
        writeFile(path, content);
        EXPECT_EQ(openFailure(), refusal("the file is not a database"));
    }
    writeFile(path, std::string("SQLite format 3\0", 16) + garbage);
    EXPECT_THAT(openFailure(), HasSubstr("the file is damaged"));
}

TEST_F(DatabaseTrouble, AGoodHeadBeforeGarbageIsDamaged) {
    const std::string whole = contentOf(path);
    std::string lastPage = whole;
    lastPage.replace(whole.size() - 4096, 4096, std::string(4096, '\x55'));
    std::string allButTheHead = whole;
    std::mt19937 random(11);
    std::generate(allButTheHead.begin() + 100, allButTheHead.end(),
                  [&] { return static_cast<char>(random()); });
    for (const std::string& content : {lastPage, allButTheHead}) {
        writeFile(path, content);
        EXPECT_THAT(openFailure(), HasSubstr("the file is damaged"));
    }
}

TEST_F(DatabaseTrouble, BytesOverwrittenAnywhereEndInAnAnswerOrAFailure) {
    const std::string whole = contentOf(path);
    std::mt19937 random(2024);
    int refused = 0;
    constexpr int rounds = 200;
    for (int round = 0; round < rounds; ++round) {
        std::string content = whole;
        // Half of the rounds meet the head and the first page, where a byte does most harm.
        const std::size_t reach = round % 2 == 0 ? content.size() : 4096;
        for (int byte = 0; byte < 8; ++byte) content[random() % reach] = static_cast<char>(random());
        writeFile(path, content);
        fs::remove(path + "-journal");
        // Writing waits for the disk, so only some of the rounds do it.
        if (!useAsFarAsItGoes(round % 10 == 0 ? allCalls() : readers())) ++refused;
    }
    EXPECT_GT(refused, rounds / 4);
    EXPECT_LT(refused, rounds);
}

TEST_F(DatabaseTrouble, AFileSpoiltWhileItIsOpenFailsInTheCallAndNowhereElse) {
    for (const std::string& spoilt : {std::string(), std::string(8192, '\x55')}) {
        buildDatabase(projectSeeds, path);
        Database database = open();
        writeFile(path, spoilt);
        for (const auto& [name, call] : allCalls()) EXPECT_THROW(call(database), Failure) << name;
    }
}

TEST_F(DatabaseTrouble, AFileDeletedWhileItIsOpenStillReads) {
    Database database = open();
    fs::remove(path);
    EXPECT_TRUE(database.mapSensor(1));
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(DatabaseTrouble, AJournalOfGarbageIsPassedOver) {
    writeFile(path + "-journal", std::string(5000, '\x5a'));
    EXPECT_TRUE(open().mapSensor(1));
}

// ---- Missing parts

TEST_F(DatabaseTrouble, EachMissingTableIsNamed) {
    for (const Table& table : tables()) {
        buildDatabase(projectSeeds, path);
        OtherProgram(path).run("DROP TABLE \"" + table.name + "\"");
        EXPECT_EQ(openFailure(), refusal("table " + table.name + " is missing"));
    }
}

TEST_F(DatabaseTrouble, AMissingColumnOrSetOfDefaultsIsNamed) {
    for (const auto& [table, column] :
         {std::pair("Engines", "InjMode"), std::pair("Defaults", "BOOST_RTD")}) {
        buildDatabase(projectSeeds, path);
        OtherProgram(path).run(std::string("ALTER TABLE ") + table + " DROP COLUMN " + column);
        EXPECT_EQ(openFailure(), refusal(std::string("table ") + table + " has no column " + column));
    }
}

TEST_F(DatabaseTrouble, ATableDroppedWhileTheFileIsOpenFailsInItsOwnCallsOnly) {
    Database database = open();
    OtherProgram(path).run("DROP TABLE MAPCals; DROP TABLE Defaults");
    EXPECT_THAT(failureOf<Failure>([&] { database.mapSensor(1); }), HasSubstr("no such table: MAPCals"));
    EXPECT_THROW(database.mapSensors(), Failure);
    EXPECT_THROW(database.defaults("ADV"), Failure);
    EXPECT_THROW(database.addMapSensor({0, "New", 0.05F, 0, 1}), Failure);
    EXPECT_TRUE(database.engine(3, 1));
    EXPECT_FALSE(database.tips().empty());
}

TEST_F(DatabaseTrouble, ATextWhereANumberBelongsReadsAsZero) {
    OtherProgram(path).run(
        "UPDATE Engines SET IGNRev = 'many', OptType = 1 WHERE OrbUnit = 3 AND OptType = 1");
    const auto engine = open().engine(3, 1);
    ASSERT_TRUE(engine);
    EXPECT_EQ(engine->ignRev, 0);
    EXPECT_EQ(engine->cylinders, 4);
}

TEST_F(DatabaseTrouble, EmptyTablesAnswerWithNothing) {
    for (const Table& table : tables()) OtherProgram(path).run("DELETE FROM \"" + table.name + "\"");
    const Database database = open();
    EXPECT_FALSE(database.engine(3, 1));
    EXPECT_TRUE(database.engines(3, 1).empty());
    EXPECT_FALSE(database.mapSensor(1));
    EXPECT_FALSE(database.mapSensorByValues(0.05295F, -0.54738F));
    EXPECT_TRUE(database.defaults("ADV").empty());
    EXPECT_TRUE(database.tips().empty());
    EXPECT_THROW(database.tip(1), BoundsError);
}

// ---- More than a reference database can have

TEST_F(DatabaseTrouble, AFileOfGigabytesIsRefusedUnread) {
    fs::resize_file(path, std::uintmax_t{16} << 30);
    EXPECT_EQ(openFailure(),
              refusal("it has 17179869184 bytes; a reference database has at most 8589934592"));
}

TEST_F(DatabaseTrouble, ATextOfMegabytesIsRefusedWithItsLimit) {
    OtherProgram(path).run("UPDATE FastHelp SET HELP = hex(zeroblob(1000000)) WHERE HELP_KEY = 'helpknock'");
    std::string told = openFailure();
    if (told.empty()) told = failureOf<Failure>([&] { open().help("helpknock"); });
    EXPECT_THAT(told, HasSubstr("a row of the reference database has at most 1048576 bytes"));
}

TEST_F(DatabaseTrouble, AViewThatAnswersWithoutEndIsNoTable) {
    OtherProgram(path).run(
        "DROP TABLE Tips; CREATE VIEW Tips AS WITH RECURSIVE n(ID, HELP) AS "
        "(SELECT 1, 'x' UNION ALL SELECT ID + 1, 'x' FROM n) SELECT * FROM n");
    EXPECT_EQ(openFailure(), refusal("Tips is no table"));
}

}  // namespace
}  // namespace zentaq::refdata
