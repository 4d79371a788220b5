// frmGeneralConfig without its window, on a session of fakes with the project's reference database.
#pragma once

#include <filesystem>
#include <string>

#include "app/command_fixture.h"
#include "app/general_config.h"

namespace zentaq {

class GeneralConfigForm : public ProgramTest {
 protected:
    static constexpr const char* fourCylinders = "4 Cylinder Coil per Plug, Sequential Injection";
    static constexpr const char* oneBar = "1 BAR (10-105 kPa)";

    explicit GeneralConfigForm(FileWriter* disk = nullptr) : ProgramTest(disk) {
        session.makeUnits();
        std::filesystem::copy_file(builtReference(), database);
        session.database = Database::open(database);
    }

    void startNew() {
        session.header().fileState = "NEW";
        form.load();
    }
    /// A new calibration with all that it needs.
    void prepare(const char* model = "ORB A Standard", const char* engine = fourCylinders,
                 const char* sensor = oneBar) {
        startNew();
        EXPECT_TRUE(form.enter("cmbORB_UNIT", model));
        EXPECT_TRUE(form.enter("cmbEngine", engine));
        EXPECT_TRUE(form.enter("cmbMAP", sensor));
    }
    bool saveTo(const std::string& path) {
        fake.dialogs.files.push_back(path);
        return form.save();
    }
    /// A calibration in hand, with the form open on it.
    void haveInHand(const char* name = "tune.ZQ4OA") {
        prepare();
        EXPECT_TRUE(saveTo(fake.folder.path(name)));
        boxes().clear();
        fake.windows.calls.clear();
    }
    std::string text(std::string_view control) { return form.field(control).text; }
    int boxesShown() const { return static_cast<int>(fake.dialogs.boxes.size()); }

    std::string database = fake.folder.path("reference.pak");
    GeneralConfig form{session};
};

}  // namespace zentaq
