#include <sqlite3.h>

#include <iterator>

#include <map>
#include <sstream>
#include <vector>

#include "base/channels.h"
#include "refdata_fixture.h"

namespace zentaq::refdata {
namespace {

/// The column names of every table, read from the file with the plain database library.
std::map<std::string, std::vector<std::string>> columnsOfFile(const std::string& path) {
    std::map<std::string, std::vector<std::string>> found;
    sqlite3* file = nullptr;
    EXPECT_EQ(sqlite3_open_v2(path.c_str(), &file, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    sqlite3_stmt* query = nullptr;
    sqlite3_prepare_v2(file,
                       "SELECT m.name, c.name FROM sqlite_master m, pragma_table_info(m.name) c "
                       "WHERE m.type = 'table' AND m.name NOT LIKE 'sqlite%'",
                       -1, &query, nullptr);
    const auto text = [&](int column) {
        return std::string(reinterpret_cast<const char*>(sqlite3_column_text(query, column)));
    };
    while (sqlite3_step(query) == SQLITE_ROW) found[text(0)].push_back(text(1));
    sqlite3_finalize(query);
    sqlite3_close(file);
    return found;
}

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

class Schema : public ReferenceDatabase {
 protected:
    void expectColumns(const std::string& table, const std::string& names) {
        const auto tables = columnsOfFile(path);
        ASSERT_TRUE(tables.contains(table)) << table;
        EXPECT_EQ(tables.at(table), words(names)) << table;
    }
};

TEST_F(Schema, HasTheEightTablesAndNoOther) {
    std::vector<std::string> names;
    for (const auto& [name, columns] : columnsOfFile(path)) names.push_back(name);
    EXPECT_EQ(names, words("Configs Datalog Datalog2 Defaults Engines FastHelp MAPCals Tips"));
}

TEST_F(Schema, EnginesHasEveryColumn) {
    expectColumns(
        "Engines",
        "OrbUnit OrbSubType OptType DisplayValue IGNRev P1EgTp P2EgTp Cylinders EngType MaxOffset MinOffset "
        "Offset_A Offset_B InjEvents InjMode PhdSeq InjReset InjTBL_1 InjTBL_2 InjTBL_3 InjTBL_4 InjTBL_5 "
        "InjTBL_6 InjTBL_7 InjTBL_8 Stroke EditDFUB DefaultSplit");
}

TEST_F(Schema, MapSensorsConfigsHelpAndTipsHaveEveryColumn) {
    expectColumns("MAPCals", "ID Description Scale Offset Units");
    expectColumns("Configs", "BinFile OrbUnit OrbName");
    expectColumns("FastHelp", "ID TOPIC HELP HELP_KEY");
    expectColumns("Tips", "HELP");
}

TEST_F(Schema, DatalogHasTheColumnsOfTheOldestLog) {
    expectColumns(
        "Datalog",
        "Seconds RPM MAP TPS CLT MAT VOLT KNK EGOV CHKE ADV SADV KNKR TFPW PIP PID PPW PIO SID SPW SIO POPD "
        "EGOC DAFR AAFR IAC SD GPIO1 GPIO2 GPIO3 GPIO4 GPIO5 GPIO6 GPIO7 GPIO8 GPIO9");
}

// The names stand in tests/live/channels_test.cpp.
TEST_F(Schema, Datalog2HasTheChannelsWithPinsBehindTheStepDirectionAndTheIdleSpeed) {
    std::string names = "Frame";
    for (const Channel& channel : channels) {
        names += ' ' + std::string(channel.name);
        if (channel.name == "IACD") {
            names +=
                " GPIO1 GPIO2 GPIO3 GPIO4 GPIO5 GPIO6 GPIO7 GPIO8 GPIO9 GPIO10 GPIO11 GPIO12 GPIO13 GPIO14";
            names += " GPIO15 GPIO16";
        }
        if (channel.name == "ISRPM") names += " GPIO17 GPIO18 GPIO19 GPIO20";
    }
    expectColumns("Datalog2", names);
}

}  // namespace
}  // namespace zentaq::refdata
