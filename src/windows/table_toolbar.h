// The toolbar of a table window: which view is in force and who moves the cursor, its commands, the two times
// beside the grid and the live reading. What does not fit stands in a second line; rows of the table count
// more than words: only as many buttons have their captions, the most used ones first, as push nothing into
// another line. Nothing in it moves when captions or states change.
#pragma once

#include "qt/look.h"
#include "tables/table_badges.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QStackedLayout>
#include <QToolButton>
#include <QWidget>
#include <array>
#include <functional>
#include <map>
#include <vector>

namespace zentaq {

class TableToolbar : public QWidget {
    Q_OBJECT

 public:
    explicit TableToolbar(QWidget* parent);

    struct Item {
        const char* key;
        const char* caption;
        const char* tip = "";
        bool checkable = false;
        const char* icon = "";
    };
    /// A button, or an item of the menu behind a button of that name. Without a command it comes with a later
    /// release.
    void add(const Item& item, std::function<void(const QString& caption)> run, const char* menu = nullptr);
    /// The same for names and captions that are made; always an item of a menu.
    void addNamed(const QString& name, const QString& caption,
                  std::function<void(const QString& caption)> run, const char* menuName);
    void addSeparatorTo(const char* menuName) { menus_.at(menuName)->addSeparator(); }
    /// The tip of the button of a menu.
    void explain(const char* menuName, const QString& tip);
    /// Behind the last button: txtTOG, txtIOT and the live reading.
    void addFields();

    QLineEdit* timeOfGap() const { return txtTOG_; }
    QLineEdit* injectorOn() const { return txtIOT_; }
    QAction* action(const QString& key) const { return actions_.at(key); }

    void setMode(DisplayMode mode);
    void showBadges(const TableBadges& badges);
    /// Which items are shown, enabled and checked.
    void showItems(TableModel& model, bool docked);
    /// The live value of the table.
    void showReading(const TableKind& table, const LiveValues& live);

 Q_SIGNALS:
    /// "X_RPM", "Y_CLT": another kind for an axis of an output table.
    void axisPicked(const QString& key);

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    void onTriggered(QAction& action, std::function<void(const QString& caption)> run);
    QToolButton* makeButton(const QString& name, const QString& icon);
    QLabel* makeBadge(const char* name, const QString& meaning, std::span<const std::string_view> texts);
    QToolButton* button(const QString& name) const;
    void fit();
    QLineEdit* makeTimeField(const char* name, const char* member, const char* helpKey);
    QMenu* menu(const char* name);
    QToolButton* makeAxisButton(char axis, QWidget* parent);
    void fitAxes();
    void showAxes(const ToolbarItems& items);

    std::vector<QToolButton*> buttons_;
    std::vector<QToolButton*> byUse_;  ///< the same, the most used ones first
    DisplayMode mode_ = DisplayMode::Day;
    TableBadges badges_;
    QLabel* lblView_ = nullptr;
    QLabel* lblCursor_ = nullptr;
    QWidget* fields_ = nullptr;
    QLabel* lblDspTable_ = nullptr;
    QLabel* lblDspTableVal_ = nullptr;
    QLabel* lblAcross_ = nullptr;            ///< behind "x-axis"
    QStackedLayout* timesOrAxes_ = nullptr;  ///< a table has one or the other, in the same room
    QToolButton* columnAxis_ = nullptr;
    QToolButton* rowAxis_ = nullptr;
    QLabel* lblTOG_ = nullptr;
    QLabel* lblIOT_ = nullptr;
    QLineEdit* txtTOG_ = nullptr;
    QLineEdit* txtIOT_ = nullptr;
    std::map<QString, QAction*> actions_;
    std::map<QString, QMenu*> menus_;
};

}  // namespace zentaq
