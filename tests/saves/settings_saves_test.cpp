// The settings file under fire: each value written stores the whole file anew.
#include "qt/qt_settings.h"
#include "saves/saved_under_fire.h"

namespace zentaq::testing {
namespace {

constexpr const char* storedFile = "[System]\nCommPort=7\nAutoLog=1\nADUR=30\n";
/// The store writes its keys by name.
constexpr const char* changedFile = "[System]\nADUR=30\nAutoLog=1\nCommPort=9\n";

class SettingsSaves : public SavesUnderFire {
 protected:
    SettingsSaves() { file = target + "/Zentaq4.ini"; }

    SaveUnderFire write() {
        SaveUnderFire save = saveNamed("Settings");
        save.nextWaits = true;  // for the lock of the store
        save.prepare = [this] {
            clear();
            std::ofstream(file) << storedFile;
        };
        save.run = [this] {
            bool trouble = false;
            // Not destroyed, for then it would try again.
            auto* settings = new QtSettings(file);
            settings->onTrouble([&](const std::string&) { trouble = true; });
            settings->set("System", "CommPort", "9");
            if (settings->get("System", "CommPort") != "9") return int{Nonsense};
            if (settings->isStored()) return int{Stored};
            return int{trouble ? NotStored : Nonsense};
        };
        save.isNew = [](const std::optional<std::string>& found) { return found == changedFile; };
        return save;
    }
};

TEST_F(SettingsSaves, KilledAtAnyCallLeaveTheOldFileOrTheNewOne) {
    kill(write());
}

TEST_F(SettingsSaves, FailingAtAnyCallLeaveTheOldFileAndSaySoOrTheNewOne) {
    fail(write());
}

TEST_F(SettingsSaves, FailingAtAnyCallAreDoneWhenTheProgramEnds) {
    SaveUnderFire save = write();
    save.leastRefused = 0;
    save.run = [this] {
        QtSettings(file).set("System", "CommPort", "9");
        return int{Stored};
    };
    fail(save);
}

}  // namespace
}  // namespace zentaq::testing
