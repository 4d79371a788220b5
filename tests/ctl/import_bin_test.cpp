// Files of the older generation.
#include <utility>

#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

/// A file of `count` floats, all 0 but those named. Shape: an old file of kind 3 has 2176 floats.
std::string oldFile(std::size_t count, const std::vector<std::pair<std::size_t, float>>& values) {
    std::string bytes(count * 4, '\0');
    for (const auto& [index, value] : values) std::memcpy(bytes.data() + 4 * index, &value, sizeof value);
    return bytes;
}

constexpr std::size_t oldFloats = 2176;
constexpr std::size_t sensorRating = 292;
constexpr std::size_t tableSize = 27;

class ZentaqctlOld : public Zentaqctl {
 protected:
    std::string old = folder.file("old.BIN");
    std::string output = folder.file("New name.ZQ4OA");
    Outcome import() { return run("import-bin " + inQuotes(old) + " -o " + inQuotes(output)); }
};

TEST_F(ZentaqctlOld, ImportBinWritesACalibrationOfToday) {
    writeFile(old, oldFile(oldFloats, {{sensorRating, 2}, {tableSize, 16}}));
    EXPECT_THAT(import(),
                Succeeds(_, HasSubstr("Your BIN file has been updated to work with this firmware.")));
    EXPECT_EQ(contentOf(output).size(), 11324U);
    EXPECT_EQ(floatOf(output, 0), 3);
    EXPECT_EQ(run("get " + inQuotes(output) + " MAP_BAR").out, "2\n");
    EXPECT_EQ(run("get " + inQuotes(output) + " BiName").out, "New name\n");
}

TEST_F(ZentaqctlOld, ImportBinKnowsOldFilesByTheirLength) {
    writeFile(old, oldFile(oldFloats - 1, {}));
    EXPECT_THAT(import(), Fails(1, isOneLine));
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(ZentaqctlOld, ImportBinTellsWhenTheNameIsThatOfAnotherKind) {
    constexpr std::size_t floatsOfOrbLite = 2328;
    writeFile(old, oldFile(floatsOfOrbLite, {{sensorRating, 2}, {tableSize, 16}}));
    EXPECT_THAT(
        import(),
        Succeeds(_, HasSubstr(output + " holds a calibration for ORB L; such files end in .ZQ4OL\n")));
    output = folder.file("New name.zq4ol");
    EXPECT_THAT(import().error, Not(HasSubstr("such files end")));
}

}  // namespace
}  // namespace zentaq
