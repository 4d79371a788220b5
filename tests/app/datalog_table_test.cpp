// What the reader of datalogs calls its columns is what the tables of the reference data have.
#include <gtest/gtest.h>

#include "live/datalog_reader.h"
#include "refdata/schema.h"

namespace zentaq {
namespace {

TEST(DatalogTable, ItsColumnsAreThoseOfTheReader) {
    for (const auto& [name, format] :
         {std::pair{"Datalog2", DatalogFormat::Newest}, std::pair{"Datalog", DatalogFormat::Oldest}}) {
        std::vector<std::string> columns;
        for (const auto& column : refdata::table(name).columns) columns.push_back(column.name);
        EXPECT_EQ(datalogColumns(format), columns) << name;
    }
}

}  // namespace
}  // namespace zentaq
