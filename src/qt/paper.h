// Printing through the system's printer dialog, on white paper: a table or a picture whole on one page, or
// pages of text.
#pragma once

#include <QAbstractItemModel>
#include <QPainter>
#include <QPixmap>
#include <QPrinter>
#include <QString>
#include <QWidget>

namespace zentaq {

/// Asks for the printer and prints. False: the user has given it up. `owner` is the window that asked.
bool printTable(const QAbstractItemModel& table, const QString& title, const QString& file, QWidget* owner);

/// Asks for the printer, on paper that lies on its side. False: given up. `owner` is the window that asked.
bool showPrinterDialog(QPrinter& printer, QWidget* owner);

/// Draws a page of text of at most so many columns and lines, as large as these fit.
void drawLines(QPainter& painter, const QRect& page, const QString& text, int columns, int lines);

/// Draws a picture as large as the page has room for.
void drawPicture(QPainter& painter, const QRect& page, const QPixmap& picture, const QString& title);

/// Draws the table into a page: title, file, headers and cells, as large as they fit.
void drawTable(QPainter& painter, const QRect& page, const QAbstractItemModel& table, const QString& title,
               const QString& file);

}  // namespace zentaq
