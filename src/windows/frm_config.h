// frmConfig: the workspace. The tree on the left, the pages and the docked table beside it, the consoles and
// the link panel below. It shows what the session holds and hands every click to the core.
#pragma once

#include <QLabel>
#include <QPointer>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeWidget>
#include <QWidget>

#include "app/main_commands.h"
#include "app/session.h"
#include "windows/frm_config_console.h"
#include "windows/frm_config_link_panel.h"
#include "windows/frm_config_page_view.h"

namespace zentaq {

class FrmConfig : public QWidget {
    Q_OBJECT

 public:
    FrmConfig(Session& session, MainCommands& commands, QWidget* parent = nullptr);

    // ---- What the core asks for
    void showStartTab();  ///< first tab selected, second one hidden
    void setupNodes();
    void showUnit();
    void onFlyChanged(bool on);
    void showCommList(bool on) { lstCommInfo_->setVisible(on); }
    void showTip(const std::string& text);
    void focusTree() { treeZentaq_->setFocus(); }

    // ---- Called when the change counters have moved
    void refreshConsoles();
    void refreshLink();
    /// The port was chosen elsewhere.
    /// Shows the port in use; the options may have stored another one.
    void refreshPorts();

    // ---- The table window inside the workspace
    void dock(QWidget* table, const QString& title);
    void undock();
    bool docked() const { return table_ != nullptr; }

    /// The help key of the field in hand; empty when there is none.
    QString helpKey() const;

 Q_SIGNALS:
    /// A button of the start tab stands for this entry of the menu.
    void entryAsked(const char* entry);

 private:
    QWidget* makeStartTab();
    QWidget* makeDoors(QWidget* tab);
    QWidget* makePageTab();
    QWidget* makeBottom();
    void treeClicked(const QTreeWidgetItem* item);
    void showPage(int page, const QString& title);
    void showRows();
    void autoDetect();
    void choosePort(int number);

    Session& session_;
    MainCommands& commands_;
    QTreeWidget* treeZentaq_ = nullptr;
    QTabWidget* sstMenu_ = nullptr;
    QLabel* lblTip_ = nullptr;
    QLabel* lblStart_ = nullptr;
    QLabel* lblPageTitle_ = nullptr;
    PageView* pageView_ = nullptr;
    ConsoleView* lstLog_ = nullptr;
    ConsoleView* lstCommInfo_ = nullptr;
    LinkPanel* fraComm_ = nullptr;
    QPointer<QWidget> table_;
    int page_ = 0;
    bool onFly_ = false;
};

}  // namespace zentaq
