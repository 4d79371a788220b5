// A save as plain data, done at once or beside the thread that asked for it.
#include "unit/file_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "unit/file_lock.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::HasSubstr;
using Outcome = FileSaved::Outcome;

class ASave : public ::testing::Test {
 protected:
    TemporaryFolder folder;
    std::string path = folder.write("Tune.ZQ4OA", "old content");

    static FileSaved ended(FileWriter& writer) {
        while (true) {
            if (auto saved = writer.outcome()) return *saved;
            std::this_thread::yield();
        }
    }
};

TEST_F(ASave, OfAFileThatHoldsWhatIsKnownIsDoneAndTellsWhatItHoldsNow) {
    const FileSaved saved = saveFile({path, "new", "old content"});
    EXPECT_EQ(saved.outcome, Outcome::Done);
    EXPECT_EQ(saved.holds, "new content");  // the surplus stays
    EXPECT_EQ(contentOf(path), "new content");
}

TEST_F(ASave, OfAFileThatAnotherProgramHasChangedWritesNothing) {
    const FileSaved saved = saveFile({path, "new", "older content"});
    EXPECT_EQ(saved.outcome, Outcome::Changed);
    EXPECT_EQ(saved.holds, "old content");
    EXPECT_EQ(contentOf(path), "old content");
}

TEST_F(ASave, OfWhateverIsThereAsksForNothing) {
    EXPECT_EQ(saveFile({path, "new", std::nullopt}).outcome, Outcome::Done);
}

TEST_F(ASave, OfAFileThatIsGoneBringsItBack) {
    std::filesystem::remove(path);
    EXPECT_EQ(saveFile({path, "new", "old content"}).outcome, Outcome::Done);
    EXPECT_EQ(contentOf(path), "new");
}

TEST_F(ASave, ThatFailsSaysWhy) {
    const FileSaved saved = saveFile({folder.file("gone/Tune.ZQ4OA"), "new", std::nullopt});
    EXPECT_EQ(saved.outcome, Outcome::Failed);
    EXPECT_THAT(saved.why, HasSubstr("its folder takes no new file: No such file or directory"));
}

TEST_F(ASave, InlineHasEndedWhenItHasBegun) {
    InlineFileWriter writer;
    EXPECT_FALSE(writer.outcome());
    writer.begin({path, "new", std::nullopt});
    EXPECT_EQ(writer.outcome().value().outcome, Outcome::Done);
    EXPECT_FALSE(writer.outcome()) << "told once";
}

TEST_F(ASave, BesideTheThreadEndsOnceAndTheNextOneMayBegin) {
    ThreadedFileWriter writer;
    EXPECT_FALSE(writer.outcome());
    for (const std::string& content : {std::string("1"), std::string("2"), std::string("3")}) {
        writer.begin({path, content, std::nullopt});
        EXPECT_EQ(ended(writer).outcome, Outcome::Done);
        EXPECT_FALSE(writer.outcome());
        EXPECT_EQ(contentOf(path), content + "ld content");
    }
}

TEST_F(ASave, WaitsForAProgramThatIsChangingTheFileAndFindsItsChange) {
    ThreadedFileWriter writer;
    {
        const FileLock other(path);
        writer.begin({path, "new", "old content"});
        // Time enough for one that would not wait.
        for (int ms = 0; ms < 100; ++ms) {
            ASSERT_FALSE(writer.outcome());
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::ofstream(path) << "of the other";
    }
    const FileSaved saved = ended(writer);
    EXPECT_EQ(saved.outcome, Outcome::Changed);
    EXPECT_EQ(saved.holds, "of the other");
    EXPECT_EQ(contentOf(path), "of the other");
}

TEST_F(ASave, BesideTheThreadIsNotCutShortByTheEndOfItsWriter) {
    const std::string big(5'000'000, 'n');
    {
        ThreadedFileWriter writer;
        writer.begin({path, big, std::nullopt});
    }
    EXPECT_EQ(contentOf(path), big);
}

}  // namespace
}  // namespace zentaq::testing
