// Simulated units by the links that announce them, also after their cable was out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/port_list.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// The identities of units announced under these names, in the order of the list.
std::vector<std::string> identitiesOf(const std::vector<std::string>& names) {
    const TemporaryFolder folder;
    // Any character device will do for a terminal.
    for (const std::string& name : names) fs::create_symlink("/dev/null", folder.path() / name);
    std::vector<std::string> identities;
    for (const PortInfo& port : simulatedPorts(folder.path())) identities.push_back(port.identity);
    return identities;
}

TEST(SimulatedPorts, NameOfACableThatCameBackIsTheSameUnit) {
    EXPECT_THAT(identitiesOf({"orb-a-1042"}), ElementsAre("sim:orb-a-1042"));
    EXPECT_THAT(identitiesOf({"orb-a-1042.2"}), ElementsAre("sim:orb-a-1042"));
    EXPECT_THAT(identitiesOf({"orb-a-1042.13"}), ElementsAre("sim:orb-a-1042"));
}

TEST(SimulatedPorts, OtherUnitsKeepTheirOwnIdentity) {
    EXPECT_THAT(identitiesOf({"pzk-2-500001.2", "orb-a-1042.3", "orb-l-300001"}),
                ElementsAre("sim:orb-a-1042", "sim:orb-l-300001", "sim:pzk-2-500001"));
}

TEST(SimulatedPorts, OnlyANumberBehindTheLastDotIsLeftOut) {
    EXPECT_THAT(identitiesOf({"bench.v2"}), ElementsAre("sim:bench.v2"));
    EXPECT_THAT(identitiesOf({"bench."}), ElementsAre("sim:bench."));
    EXPECT_THAT(identitiesOf({".2"}), ElementsAre("sim:.2"));
    EXPECT_THAT(identitiesOf({"bench.2.3"}), ElementsAre("sim:bench.2"));
}

TEST(SimulatedPorts, DescriptionTellsTheNameOfTheMoment) {
    const TemporaryFolder folder;
    fs::create_symlink("/dev/null", folder.path() / "orb-a-1042.2");
    const auto ports = simulatedPorts(folder.path());
    ASSERT_EQ(ports.size(), 1u);
    EXPECT_EQ(ports[0].description, "Simulated unit orb-a-1042.2");
    EXPECT_EQ(ports[0].device, "/dev/null");
}

}  // namespace
}  // namespace zentaq
