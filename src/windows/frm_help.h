// frmHelp: the user guide in a window. Contents or the hits of a search at the left, the page at the right.
// Everything comes from the guide's folder; nothing is fetched from the net.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QStackedWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QWidget>
#include <string>

#include "guide/guide.h"
#include "platform/settings_store.h"
#include "windows/form.h"
#include "windows/guide_page.h"

namespace zentaq {

class FrmHelp : public QWidget, public Form {
    Q_OBJECT

 public:
    /// A window of its own. A folder without a guide shows a text that says so.
    FrmHelp(const std::string& guideFolder, SettingsStore& settings, QWidget* parent);

    /// Shows a topic and brings the window to the front. Empty: the contents. "tables" is a chapter,
    /// "tables#axes" a place in it; a topic that the guide lacks shows the contents.
    void open(const std::string& topic);
    void openOn(const std::string& on, const std::string& /*title*/) override { open(on); }

 protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    void readGuide();
    void makeToolbar();
    QWidget* makeSide();
    QWidget* makeReading();
    QWidget* makeFindBar();
    void fillContents();
    void search();
    void openHit(const QListWidgetItem* hit);
    void goTo(const std::string& topic);
    void pageChanged();
    void markContents();
    void showSections(QTreeWidgetItem* chapter);
    void showFindBar();
    void hideFindBar();
    void findText(bool backward);

    std::string folder_;
    Guide guide_;
    SettingsStore& settings_;
    QToolBar* toolbar_ = nullptr;
    QAction* back_ = nullptr;
    QAction* forward_ = nullptr;
    QAction* contents_ = nullptr;
    QLineEdit* txtSearch_ = nullptr;
    QStackedWidget* side_ = nullptr;
    QTreeWidget* treeContents_ = nullptr;
    QTreeWidgetItem* opened_ = nullptr;  ///< the chapter on the screen
    QListWidget* lstHits_ = nullptr;
    GuidePage* page_ = nullptr;
    QWidget* fraFind_ = nullptr;
    QLineEdit* txtFind_ = nullptr;
    QLabel* lblFound_ = nullptr;
    QLabel* lblNotice_ = nullptr;
};

}  // namespace zentaq
