#include "windows/link_lamp.h"

#include <QApplication>

#include "qt/look.h"
#include "qt/plain_label.h"

namespace zentaq {

QLabel* makeLinkLamp(const char* name, const QString& text, const QString& meaning, QWidget* parent) {
    QLabel* lamp = plainLabel(name, meaning, parent);
    lamp->setText(text);
    lamp->setToolTip(meaning);
    lamp->setAlignment(Qt::AlignCenter);
    lamp->setAutoFillBackground(true);
    lamp->setFrameShape(QFrame::Box);
    lamp->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    lamp->setMinimumWidth(lamp->fontMetrics().horizontalAdvance(QStringLiteral("MMM")));
    return lamp;
}

void light(QLabel& lamp, bool on, const QColor& color, const QString& lit) {
    QPalette palette = lamp.parentWidget()->palette();
    if (on) {
        palette.setColor(QPalette::Window, color);
        palette.setColor(QPalette::WindowText, lookColors(appliedLook(*qApp)).lampText);
    } else {
        palette.setColor(QPalette::Window, palette.color(QPalette::Button));
    }
    if (lamp.palette() != palette) lamp.setPalette(palette);
    const QString said = on ? lit : QStringLiteral("at rest");
    if (lamp.accessibleDescription() != said) lamp.setAccessibleDescription(said);
}

}  // namespace zentaq
