#include "app/console.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <limits>
#include <optional>

#include "app/fake_platform.h"
#include "base/errors.h"
#include "no_file_grows.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

class ConsoleTest : public ::testing::Test {
 protected:
    FakeClock clock;
    Console console{clock};
    TemporaryFolder folder;

    /// What the failure of the next line says.
    std::string refusal() {
        console.LogToFile(true);
        std::string why;
        endOnFailure([&] { console.SysLog("text"); }, [&](const std::string& text) { why = text; });
        return why;
    }
    void logTo(const std::string& file) {
        console.logFile(folder.path(file));
        console.LogToFile(true);
    }
    std::string fileText() const { return TemporaryFolder::read(console.logFile()); }
};

TEST_F(ConsoleTest, ALineIsTimeDashAndTheTextPaddedTo80) {
    console.SysLog("Hello");
    ASSERT_EQ(console.lines().size(), 1u);
    EXPECT_EQ(console.lines()[0], "12:34:56 - Hello" + std::string(75, ' '));
}

TEST_F(ConsoleTest, AnEmptyTextGivesTimeDashAnd80Blanks) {
    console.SysLog("");
    EXPECT_EQ(console.lines().back(), "12:34:56 - " + std::string(80, ' '));
}

// ---- Texts from outside

TEST_F(ConsoleTest, WhatWouldSpeakToATerminalIsEscapedOnTheScreenAndInTheFile) {
    logTo("zentaq.log");
    console.SysLog("Connected to \x1B[2Jred\xE2\x80\xAE");
    const std::string line =
        "12:34:56 - Connected to \\x1B[2Jred\\u{202E}" + std::string(80 - 13 - 4 - 6 - 8, ' ');
    EXPECT_EQ(console.lines().back(), line);
    EXPECT_EQ(fileText(), line + "\n");
    console.CommLog("E \a\xFF");
    EXPECT_EQ(console.commLines().back(), "E \\x07\\xFF");
    console.plainLine("a\rb");
    console.AddtoLastLine("\x1B");
    EXPECT_EQ(console.lines().back(), "a\\rb \\x1B");
}

TEST_F(ConsoleTest, AnEventIsOneLineOfTheFileWhateverIsInIt) {
    logTo("zentaq.log");
    console.SysLog("Failure\n12:34:56 - SUCCESS!");
    EXPECT_EQ(fileText(), "12:34:56 - Failure 12:34:56 - SUCCESS!" + std::string(53, ' ') + "\n");
}

TEST_F(ConsoleTest, ALongTextIsCutIntoTwoHalvesByItsCharacters) {
    const auto many = [](int count, std::string_view sign) {
        std::string text;
        for (int i = 0; i < count; ++i) text += sign;
        return text;
    };
    struct Cut {
        const char* why;
        std::string text;
        std::string first;
        std::optional<std::string> second = {};
    };
    const std::string fits = "Coolant 90 \u00B0C" + many(67, ".");
    const Cut cuts[] = {
        {"exactly 80 characters stay one line", many(80, "x"), many(80, "x")},
        {"81 / 2 = 40.5 rounds to the even 40: the first 40 and the last 40, the 41st is in neither",
         many(40, "a") + "M" + many(40, "b"), many(40, "a"), many(40, "b")},
        {"83 / 2 = 41.5 rounds to the even 42: the middle one is in both",
         many(41, "a") + "M" + many(41, "b"), many(41, "a") + "M", "M" + many(41, "b")},
        {"each half is cut to 80", many(100, "a") + many(100, "b"), many(80, "a"), many(80, "b")},
        {"80 characters in 81 bytes are one line", fits, fits},
        {"82 characters, halves of 41: one ends with a sign of two bytes, the other begins with one",
         many(40, "a") + "\u00B0\u03BB" + many(40, "b"), many(40, "a") + "\u00B0", "\u03BB" + many(40, "b")},
        {"a long half of wide characters is cut to 80", many(200, "\u00B0"), many(80, "\u00B0"),
         many(80, "\u00B0")}};
    for (const Cut& cut : cuts) {
        SCOPED_TRACE(cut.why);
        const std::size_t before = console.lines().size();
        console.SysLog(cut.text);
        ASSERT_EQ(console.lines().size(), before + (cut.second ? 2 : 1));
        EXPECT_EQ(console.lines()[before], "12:34:56 - " + cut.first);
        if (cut.second) {
            EXPECT_EQ(console.lines().back(), "12:34:56 -    ..." + *cut.second);
        }
    }
}

TEST_F(ConsoleTest, TheRecordHasFieldsOfFixedWidth) {
    console.SysLog("EX", "link", "Hello");
    const LogRecord& record = console.lastRecord();
    EXPECT_EQ(record.sequence, "0001");
    EXPECT_EQ(record.kind, "E");
    EXPECT_EQ(record.tag, "link    ");
    EXPECT_EQ(record.text, "Hello" + std::string(75, ' '));
    EXPECT_EQ(record.time, "12:34:56");
}

TEST_F(ConsoleTest, TheRecordOfALineWithoutKindAndTagIsBlankThere) {
    console.SysLog(std::string(100, 'x'));
    EXPECT_EQ(console.lastRecord().kind, " ");
    EXPECT_EQ(console.lastRecord().tag, std::string(8, ' '));
    EXPECT_EQ(console.lastRecord().text, std::string(80, 'x'));
}

TEST_F(ConsoleTest, ALineInTwoHalvesCountsOnce) {
    console.SysLog(std::string(100, 'x'));
    console.SysLog("next");
    EXPECT_EQ(console.lastRecord().sequence, "0002");
}

TEST_F(ConsoleTest, ACounterOfFiveDigitsIsCutToFour) {
    Console late{clock, 9999};
    late.SysLog("x");
    EXPECT_EQ(late.lastRecord().sequence, "1000");
}

TEST_F(ConsoleTest, TheLineAfterTheLargestCounterIsAnOverflow) {
    Console late{clock, std::numeric_limits<std::int32_t>::max() - 1};
    late.SysLog("the last one");
    EXPECT_THROW(late.SysLog("one too many"), Overflow);
    EXPECT_EQ(late.lines().size(), 1u);
}

TEST_F(ConsoleTest, NothingGoesToTheFileWhileFileLoggingIsOff) {
    console.logFile(folder.path("z.log"));
    console.SysLog("silent");
    EXPECT_FALSE(std::filesystem::exists(console.logFile()));
}

TEST_F(ConsoleTest, TheFileGetsEverySystemLineAndNeitherPlainLinesNorAdditions) {
    logTo("z.log");
    console.plainLine("-----");
    console.SysLog("one");
    console.AddtoLastLine("SUCCESS!");
    console.CommLog("comm");
    console.SysLog("two");
    EXPECT_EQ(fileText(),
              "12:34:56 - one" + std::string(77, ' ') + "\n12:34:56 - two" + std::string(77, ' ') + "\n");
}

TEST_F(ConsoleTest, BothHalvesOfALongLineGoToTheFile) {
    logTo("z.log");
    console.SysLog(std::string(41, 'a') + std::string(41, 'b'));
    EXPECT_EQ(fileText(),
              "12:34:56 - " + std::string(41, 'a') + "\n12:34:56 -    ..." + std::string(41, 'b') + "\n");
}

TEST_F(ConsoleTest, BothHalvesOfALongLineAreOnTheConsoleThoughTheFileCannotBeWritten) {
    logTo("no such folder/z.log");
    EXPECT_THROW(console.SysLog(std::string(41, 'a') + std::string(41, 'b')), FileError);
    ASSERT_EQ(console.lines().size(), 2u);
    EXPECT_EQ(console.lines()[1], "12:34:56 -    ..." + std::string(41, 'b'));
}

TEST_F(ConsoleTest, AFullDiskIsAFailureThatNamesItself) {
    console.logFile(folder.file("z.log"));
    const NoFileGrows full;
    EXPECT_EQ(refusal(), "Log file " + console.logFile() + " cannot be written: File too large");
}

TEST_F(ConsoleTest, WhatIsNoFileIsToldAndNeverWaitedFor) {
    const auto why = [&](const std::string& name) {
        console.logFile(folder.file(name));
        const std::string text = refusal();
        const std::string start = "Log file " + console.logFile() + " cannot be written: ";
        return text.starts_with(start) ? text.substr(start.size()) : text;
    };
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(why("pipe"), "it is a pipe, not a file");
    const int reader = ::open(folder.file("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(why("pipe"), "it is a pipe, not a file") << "somebody reads it";
    ::close(reader);
    std::filesystem::create_symlink("/dev/full", folder.file("device"));
    EXPECT_EQ(why("device"), "it is a device, not a file");
    std::filesystem::create_directory(folder.file("folder"));
    EXPECT_EQ(why("folder"), "Is a directory");
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    folder.file("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(why("socket"), "it is a socket, not a file");
    ::close(socket);
}

TEST_F(ConsoleTest, EveryLineOpensAndClosesTheFile) {
    const auto openFiles = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    logTo("z.log");
    const auto before = openFiles();
    console.SysLog("one");
    EXPECT_EQ(openFiles(), before) << "the file is closed again";
    std::filesystem::rename(console.logFile(), folder.path("moved.log"));
    console.SysLog("two");
    EXPECT_EQ(fileText(), "12:34:56 - two" + std::string(77, ' ') + "\n") << "the file is opened anew";
}

TEST_F(ConsoleTest, AFileThatCanBeWrittenAgainGetsTheNextLine) {
    logTo("later/z.log");
    EXPECT_THROW(console.SysLog("lost"), FileError);
    std::filesystem::create_directory(folder.path("later"));
    console.SysLog("kept");
    EXPECT_EQ(fileText(), "12:34:56 - kept" + std::string(76, ' ') + "\n");
}

TEST_F(ConsoleTest, AnAdditionToAnEmptyConsoleIsItsFirstLine) {
    console.AddtoLastLine("SUCCESS!");
    ASSERT_EQ(console.lines().size(), 1u);
    EXPECT_EQ(console.lines()[0], "SUCCESS!");
}

TEST_F(ConsoleTest, AnAdditionFollowsTheTrimmedLastLineAfterOneBlank) {
    console.SysLog("  - Converting Data...");
    console.AddtoLastLine("SUCCESS!");
    EXPECT_EQ(console.lines().back(), "12:34:56 -   - Converting Data... SUCCESS!");
}

TEST_F(ConsoleTest, TheHundredthCommLineIsKeptAndTheHundredAndFirstStandsAlone) {
    for (int i = 1; i <= 100; ++i) console.CommLog("line " + std::to_string(i));
    ASSERT_EQ(console.commLines().size(), 100u);
    EXPECT_EQ(console.commLines().back(), "line 100");
    console.CommLog("line 101");
    ASSERT_EQ(console.commLines().size(), 1u);
    EXPECT_EQ(console.commLines()[0], "line 101");
}

TEST_F(ConsoleTest, PanelThreeIsDueWhenTheCountIsAMultipleOfFive) {
    std::vector<bool> due;
    for (int i = 0; i < 11; ++i) due.push_back(console.CommLog("x"));
    EXPECT_EQ(due,
              (std::vector<bool>{true, false, false, false, false, true, false, false, false, false, true}));
}

TEST_F(ConsoleTest, SystemLinesAreNeverDeleted) {
    for (int i = 0; i < 5000; ++i) console.SysLog("x");
    EXPECT_EQ(console.lines().size(), 5000u);
}

}  // namespace
}  // namespace zentaq
