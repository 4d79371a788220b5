// A lamp of the link: a short word that lights up in a colour.
#pragma once

#include <QLabel>

namespace zentaq {

QLabel* makeLinkLamp(const char* name, const QString& text, const QString& meaning, QWidget* parent);

/// At rest a lamp has the colour of a button's face.
void light(QLabel& lamp, bool on, const QColor& color, const QString& lit);

}  // namespace zentaq
