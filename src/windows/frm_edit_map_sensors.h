// frmEditMAPSensors, "MAP Sensor Manager": the list of MAP sensors, and the two points from which a sensor's
// line is made. All checks, questions and changes are SensorManager's; the form shows and hands on.
#pragma once

#include <QButtonGroup>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QWidget>
#include <array>
#include <memory>

#include "app/sensor_manager.h"
#include "qt/page_area.h"
#include "windows/form.h"
#include "windows/sensor_line_picture.h"

namespace zentaq {

class FrmEditMAPSensors : public QWidget, public Form {
    Q_OBJECT

 public:
    FrmEditMAPSensors(Session& session, QWidget* parent);

    /// Reads the list again. An entry in hand stays as it is.
    void sensorsChanged() override;

 protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    QWidget* makeList();
    QWidget* makeInfo();
    QWidget* makeEntry();
    QWidget* makeUnits();
    QLineEdit* makeBox(SensorBox box, const QString& meaning, const char* helpKey);
    QPushButton* makeButton(const char* name, const QString& caption, void (FrmEditMAPSensors::*run)());
    void setTabOrders();

    void begin(bool (SensorManager::*task)());
    void edit() { begin(&SensorManager::edit); }
    void create() { begin(&SensorManager::create); }
    void remove();
    void save();
    void cancel();
    void exit() { close(); }
    void selectionChanged();
    bool listKey(const QKeyEvent& event);
    void enterPressed();

    SensorEntry entry() const;
    void beginEntry();
    void showAll();
    void fillList();
    void showEntry();
    void showButtons();
    void showPicture();
    void showStatus();
    void offer(QPushButton* button, const std::string& whyNot);

    Session& session_;
    std::shared_ptr<SensorManager> manager_;  ///< held while it may show a box: the form may go under it
    QTabWidget* tabMAPSensors_ = nullptr;
    PageArea* area_ = nullptr;
    QBoxLayout* columns_ = nullptr;  ///< the list, and the sensor beside it or below it
    QLabel* lblInstalled_ = nullptr;
    QListWidget* lstMAPSensors_ = nullptr;
    QGroupBox* fraInfo_ = nullptr;
    QLabel* lblGeneral_ = nullptr;
    std::array<QLineEdit*, sensorBoxes> txtPV_{};
    QButtonGroup* optUnits_ = nullptr;
    QPushButton* cmdEdit_ = nullptr;
    QPushButton* cmdNew_ = nullptr;
    QPushButton* cmdRemove_ = nullptr;
    QPushButton* cmdSave_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QPushButton* cmdExit_ = nullptr;
    QLabel* lblStatus_ = nullptr;
    SensorLinePicture* picLine_ = nullptr;
    std::string told_;  ///< what the last command did
};

}  // namespace zentaq
