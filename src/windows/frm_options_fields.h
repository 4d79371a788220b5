// The controls of the options window, made from the table of options: one row of controls for each option.
// They show what the core holds and tell what the user enters.
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

namespace zentaq {

class OptionFields : public QObject {
    Q_OBJECT

 public:
    /// `ports` is the list of this moment.
    OptionFields(Options& options, std::function<std::vector<PortInfo>()> ports, QWidget* parent);

    /// One page with all its controls, in groups of what belongs together.
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
    struct Field {
        const OptionRow* row = nullptr;
        QWidget* control = nullptr;
        QWidget* strip = nullptr;
    };

    QWidget* makeGroup(std::string_view helpKey, QWidget* parent);
    void addRow(const OptionRow& row, QWidget* group);
    QWidget* makeControl(const OptionRow& row, QWidget* strip);
    QWidget* makePorts(const OptionRow& row, QWidget* strip);
    QWidget* makeDetectButton(const OptionRow& row, QWidget* strip);
    QWidget* makeCheck(const OptionRow& row, QWidget* strip);
    QWidget* makeChoice(const OptionRow& row, QWidget* strip);
    QWidget* makeText(const OptionRow& row, QWidget* strip);
    QWidget* makeColour(const OptionRow& row, QWidget* strip);
    QWidget* makeSlider(const OptionRow& row, QWidget* strip);
    QWidget* makeList(const OptionRow& row, QWidget* strip);
    QLabel* addCaption(const OptionRow& row, QWidget* strip, QWidget* buddy);
    void addUnit(const OptionRow& row, QWidget* strip);
    void alignCaptions(const QWidget* page) const;
    void change(const OptionRow& row, const QString& value);
    void itemChanged(const QListWidgetItem* item);
    void show(const Field& field);
    void showColours();
    void showList(QListWidget& list) const;
    void showCount() const;

    Options& options_;
    std::function<std::vector<PortInfo>()> ports_;
    std::map<QString, Field> fields_;
    std::map<std::string_view, QButtonGroup*> groups_;
    std::vector<QLabel*> captions_;
    QListWidget* viewList_ = nullptr;
    QLabel* lblViewCheck_ = nullptr;
    QLabel* lblViewHint_ = nullptr;
    QLabel* lblColorHint_ = nullptr;
    QLabel* lblADUR_ = nullptr;
    QLabel* lblCLTunits_ = nullptr;
    QLabel* lblMATunits_ = nullptr;
    int colourButtons_ = 0;
};

}  // namespace zentaq
