// The form's way to a new calibration, for every model with every engine that its list offers: the file opens
// again, the simulated unit of the model takes the image, and no cell lies outside its range.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "app/fake_platform.h"
#include "app/general_config.h"
#include "config/quiet_calibration.h"
#include "refdata/seed_builder.h"
#include "sim/image_check.h"
#include "sim/sim_helpers.h"

namespace zentaq {
namespace {

/// The unit that a model's calibrations are for, as zentaq-sim calls it.
const std::map<std::string, std::string> simulated{
    {"ORB A Standard", "A"}, {"ORB A 6/12", "A 6/12"}, {"ORB AR", "A r"}, {"ORB L", "L"},
    {"PZK-2", "PZK-2"},      {"ORB D", "D"},           {"ORB C", "C"},
};

class NewCalibrationOf : public testing::TestWithParam<std::string> {
 protected:
    FakeSession fake;
    Session& session = fake.session;
    const std::string databasePath = fake.folder.path("reference.pak");

    NewCalibrationOf() {
        refdata::buildDatabase(ZENTAQ_SOURCE_DIR "/data/seeds", databasePath);
        session.database = Database::open(databasePath);
        session.makeUnits();
        fake.windows.calls.clear();
    }

    /// Picks, types and saves as a tuner would. The path of the file, empty when the form refused.
    std::string make(const std::string& engine) {
        session.header().fileState = "NEW";
        GeneralConfig form(session);
        form.load();
        const std::string path =
            fake.folder.path("made" + std::string(session.Units(slot()).kind().extension));
        std::filesystem::remove(path);
        fake.dialogs.boxes.clear();
        fake.dialogs.files = {path};
        bool taken = form.enter("cmbORB_UNIT", GetParam());
        taken = form.enter("cmbEngine", engine) && taken;
        taken = form.enter("cmbMAP", session.database->mapSensors().front().description) && taken;
        taken = form.enter("txtRPM", "6500") && taken;
        if (form.field("txtBHP").enabled) taken = form.enter("txtBHP", "120") && taken;
        taken = form.save() && taken;
        form.unload();
        EXPECT_TRUE(taken);
        for (const Box& box : fake.dialogs.boxes) {
            if (box.title != "Data Saved.") ADD_FAILURE() << engine << ": " << box.title << ": " << box.text;
        }
        return taken ? path : std::string();
    }
    int slot() const { return modelEntryOf(GetParam())->slot; }

    void expectCellsInRange(Unit& unit) {
        for (const Parameter& row : unit.kind().parameters) {
            for (int i = 0; i < row.count; ++i) {
                const Limits limits = unit.limits(row.name, i);
                if (limits.unlimited()) continue;
                const float value = unit.read(row, i);
                if (row.name == "MAP_Max" && value == 0) continue;  // 0: no fuel cut by pressure
                // What a unit stores in steps reads back within half a step; its range is told in whole ones.
                const float slack = 0.005f * std::max(1.0f, std::abs(limits.maximum));
                EXPECT_GE(value, limits.minimum - slack) << row.name << " " << i;
                EXPECT_LE(value, limits.maximum + slack) << row.name << " " << i;
            }
        }
    }
};

TEST_P(NewCalibrationOf, EveryEngineOpensAgainIsTakenByTheUnitAndHasNoCellOutsideItsRange) {
    const auto engines = enginesOfModel(*session.database, *modelEntryOf(GetParam()));
    ASSERT_FALSE(engines.empty());
    for (const EngineRow& engine : engines) {
        SCOPED_TRACE(engine.displayValue);
        const std::string path = make(engine.displayValue);
        ASSERT_FALSE(path.empty());
        const auto again = QuietCalibration::open(path, &*session.database);
        Unit& unit = again->unit;
        const Unit& inHand = session.currentUnitObject();
        ASSERT_EQ(unit.kind().className, inHand.kind().className);
        for (int i = 0; i < inHand.kind().fileFloats; ++i)
            EXPECT_EQ(unit.DirectIndex(i), inHand.DirectIndex(i)) << i;
        EXPECT_EQ(unit.get("Option_Type"), static_cast<float>(engine.optType));
        EXPECT_EQ(unit.get("CYL_Number"), static_cast<float>(engine.cylinders));
        EXPECT_EQ(unit.get("REV_Limiter"), 6500);
        expectCellsInRange(unit);
        unit.ConvertData();
        std::string why;
        EXPECT_TRUE(sim::acceptsImage(simulated.at(GetParam()), unit.sRecordText(), &why)) << why;
        if (HasFailure()) return;  // one engine's worth of messages is enough to read
    }
    for (const std::string& line : session.console.lines())
        EXPECT_EQ(line.find("Not taken"), std::string::npos);
}

std::vector<std::string> modelNames() {
    std::vector<std::string> names;
    for (const ModelEntry& model : modelEntries()) names.emplace_back(model.name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(EveryModel, NewCalibrationOf, testing::ValuesIn(modelNames()),
                         [](const auto& model) { return sim::test::plainName(model.param); });

}  // namespace
}  // namespace zentaq
