#include "platform/runtime_folder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "base/errors.h"
#include "platform/posix_ports.h"
#include "sim_helpers.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using sim::test::TemporaryFolder;

fs::path fallback() {
    return "/tmp/zentaq4-runtime-" + std::to_string(::getuid());
}

TEST(RuntimePortsFolder, LiesBelowTheSessionsRuntimeDirectory) {
    const ScopedVariable variable("XDG_RUNTIME_DIR", "/run/user/4711");
    EXPECT_EQ(runtimePortsFolder(), "/run/user/4711/zentaq4/ports");
}

TEST(RuntimePortsFolder, FallsBackToTheUsersFolderBelowTmp) {
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative/folder"}) {
        const ScopedVariable variable("XDG_RUNTIME_DIR", value);
        EXPECT_EQ(runtimePortsFolder(), fallback() / "zentaq4" / "ports");
    }
}

TEST(RuntimePortsFolder, AskingForItCreatesNothing) {
    const TemporaryFolder folder;
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    runtimePortsFolder();
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

/// A runtime directory with the folder of the ports in it, private as it is made.
class MadeRuntimeFolder : public ::testing::Test {
 protected:
    MadeRuntimeFolder() { createRuntimePortsFolder(); }

    /// What is wrong, told with the folder that it is about.
    void expectTrouble(const fs::path& about, const std::string& words) const {
        const auto trouble = runtimeFolderTrouble();
        ASSERT_TRUE(trouble.has_value());
        EXPECT_TRUE(trouble->starts_with("The folder " + about.string() + words)) << *trouble;
        EXPECT_THROW(createRuntimePortsFolder(), FileError);
        EXPECT_TRUE(unitsListed().empty());
    }
    std::vector<PortInfo> unitsListed() const {
        auto listed = posixPorts();
        std::erase_if(listed, [](const PortInfo& port) { return !port.identity.starts_with("sim:"); });
        return listed;
    }
    void announce() const { fs::create_symlink("/dev/null", ports / "orb-a-1"); }

    TemporaryFolder folder;
    fs::path top = folder.path() / "runtime";
    ScopedVariable variable{"XDG_RUNTIME_DIR", top.c_str()};
    fs::path ports = top / "zentaq4" / "ports";
};

TEST_F(MadeRuntimeFolder, CountsWhileItIsTheUsersOwn) {
    announce();
    EXPECT_EQ(runtimeFolderTrouble(), std::nullopt);
    EXPECT_EQ(unitsListed().size(), 1U);
    for (const fs::path& made : {top, top / "zentaq4", ports}) {
        EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all) << made;
    }
}

TEST_F(MadeRuntimeFolder, DoesNotCountOnceOthersMayEnterIt) {
    announce();
    fs::permissions(top, fs::perms::owner_all | fs::perms::others_exec);
    expectTrouble(top, " is open to other users");
}

TEST_F(MadeRuntimeFolder, DoesNotCountOnceOthersMayPutAUnitThere) {
    announce();
    fs::permissions(ports, fs::perms::owner_all | fs::perms::group_write);
    expectTrouble(ports, " is open to other users");
    fs::permissions(ports, fs::perms::owner_all);
    fs::permissions(top / "zentaq4", fs::perms::owner_all | fs::perms::others_write);
    expectTrouble(top / "zentaq4", " is open to other users");
}

TEST_F(MadeRuntimeFolder, DoesNotCountBelowAFolderOfTheTemporaryOneThatOthersMayChange) {
    announce();
    if (!folder.path().string().starts_with("/tmp/")) GTEST_SKIP() << "temporary files are elsewhere";
    fs::permissions(folder.path(), fs::perms::all);
    expectTrouble(folder.path(), " is open to other users");
}

TEST_F(MadeRuntimeFolder, ALinkInItsPlaceDoesNotCount) {
    fs::rename(top / "zentaq4", folder.path() / "elsewhere");
    fs::create_directory_symlink(folder.path() / "elsewhere", top / "zentaq4");
    expectTrouble(top / "zentaq4", " is no folder");
}

TEST_F(MadeRuntimeFolder, DoesNotCountWhenAnotherUserMadeIt) {
    if (::geteuid() != 0) GTEST_SKIP() << "only an administrator can make a folder for another user";
    announce();
    constexpr uid_t somebody = 65534;
    ASSERT_EQ(::chown(ports.c_str(), somebody, somebody), 0);
    expectTrouble(ports, " belongs to another user");
    ASSERT_EQ(::chown(ports.c_str(), 0, 0), 0);
    ASSERT_EQ(::chown(top.c_str(), somebody, somebody), 0);
    expectTrouble(top, " belongs to another user");
}

TEST(RuntimePortsFolder, OneThatDoesNotExistIsNoTrouble) {
    const TemporaryFolder folder;
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    EXPECT_EQ(runtimeFolderTrouble(), std::nullopt);
}

TEST(RuntimePortsFolder, IsCreatedOnRequestAndMayExist) {
    const TemporaryFolder folder;
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    EXPECT_EQ(createRuntimePortsFolder(), folder.path() / "zentaq4" / "ports");
    EXPECT_TRUE(fs::is_directory(folder.path() / "zentaq4" / "ports"));
    EXPECT_NO_THROW(createRuntimePortsFolder());
}

}  // namespace
}  // namespace zentaq
