#include "qt/qt_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <unistd.h>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>

#include "app/options.h"
#include "base/settings_keys.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* fileOfChild = "ZENTAQ_TEST_SETTINGS";

class QtSettingsTest : public testing::Test {
 protected:
    TemporaryFolder folder;
    std::string path = folder.path("Zentaq4.ini");
    std::vector<std::string> troubles;

    void listen(QtSettings& settings) {
        settings.onTrouble([this](const std::string& what) { troubles.push_back(what); });
    }
    /// From its first moment on.
    struct Heard : QtSettings {
        Heard(const std::string& path, std::vector<std::string>& troubles) : QtSettings(path) {
            onTrouble([&troubles](const std::string& what) { troubles.push_back(what); });
        }
    };
    static std::set<std::string> keys() {
        std::set<std::string> names{settings::CommPortIdentity};
        for (const OptionRow& row : optionTable()) {
            if (!row.key.empty()) names.emplace(row.key);
        }
        return names;
    }
    std::string fileText() const { return TemporaryFolder::read(path); }
};

TEST_F(QtSettingsTest, EveryKeyOfTheProgramSurvivesARestart) {
    {
        QtSettings settings(path);
        int value = 0;
        for (const std::string& key : keys()) settings.set(settings::system, key, std::to_string(++value));
        for (int slot = 1; slot <= settings::datalogSlots; ++slot) {
            settings.set(settings::datalog, settings::datalogKey(slot), std::to_string(slot * 6));
        }
    }
    const QtSettings settings(path);
    int value = 0;
    for (const std::string& key : keys()) {
        EXPECT_EQ(settings.get(settings::system, key), std::to_string(++value)) << key;
    }
    EXPECT_EQ(settings.get(settings::datalog, "Datalog10"), "60");
    EXPECT_EQ(settings.get(settings::datalog, "Datalog11"), "");
}

TEST_F(QtSettingsTest, AKeyThatWasNeverWrittenReadsAsItsDefault) {
    const QtSettings settings(path);
    for (const std::string& key : keys()) {
        EXPECT_EQ(settings.get(settings::system, key), "");
        EXPECT_EQ(settings.get(settings::system, key, "1"), "1");
    }
    EXPECT_FALSE(std::filesystem::exists(path)) << "reading writes nothing";
}

TEST_F(QtSettingsTest, TheFileHasTheSectionsAndKeysByTheirNames) {
    QtSettings settings(path);
    settings.set("System", "CommPort", "7");
    settings.set("Datalog", "Datalog1", "12");
    EXPECT_THAT(fileText(), HasSubstr("[System]\nCommPort=7\n"));
    EXPECT_THAT(fileText(), HasSubstr("[Datalog]\nDatalog1=12\n"));
}

TEST_F(QtSettingsTest, AHandEditedValueWithACommaIsItsText) {
    folder.write("Zentaq4.ini", "[System]\nADUR=1,5\n");
    EXPECT_EQ(QtSettings(path).get("System", "ADUR"), "1,5");
}

// ---- What is no file of settings

TEST_F(QtSettingsTest, APipeInThePlaceOfTheFileHoldsNobodyUp) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    QtSettings settings(path);
    settings.set("System", "CommPort", "7");
    EXPECT_EQ(settings.get("System", "CommPort", "1"), "7") << "it lasts for the run";
    EXPECT_EQ(settings.get("System", "AutoLog", "none"), "none");
    listen(settings);
    EXPECT_THAT(troubles, ElementsAre("Cannot read " + path +
                                      ": it is a pipe, not a file. Changed settings last for this run; "
                                      "remove what stands there."));
    EXPECT_TRUE(std::filesystem::is_fifo(path));
}

TEST_F(QtSettingsTest, APipeThatComesInThePlaceOfTheFileHoldsNobodyUpEither) {
    Heard settings(path, troubles);
    settings.set("System", "CommPort", "7");
    std::filesystem::remove(path);
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    settings.set("System", "CommPort", "8");
    settings.set("System", "CommPort", "9");
    EXPECT_EQ(settings.get("System", "CommPort"), "9");
    EXPECT_EQ(troubles.size(), 1U) << "told once";
}

TEST_F(QtSettingsTest, APipeInThePlaceOfTheLockHoldsNobodyUpEither) {
    folder.write("Zentaq4.ini", "[System]\nCommPort=7\n");
    ASSERT_EQ(::mkfifo((path + ".lock").c_str(), 0600), 0);
    Heard settings(path, troubles);
    settings.set("System", "CommPort", "9");
    EXPECT_EQ(settings.get("System", "CommPort"), "9");
    EXPECT_THAT(troubles,
                ElementsAre(HasSubstr(".lock: it is a pipe, not a file. Changed settings last for")));
    EXPECT_EQ(fileText(), "[System]\nCommPort=7\n");
}

TEST_F(QtSettingsTest, ALockOfGigabytesIsNotReadAndStays) {
    folder.write("Zentaq4.ini.lock", "1\n");
    std::filesystem::resize_file(path + ".lock", std::uintmax_t{2} << 30);
    Heard settings(path, troubles);
    settings.set("System", "CommPort", "9");
    EXPECT_THAT(troubles, ElementsAre(HasSubstr("it has 2147483648 bytes; a lock file has at most 4096")));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(QtSettingsTest, AFileOfGigabytesIsNotReadAndStays) {
    folder.write("Zentaq4.ini", "[System]\nCommPort=7\n");
    std::filesystem::resize_file(path, std::uintmax_t{2} << 30);
    QtSettings settings(path);
    settings.set("System", "CommPort", "8");
    listen(settings);
    ASSERT_EQ(troubles.size(), 1U);
    EXPECT_THAT(troubles[0], HasSubstr("it has 2147483648 bytes; a settings file has at most 1048576"));
    EXPECT_EQ(std::filesystem::file_size(path), std::uintmax_t{2} << 30);
}

/// The next test runs this one as a process of its own, on its own file.
TEST(QtSettingsOfAnotherProcess, StoresAValue) {
    const TemporaryFolder own;
    const char* given = std::getenv(fileOfChild);
    const std::string file = given != nullptr ? given : own.path("Zentaq4.ini");
    QtSettings(file).set("System", "MATAlarmValue", "70");
    EXPECT_EQ(QtSettings(file).get("System", "MATAlarmValue"), "70");
}

void runOtherProcess(const std::string& settingsFile) {
    const pid_t child = fork();
    if (child == 0) {
        setenv(fileOfChild, settingsFile.c_str(), 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        execl("/proc/self/exe", "test_windows", "--gtest_filter=QtSettingsOfAnotherProcess.*",
              "--gtest_brief=1", nullptr);
        _exit(1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
}

TEST_F(QtSettingsTest, TwoProcessesKeepEachOthersValues) {
    QtSettings settings(path);
    settings.set("System", "CommPort", "7");
    runOtherProcess(path);
    settings.set("System", "CLTAlarmValue", "110");
    EXPECT_THAT(fileText(), HasSubstr("CommPort=7\n"));
    EXPECT_THAT(fileText(), HasSubstr("MATAlarmValue=70\n"));
    EXPECT_THAT(fileText(), HasSubstr("CLTAlarmValue=110\n"));
    EXPECT_EQ(settings.get("System", "MATAlarmValue"), "70");
}

TEST_F(QtSettingsTest, ASoundFileIsNoTrouble) {
    folder.write("Zentaq4.ini", "[System]\nCommPort=7\n");
    Heard settings(path, troubles);
    settings.set("System", "AutoLog", "1");
    EXPECT_THAT(troubles, IsEmpty());
}

TEST_F(QtSettingsTest, ADamagedFileIsToldReadAsFarAsItGoesAndKept) {
    const std::string damaged = "[System]\nCommPort=7\nthis line is no setting\nAutoLog=0\n";
    folder.write("Zentaq4.ini", damaged);
    Heard settings(path, troubles);
    EXPECT_THAT(troubles,
                ElementsAre("Settings file " + path + " is damaged; what can be read of it is used."));
    EXPECT_EQ(settings.get("System", "CommPort"), "7");
    settings.set("System", "Print", "1");
    EXPECT_EQ(TemporaryFolder::read(path + ".damaged"), damaged);
    EXPECT_THAT(fileText(), HasSubstr("CommPort=7\n"));
    EXPECT_THAT(fileText(), HasSubstr("Print=1\n"));
}

TEST_F(QtSettingsTest, AFileOfBytesIsAsUsableAsANewOne) {
    std::string bytes;
    for (int i = 0; i < 4096; ++i) bytes += static_cast<char>(i * 37 + i / 256);
    folder.write("Zentaq4.ini", bytes);
    QtSettings settings(path);
    EXPECT_EQ(settings.get("System", "CommPort", "1"), "1");
    settings.set("System", "CommPort", "7");
    EXPECT_EQ(settings.get("System", "CommPort", "1"), "7");
}

TEST_F(QtSettingsTest, AFileThatCannotBeWrittenIsToldOnceAndValuesLastForTheRun) {
    // The folder is a file: not even an administrator can make a file below it.
    folder.write("Zentaq4", "x");
    QtSettings settings(folder.path("Zentaq4/Zentaq4.ini"));
    settings.set("System", "CommPort", "7");
    settings.set("System", "AutoLog", "1");
    EXPECT_EQ(settings.get("System", "CommPort"), "7");
    listen(settings);
    EXPECT_THAT(troubles, ElementsAre(HasSubstr("Not a directory. Changed settings last for this run")));
}

// An empty lock names no process, so that nobody can know that it is dead.
TEST_F(QtSettingsTest, ALockThatWasLeftBehindIsWaitedForAMomentAndToldOnce) {
    folder.write("Zentaq4.ini", "[System]\nCommPort=7\n");
    folder.write("Zentaq4.ini.lock", "");
    Heard settings(path, troubles);
    QElapsedTimer time;
    time.start();
    settings.set("System", "CommPort", "9");
    settings.set("System", "AutoLog", "1");
    QCoreApplication::processEvents();
    EXPECT_LT(time.elapsed(), 5000) << "the lock would be taken for a dead one's after half a minute";
    ASSERT_EQ(troubles.size(), 1u);
    EXPECT_EQ(troubles[0], "Settings file " + path + " is locked by another program; it is written when " +
                               path + ".lock has gone.");
    EXPECT_EQ(settings.get("System", "CommPort"), "9");
    EXPECT_EQ(settings.get("System", "AutoLog"), "1");
    EXPECT_EQ(fileText(), "[System]\nCommPort=7\n");
    std::filesystem::remove(path + ".lock");
    settings.set("System", "Print", "0");
    EXPECT_THAT(fileText(), HasSubstr("CommPort=9\n"));
    EXPECT_THAT(fileText(), HasSubstr("AutoLog=1\n"));
    EXPECT_THAT(fileText(), HasSubstr("Print=0\n"));
}

TEST_F(QtSettingsTest, WhatWaitedForALockIsWrittenWhenTheProgramEnds) {
    {
        QtSettings settings(path);
        folder.write("Zentaq4.ini.lock", "");
        settings.set("System", "CommPort", "9");
        std::filesystem::remove(path + ".lock");
    }
    EXPECT_THAT(fileText(), HasSubstr("CommPort=9\n"));
}

TEST_F(QtSettingsTest, WhatCouldNotBeWrittenIsWrittenWhenWhatStoodThereHasGone) {
    std::filesystem::create_directory(path);
    Heard settings(path, troubles);
    settings.set("System", "CommPort", "9");
    EXPECT_EQ(settings.get("System", "CommPort"), "9");
    EXPECT_FALSE(settings.isStored());
    std::filesystem::remove(path);
    settings.set("System", "AutoLog", "1");
    EXPECT_TRUE(settings.isStored());
    EXPECT_EQ(fileText(), "[System]\nAutoLog=1\nCommPort=9\n");
    EXPECT_EQ(troubles.size(), 1U);
}

TEST_F(QtSettingsTest, MoreThanAFileMayHoldIsToldAndNotWritten) {
    Heard settings(path, troubles);
    settings.set("System", "CommPort", "9");
    const std::string stored = fileText();
    settings.set("System", "AutoLog", std::string(1048576, 'x'));
    EXPECT_THAT(troubles, ElementsAre(HasSubstr("a settings file has at most 1048576. Changed settings")));
    EXPECT_EQ(fileText(), stored);
    EXPECT_EQ(settings.get("System", "AutoLog").size(), 1048576U) << "it lasts for the run";
}

TEST_F(QtSettingsTest, ALinkStaysALinkAndAFileKeepsItsPermissions) {
    using std::filesystem::perms;
    const std::string real = folder.write("real.ini", "[System]\nCommPort=7\n");
    std::filesystem::permissions(real, perms(0640));
    std::filesystem::create_symlink("real.ini", path);
    QtSettings(path).set("System", "CommPort", "9");
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(TemporaryFolder::read(real), "[System]\nCommPort=9\n");
    EXPECT_EQ(std::filesystem::status(real).permissions(), perms(0640));
}

TEST_F(QtSettingsTest, AFolderThatIsMissingIsMade) {
    const std::string below = folder.path("config/Zentaq4/Zentaq4.ini");
    QtSettings(below).set("System", "CommPort", "9");
    EXPECT_EQ(TemporaryFolder::read(below), "[System]\nCommPort=9\n");
}

TEST_F(QtSettingsTest, AValueThatIsThereAlreadyIsNotWrittenAgain) {
    const std::string asTyped = "; my settings\n[System]\nCommPort=7\n";
    folder.write("Zentaq4.ini", asTyped);
    QtSettings(path).set("System", "CommPort", "7");
    EXPECT_EQ(fileText(), asTyped);
}

TEST_F(QtSettingsTest, WhatCannotBeKeptOfADamagedFileIsNotWrittenOver) {
    const std::string damaged = "[System]\nCommPort=7\nthis line is no setting\n";
    folder.write("Zentaq4.ini", damaged);
    std::filesystem::create_directory(path + ".damaged");
    QtSettings settings(path);
    settings.set("System", "Print", "1");
    EXPECT_EQ(fileText(), damaged);
    EXPECT_FALSE(settings.isStored());
    EXPECT_EQ(settings.get("System", "Print"), "1");
    std::filesystem::remove(path + ".damaged");
    settings.set("System", "Print", "0");
    EXPECT_EQ(fileText(), "[System]\nCommPort=7\nPrint=0\n");
    EXPECT_EQ(TemporaryFolder::read(path + ".damaged"), damaged);
}

/// Whether a check holds in a process that is no administrator's, who may write any file.
bool holdsForAnOrdinaryUser(const std::function<bool()>& check) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t somebody = 65534;
        if (getuid() == 0 && setuid(somebody) != 0) _exit(2);
        _exit(check() ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    return status == 0;
}

TEST_F(QtSettingsTest, AWriteProtectedFileIsToldAtTheStartAndValuesLastForTheRun) {
    folder.write("Zentaq4.ini", "[System]\nCommPort=7\n");
    using std::filesystem::perms;
    std::filesystem::permissions(path, perms(0444));
    std::filesystem::permissions(folder.path(), perms(055), std::filesystem::perm_options::add);
    EXPECT_TRUE(holdsForAnOrdinaryUser([&] {
        Heard settings(path, troubles);
        settings.set("System", "CommPort", "9");
        return troubles.size() == 1 &&
               troubles[0].ends_with("is write-protected; changed settings last for this run.") &&
               settings.get("System", "CommPort") == "9";
    }));
    EXPECT_EQ(fileText(), "[System]\nCommPort=7\n");
}

TEST_F(QtSettingsTest, AnUnreadableFileIsToldAndTheProgramStartsAsNew) {
    folder.write("Zentaq4.ini", "[System]\nCommPort=7\n");
    using std::filesystem::perms;
    std::filesystem::permissions(path, perms::none);
    std::filesystem::permissions(folder.path(), perms(055), std::filesystem::perm_options::add);
    EXPECT_TRUE(holdsForAnOrdinaryUser([&] {
        Heard settings(path, troubles);
        return troubles.size() == 1 &&
               troubles[0].ends_with("cannot be read; the program starts as newly installed.") &&
               settings.get("System", "CommPort", "1") == "1";
    }));
}

TEST_F(QtSettingsTest, WhatCouldNotBeReadIsMergedAndNotWrittenOver) {
    const std::filesystem::path own = folder.path("own");
    std::filesystem::create_directory(own);
    std::filesystem::permissions(own, std::filesystem::perms::all);
    std::filesystem::permissions(folder.path(), std::filesystem::perms(055),
                                 std::filesystem::perm_options::add);
    EXPECT_TRUE(holdsForAnOrdinaryUser([&] {
        using std::filesystem::perms;
        path = own / "Zentaq4.ini";
        const std::string stored = "[System]\nADUR=30\nCommPort=7\n";
        std::ofstream(path) << stored;
        std::filesystem::permissions(path, perms::none);
        Heard settings(path, troubles);
        settings.set("System", "CommPort", "9");
        const bool waits = !settings.isStored() && settings.get("System", "CommPort") == "9" &&
                           troubles.size() == 2 && troubles[1].find("Permission denied") != std::string::npos;
        std::filesystem::permissions(path, perms::owner_read | perms::owner_write);
        if (fileText() != stored) return false;
        settings.set("System", "AutoLog", "1");
        return waits && settings.isStored() && settings.get("System", "ADUR") == "30" &&
               fileText() == "[System]\nADUR=30\nAutoLog=1\nCommPort=9\n";
    }));
}

}  // namespace
}  // namespace zentaq
