#include "qt/folders.h"

#include <gtest/gtest.h>

#include <QStandardPaths>
#include <filesystem>

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

TEST(Folders, AskingMakesNoFolder) {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const std::filesystem::path folder = (documents + "/Zentaq").toStdString();
    const bool before = std::filesystem::exists(folder);
    userFolder();
    EXPECT_EQ(std::filesystem::exists(folder), before);
}

}  // namespace
}  // namespace zentaq
