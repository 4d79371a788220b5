// The windows of the program as the core sees them. It makes them in the order of the start sequence, hands
// the core's news to them and redraws them from plain data, at most sixty times a second.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>

#include "app/main_commands.h"
#include "app/session.h"
#include "app/start_up.h"
#include "app/window_set.h"
#include "windows/frm_config.h"
#include "windows/frm_dashboard.h"
#include "windows/frm_edit_map_sensors.h"
#include "windows/frm_fast_help.h"
#include "windows/frm_general_config.h"
#include "windows/frm_help.h"
#include "windows/frm_options.h"
#include "windows/frm_table.h"
#include "windows/mdi_main.h"
#include "windows/splash.h"

class QApplication;
class QSplitter;

namespace zentaq {

class WindowManager : public QObject, public WindowSet {
    Q_OBJECT

 public:
    static constexpr int refreshMs = 16;

    WindowManager(QApplication& application, Session& session, MainCommands& commands, Kernel& kernel);
    ~WindowManager() override;

    MdiMain& main() { return *main_; }
    FrmConfig* config() { return config_; }
    FrmDashBoard* dashboard() { return dashboard_; }
    FrmTable* table() { return table_; }
    FrmGeneralConfig* generalConfig() { return generalConfig_; }
    FrmEditMAPSensors* sensorEditor() { return sensorEditor_; }
    FrmOptions* options() { return options_; }
    FrmHelp* help() { return help_; }
    FrmFastHelp* fastHelpWindow() { return fastHelp_; }
    FrmSplash* splashWindow() { return splash_.get(); }
    /// The main window has been closed; the process ends.
    bool closed() const { return closed_; }
    /// Brings the windows up to date with the change counters now.
    void refresh();

    void showMain() override;
    void enableToolbar(bool on) override { main_->enableToolbar(on); }
    void splash(std::string_view text) override;
    void showConfig() override;
    void showDashboard() override;
    void showCommList(bool on) override;
    void focusForm(const std::string& form) override;
    void showTip(const std::string& text) override;
    void killTimers() override;
    void closeMain() override;

    void titleChanged(const std::string& title) override { main_->showTitle(title); }
    void setupNodes() override;
    void showStartTab() override;
    void onFlyChanged(bool on) override;
    void onFlyLock(bool busy) override;
    void removeForms() override;
    void openTable(const std::string& table, const std::string& title) override;
    void showUnit() override;
    void afterEdits(const std::string& caption, const std::function<void()>& command) override;

    void openGeneralConfig() override;
    bool closeGeneralConfig() override;
    void saveGeneralConfig() override;
    void openSensorEditor() override;
    void openOptions(OptionsPage page) override;
    void openHelp(const std::string& topic) override;

    void temperaturesChanged() override;
    void updateRateChanged() override;
    void clearTableColours() override;
    void dashboardColours(const std::string& lights, const std::string& needle) override;
    void sensorsChanged() override;

    void dayMode() override;
    void nightMode() override;
    void unitKindFound(int slot) override;
    void codesReceived() override;
    void codesCleared() override;
    void frameDecoded() override;
    void updateDisplay() override;
    void resetDashboard() override;
    void clearPanel3() override { main_->clearPanel3(); }
    /// One after the other: what shows a box ends before the next begins.
    bool boxOpen() const override;
    void later(const std::function<void()>& something) override;

 Q_SIGNALS:
    /// The core has shut down and the main window is closed.
    void mainClosed();

 private:
    void hideSplash();
    template <typename Form>
    void closesInto(QPointer<Form>& place);
    QWidget* formNamed(const std::string& form);
    bool finishEdits();
    void showTable(const std::string& table, const std::string& title);
    void tableClosed();
    void focusMain();
    void leaveTable();
    void handOn(const FrmTable::Left& left);
    void runHandedOn();
    bool offersTable(const std::string& table) const;
    void makeCentre();
    void makeTable();
    void placeTable(bool docked);
    void undockTable();
    void takeStoredColors();
    void beginMonitoring();
    void runWaiting();
    void fastHelp();
    void focusChanged(QWidget* now);

    QApplication& application_;
    Session& session_;
    MainCommands& commands_;
    std::unique_ptr<MdiMain> main_;
    std::unique_ptr<FrmSplash> splash_;
    QPointer<FrmConfig> config_;
    QPointer<FrmDashBoard> dashboard_;
    QPointer<FrmTable> table_;
    QPointer<FrmGeneralConfig> generalConfig_;
    QPointer<FrmEditMAPSensors> sensorEditor_;
    QPointer<FrmOptions> options_;
    QPointer<FrmHelp> help_;
    QPointer<FrmFastHelp> fastHelp_;
    QSplitter* centre_ = nullptr;
    QTimer tmrRefresh_;
    std::deque<std::function<void()>> waiting_;  ///< by `later`
    bool runsWaiting_ = false;
    std::deque<std::function<void()>> handedOn_;  ///< commands that waited for a table that has gone
    bool runsHandedOn_ = false;
    std::uint64_t consoleSeen_ = 0;
    std::uint64_t linkSeen_ = 0;
    int idleFirings_ = 0;
    bool treeReady_ = false;
    bool closed_ = false;
};

}  // namespace zentaq
