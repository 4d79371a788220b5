// The controls of frmGeneralConfig in their four groups. They show what the core answers for each control
// and hand every entry on; nothing is checked or computed here.
#pragma once

#include <QBoxLayout>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "app/general_config.h"
#include "qt/field_control.h"
#include "qt/value_label.h"

namespace zentaq {

class GeneralConfigForm : public QWidget {
    Q_OBJECT

 public:
    /// What the form asks of its core. A failure has been told by the time they answer.
    struct Core {
        std::function<Field(const std::string& control)> field;
        std::function<bool(const std::string& control, const std::string& text)> enter;
        std::function<QString()> computed;  ///< "Zentaq Calculated TOG"
    };

    GeneralConfigForm(Core core, QWidget* parent);
    ~GeneralConfigForm() override;

    /// Shows every control anew. What is just being typed stays.
    void refresh();
    /// Forgets what has been typed and not handed over.
    void bringBack();
    /// Hands over what has been typed. False when it was refused.
    bool commit();
    /// Fields that act on the running engine take the highlight colour.
    void highlight(bool onTheFly);
    /// The groups stand in two columns where a window of this width has room for them, else in one.
    void fitTo(int width);
    /// What it may grow by when a model brings engines with longer names, in pixels.
    int growth() const;
    /// The first control that is still to be filled, or the first of all.
    void focusFirst();
    /// What a new calibration still lacks, "Choose a model"; empty when nothing.
    QString missing() const;
    /// The controls in the order of the Tab key; of a group of options the first.
    std::vector<QWidget*> tabOrder() const;

 Q_SIGNALS:
    void sensorManagerAsked();
    /// Something was handed over and the controls show what followed.
    void entered();

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    struct Column;

    // ---- Making
    QGridLayout* makeColumn();
    void makeUnitGroup(Column& column);
    void makeSensorGroup(Column& column);
    void makeEngineGroup(Column& column);
    void makeInjectorGroup(Column& column);
    void heading(Column& column, const char* name, const QString& text);
    FieldControl& field(const std::string& name);
    /// A row of caption, box and limits.
    void boxRow(Column& column, const std::string& name);
    void listRow(Column& column, const std::string& name);
    void wideListRow(Column& column, const std::string& name);
    void fitWideRows();
    void ratingRow(Column& column);
    void dimensionsRow(Column& column);
    void peakRow(Column& column);
    void alcoholRow(Column& column);
    void flowRow(Column& column);
    void computedRow(Column& column);
    QWidget* makeManagerButton();

    FieldControl& find(std::string_view name) const;
    bool hand(const std::string& name, const std::string& text);

    Core core_;
    QBoxLayout* columns_ = nullptr;
    std::vector<FieldControl*> controls_;
    QPushButton* cmdManager_ = nullptr;
    std::vector<QLabel*> wideCaptions_;
    /// A list of long names and its caption: beside each other where the longest name has room.
    struct WideRow {
        QBoxLayout* row;
        const QLabel* caption;
        const QComboBox* list;
    };
    std::vector<WideRow> wideRows_;
    int width_ = 0;  ///< of the window, as it was told last
    QLabel* lblDimensions_ = nullptr;
    QLabel* lblComputed_ = nullptr;
    QLabel* lblComputedUnit_ = nullptr;
    ValueLabel* lblUAP_ = nullptr;
    bool onTheFly_ = false;
    bool swallowClick_ = false;
};

}  // namespace zentaq
