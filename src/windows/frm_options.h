// frmOptions: the window that edits the preferences. Its pages are made from the table of options; what is
// stored, when and in which order is the core's.
#pragma once

#include <QColor>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <functional>
#include <memory>
#include <optional>

#include "app/main_commands.h"
#include "app/options.h"
#include "app/session.h"
#include "qt/find_box.h"
#include "qt/focus_keeper.h"
#include "windows/form.h"
#include "windows/frm_options_fields.h"

namespace zentaq {

/// Asks for a colour, beginning with `initial`; nothing when the user declines.
using ChooseColour =
    std::function<std::optional<QColor>(const QColor& initial, const QString& title, QWidget* parent)>;

class FrmOptions : public QDialog, public Form {
    Q_OBJECT

 public:
    /// The page with the dashboard's mode and colours.
    static constexpr int monitorPage = static_cast<int>(OptionPage::Dashboard);

    FrmOptions(Session& session, MainCommands& commands, QWidget* parent = nullptr);
    ~FrmOptions() override;

    void openOn(const std::string& on, const std::string& title) override;
    /// Turns to a page; the first one for a number that is none.
    void showPage(int page);
    /// In the place of the platform's colour dialog.
    void chooseColourWith(ChooseColour choose) { chooseColour_ = std::move(choose); }
    /// Turns to an option, gives it the focus and marks it.
    void goTo(const QString& control);
    /// What the strip of the marked option is painted with; null when none is marked.
    QWidget* marked() const { return marked_; }

    void done(int result) override;
    QSize sizeHint() const override;

 protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

 private:
    void makePages();
    void helpOnPage(int page);
    void turnWith(const QKeySequence& keys, int pages);
    void fitTabs();
    /// What turns the pages: the tabs, or the list in their place.
    QWidget& pageChooser();
    QLayout* makeButtons();
    QPushButton* makeButton(const char* name, const QString& text);
    void load();
    void unload();
    void takeOver();
    bool applyAll();
    void applyAndClose();
    void detectPort();
    void searching(bool on);
    void chooseColour(const QString& control);
    void found(const QString& control, const QString& query);
    void focusMoved(QWidget* now);
    void mark(QWidget* strip);
    void paintMark();

    Session& session_;
    MainCommands& commands_;
    std::shared_ptr<Options> options_;  ///< shared with a running command, which yields
    OptionFields* fields_ = nullptr;
    FindBox* finder_ = nullptr;
    QTabWidget* SSTab1_ = nullptr;
    QComboBox* cmbPage_ = nullptr;
    QLabel* lblHelp_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QPushButton* cmdApply_ = nullptr;
    QPointer<QWidget> marked_;
    ChooseColour chooseColour_;
    FocusKeeper keeper_;
    bool loaded_ = false;
};

}  // namespace zentaq
