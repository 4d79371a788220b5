// Printing: a table on white paper, whole on one page, through the system's printer dialog.
#pragma once

#include <QAbstractItemModel>
#include <QPainter>
#include <QString>
#include <QWidget>

namespace zentaq {

/// Asks for the printer and prints. False: the user has given it up. `owner` is the window that asked.
bool printTable(const QAbstractItemModel& table, const QString& title, const QString& file, QWidget* owner);

/// Draws the table into a page: title, file, headers and cells, as large as they fit.
void drawTable(QPainter& painter, const QRect& page, const QAbstractItemModel& table, const QString& title,
               const QString& file);

}  // namespace zentaq
