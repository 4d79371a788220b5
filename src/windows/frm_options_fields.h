// The pages of the options window, made from the table of options: a strip for each option, in groups of what
// belongs together. The controls show what the core holds and tell what the user enters.
#pragma once

#include <QButtonGroup>
#include <QLabel>
#include <QListWidget>
#include <QWidget>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/options.h"
#include "platform/serial_port.h"
#include "qt/field_control.h"

namespace zentaq {

class PortCombo;

class OptionFields : public QObject {
    Q_OBJECT

 public:
    /// `ports` is the list of this moment.
    OptionFields(Options& options, std::function<std::vector<PortInfo>()> ports, QWidget* parent);

    /// One page with all its controls.
    QWidget* makePage(OptionPage page, QWidget* parent);

    /// Brings every control up to date with the core.
    void showAll();
    /// The control of an option by its name, "optMonitorMode(0)"; null for another name.
    QWidget* control(const QString& name) const;
    /// The strip of the page that an option takes up.
    QWidget* strip(const QString& name) const;
    /// The option whose strip holds a widget; null for none.
    const OptionRow* rowAt(const QWidget* widget) const;
    /// Points at the first data point whose name holds a text.
    void showDataPoint(const QString& text);

 Q_SIGNALS:
    void detectAsked();
    /// A "Choose" button: the colour field's name.
    void colourAsked(const QString& control);

 private:
    struct Strip {
        const OptionRow* row = nullptr;
        FieldControl* field = nullptr;
        QWidget* strip = nullptr;
    };

    QWidget* makeGroup(std::string_view helpKey, QWidget* parent);
    void addRow(const OptionRow& row, QWidget* group);
    void addLine(const OptionRow& row, QWidget* strip, FieldControl& field);
    FieldControl* makeField(const OptionRow& row, QWidget* strip);
    QWidget* makePorts(QWidget* strip);
    QWidget* makeList(const OptionRow& row, QWidget* strip);
    void addColourHint(QWidget* group);
    void alignCaptions(const QWidget* page) const;
    bool enter(const OptionRow& row, const std::string& text);
    void itemChanged(const QListWidgetItem* item);
    void showPort();
    void showList() const;
    void showCount() const;

    Options& options_;
    std::function<std::vector<PortInfo>()> ports_;
    std::map<QString, Strip> strips_;
    std::map<std::string_view, QButtonGroup*> groups_;
    std::vector<QLabel*> captions_;
    PortCombo* cmbCOMM_ = nullptr;
    QListWidget* viewList_ = nullptr;
    QLabel* lblViewCheck_ = nullptr;
    QLabel* lblViewHint_ = nullptr;
    QLabel* lblColorHint_ = nullptr;
};

}  // namespace zentaq
