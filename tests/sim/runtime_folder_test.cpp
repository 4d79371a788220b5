#include "platform/runtime_folder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "sim_helpers.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using sim::test::ScopedVariable;
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

TEST(RuntimePortsFolder, IsCreatedOnRequestAndMayExist) {
    const TemporaryFolder folder;
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    EXPECT_EQ(createRuntimePortsFolder(), folder.path() / "zentaq4" / "ports");
    EXPECT_TRUE(fs::is_directory(folder.path() / "zentaq4" / "ports"));
    EXPECT_NO_THROW(createRuntimePortsFolder());
}

}  // namespace
}  // namespace zentaq
