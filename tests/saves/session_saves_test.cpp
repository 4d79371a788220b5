// The saves of the window program under fire: Save, Save As, and the one of a new calibration.
#include <algorithm>
#include <memory>

#include "app/fake_platform.h"
#include "app/general_config.h"
#include "app/main_commands.h"
#include "saves/saved_under_fire.h"
#include "unit/file_floats.h"

namespace zentaq::testing {
namespace {

constexpr const char* tune = ZENTAQ_APP_DIR "/samples/Street 2.0 Four.ZQ4OA";

class SessionSaves : public SavesUnderFire, public ::testing::WithParamInterface<int> {
 public:
    static constexpr int count = 3;

 protected:
    SessionSaves() { std::filesystem::copy_file(builtReference(), folder.file("reference.pak")); }

    /// A program with the file in hand, and a change of it.
    struct Opened {
        explicit Opened(const std::string& file, const std::string& database) {
            fake.session.makeUnits();
            fake.session.DatabaseFile = database;
            fake.dialogs.files.push_back(file);
            commands.files.open();
            fake.session.currentUnitObject().set("REV_Limiter", 6100.0);
            fake.session.markModified();
            fake.dialogs.boxes.clear();
        }
        FakeSession fake;
        MainCommands commands{fake.session};
    };

    /// How the boxes told of the save, and whether the session agrees.
    static int told(FakeSession& fake) {
        const auto shown = [&](const char* title) {
            return std::ranges::any_of(fake.dialogs.boxes,
                                       [&](const Box& box) { return box.title == title; });
        };
        const bool stored = shown("Data Saved.");
        const bool refused =
            shown("File Save Error") || shown("Default Values") || shown("Reference Database");
        if (stored == refused) return Nonsense;
        if (stored) return fake.session.DataModified ? Nonsense : Stored;
        return NotStored;
    }
    /// The session is made before the process that saves, which gets a copy of it.
    SaveUnderFire saveOf(const std::string& name, const std::function<void(Opened&)>& command) {
        SaveUnderFire save = saveNamed(name);
        save.isNew = holdsTheLimit;
        auto opened = std::make_shared<std::unique_ptr<Opened>>();
        save.prepare = [this, opened] {
            clear();
            std::filesystem::copy_file(tune, file);
            *opened = std::make_unique<Opened>(file, folder.file("reference.pak"));
        };
        save.run = [opened, command] {
            command(**opened);
            return told((*opened)->fake);
        };
        return save;
    }
    static bool holdsTheLimit(const std::optional<std::string>& found) {
        return found && found->size() == 11324 && floatAt(*found, 3 + 58) == 6100;
    }

    std::vector<SaveUnderFire> all() {
        return {
            saveOf("Save", [](Opened& opened) { opened.commands.saves.save(); }),
            saveOf("Save As over the file in hand",
                   [this](Opened& opened) {
                       opened.fake.dialogs.files = {file};
                       opened.fake.dialogs.answers = {Answer::Yes};
                       opened.commands.saves.saveAs();
                   }),
            newCalibration(),
        };
    }
    SaveUnderFire newCalibration() {
        struct Form {
            FakeSession fake;
            std::unique_ptr<GeneralConfig> form;
        };
        auto made = std::make_shared<std::unique_ptr<Form>>();
        SaveUnderFire save = saveNamed("Save of a new calibration");
        save.isNew = holdsTheLimit;
        save.prepare = [this, made] {
            clear();
            *made = std::make_unique<Form>();
            Session& session = (*made)->fake.session;
            session.makeUnits();
            session.DatabaseFile = folder.file("reference.pak");
            session.header().fileState = "NEW";
            (*made)->form = std::make_unique<GeneralConfig>(session);
            GeneralConfig& form = *(*made)->form;
            form.load();
            form.enter("cmbORB_UNIT", "ORB A Standard");
            form.enter("cmbEngine", "4 Cylinder Coil per Plug, Sequential Injection");
            form.enter("cmbMAP", "1 BAR (10-105 kPa)");
            form.enter("txtRPM", "6100");
            (*made)->fake.dialogs.boxes.clear();
        };
        save.run = [this, made] {
            (*made)->fake.dialogs.files = {file};
            const bool stored = (*made)->form->save();
            const int answer = told((*made)->fake);
            return stored == (answer == Stored) ? answer : int{Nonsense};
        };
        return save;
    }

    SaveUnderFire chosen() {
        auto saves = all();
        EXPECT_EQ(saves.size(), std::size_t{count});
        return saves.at(static_cast<std::size_t>(GetParam()));
    }
};

// One of them a test, so that they run side by side.
INSTANTIATE_TEST_SUITE_P(EachOf, SessionSaves, ::testing::Range(0, SessionSaves::count));

TEST_P(SessionSaves, KilledAtAnyCallLeaveTheOldFileOrTheNewOneAndTheNextOneIsWhole) {
    kill(chosen());
}

TEST_P(SessionSaves, FailingAtAnyCallLeaveTheOldFileAndSaySoOrTheNewOne) {
    fail(chosen());
}

}  // namespace
}  // namespace zentaq::testing
