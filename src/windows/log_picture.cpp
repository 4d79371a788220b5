#include "windows/log_picture.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QSvgGenerator>

#include "base/errors.h"
#include "qt/qt_text.h"
#include "unit/safe_file.h"

namespace zentaq {

namespace {

constexpr double pngScale = 2;
/// As Qt counts the pixels of a screen.
constexpr int drawingDpi = 96;

void drawOn(QCustomPlot& plot, QPaintDevice& device) {
    QCPPainter painter;
    if (!painter.begin(&device)) return;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    painter.fillRect(QRect(QPoint(), plot.size()), plot.palette().window());
    plot.toPainter(&painter, plot.width(), plot.height());
}

void writePng(QCustomPlot& plot, QBuffer& out) {
    plot.toPixmap(plot.width(), plot.height(), pngScale).save(&out, "PNG");
}

void writeSvg(QCustomPlot& plot, QBuffer& out) {
    QSvgGenerator svg;
    svg.setOutputDevice(&out);
    svg.setSize(plot.size());
    svg.setViewBox(QRect(QPoint(), plot.size()));
    svg.setResolution(drawingDpi);
    drawOn(plot, svg);
}

void writePdf(QCustomPlot& plot, QBuffer& out) {
    QPdfWriter pdf(&out);
    constexpr double pointsPerInch = 72;
    const QSizeF points = QSizeF(plot.size()) * pointsPerInch / drawingDpi;
    pdf.setPageSize(QPageSize(points, QPageSize::Point, {}, QPageSize::ExactMatch));
    pdf.setPageMargins(QMarginsF());
    pdf.setResolution(drawingDpi);
    drawOn(plot, pdf);
}

}  // namespace

QString savePlotPicture(QCustomPlot& plot, const QString& path) {
    QByteArray bytes;
    QBuffer out(&bytes);
    out.open(QIODevice::WriteOnly);
    if (path.endsWith(".png", Qt::CaseInsensitive)) {
        writePng(plot, out);
    } else if (path.endsWith(".svg", Qt::CaseInsensitive)) {
        writeSvg(plot, out);
    } else if (path.endsWith(".pdf", Qt::CaseInsensitive)) {
        writePdf(plot, out);
    } else {
        return QStringLiteral("The picture was not saved: its name must end with .png, .svg or .pdf.");
    }
    if (bytes.isEmpty()) return QStringLiteral("The picture was not saved: it could not be drawn.");
    try {
        writeFileSafely(path.toStdString(), bytes.toStdString());
    } catch (const FileError& error) {
        return QStringLiteral("The picture was not saved: ") + shownString(error.what());
    }
    return {};
}

}  // namespace zentaq
