// frmGeneralConfig: creates a new calibration and shows the basic engine parameters of the one in hand. The
// core does the work; this window shows it and asks before a new calibration is dropped.
#pragma once

#include <QAction>
#include <QLabel>
#include <QPointer>
#include <QScrollArea>
#include <QToolBar>
#include <QWidget>
#include <memory>

#include "app/general_config.h"
#include "app/session.h"
#include "windows/form.h"
#include "windows/frm_general_config_form.h"

namespace zentaq {

class FrmGeneralConfig : public QWidget, public Form {
    Q_OBJECT

 public:
    /// Loads the core. The owner shows the window, and deletes it later once it has told that it is closed.
    explicit FrmGeneralConfig(Session& session, QWidget* parent = nullptr);
    ~FrmGeneralConfig() override;

    /// Begins anew with what is in hand now, for the command that finds the window open: a new calibration
    /// has been asked for, or another one opened.
    void reload();
    /// Reset: the values of the unit return to the fields. Nothing is sent.
    void reset();
    /// Fields that act on the running engine take the highlight colour.
    void onFlyChanged(bool on) override;
    /// The unit was changed elsewhere: the fields follow, but for the one that is being typed in.
    void showUnit() override;
    void sensorsChanged() override { showUnit(); }
    void saveNew() override { save(); }
    /// Key "Save" of the toolbar: behind the edits typed before it.
    void save();
    bool finishEdits() override;
    /// Room for the whole form, with what may come to it.
    QSize sizeHint() const override;

 Q_SIGNALS:
    void sensorManagerAsked();
    /// The calibration is a file now; its end follows.
    void saved();

 protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    void makeToolbar();
    void makeForm();
    QAction* addKey(const char* key, const QString& caption, const QString& tip);
    void chainTab();
    void place();
    void showState();
    void saveEnded(bool stored);
    void showIcons();
    void focusMoved(QWidget* now);
    void saveNow();
    bool mayClose();
    /// The core's work is over; only once.
    void unload();
    /// Runs a command of the core and tells the user why it failed. False then.
    template <typename Command>
    bool run(Command&& command);

    Session& session_;
    std::shared_ptr<GeneralConfig> core_;  ///< held while it may show a box: the form may go under it
    QToolBar* Toolbar1_ = nullptr;
    QLabel* lblHint_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    GeneralConfigForm* form_ = nullptr;
    QAction* save_ = nullptr;
    QAction* cancel_ = nullptr;
    bool placed_ = false;
    bool busy_ = false;  ///< a box of this window's own is open, or its save is on the way to the disk
    QPointer<QWidget> focusAtSave_;
    bool unloaded_ = false;
};

}  // namespace zentaq
