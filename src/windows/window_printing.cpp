// What the program prints: pages of text, and the window in front on white paper.
#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QPrinter>
#include <QScrollBar>
#include <QTreeWidgetItemIterator>

#include "base/text_pdf.h"
#include "qt/look.h"
#include "qt/page_area.h"
#include "qt/paper.h"
#include "qt/qt_text.h"
#include "windows/frm_config_page_view.h"
#include "windows/table_view.h"
#include "windows/window_manager.h"

namespace zentaq {

namespace {

/// Paper is white: runs something by day.
void byDay(QApplication& application, const std::function<void()>& something) {
    const DisplayMode mode = appliedLook(application);
    if (mode == DisplayMode::Night) applyLook(application, DisplayMode::Day);
    something();
    if (mode == DisplayMode::Night) applyLook(application, mode);
}

bool scrolls(const QAbstractScrollArea& area) {
    return area.isVisible() &&
           (area.verticalScrollBar()->maximum() > area.verticalScrollBar()->minimum() ||
            area.horizontalScrollBar()->maximum() > area.horizontalScrollBar()->minimum());
}

/// The rows of a list with columns, one a line, those below another one indented.
QStringList linesOf(const QTreeWidget& list) {
    const QString indent(4, ' ');
    QStringList lines;
    for (QTreeWidgetItemIterator item(const_cast<QTreeWidget*>(&list)); *item != nullptr; ++item) {  // NOLINT
        QStringList texts;
        for (int column = 0; column < list.columnCount(); ++column) {
            if (!(*item)->text(column).isEmpty()) texts.append((*item)->text(column));
        }
        QString line = ((*item)->parent() == nullptr ? "" : indent) + texts.join("   ");
        // A line that is longer than the paper is wide goes on below.
        for (; line.size() > pdfColumns; line = indent + line.mid(pdfColumns))
            lines.append(line.left(pdfColumns));
        lines.append(line);
    }
    return lines;
}

/// What the screen shows a part of only, whole, each on pages of its own behind the picture of the form: the
/// fields of a page, the cells of a table, the rows of the overview.
bool printRest(QPrinter& printer, QPainter& painter, QWidget& form) {
    const QString title = form.windowTitle();
    for (auto* area : form.findChildren<PageArea*>()) {
        if (!scrolls(*area) || area->widget() == nullptr) continue;
        if (!printer.newPage()) return false;
        drawPicture(painter, painter.viewport(), area->widget()->grab(), title);
    }
    for (auto* table : form.findChildren<TableGridView*>()) {
        if (!scrolls(*table)) continue;
        if (!printer.newPage()) return false;
        drawTable(painter, painter.viewport(), *table->model(), title, {});
    }
    for (auto* list : form.findChildren<PageView*>()) {
        if (!scrolls(*list)) continue;
        const QStringList lines = linesOf(*list);
        for (qsizetype first = 0; first < lines.size(); first += pdfLines) {
            if (!printer.newPage()) return false;
            drawLines(painter, painter.viewport(), lines.mid(first, pdfLines).join('\n'), pdfColumns,
                      pdfLines);
        }
    }
    return true;
}

}  // namespace

PrintEnd WindowManager::printText(const std::string& title, const std::function<std::string()>& pages) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(qString(title));
    if (!choosePrinter(printer, main_.get())) return PrintEnd::GivenUp;
    const QStringList texts = qString(pages()).split('\f');
    QPainter painter(&printer);
    if (!painter.isActive()) return PrintEnd::Failed;
    bool first = true;
    for (const QString& text : texts) {
        if (!std::exchange(first, false) && !printer.newPage()) return PrintEnd::Failed;
        drawLines(painter, painter.viewport(), text, pdfColumns, pdfLines);
    }
    return painter.end() ? PrintEnd::Printed : PrintEnd::Failed;
}

PrintEnd WindowManager::printForm(const std::function<void()>& begins) {
    // The one in front when the command was given, not the dialog.
    QWidget* active = QApplication::activeWindow();
    const QPointer<QWidget> form = active == nullptr ? main_.get() : active;
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(form->windowTitle());
    if (!choosePrinter(printer, form)) return PrintEnd::GivenUp;
    if (form == nullptr) return PrintEnd::Failed;
    begins();
    QPainter painter(&printer);
    if (!painter.isActive()) return PrintEnd::Failed;
    bool whole = false;
    byDay(application_, [&] {
        drawPicture(painter, painter.viewport(), form->grab(), form->windowTitle());
        whole = printRest(printer, painter, *form);
    });
    return whole && painter.end() ? PrintEnd::Printed : PrintEnd::Failed;
}

}  // namespace zentaq
