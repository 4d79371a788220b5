#include "windows/mdi_main_about.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/system_text.h"
#include "qt/look.h"
#include "qt/qt_text.h"

namespace zentaq {

FrmAbout::FrmAbout(Session& session, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(tr("About Zentaq"));

    auto* name = new QLabel(shownString(session.AppName), this);
    name->setFont(valueFont(1.8));
    Unit& unit = session.currentUnitObject();
    auto* facts = new QFormLayout;
    const auto add = [&](const char* control, const QString& caption, const std::string& text) {
        auto* label = new QLabel(shownString(text), this);
        label->setObjectName(QLatin1String(control));
        label->setAccessibleName(caption);
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        facts->addRow(caption, label);
    };
    add("lblVersion", tr("Version"), session.VersionText);
    add("lblFile", tr("File"), session.CurrentFile);
    add("lblFirmwareVersion", tr("Firmware version"), unit.FirmWare());
    add("lblSerial", tr("Serial number"), unit.Serial());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    QPushButton* system = buttons->addButton(tr("&System Info..."), QDialogButtonBox::ActionRole);
    system->setObjectName(QStringLiteral("cmdSysInfo"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(system, &QPushButton::clicked, this, &FrmAbout::showSystem);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(name);
    layout->addLayout(facts);
    layout->addWidget(buttons);
}

void FrmAbout::showSystem() {
    QMessageBox box(QMessageBox::Information, tr("System Info"), shownString(systemText()), QMessageBox::Ok,
                    this);
    box.setTextFormat(Qt::PlainText);
    box.setObjectName(QStringLiteral("dlgMessage"));
    box.exec();
}

}  // namespace zentaq
