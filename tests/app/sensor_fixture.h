// A session with a small reference database of its own: four sensors and no other row; and another program
// that may lock the file.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/fake_platform.h"
#include "other_program.h"
#include "refdata/schema.h"

namespace zentaq {

class SensorSession : public ::testing::Test {
 protected:
    FakeSession fake;
    Session& session = fake.session;
    std::string path = fake.folder.path("zentaq410-02.pak");

    SensorSession() {
        makeDatabase();
        session.database = Database::open(path);
        add(oneBar, 0.05295F, -0.54738F, 1);
        add(twoBar, 0.0251F, -0.2209F, 1);
        add(sharp, 0.02F, -0.2F, 1);
        add(streetPsia, 0.365076F, -0.54738F, 2);
    }

    static constexpr auto oneBar = "1 BAR (10-105 kPa)";
    static constexpr auto twoBar = "2 BAR (9-208 kPa)";
    static constexpr auto sharp = "Sharp (kPa)";  ///< 0.5 V at 35, 4.5 V at 235: both are whole numbers
    static constexpr auto streetPsia = "Street (PSIA)";

    MapSensorRow stored(const std::string& name) {
        const auto row = session.database->mapSensorByName(name);
        if (!row) ADD_FAILURE() << name << " is not stored";
        return row.value_or(MapSensorRow{});
    }
    bool isStored(const std::string& name) { return session.database->mapSensorByName(name).has_value(); }
    std::size_t sensorCount() { return session.database->mapSensors().size(); }
    void add(const std::string& name, float scale, float offset, int units) {
        session.database->addMapSensor({0, name, scale, offset, units});
    }
    void writeProtect() {
        session.database.reset();
        std::filesystem::permissions(path, std::filesystem::perms::owner_read);
        session.database = Database::open(path);
    }

    /// How often the lists of sensors were to be filled again.
    int sensorChanges() const { return static_cast<int>(std::ranges::count(fake.windows.calls, "sensors")); }
    std::vector<Box>& boxes() { return fake.dialogs.boxes; }
    /// The last box; an empty one when none was shown.
    Box lastBox() { return boxes().empty() ? Box{} : boxes().back(); }
    void answer(Answer given) { fake.dialogs.answers.push_back(given); }
    void type(const std::string& text) { fake.dialogs.inputs.push_back(text); }

 private:
    void makeDatabase() {
        std::ofstream(path).flush();
        OtherProgram maker(path);
        maker.run("BEGIN");
        for (const refdata::Table& table : refdata::tables()) {
            std::string columns;
            for (const refdata::Column& column : table.columns) {
                const bool name = column.type == refdata::ColumnType::NameText;
                columns += (columns.empty() ? "\"" : ", \"") + column.name + "\"";
                if (column.rowKey) columns += " INTEGER PRIMARY KEY AUTOINCREMENT";
                if (name) columns += " TEXT COLLATE NOCASE";
            }
            maker.run("CREATE TABLE \"" + table.name + "\" (" + columns + ")");
        }
        maker.run("COMMIT");
    }
};

}  // namespace zentaq
