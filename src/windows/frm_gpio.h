// frmGPIO, the input/output manager: the pins, the functions of the pin in hand, and its parameters with
// their values, units and limits. The core does the work; this window shows it.
#pragma once

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QTableWidget>
#include <QToolBar>
#include <QWidget>
#include <functional>
#include <vector>

#include "app/main_commands.h"
#include "app/pin_manager.h"
#include "qt/entry_box.h"
#include "windows/dock.h"

namespace zentaq {

class FrmGpio : public QWidget, public DockingForm {
    Q_OBJECT

 public:
    FrmGpio(Session& session, MainCommands& commands, QWidget* parent);
    ~FrmGpio() override;

    void openOn(const std::string& on, const std::string& title) override;
    void takeBack() override;
    void showUnit() override;
    bool finishEdits() override { return txtGPIOParam_->commit(); }

    std::string title() const override { return "GPIO Manager"; }
    bool docked() const { return docked_; }
    void setDocked(bool docked) override;
    void moves(bool on) override { moving_ = on; }
    void takeFocus() override;
    void followLook() override {}

    /// Prints the list; a test hears of it in the place of a printer.
    std::function<void()> print;

 Q_SIGNALS:
    void dockingAsked(bool docked);

 protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void makeToolbar();
    QWidget* makePins();
    QWidget* makeParameters();
    QAction* addKey(const char* key, const QString& caption, const QString& tip, void (FrmGpio::*run)());
    int pin() const;
    void showPins();
    void showPin();
    void showParameters();
    void functionChosen(int index);
    void pressRow(int row);
    void edit(int row, const QString& first = {});
    bool entered(const QString& text);
    int valueWidth() const;
    void placeBox();
    void closeBox();
    void save();
    void printAsked();
    void toggleDocking();
    void closeAsked();
    bool editable(int row) const;

    Session& session_;
    MainCommands& commands_;
    PinManager core_;
    QToolBar* Toolbar1_ = nullptr;
    QAction* docking_ = nullptr;
    QListWidget* lstGPIO_Menu_ = nullptr;
    QComboBox* cmbGPIO_ = nullptr;
    QTableWidget* lstGPIO_ = nullptr;
    EntryBox* txtGPIOParam_ = nullptr;
    QLabel* lblHint_ = nullptr;
    std::vector<GpioPinRow> pins_;
    std::vector<GpioParamRow> rows_;
    std::vector<GpioFunctionList::Item> functions_;
    int editedRow_ = -1;
    int editedPin_ = -1;
    bool docked_ = true;
    bool moving_ = false;
};

}  // namespace zentaq
