// A started program on fakes: the windows stand, the start sequence has run, nothing is on the link.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>

#include "app/calibration_floats.h"
#include "app/fake_platform.h"
#include "app/start_up.h"
#include "windows/frm_config.h"
#include "windows/frm_dashboard.h"
#include "windows/frm_edit_map_sensors.h"
#include "windows/frm_fast_help.h"
#include "windows/frm_general_config.h"
#include "windows/frm_help.h"
#include "windows/frm_options.h"
#include "windows/frm_table.h"
#include "windows/splash.h"
#include "windows/window_manager.h"

namespace zentaq {

/// The windows of the program by the names that tests call them.
class ProgramWindows : public WindowManager {
 public:
    using WindowManager::WindowManager;

    FrmConfig* config() { return form<FrmConfig>(); }
    FrmDashBoard* dashboard() { return form<FrmDashBoard>(); }
    FrmTable* table() { return form<FrmTable>(); }
    FrmGeneralConfig* generalConfig() { return form<FrmGeneralConfig>(); }
    FrmEditMAPSensors* sensorEditor() { return form<FrmEditMAPSensors>(); }
    FrmOptions* options() { return form<FrmOptions>(); }
    FrmHelp* help() { return form<FrmHelp>(); }
    FrmFastHelp* fastHelpWindow() { return form<FrmFastHelp>(); }
    FrmSplash* splashWindow() { return form<FrmSplash>(); }

    void openGeneralConfig() { open(window::generalConfig); }
    void openSensorEditor() { open(window::sensorEditor); }
    void openTable(const std::string& table, const std::string& title) { open(window::table, table, title); }
    void showUnit() { tell(&WindowNews::showUnit); }
    void onFlyLock(bool busy) { tell(&WindowNews::onFlyLock, busy); }
    void onFlyChanged(bool on) { tell(&WindowNews::onFlyChanged, on); }
    void dayMode() { tell(&WindowNews::look, true); }
    void nightMode() { tell(&WindowNews::look, false); }
    void killTimers() { tell(&WindowNews::killTimers); }
};

MATCHER_P(Tells, part, "") {
    *result_listener << arg.text;
    return arg.text.find(part) != std::string::npos;
}

class FakesTest : public testing::Test {
 protected:
    FakeSession fake;

    /// An empty one when none was shown.
    Box lastBox() const { return fake.dialogs.boxes.empty() ? Box{} : fake.dialogs.boxes.back(); }
};

/// An ORB A calibration in hand, for a window by itself.
class OrbASession : public FakesTest {
 protected:
    static constexpr int orbA = 3;

    OrbASession() {
        fake.session.makeUnits();
        fake.session.CurrentUnit(orbA);
        unit().FW_Release(5);
    }
    Unit& unit() { return fake.session.currentUnitObject(); }
};

class WindowTest : public FakesTest {
    const int heldByUsers = FrmSplash::holdMs;

 protected:
    MainCommands commands{fake.session};
    Kernel kernel{fake.session, commands};
    ProgramWindows windows{*qApp, fake.session, commands, kernel};

    WindowTest() {
        FrmSplash::holdMs = 1;
        fake.settings.set("System", "FileOpen", "0");
        fake.settings.set("System", "MonitorMode", "0");
        kernel.load();
    }
    ~WindowTest() override {
        windows.killTimers();
        FrmSplash::holdMs = heldByUsers;
    }

    template <typename Object>
    Object* find(const char* name) {
        return windows.main().findChild<Object*>(QLatin1String(name));
    }

    /// A whole ORB A calibration of zeros but for a rev limit.
    std::string calibrationFile() const {
        std::vector<float> floats = wholeFloats();
        floats[3 + 58] = 6500;
        return writeFloats(fake.folder.path("tune.ZQ4OA"), floats);
    }
    static void activate(QWidget& window) {
        window.activateWindow();
        for (int i = 0; i < 50 && !window.isActiveWindow(); ++i) QApplication::processEvents();
        QApplication::processEvents();
    }
    void openCalibration() {
        fake.dialogs.files.push_back(calibrationFile());
        commands.files.open();
        windows.refresh();
        windows.main().refresh();
    }
};

}  // namespace zentaq
