#include "qt/color_dialog.h"

#include <QColorDialog>
#include <QDialog>
#include <QDialogButtonBox>
#include <QScreen>
#include <QVBoxLayout>

#include "qt/named.h"
#include "qt/page_area.h"

namespace zentaq {

std::optional<QColor> chooseColor(const QColor& initial, const QString& title, QWidget* parent) {
    QDialog dialog(parent);
    named(&dialog, "dlgColor", title);
    dialog.setWindowTitle(title);

    auto* area = new PageArea(&dialog);
    auto* picker = named(new QColorDialog(initial, area), "picker", title);
    picker->setWindowFlags(Qt::Widget);
    picker->setOptions(QColorDialog::NoButtons | QColorDialog::DontUseNativeDialog);
    area->setPage(picker);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);

    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    // Enter and Esc, which the picker takes for its own.
    QObject::connect(picker, &QDialog::accepted, &dialog, &QDialog::accept);
    QObject::connect(picker, &QDialog::rejected, &dialog, &QDialog::reject);

    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(area);
    layout->addWidget(buttons);
    picker->show();
    const QSize room = dialog.screen()->availableGeometry().size();
    // The bar of an area that scrolls takes room from its page.
    const QSize wanted = dialog.sizeHint() + QSize(area->verticalScrollBar()->sizeHint().width(), 0);
    const int titleBar = dialog.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &dialog);
    dialog.resize(wanted.boundedTo(room - QSize(0, titleBar)));
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return picker->currentColor();
}

}  // namespace zentaq
