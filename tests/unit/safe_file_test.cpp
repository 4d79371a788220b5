// Reading and writing files: links, rights, full disks, odd names. A save that fails leaves the old file byte
// for byte, no temporary file, and a text that names the file and the reason.
#include "unit/safe_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <csignal>

#include "base/errors.h"
#include "temporary_folder.h"
#include "unit/child_apart.h"
#include "unit/file_lock.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* noOrdinaryUser = "NOT TESTED: runs as superuser and cannot become an ordinary user";
constexpr const char* noSmallDisk = "NOT TESTED: this system does not let a test mount a small disk";
constexpr const char* notPossible = "not possible here";

class SafeFile : public ::testing::Test {
 protected:
    TemporaryFolder folder;
    std::string path = folder.file("Tune.ZQ4OA");

    void SetUp() override { fs::permissions(folder.path(), fs::perms::all); }

    std::string outcome(const std::string& file, const std::string& content = "new") const {
        return outcomeOf([&] { writeFileSafely(file, content); });
    }
    /// The outcome of the same save by an ordinary user.
    std::string outcomeForOrdinary(const std::string& file) const {
        return answerOfChild([&] { return becomeOrdinary() ? outcome(file) : notPossible; });
    }
};

// ---- Writing

TEST_F(SafeFile, ANewFileHasThePermissionsOfTheUsersMask) {
    const mode_t former = ::umask(027);
    writeFileSafely(path, "new");
    ::umask(former);
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0640));
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(SafeFile, AnOldFileKeepsItsPermissionsWhateverTheMask) {
    for (const unsigned mode : {0600U, 0644U, 0666U, 0755U}) {
        writeContent(path, "old");
        fs::permissions(path, static_cast<fs::perms>(mode));
        writeFileSafely(path, "new");
        EXPECT_EQ(contentOf(path), "new");
        EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(mode));
    }
}

TEST_F(SafeFile, AFileSavedByTheSuperuserStaysItsOwners) {
    if (::geteuid() != 0) GTEST_SKIP() << "NOT TESTED: needs the rights of the superuser";
    writeContent(path, "old");
    fs::permissions(path, static_cast<fs::perms>(0640));
    if (::chown(path.c_str(), ordinaryUser, ordinaryUser) != 0) GTEST_SKIP() << noOrdinaryUser;
    writeFileSafely(path, "new");
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, ordinaryUser);
    EXPECT_EQ(status.st_gid, ordinaryUser);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(SafeFile, AnotherUsersFileThatAllMayWriteBecomesTheSavers) {
    writeContent(path, "old");
    fs::permissions(path, static_cast<fs::perms>(0666));
    const std::string saved = outcomeForOrdinary(path);
    if (saved == notPossible) GTEST_SKIP() << noOrdinaryUser;
    EXPECT_EQ(saved, "done");
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0666));
}

TEST_F(SafeFile, ContentOfAnyBytesAndAnyLengthComesBack) {
    for (const std::size_t length : {0U, 1U, 4096U, 65536U, 300'001U}) {
        std::string content(length, '\0');
        for (std::size_t i = 0; i < length; ++i) content[i] = static_cast<char>(i * 7 % 256);
        writeFileSafely(path, content);
        EXPECT_EQ(contentOf(path), content);
    }
}

TEST_F(SafeFile, ANameAsLongAsTheSystemAllowsCanBeSaved) {
    const std::string longest = folder.file(std::string(249, 'n') + ".ZQ4OA");  // 255 bytes
    ASSERT_EQ(outcome(longest, "old"), "done");
    ASSERT_EQ(outcome(longest), "done");
    EXPECT_EQ(contentOf(longest), "new");
}

TEST_F(SafeFile, ABareNameIsSavedInTheCurrentFolder) {
    const std::string answer = answerOfChild([&] {
        if (::chdir(folder.path().c_str()) != 0) return std::string(notPossible);
        return outcome("Bare.ZQ4OA");
    });
    EXPECT_EQ(answer, "done");
    EXPECT_EQ(contentOf(folder.file("Bare.ZQ4OA")), "new");
}

/// Runs a save that is killed in the middle of its write.
void saveAndBeKilled(const std::string& path) {
    const std::string answer = answerOfChild([&] {
        const rlimit limit{5000, 5000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return outcomeOf([&] { writeFileSafely(path, std::string(11324, 'n')); });
    });
    ASSERT_EQ(answer, "killed by signal " + std::to_string(SIGXFSZ));
}

TEST_F(SafeFile, WhatAKilledSaveHasLeftIsRemovedByTheNextSaveOfThatFile) {
    writeContent(path, "old");
    saveAndBeKilled(path);
    saveAndBeKilled(path);  // removes the first one's, and leaves its own
    ASSERT_EQ(folder.names().size(), 2U);
    ASSERT_EQ(outcome(folder.file("Other.ZQ4OA")), "done");
    EXPECT_EQ(folder.names().size(), 3U) << "another file's leftovers are not its business";
    ASSERT_EQ(outcome(path), "done");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("Tune.ZQ4OA", "Other.ZQ4OA"));
}

TEST_F(SafeFile, TheTemporaryFileOfASaveThatRunsStays) {
    saveAndBeKilled(path);
    ASSERT_EQ(folder.names().size(), 1U);
    const std::string leftover = folder.file(folder.names()[0]);
    {
        const FileLock running(leftover);  // as the save that made it holds it
        ASSERT_EQ(outcome(path), "done");
        EXPECT_EQ(folder.names().size(), 2U);
    }
    ASSERT_EQ(outcome(path), "done");
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(SafeFile, LeftoversOfKilledSavesDoNotHarmAndAreNotTouched) {
    const std::string mine = "zentaq-" + std::to_string(::getpid());
    for (const std::string& name : {mine + "-1.tmp", mine + ".tmp", std::string("Tune.ZQ4OA.1.tmp")}) {
        writeContent(folder.file(name), "left over");
        fs::permissions(folder.file(name), fs::perms::none);
    }
    ASSERT_EQ(outcome(path), "done");
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(folder.names().size(), 4U);
}

TEST_F(SafeFile, AnotherHardLinkKeepsTheOldContent) {
    writeContent(path, "old");
    fs::create_hard_link(path, folder.file("Other"));
    writeFileSafely(path, "new");
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(contentOf(folder.file("Other")), "old");
}

// ---- Over the start of a longer file

TEST_F(SafeFile, TheSurplusOfALongerFileStays) {
    writeContent(path, "0123456789");
    writeFileStartSafely(path, "abc");
    EXPECT_EQ(contentOf(path), "abc3456789");
    writeFileStartSafely(path, "ABCDEFGHIJ");
    EXPECT_EQ(contentOf(path), "ABCDEFGHIJ");
    writeFileStartSafely(path, "0123456789+");
    EXPECT_EQ(contentOf(path), "0123456789+");
}

TEST_F(SafeFile, ASurplusOfManyPiecesStays) {
    std::string content(65536, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 11 % 256);
    writeContent(path, content);
    writeFileStartSafely(path, "abc");
    EXPECT_EQ(contentOf(path), "abc" + content.substr(3));
}

TEST_F(SafeFile, WithoutAnOldFileThereIsNoSurplus) {
    writeFileStartSafely(path, "abc");
    EXPECT_EQ(contentOf(path), "abc");
}

TEST_F(SafeFile, ASurplusThatMayNotBeReadIsNotLost) {
    writeContent(path, "0123456789");
    fs::permissions(path, static_cast<fs::perms>(0222));
    const std::string saved = answerOfChild([&] {
        if (!becomeOrdinary()) return std::string(notPossible);
        return outcomeOf([&] { writeFileStartSafely(path, "abc"); });
    });
    if (saved == notPossible) GTEST_SKIP() << noOrdinaryUser;
    EXPECT_EQ(saved, "FileError: Cannot read " + path + ": Permission denied");
    fs::permissions(path, static_cast<fs::perms>(0644));
    EXPECT_EQ(contentOf(path), "0123456789");
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

// ---- Links

TEST_F(SafeFile, ALinkStaysAndItsFileIsWritten) {
    fs::create_directory(folder.file("real"));
    writeContent(folder.file("real/Tune.ZQ4OA"), "old");
    fs::create_symlink("real/Tune.ZQ4OA", path);
    ASSERT_EQ(outcome(path), "done");
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(contentOf(folder.file("real/Tune.ZQ4OA")), "new");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("real", "Tune.ZQ4OA"));
}

TEST_F(SafeFile, AChainOfLinksThroughFoldersIsFollowed) {
    fs::create_directories(folder.file("a/b"));
    writeContent(folder.file("a/Real"), "old");
    fs::create_symlink("../Real", folder.file("a/b/Second"));
    fs::create_directory_symlink("a/b", folder.file("short"));
    fs::create_symlink(folder.file("short/Second"), path);
    ASSERT_EQ(outcome(path), "done");
    EXPECT_EQ(contentOf(folder.file("a/Real")), "new");
    EXPECT_TRUE(fs::is_symlink(folder.file("a/b/Second")));
}

TEST_F(SafeFile, ADanglingLinkStaysAndItsFileIsMade) {
    fs::create_symlink("Real.ZQ4OA", path);
    ASSERT_EQ(outcome(path), "done");
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(contentOf(folder.file("Real.ZQ4OA")), "new");
}

TEST_F(SafeFile, ALinkIntoAFolderThatIsGoneIsToldAndStays) {
    fs::create_symlink("gone/Real.ZQ4OA", path);
    EXPECT_EQ(outcome(path), "FileError: Cannot write " + path +
                                 ": its folder takes no new file: No such file or directory");
    EXPECT_TRUE(fs::is_symlink(path));
}

TEST_F(SafeFile, LinksInACircleAreTold) {
    fs::create_symlink("Other", path);
    fs::create_symlink("Tune.ZQ4OA", folder.file("Other"));
    EXPECT_EQ(outcome(path), "FileError: Cannot write " + path + ": Too many levels of symbolic links");
    EXPECT_TRUE(fs::is_symlink(path));
}

// ---- What cannot be written

TEST_F(SafeFile, ANameThatIsAFolderIsToldAndTheFolderStays) {
    fs::create_directory(path);
    writeContent(path + "/inside", "old");
    EXPECT_EQ(outcome(path), "FileError: Cannot write " + path + ": Is a directory");
    EXPECT_EQ(contentOf(path + "/inside"), "old");
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(SafeFile, AFolderThatIsAFileIsTold) {
    writeContent(path, "old");
    EXPECT_EQ(outcome(path + "/Tune"), "FileError: Cannot write " + path + "/Tune: Not a directory");
    EXPECT_EQ(contentOf(path), "old");
}

TEST_F(SafeFile, APipeIsToldAndNotAnEndlessWait) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(outcome(path), "FileError: Cannot write " + path + ": it is a pipe, not a file");
    EXPECT_TRUE(fs::is_fifo(path));
}

TEST_F(SafeFile, ADeviceAndASocketAreTold) {
    fs::create_symlink("/dev/null", path);
    EXPECT_EQ(outcome(path), "FileError: Cannot write " + path + ": it is a device, not a file");
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = folder.file("socket");
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(outcome(name), "FileError: Cannot write " + name + ": it is a socket, not a file");
    EXPECT_TRUE(fs::is_socket(name));
    ::close(socket);
}

TEST_F(SafeFile, WhatIsLongerThanAnyCalibrationIsNotCopiedBehindOne) {
    writeContent(path, "long");
    const auto start = [&] { return outcomeOf([&] { writeFileStartSafely(path, "new"); }); };
    fs::resize_file(path, 65536);
    EXPECT_EQ(start(), "done");
    EXPECT_EQ(fs::file_size(path), 65536U);
    writeContent(path, "long");
    fs::resize_file(path, 65537);
    EXPECT_EQ(start(), "FileError: Cannot write " + path +
                           ": the file there has 65537 bytes, which would stay behind the calibration; a "
                           "calibration has at most 65536; name another file");
    EXPECT_TRUE(contentOf(path).starts_with("long"));
    EXPECT_EQ(outcome(path), "done") << "where nothing stays it may be as long as it likes";
}

TEST_F(SafeFile, ANameThatIsTooLongIsTold) {
    const std::string file = folder.file(std::string(256, 'n'));
    EXPECT_EQ(outcome(file), "FileError: Cannot write " + file + ": File name too long");
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(SafeFile, NoNameIsTold) {
    EXPECT_EQ(outcome(""), "FileError: Cannot write a file without a name");
}

TEST_F(SafeFile, AReadOnlyFileStaysAsItIs) {
    writeContent(path, "old");
    if (::geteuid() == 0 && ::chown(path.c_str(), ordinaryUser, ordinaryUser) != 0)
        GTEST_SKIP() << noOrdinaryUser;
    fs::permissions(path, static_cast<fs::perms>(0444));
    const std::string saved = outcomeForOrdinary(path);
    if (saved == notPossible) GTEST_SKIP() << noOrdinaryUser;
    EXPECT_EQ(saved, "FileError: Cannot write " + path + ": Permission denied");
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

// kept: the old file is never written in place, so a folder that takes no new file takes no save either.
TEST_F(SafeFile, AReadOnlyFolderIsToldAndItsWritableFileStaysAsItIs) {
    writeContent(path, "old");
    fs::permissions(path, static_cast<fs::perms>(0666));
    fs::permissions(folder.path(), static_cast<fs::perms>(0555));
    const std::string saved = outcomeForOrdinary(path);
    fs::permissions(folder.path(), fs::perms::all);
    if (saved == notPossible) GTEST_SKIP() << noOrdinaryUser;
    EXPECT_EQ(saved, "FileError: Cannot write " + path + ": its folder takes no new file: Permission denied");
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(SafeFile, AnothersFileInAFolderWhereOnlyOwnersReplaceStaysAsItIs) {
    if (::geteuid() != 0) GTEST_SKIP() << "NOT TESTED: needs a file of another user";
    writeContent(path, "old");
    fs::permissions(path, static_cast<fs::perms>(0666));
    fs::permissions(folder.path(), static_cast<fs::perms>(01777));
    const std::string saved = outcomeForOrdinary(path);
    if (saved == notPossible) GTEST_SKIP() << noOrdinaryUser;
    EXPECT_EQ(saved, "FileError: Cannot write " + path + ": Operation not permitted");
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

// ---- Full disks

/// Leaves so many free pages on a disk of 16 and saves three pages. Answers one line a try.
std::string savesOnAFullDisk(const TemporaryFolder& folder) {
    if (!mountSmallDisk(folder.path().string(), "size=64k")) return notPossible;
    const std::string path = folder.file("Tune.ZQ4OA");
    const std::string filler = folder.file("filler");
    constexpr std::uintmax_t page = 4096;
    std::string answer;
    for (std::uintmax_t freePages = 0; freePages <= 3; ++freePages) {
        writeContent(path, std::string(11324, 'o'));
        {
            std::ofstream fill(filler, std::ios::binary);
            for (int i = 0; i < 16 && fill.flush(); ++i) fill << std::string(page, 'f');
        }
        if (fs::space(folder.path()).available != 0) return "the disk is not full";
        fs::resize_file(filler, fs::file_size(filler) - freePages * page);
        const std::string saved = outcomeOf([&] { writeFileSafely(path, std::string(11324, 'n')); });
        const std::string content = contentOf(path);
        answer += saved == "done" ? "done" : saved.substr(saved.rfind(':') + 2);
        answer += content == std::string(11324, 'o')   ? ", old file"
                  : content == std::string(11324, 'n') ? ", new file"
                                                       : ", broken file";
        answer += folder.names().size() == 2 ? "\n" : ", something left\n";
    }
    return answer;
}

TEST_F(SafeFile, AFullDiskLeavesTheOldFileHoweverFarTheNewOneGot) {
    const std::string answer = answerOfChild([&] { return savesOnAFullDisk(folder); });
    if (answer == notPossible) GTEST_SKIP() << noSmallDisk;
    EXPECT_EQ(answer,
              "No space left on device, old file\n"
              "No space left on device, old file\n"
              "No space left on device, old file\n"
              "done, new file\n");
}

TEST_F(SafeFile, ADiskWithoutRoomForAnotherNameIsToldAndTheOldFileStays) {
    const std::string answer = answerOfChild([&]() -> std::string {
        // The root folder, the old file, and nothing else.
        if (!mountSmallDisk(folder.path().string(), "size=64k,nr_inodes=2")) return notPossible;
        writeContent(path, "old");
        return outcome(path) + ", " + contentOf(path) + ", " + std::to_string(folder.names().size());
    });
    if (answer == notPossible) GTEST_SKIP() << noSmallDisk;
    EXPECT_EQ(answer, "FileError: Cannot write " + path +
                          ": its folder takes no new file: No space left on device, old, 1");
}

TEST_F(SafeFile, AReadOnlyDiskIsToldAndTheOldFileStays) {
    const std::string answer = answerOfChild([&]() -> std::string {
        if (!mountSmallDisk(folder.path().string(), "size=64k")) return notPossible;
        writeContent(path, "old");
        if (::mount("none", folder.path().c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) != 0)
            return notPossible;
        return outcome(path) + ", " + contentOf(path) + ", " + std::to_string(folder.names().size());
    });
    if (answer == notPossible) GTEST_SKIP() << noSmallDisk;
    EXPECT_EQ(answer, "FileError: Cannot write " + path + ": Read-only file system, old, 1");
}

/// No file of the process may grow beyond so many bytes.
void limitFileSize(rlim_t bytes) {
    const rlimit limit{bytes, bytes};
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(SafeFile, AFileThatMayNotGrowSoFarIsToldAndTheOldOneStays) {
    writeContent(path, "old");
    const std::string answer = answerOfChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        limitFileSize(5000);
        return outcome(path, std::string(11324, 'n'));
    });
    EXPECT_EQ(answer, "FileError: Cannot write " + path + ": File too large");
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(SafeFile, ASaveEndedByASignalInTheMiddleOfAWriteLeavesTheOldFile) {
    writeContent(path, "old");
    const std::string answer = answerOfChild([&] {
        limitFileSize(5000);
        return outcome(path, std::string(11324, 'n'));
    });
    EXPECT_EQ(answer, "killed by signal " + std::to_string(SIGXFSZ));
    EXPECT_EQ(contentOf(path), "old");
    ASSERT_EQ(outcome(path), "done");
    EXPECT_EQ(contentOf(path), "new");
}

}  // namespace
}  // namespace zentaq::testing
