// The toolbar of a table window: its commands, the two times beside the grid and the live reading.
#pragma once

#include "tables/table_model.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolBar>
#include <functional>
#include <map>

namespace zentaq {

class TableToolbar : public QToolBar {
    Q_OBJECT

 public:
    explicit TableToolbar(QWidget* parent);

    struct Item {
        const char* key;
        const char* caption;
        const char* tip = "";
        bool checkable = false;
    };
    /// A button, or an item of the menu behind a button of that name. Without a command it comes with a later
    /// release.
    void add(const Item& item, std::function<void(const QString& caption)> run, const char* menu = nullptr);
    void addSeparatorTo(const char* menu) { menus_.at(menu)->addSeparator(); }
    /// Behind the last button: txtTOG, txtIOT and the live reading.
    void addFields();

    QLineEdit* timeOfGap() const { return txtTOG_; }
    QLineEdit* injectorOn() const { return txtIOT_; }
    QAction* action(const QString& key) const { return actions_.at(key); }

    void setTitle(const QString& title) { lblTitle_->setText(title); }
    /// Which items are shown, enabled and checked.
    void showItems(TableModel& model, bool docked);
    /// The live value of the table.
    void showReading(const TableKind& table, const LiveValues& live);

 private:
    QLineEdit* makeTimeField(const char* name, const char* member, const char* helpKey);
    QMenu* menu(const char* name);

    QLabel* lblTitle_ = nullptr;
    QLabel* lblDspTable_ = nullptr;
    QLabel* lblDspTableVal_ = nullptr;
    QLabel* lblTOG_ = nullptr;
    QLabel* lblIOT_ = nullptr;
    QLineEdit* txtTOG_ = nullptr;
    QLineEdit* txtIOT_ = nullptr;
    std::map<QString, QAction*> actions_;
    std::map<QString, QMenu*> menus_;
};

}  // namespace zentaq
