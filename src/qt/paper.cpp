#include "qt/paper.h"

#include <QPrintDialog>
#include <QPrinter>
#include <algorithm>

#include "qt/look.h"

namespace zentaq {

namespace {

constexpr int headingLines = 3;
constexpr double fill = 0.62;  ///< of a cell's height that its digits take

QString headerOf(const QAbstractItemModel& table, int section, Qt::Orientation orientation) {
    return table.headerData(section, orientation, Qt::DisplayRole).toString();
}

int longestText(const QAbstractItemModel& table) {
    qsizetype longest = 1;
    for (int row = 0; row < table.rowCount(); ++row) {
        longest = std::max(longest, headerOf(table, row, Qt::Vertical).size());
        for (int column = 0; column < table.columnCount(); ++column)
            longest = std::max(longest, table.index(row, column).data(Qt::DisplayRole).toString().size());
    }
    for (int column = 0; column < table.columnCount(); ++column)
        longest = std::max(longest, headerOf(table, column, Qt::Horizontal).size());
    return static_cast<int>(longest);
}

}  // namespace

void drawTable(QPainter& painter, const QRect& page, const QAbstractItemModel& table, const QString& title,
               const QString& file) {
    const int rows = table.rowCount() + 1;
    const int columns = table.columnCount() + 1;
    const int width = page.width() / columns;
    // A digit is about half as wide as it is high.
    const int byWidth = static_cast<int>(width / (0.65 * (longestText(table) + 1)) / fill);
    const int height = std::min(page.height() / (rows + headingLines), std::max(byWidth, 1));
    QFont font = typeFont(Type::Body);
    font.setPixelSize(std::max(1, static_cast<int>(height * fill)));
    // Paper is white, as the surface is by day.
    const LookColors look = lookColors(DisplayMode::Day);
    painter.fillRect(page, look.surface);
    painter.setPen(look.text);
    QFont heading = font;
    heading.setBold(true);
    painter.setFont(heading);
    const QRect line(page.left(), page.top(), page.width(), height);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, title);
    painter.setFont(font);
    const QRect second = line.translated(0, height);
    painter.drawText(second, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(file, Qt::ElideMiddle, second.width()));
    const int top = page.top() + headingLines * height;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const QRect cell(page.left() + column * width, top + row * height, width, height);
            const bool header = row == 0 || column == 0;
            painter.setFont(header ? heading : font);
            painter.setPen(look.border);
            painter.drawRect(cell);
            painter.setPen(look.text);
            QString text;
            if (row == 0 && column > 0) text = headerOf(table, column - 1, Qt::Horizontal);
            if (column == 0 && row > 0) text = headerOf(table, row - 1, Qt::Vertical);
            if (!header) text = table.index(row - 1, column - 1).data(Qt::DisplayRole).toString();
            painter.drawText(cell.adjusted(0, 0, -height / 5, 0), Qt::AlignRight | Qt::AlignVCenter, text);
        }
    }
}

bool showPrinterDialog(QPrinter& printer, QWidget* owner) {
    printer.setPageOrientation(QPageLayout::Landscape);
    printer.setCopyCount(1);
    QPrintDialog dialog(&printer, owner);
    return dialog.exec() == QDialog::Accepted;
}

void drawLines(QPainter& painter, const QRect& page, const QString& text, int columns, int lines) {
    painter.fillRect(page, lookColors(DisplayMode::Day).surface);
    painter.setPen(lookColors(DisplayMode::Day).text);
    const int height = page.height() / std::max(lines, 1);
    QFont font = consoleFont();
    font.setPixelSize(std::max(1, height));
    // As high as the lines are apart, or lower where the columns ask for it.
    const int widest = QFontMetrics(font, painter.device()).horizontalAdvance(QString(columns, 'M'));
    const double fits = widest == 0 ? 1 : std::min(1.0, static_cast<double>(page.width()) / widest);
    constexpr double gap = 0.85;
    font.setPixelSize(std::max(1, static_cast<int>(height * std::min(gap, fits))));
    painter.setFont(font);
    int top = page.top();
    for (const QString& line : text.split('\n')) {
        painter.drawText(QRect(page.left(), top, page.width(), height), Qt::AlignLeft | Qt::AlignVCenter,
                         line);
        top += height;
    }
}

void drawPicture(QPainter& painter, const QRect& page, const QPixmap& picture, const QString& title) {
    painter.fillRect(page, lookColors(DisplayMode::Day).surface);
    painter.setPen(lookColors(DisplayMode::Day).text);
    constexpr int headings = 40;  // of the page's height
    const int height = page.height() / headings;
    QFont font = typeFont(Type::Strong);
    font.setPixelSize(std::max(1, height));
    painter.setFont(font);
    painter.drawText(QRect(page.left(), page.top(), page.width(), 2 * height), Qt::AlignLeft | Qt::AlignTop,
                     title);
    const QRect room = page.adjusted(0, 2 * height, 0, 0);
    const QSize size = picture.size().scaled(room.size(), Qt::KeepAspectRatio);
    painter.drawPixmap(QRect(room.topLeft(), size), picture);
}

bool printTable(const QAbstractItemModel& table, const QString& title, const QString& file, QWidget* owner) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(title);
    if (!showPrinterDialog(printer, owner)) return false;
    QPainter painter(&printer);
    if (!painter.isActive()) return false;
    drawTable(painter, painter.viewport(), table, title, file);
    return true;
}

}  // namespace zentaq
