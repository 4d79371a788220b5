// What the program prints: pages of text, and the window in front on white paper.
#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QPrinter>

#include "base/text_pdf.h"
#include "qt/look.h"
#include "qt/paper.h"
#include "qt/qt_text.h"
#include "windows/window_manager.h"

namespace zentaq {

namespace {

/// The widget by day: paper is white.
QPixmap pictureByDay(QApplication& application, QWidget& form) {
    const DisplayMode mode = appliedLook(application);
    if (mode == DisplayMode::Night) applyLook(application, DisplayMode::Day);
    const QPixmap picture = form.grab();
    if (mode == DisplayMode::Night) applyLook(application, mode);
    return picture;
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
    drawPicture(painter, painter.viewport(), pictureByDay(application_, *form), form->windowTitle());
    return painter.end() ? PrintEnd::Printed : PrintEnd::Failed;
}

}  // namespace zentaq
