// frmConfig: the workspace. The tree on the left, the pages and the docked table beside it, the consoles and
// the link panel below. It shows what the session holds and hands every click to the core.
#pragma once

#include <QLabel>
#include <QStackedWidget>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QWidget>
#include <map>
#include <memory>

#include "app/main_commands.h"
#include "app/session.h"
#include "qt/find_box.h"
#include "qt/page_area.h"
#include "windows/dock.h"
#include "windows/form.h"
#include "windows/frm_config_bottom.h"
#include "windows/frm_config_page_form.h"
#include "windows/frm_config_page_view.h"
#include "windows/recorder_page.h"
#include "windows/start_page.h"

namespace zentaq {

class FrmConfig : public QWidget, public Form {
    Q_OBJECT

 public:
    FrmConfig(Session& session, MainCommands& commands, QWidget* parent = nullptr);

    void openOn(const std::string& on, const std::string& title) override;
    void takeBack() override;
    void follow() override;
    void windowClosed() override;

    void showStartTab() override;
    void setupNodes() override;
    void showUnit() override;
    void sensorsChanged() override { showUnit(); }
    void onFlyChanged(bool on) override;
    /// What is being typed on a page is entered.
    bool finishEdits() override;
    void showCommList(bool on) override { bottom_->showCommList(on); }
    void showTip(const std::string& text) override;
    void foldsChanged() override;
    void recorderChanged() override { recorderPage_->recorderChanged(); }
    void logChanged() override { recorderPage_->logChanged(); }
    void killTimers() override { recorderPage_->killTimers(); }
    void cellsChanged() override { recorderPage_->calibrationChanged(); }
    void initializeRecorderRows() override { recorderPage_->initializeRows(); }

    /// The tree, or what opens it again.
    void focusTree();
    /// A control that the user has chosen keeps the keyboard if it is still there.
    void takeFocusIfFree();

    /// The place of the table inside the workspace.
    Dock& dock() { return *dock_; }

    /// The help key of the field in hand; empty when there is none.
    QString helpKey() const;

 Q_SIGNALS:
    /// A button of the start page stands for this entry of the menu.
    void entryAsked(const char* entry);

 protected:
    void resizeEvent(QResizeEvent* event) override;

 private:
    void selectStartTab();
    void fillTree();
    void fillNodes();
    /// Shows the port in use; the options may have stored another one.
    void refreshPorts();
    QWidget* makeStartTab();
    void showStartPage();
    QWidget* makePageTab();
    QWidget* makeFoldTree();
    void makeBottom();
    void foldTree();
    /// Whether sixteen rows of a table stand above what is open at the bottom.
    void measureRoom();
    /// Whether eight stand beside an open dashboard.
    void measureDashboard(int bar);
    void treeClicked(const QTreeWidgetItem* item);
    /// The tree, on the place of a table.
    void goToTable(const std::string& table);
    void showPage(int page, const QString& title);
    void showRows(bool again);
    /// The tree follows what it depends on: the node in hand stays in hand.
    void followTree();
    bool hasFields() const;
    std::vector<FindBox::Hit> foundFields(const QString& query);
    /// Goes to a field: "9 txtREV_Primary".
    void goToField(const QString& key);
    /// Goes to the first field of a member, or opens its table: "CHKTBL[3]".
    void goToMember(const QString& member);
    void autoDetect();
    void choosePort(int number);

    Session& session_;
    MainCommands& commands_;
    QTreeWidget* treeZentaq_ = nullptr;
    QTabWidget* sstMenu_ = nullptr;
    StartPage* startPage_ = nullptr;
    RecorderPage* recorderPage_ = nullptr;
    PageArea* recorderArea_ = nullptr;
    QLabel* lblPageTitle_ = nullptr;
    QStackedWidget* pageStack_ = nullptr;  ///< a list of facts, or fields
    PageView* pageView_ = nullptr;
    PageForm* pageForm_ = nullptr;
    FindBox* finder_ = nullptr;
    KeptSplitter* splTree_ = nullptr;
    KeptSplitter* splConsole_ = nullptr;
    ConfigBottom* bottom_ = nullptr;
    QToolButton* cmdFoldTree_ = nullptr;
    std::unique_ptr<Dock> dock_;
    std::uint64_t consoleSeen_ = 0;
    std::uint64_t linkSeen_ = 0;
    bool treeReady_ = false;
    int page_ = 0;
    std::map<std::string, std::string> helpTexts_;  ///< by key, as far as they were asked for
    bool onFly_ = false;
};

}  // namespace zentaq
