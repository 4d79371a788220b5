// How ./run puts the samples into the user's documents: with programs in the place of the real ones, so that
// only the script itself is at work.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "temporary_folder.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using ::testing::UnorderedElementsAre;

constexpr const char* four = "Street Four.ZQ4OA";
constexpr const char* eight = "Street V8.ZQ4OA";

class RunScriptSamples : public ::testing::Test {
 protected:
    TemporaryFolder folder;
    fs::path app = folder.path() / "app";
    fs::path home = folder.path() / "Tuner & Sons";
    fs::path samples = home / "Documents" / "Zentaq";
    std::string sample = std::string(9000, 'f') + "the end";

    RunScriptSamples() {
        fs::create_directories(app / "samples");
        fs::create_directories(home);
        write(app / "samples" / four, sample);
        write(app / "samples" / eight, "eight cylinders");
        program(app / "zentaq-sim", "echo 'ready port'\nexec sleep 60\n");
        program(app / "zentaq4", "touch \"$HOME/started\"\n");
    }

    static void write(const fs::path& file, const std::string& content) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
    }
    static void program(const fs::path& file, const std::string& script) {
        write(file, "#!/bin/sh\n" + script);
        fs::permissions(file, fs::perms::owner_all);
    }
    static std::string read(const fs::path& file) { return TemporaryFolder::read(file.string()); }

    /// Status of ./run; `search` comes in front of the paths of the system, `homeWords` tell `env` of HOME.
    int run(const fs::path& search = {}, std::string homeWords = {}) const {
        const std::string first = search.empty() ? "" : search.string() + ":";
        if (homeWords.empty()) homeWords = "HOME='" + home.string() + "'";
        const std::string command = "cd '" ZENTAQ_SOURCE_DIR "' && timeout 60 env -u XDG_CONFIG_HOME " +
                                    homeWords + " PATH='" + first + std::getenv("PATH") +
                                    "' ZENTAQ_APP_FOLDER='" + app.string() + "' ./run >/dev/null 2>&1";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    bool started() const { return fs::exists(home / "started"); }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(samples)) {
            all.push_back(entry.path().filename().string());
        }
        return all;
    }
};

TEST_F(RunScriptSamples, AreCopiedWholeAndNothingElseStaysBehind) {
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(names(), UnorderedElementsAre(four, eight));
    EXPECT_EQ(read(samples / four), sample);
    EXPECT_TRUE(started());
}

TEST_F(RunScriptSamples, ACopyThatIsKilledHalfWayLeavesNoFileOfThatName) {
    // Copies the first half, then kills the script.
    program(folder.path() / "bin" / "cp",
            "for arg; do case $arg in -*) ;; *) [ -n \"$from\" ] || from=$arg; to=$arg ;; esac; done\n"
            "[ -d \"$to\" ] && to=$to/${from##*/}\n"
            "head -c 4096 \"$from\" >\"$to\"\n"
            "kill -9 $PPID\n");
    run(folder.path() / "bin");
    EXPECT_FALSE(fs::exists(samples / four));
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(read(samples / four), sample);
}

TEST_F(RunScriptSamples, ACopyThatAnEarlierRunCutIsMended) {
    for (const std::size_t length : {std::size_t{0}, std::size_t{4096}, sample.size() - 1}) {
        write(samples / four, sample.substr(0, length));
        EXPECT_EQ(run(), 0);
        EXPECT_EQ(read(samples / four), sample) << length;
    }
}

TEST_F(RunScriptSamples, ACalibrationOfTheUsersIsNeverReplaced) {
    const std::string mine[] = {"mine", std::string(4096, 'g'), sample.substr(0, 4096) + "X", sample + "more",
                                std::string(sample.size(), 'g')};
    for (const std::string& content : mine) {
        write(samples / four, content);
        EXPECT_EQ(run(), 0);
        EXPECT_EQ(read(samples / four), content);
    }
}

TEST_F(RunScriptSamples, ALinkToACalibrationElsewhereStays) {
    write(home / "elsewhere", sample.substr(0, 100));
    fs::create_directories(samples);
    fs::create_symlink(home / "elsewhere", samples / four);
    fs::create_symlink(home / "nowhere", samples / eight);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(read(home / "elsewhere"), sample.substr(0, 100));
    EXPECT_TRUE(fs::is_symlink(samples / eight));
    EXPECT_FALSE(fs::exists(home / "nowhere"));
}

TEST_F(RunScriptSamples, TheDocumentsOfTheDesktopAreFoundInAHomeWithAnAmpersand) {
    write(home / ".config" / "user-dirs.dirs",
          "XDG_DESKTOP_DIR=\"$HOME/Desk\"\nXDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(read(home / "Papers" / "Zentaq" / four), sample);
    EXPECT_FALSE(fs::exists(samples));
}

TEST_F(RunScriptSamples, AHomeThatNobodyTellsIsTheOneThatTheSystemKnows) {
    const fs::path bin = folder.path() / "bin";
    program(bin / "getent", "[ \"$1\" = passwd ] && echo 'tuner:x:7:7::" + home.string() + ":/bin/sh'\n");
    for (const char* words : {"-u HOME", "HOME=", "HOME=tuner"}) {
        fs::remove_all(home / "Documents");
        fs::remove(home / "started");
        EXPECT_EQ(run(bin, words), 0) << words;
        EXPECT_THAT(names(), UnorderedElementsAre(four, eight)) << words;
        EXPECT_TRUE(started()) << words << ": the program has the same home";
    }
}

TEST_F(RunScriptSamples, AUserWithoutAnyHomeStartsWithoutSamples) {
    const fs::path bin = folder.path() / "bin";
    program(bin / "getent", "exit 2\n");
    program(app / "zentaq4", "touch '" + (folder.path() / "started").string() + "'\n");
    EXPECT_EQ(run(bin, "-u HOME"), 0);
    EXPECT_TRUE(fs::exists(folder.path() / "started"));
}

TEST_F(RunScriptSamples, APipeInThePlaceOfTheDesktopsFoldersIsNotWaitedFor) {
    fs::create_directories(home / ".config");
    ASSERT_EQ(::mkfifo((home / ".config" / "user-dirs.dirs").c_str(), 0600), 0);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(read(samples / four), sample);
}

TEST_F(RunScriptSamples, ADocumentsFolderThatCannotBeMadeIsNoReasonNotToStart) {
    write(home / "Documents", "a file in the place of the folder");
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(started());
}

TEST_F(RunScriptSamples, ADiskThatTakesNoCopyIsNoReasonNotToStart) {
    program(folder.path() / "bin" / "cp", "echo 'No space left on device' >&2\nexit 1\n");
    EXPECT_EQ(run(folder.path() / "bin"), 0);
    EXPECT_TRUE(started());
    EXPECT_THAT(names(), UnorderedElementsAre());
}

TEST_F(RunScriptSamples, WhatAKilledRunLeftIsClearedAwayLater) {
    using namespace std::chrono_literals;
    write(samples / ".sample-abcdef", "old");
    write(samples / ".sample-ghijkl", "of a run that is at work");
    write(samples / ".samples of mine", "the user's");
    fs::last_write_time(samples / ".sample-abcdef", fs::file_time_type::clock::now() - 1h);
    fs::last_write_time(samples / ".samples of mine", fs::file_time_type::clock::now() - 1h);
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(names(), UnorderedElementsAre(four, eight, ".sample-ghijkl", ".samples of mine"));
}

}  // namespace
}  // namespace zentaq
