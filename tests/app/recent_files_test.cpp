#include "app/recent_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RecentFilesTest : public ::testing::Test {
 protected:
    MemorySettings settings;
    RecentFiles files{settings};

    std::vector<std::string> next() { return RecentFiles(settings).paths(); }
};

TEST_F(RecentFilesTest, StandNewestFirstEachOnceAndOutlastTheProgram) {
    files.add("/a");
    files.add("/b");
    files.add("/a");
    EXPECT_THAT(files.paths(), ElementsAre("/a", "/b"));
    EXPECT_THAT(next(), ElementsAre("/a", "/b"));
}

TEST_F(RecentFilesTest, AreNineAtMost) {
    for (char name = 'a'; name <= 'k'; ++name) files.add(std::string("/") + name);
    EXPECT_THAT(next(), ElementsAre("/k", "/j", "/i", "/h", "/g", "/f", "/e", "/d", "/c"));
}

TEST_F(RecentFilesTest, OneThatIsRemovedIsForgotten) {
    files.add("/a");
    files.add("/b");
    files.remove("/b");
    files.remove("/never");
    EXPECT_THAT(next(), ElementsAre("/a"));
}

TEST_F(RecentFilesTest, APathThatIsNotWholeIsNotKept) {
    files.add("tune.ZQ4OA");
    files.add("");
    EXPECT_THAT(files.paths(), IsEmpty());
}

TEST_F(RecentFilesTest, AnyNameComesBackAsItWas) {
    const std::vector<std::string> odd = {"/a|b", "/100%", "/two\nlines\r", "/%7C", "/\xC3\xA9 \xFF", "/a%"};
    EXPECT_EQ(partedPaths(joinedPaths(odd)), odd);
    EXPECT_EQ(joinedPaths({"/a|b", "/c"}), "/a%7Cb|/c");
}

TEST_F(RecentFilesTest, ADamagedListIsReadAsFarAsItGoes) {
    EXPECT_THAT(partedPaths("||/a|%|%zz|/b%7"), ElementsAre("/a", "%", "%zz", "/b%7"));
    EXPECT_THAT(partedPaths(""), IsEmpty());
}

// ---- Opened from the list

class OpenRecent : public CommandTest {
 protected:
    std::string file(const std::string& name) { return writeFloats(fake.folder.path(name), wholeFloats()); }
};

TEST_F(OpenRecent, WhatIsOpenedAndWhatGetsANewNameIsRecent) {
    open(file("one.ZQ4OA"));
    open(file("two.ZQ4OA"));
    fake.dialogs.files = {fake.folder.path("three.ZQ4OA")};
    commands.saves.saveAs();
    EXPECT_THAT(session.recentFiles.paths(),
                ElementsAre(fake.folder.path("three.ZQ4OA"), fake.folder.path("two.ZQ4OA"),
                            fake.folder.path("one.ZQ4OA")));
}

TEST_F(OpenRecent, AFileOfTheListOpensWithoutAPrompt) {
    const std::string one = file("one.ZQ4OA");
    commands.files.open(one);
    EXPECT_EQ(session.CurrentFile, one);
    EXPECT_THAT(fake.dialogs.requests, IsEmpty());
}

TEST_F(OpenRecent, UnsavedChangesAreAskedAboutFirst) {
    const std::string one = file("one.ZQ4OA");
    commands.files.open(one);
    change(7000);
    forget();
    commands.files.open(file("two.ZQ4OA"));
    EXPECT_EQ(boxes().front().text, "Save changes?");
    EXPECT_EQ(session.CurrentFile, fake.folder.path("two.ZQ4OA"));
}

TEST_F(OpenRecent, AFileThatHasGoneIsToldWithoutABoxAndLeavesTheList) {
    const std::string one = file("one.ZQ4OA");
    commands.files.open(one);
    commands.files.close();
    std::filesystem::remove(one);
    forget();
    commands.files.open(one);
    EXPECT_THAT(session.notices.text(0), HasSubstr("Not there any more: " + one));
    EXPECT_THAT(session.recentFiles.paths(), IsEmpty());
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_EQ(session.CurrentFile, "");
}

TEST_F(OpenRecent, AFileThatCannotBeReadAsksForAnotherName) {
    const std::string broken = fake.folder.path("broken.ZQ4OA");
    std::ofstream(broken) << "no calibration";
    const std::string other = file("other.ZQ4OA");
    fake.dialogs.answers = {Answer::Yes};
    fake.dialogs.files = {other};
    commands.files.open(broken);
    EXPECT_THAT(box().text, HasSubstr("FILE POSSIBLY CORRUPT"));
    EXPECT_EQ(session.CurrentFile, other);
}

// ---- Samples

TEST_F(OpenRecent, SamplesAreThoseOfTheApplicationFolderByName) {
    std::filesystem::create_directory(fake.folder.path("samples"));
    const std::string turbo = file("samples/Turbo.ZQ4OA");
    const std::string eight = file("samples/Eight.ZQ4OL");
    std::ofstream(fake.folder.path("samples/README.txt")) << "none";
    EXPECT_THAT(sampleFiles(fake.folder.path()), ElementsAre(eight, turbo));
    EXPECT_THAT(sampleFiles(fake.folder.path("nowhere")), IsEmpty());
    EXPECT_TRUE(isSample(turbo, fake.folder.path()));
    EXPECT_FALSE(isSample(file("own.ZQ4OA"), fake.folder.path()));
}

TEST_F(OpenRecent, ASampleIsNeverWrittenOverAndIsNotRecent) {
    std::filesystem::create_directory(fake.folder.path("samples"));
    const std::string sample = file("samples/Turbo.ZQ4OA");
    commands.files.open(sample);
    EXPECT_EQ(session.CurrentFile, sample);
    EXPECT_THAT(session.recentFiles.paths(), IsEmpty());
    const auto before = std::filesystem::last_write_time(sample);
    change(7000);
    const std::string own = fake.folder.path("own.ZQ4OA");
    fake.dialogs.files = {own};
    commands.saves.save();
    EXPECT_EQ(session.CurrentFile, own);
    EXPECT_EQ(std::filesystem::last_write_time(sample), before);
    EXPECT_THAT(session.recentFiles.paths(), ElementsAre(own));
}

}  // namespace
}  // namespace zentaq
