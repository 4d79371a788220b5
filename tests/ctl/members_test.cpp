// The list of members, and whether what it says is so.
#include <map>
#include <memory>

#include "base/number_text.h"
#include "base/text.h"
#include "config/quiet_calibration.h"
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

using Rows = std::map<std::string, std::vector<std::string>>;

/// The rows of an answer by member; the line of headers under "Member".
Rows rowsOf(const std::string& text) {
    Rows rows;
    for (const std::string& line : linesOf(text)) {
        const auto fields = split(line, '\t');
        EXPECT_EQ(fields.size(), 8U) << line;
        if (fields.size() == 8) rows[fields[1]] = fields;
    }
    return rows;
}

TEST_F(Zentaqctl, MembersTellsEverythingAboutAMember) {
    const Rows rows = rowsOf(run("members --kind A").out);
    using Row = std::vector<std::string>;
    EXPECT_EQ(rows.at("Member"),
              (Row{"Model", "Member", "Cell", "Count", "Range", "Unit", "Sent", "Meaning"}));
    EXPECT_EQ(rows.at("KNK_MIN"), (Row{"ORB A", "KNK_MIN", "34", "1", "(2 to 100 units)", "units",
                                       "on the fly", "Knock threshold"}));
    EXPECT_EQ(rows.at("scale1")[7], "Maximum Controllable PulseWidth");
    EXPECT_EQ(rows.at("VE")[3], "256");
    EXPECT_EQ(rows.at("MAPMax")[2], "");
    EXPECT_EQ(rows.at("MAPMax")[6], "read only, not sent");
    EXPECT_EQ(rows.at("INJ_Mode")[6], "next programming");
    EXPECT_EQ(rows.at("BHP")[6], "not sent");
}

TEST_F(Zentaqctl, MembersKnowsAKindByManyNames) {
    const std::string wanted = run("members --kind A").out;
    for (const char* name : {"a", "'ORB A'", "'orb a'", "clsORBA", "ZQ4OA", ".ZQ4OA", ".zq4oa", "3"}) {
        EXPECT_EQ(run(std::string("members --kind ") + name).out, wanted) << name;
    }
    for (const auto& [name, model] : std::map<std::string, std::string>{{"L", "ORB L"},
                                                                        {"4", "ORB L"},
                                                                        {"C", "ORB C"},
                                                                        {"clsORBC", "ORB C"},
                                                                        {"D", "ORB D"},
                                                                        {"7", "ORB D"},
                                                                        {"D6", "ORB D6"},
                                                                        {"8", "ORB D6"},
                                                                        {"PZK-2", "PZK-2"},
                                                                        {"ZQ4PZK", "PZK-2"}}) {
        const Outcome outcome = run("members --kind " + name);
        EXPECT_EQ(outcome.exitCode, 0) << name;
        ASSERT_GT(linesOf(outcome.out).size(), 50U) << name;
        EXPECT_THAT(linesOf(outcome.out)[1], StartsWith(model + "\t")) << name;
    }
}

TEST_F(Zentaqctl, MembersWithoutAKindListsAllKinds) {
    std::map<std::string, int> models;
    for (const std::string& line : linesOf(run("members").out)) ++models[line.substr(0, line.find('\t'))];
    EXPECT_EQ(models.erase("Model"), 1U);
    EXPECT_EQ(models.size(), 5U);
    EXPECT_GT(models["ORB A"], models["PZK-2"]);
}

TEST_F(Zentaqctl, MembersLeavesOutWhatAKindLacks) {
    const Rows rows = rowsOf(run("members --kind PZK-2").out);
    for (const char* name : {"VE", "SPW", "Get_AFR", "CLTTBL", "MinDuty", "VE.ROWS"})
        EXPECT_EQ(rows.count(name), 0U);
    EXPECT_EQ(rows.count("ADV"), 1U);
    EXPECT_EQ(rowsOf(run("members --kind D").out).count("SPW"), 0U);
}

TEST_F(Zentaqctl, MembersOfAFileTellsTheLimitsInForceThere) {
    EXPECT_EQ(rowsOf(run("members --kind A").out).at("Initial_Advance")[4], "depends on the calibration");
    onFile("set", "MOFFSET 10");
    const Rows rows = rowsOf(onFile("members").out);
    EXPECT_EQ(rows.at("Initial_Advance")[4], "(10 to 40 Degrees)");
    EXPECT_EQ(rows.at("MAP_Default")[5], "kPa");
    EXPECT_EQ(rows.at("KNK_MIN")[4], "(2 to 100 units)");
}

TEST_F(Zentaqctl, MembersAnswersInJson) {
    const std::string json = run("members --kind A --json").out;
    const std::string knock = "[m for m in d if m[\"name\"] == \"KNK_MIN\"][0]";
    EXPECT_EQ(
        fromJson(json, "sorted(" + knock + ".items())"),
        "[('cell', 34), ('count', 1), ('kind', 3), ('meaning', 'Knock threshold'), ('model', 'ORB A'), "
        "('name', 'KNK_MIN'), ('range', '(2 to 100 units)'), ('readOnly', False), ('sent', 'on the fly'), "
        "('stride', 1), ('unit', 'units')]");
    EXPECT_EQ(fromJson(json, "[m[\"cell\"] for m in d if m[\"name\"] == \"MAPMax\"]"), "[None]");
    EXPECT_EQ(fromJson(run("members --json").out, "len({m[\"model\"] for m in d})"), "5");
}

TEST_F(Zentaqctl, EveryMemberOfTheListCanBeRead) {
    for (const std::string& line : linesOf(onFile("members").out)) {
        const auto fields = split(line, '\t');
        if (fields[1] == "Member") continue;
        const Outcome outcome = onFile("get", fields[1]);
        EXPECT_EQ(outcome.exitCode, 0) << fields[1] << ": " << outcome.error;
    }
}

// ---- Whether a member reaches the unit as the list says

struct Reached {
    bool record = false;
    bool image = false;
    bool changed = false;
};

/// A calibration in which no member is without effect: the throttle margin is in use.
std::unique_ptr<QuietCalibration> livelyCalibration(const std::string& path) {
    auto calibration = QuietCalibration::open(path);
    calibration->unit.store("TPS_MARGIN_VALUE", 0.1F);
    return calibration;
}

/// Sets element 0 of a member to one value after the other and looks at what that does.
Reached trySetting(const std::string& path, const std::string& member) {
    const auto before = livelyCalibration(path);
    before->unit.ConvertData();
    const Parameter* row = before->unit.find(member);
    const float old = before->unit.read(*row, 0);
    const Limits limits = before->unit.limits(member);
    Reached reached;
    for (const float other :
         {old + 1, old - 1, old + 100, limits.minimum, limits.maximum, 1.0F, 0.0F, 2.0F, 4.0F}) {
        const auto after = livelyCalibration(path);
        after->unit.ONFLY_MODE(true);
        // A value that the member or a byte of the image does not take is no trial.
        skipFailing([&] {
            setOrThrow(after->unit, member, static_cast<double>(other));
            if (after->unit.read(*row, 0) == old) return;
            after->unit.ConvertData();
            reached.changed = true;
            reached.record = reached.record || !after->host.records().empty();
            reached.image = reached.image || after->unit.memoryBytes() != before->unit.memoryBytes();
        });
    }
    return reached;
}

void expectReachedAsListed(const std::string& path, const Rows& rows) {
    const auto calibration = QuietCalibration::open(path);
    for (const auto& [name, fields] : rows) {
        if (calibration->unit.find(name) == nullptr || fields[6].starts_with("read only")) continue;
        const Reached reached = trySetting(path, name);
        EXPECT_TRUE(reached.changed) << name;
        EXPECT_EQ(reached.record, fields[6] == "on the fly") << name;
        EXPECT_EQ(reached.image, fields[6] != "not sent") << name;
    }
}

TEST_F(Zentaqctl, MembersReachTheUnitAsTheListSays) {
    expectReachedAsListed(file, rowsOf(onFile("members").out));
}

TEST_F(Zentaqctl, MembersOfTheOtherKindsReachTheUnitAsTheListSays) {
    for (const char* name :
         {"ORB L Six.ZQ4OL", "ORB C Six.ZQ4OC", "ORB D Four.ZQ4OD", "PZK-2 Classic Four.ZQ4PZK"}) {
        SCOPED_TRACE(name);
        expectReachedAsListed(sample(name), rowsOf(run("members " + inQuotes(sample(name))).out));
    }
}

}  // namespace
}  // namespace zentaq
