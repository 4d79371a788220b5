// Rows of a log in a scratch table of the reference database.
#include "refdata/datalog_table.h"

#include <gmock/gmock.h>

#include "base/errors.h"
#include "other_program.h"
#include "refdata/schema.h"
#include "refdata_fixture.h"

namespace zentaq::refdata {
namespace {

class DatalogRows : public testing::Test {
 protected:
    DatalogRows() { buildDatabase(projectSeeds, path); }
    void fill(DatalogTable& rows, int count) const {
        std::vector<double> values(table("Datalog2").columns.size());
        for (int i = 0; i < count; ++i) {
            values[0] = i + 1;
            values[1] = 1000 + i;
            values[2] = 60.5;
            rows.add(values);
        }
    }
    TemporaryFolder folder;
    const std::string path = folder.file("reference.pak");
};

TEST_F(DatalogRows, StandInTheirColumnsAsTheyCame) {
    DatalogTable rows(path, "Datalog2");
    rows.clear();
    fill(rows, 3);
    rows.flush();
    OtherProgram other(path);
    EXPECT_EQ(other.count("SELECT count(*) FROM Datalog2"), 3);
    EXPECT_EQ(other.count("SELECT RPM FROM Datalog2 WHERE Frame = 2"), 1001);
    EXPECT_EQ(other.count("SELECT MAP * 10 FROM Datalog2 WHERE Frame = 2"), 605);
    EXPECT_EQ(other.count("SELECT count(*) FROM Datalog"), 0);
}

TEST_F(DatalogRows, OfTheLogBeforeAreGone) {
    {
        DatalogTable rows(path, "Datalog2");
        fill(rows, 5);
        rows.flush();
    }
    DatalogTable rows(path, "Datalog2");
    rows.clear();
    fill(rows, 2);
    rows.flush();
    EXPECT_EQ(OtherProgram(path).count("SELECT count(*) FROM Datalog2"), 2);
}

TEST_F(DatalogRows, LeaveTheRestOfTheFileReadableBetweenTheirBlocks) {
    const Database database = Database::open(path);
    DatalogTable rows(path, "Datalog2");
    rows.clear();
    fill(rows, static_cast<int>(DatalogTable::blockRows) + 100);
    EXPECT_FALSE(database.mapSensors().empty());
    EXPECT_EQ(OtherProgram(path).count("SELECT count(*) FROM Datalog2"), DatalogTable::blockRows);
    rows.flush();
}

TEST_F(DatalogRows, AFileThatIsMissingIsTold) {
    try {
        DatalogTable rows(folder.file("none.pak"), "Datalog2");
        ADD_FAILURE() << "opened";
    } catch (const Failure& failure) {
        EXPECT_THAT(failure.what(), testing::HasSubstr("none.pak"));
    }
}

TEST_F(DatalogRows, AFullLogNeedNotBeLookedThroughToOpenTheFile) {
    DatalogTable rows(path, "Datalog2");
    fill(rows, 20000);
    rows.flush();
    const Database database = Database::open(path);
    EXPECT_FALSE(database.mapSensors().empty());
}

}  // namespace
}  // namespace zentaq::refdata
