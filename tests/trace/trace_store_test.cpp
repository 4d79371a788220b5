// The file of a wire trace at the moment when it is begun.
#include "trace/trace_store.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <fstream>

#include "base/errors.h"
#include "temporary_folder.h"
#include "unit/killing_rig.h"

namespace zentaq {
namespace {

using testing::TracedChild;

TEST(TraceStore, LeavesAFileThatAppearsBetweenTheLookAndTheBeginning) {
    if (!TracedChild::possible())
        GTEST_SKIP() << "NOT TESTED: this system does not let a process trace its own child";
    const TemporaryFolder folder;
    const std::string path = folder.file("line.trace");
    TracedChild child([&] {
        int refused = 0;
        endOnFailure([&] { TraceStore(path, [](int) { return "head\n"; }); },
                     [&](const std::string&) { refused = 1; });
        return refused;
    });
    const auto makesIt = [&](const TracedChild::Stop& stop) {
        return stop.entry && stop.call == SYS_openat && (stop.arguments[2] & O_CREAT) != 0 &&
               child.text(stop.arguments[1]) == path;
    };
    auto stop = child.next();
    while (stop && !makesIt(*stop)) stop = child.next();
    ASSERT_TRUE(stop);
    std::ofstream(path) << "a calibration";
    child.runToEnd();
    EXPECT_EQ(child.exitStatus(), 1);
    EXPECT_EQ(TemporaryFolder::read(path), "a calibration");
}

}  // namespace
}  // namespace zentaq
