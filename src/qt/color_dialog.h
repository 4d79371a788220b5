// A color of the user's choice, from the toolkit's own picker.
#pragma once

#include <QColor>
#include <QString>
#include <optional>

class QWidget;

namespace zentaq {

/// Waits for the user; nothing where the choice is given up. On a small screen the picker scrolls and its
/// buttons stay in sight.
std::optional<QColor> chooseColor(const QColor& initial, const QString& title, QWidget* parent);

}  // namespace zentaq
