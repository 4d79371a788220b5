// fraComm: the state of the link as lamps, texts and a progress bar, and the choice of the port.
// It renders LinkStatus and knows nothing of the protocol.
#pragma once

#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <functional>
#include <vector>

#include "link/link_status.h"
#include "platform/serial_port.h"

namespace zentaq {

/// The list of ports, read anew each time it opens.
class PortCombo : public QComboBox {
    Q_OBJECT

 public:
    PortCombo(std::function<std::vector<PortInfo>()> ports, QWidget* parent);

    /// Reads the list anew and selects a port: by its identity, or by its number where that is not known. A
    /// device that is absent is shown as such, though another one may have its number now.
    void fill(int selected, const std::string& identity);
    int selectedNumber() const { return currentData().toInt(); }
    /// The number of the port in use as the list has it; a dash where another device has its number.
    const QString& numberTold() const { return numberTold_; }
    std::string selectedIdentity() const { return currentData(identityRole).toString().toStdString(); }
    void showPopup() override;

 Q_SIGNALS:
    void filled();

 private:
    static constexpr int identityRole = Qt::UserRole + 1;

    void add(const QString& text, int number, const std::string& identity);

    std::function<std::vector<PortInfo>()> ports_;
    QString numberTold_;
};

class LinkPanel : public QFrame {
    Q_OBJECT

 public:
    LinkPanel(std::function<std::vector<PortInfo>()> ports, QWidget* parent);

    void render(const LinkStatus& status);
    PortCombo& ports() { return *ports_; }

 Q_SIGNALS:
    void autoDetectAsked();
    void portChosen(int number);

 protected:
    void changeEvent(QEvent* event) override;

 private:
    QLabel* makeLabel(const char* name, const QString& meaning);
    QWidget* makeFacts();
    QWidget* makePortRow(std::function<std::vector<PortInfo>()> ports);
    QWidget* makeProgress();
    void showPortInUse(const LinkStatus& status);
    void showPortNumber();
    void showFrameTimes(const LinkStatus& status);
    void showImage(LinkImage image);

    std::string shownPort_;
    std::string shownIdentity_;
    LinkImage image_ = LinkImage::None;
    QLabel* imgNotify_ = nullptr;
    QLabel* title_ = nullptr;
    QLabel* line1_ = nullptr;
    QLabel* line2_ = nullptr;
    QLabel* activity_ = nullptr;
    QLabel* frameTimes_ = nullptr;
    QLabel* send_ = nullptr;
    QLabel* receive_ = nullptr;
    QLabel* port_ = nullptr;
    QLabel* unit_ = nullptr;
    QLabel* serial_ = nullptr;
    QLabel* firmware_ = nullptr;
    PortCombo* ports_ = nullptr;
    QPushButton* autoDetect_ = nullptr;
    QStackedWidget* line1OrTimes_ = nullptr;
    QStackedWidget* factsOrLine2_ = nullptr;
    QStackedWidget* portOrProgress_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* percentage_ = nullptr;
    QLabel* message_ = nullptr;
};

}  // namespace zentaq
