#include "windows/mdi_main_about.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/system_text.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

FrmAbout::FrmAbout(Session& session, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle("About Zentaq");

    auto* name = new QLabel(shownString(session.AppName), this);
    name->setFont(typeFont(Type::Title));
    Unit& unit = session.currentUnitObject();
    auto* facts = new QFormLayout;
    const auto add = [&](const char* control, const QString& caption, const std::string& text) {
        QLabel* label = plainLabel(control, caption, this);
        label->setText(shownString(text));
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        facts->addRow(caption, label);
    };
    add("lblVersion", "Version", session.VersionText);
    add("lblFile", "File", session.CurrentFile);
    // A long path is broken where the screen ends.
    auto* file = findChild<QLabel*>("lblFile");
    file->setWordWrap(true);
    file->setMinimumWidth(std::min(file->fontMetrics().horizontalAdvance(file->text()),
                                   screen()->availableGeometry().width() / 2));
    add("lblFirmwareVersion", "Firmware version of the unit", unit.FirmWare());
    add("lblSerial", "Serial number of the unit", unit.Serial());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    QPushButton* system = buttons->addButton("&System Info...", QDialogButtonBox::ActionRole);
    system->setObjectName(QStringLiteral("cmdSysInfo"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(system, &QPushButton::clicked, this, &FrmAbout::showSystem);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(name);
    layout->addLayout(facts);
    layout->addWidget(buttons);
}

void FrmAbout::showSystem() {
    QMessageBox box(QMessageBox::Information, "System Info", shownString(systemText()), QMessageBox::Ok,
                    this);
    box.setTextFormat(Qt::PlainText);
    box.setObjectName(QStringLiteral("dlgMessage"));
    box.exec();
}

}  // namespace zentaq
