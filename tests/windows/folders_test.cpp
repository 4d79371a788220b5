#include "qt/folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QStandardPaths>
#include <filesystem>

#include "temporary_folder.h"

namespace zentaq {
namespace {

TEST(Folders, TheApplicationFolderHoldsTheProgramThatRuns) {
    EXPECT_EQ(applicationFolder(), std::filesystem::read_symlink("/proc/self/exe").parent_path().string());
}

TEST(Folders, TheUserFolderIsBelowTheDocumentsFolder) {
    const std::string documents =
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).toStdString();
    EXPECT_EQ(userFolder(), documents + "/Zentaq");
    EXPECT_EQ(userFolder().find('\0'), std::string::npos);
}

TEST(Folders, APipeInThePlaceOfTheDesktopsFoldersIsNotWaitedFor) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo(folder.file("user-dirs.dirs").c_str(), 0600), 0);
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.path().string()));
    QStandardPaths::setTestModeEnabled(false);  // in which Qt asks no desktop
    ::alarm(20);                                // ends a program that waits for good
    EXPECT_EQ(userFolder(), (QDir::homePath() + "/Documents/Zentaq").toStdString());
    ::alarm(0);
    QStandardPaths::setTestModeEnabled(true);
    before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
}

TEST(Folders, AskingMakesNoFolder) {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const std::filesystem::path folder = (documents + "/Zentaq").toStdString();
    const bool before = std::filesystem::exists(folder);
    userFolder();
    EXPECT_EQ(std::filesystem::exists(folder), before);
}

}  // namespace
}  // namespace zentaq
