#include "windows/log_pane_drawings.h"

#include <algorithm>
#include <cmath>

#include "qt/look.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

/// A line with so few rows is drawn smooth; with more of them that takes a hundred times as long as strokes
/// do.
constexpr std::size_t fewRows = 150;
constexpr double lineWidth = 1.6;
constexpr float hitShare = 0.22F;
constexpr float paleShare = 0.5F;
constexpr int mostMarkLetters = 24;

QColor paler(const QColor& color, const QColor& ground) {
    const auto between = [](float one, float other) { return one + (other - one) * paleShare; };
    return QColor::fromRgbF(between(color.redF(), ground.redF()), between(color.greenF(), ground.greenF()),
                            between(color.blueF(), ground.blueF()));
}

/// Neither a drawing nor a screen of another scale.
bool isPixelForPixel(const QCPPainter& painter) {
    return !painter.modes().testFlag(QCPPainter::pmVectorized) &&
           painter.deviceTransform().type() <= QTransform::TxTranslate;
}

}  // namespace

// ---- Lines

LogPane::Lines::Lines(QCustomPlot& plot, const PlotScene& scene, const LogPane& pane)
    : QCPLayerable(&plot, QStringLiteral("main")), scene_(scene), pane_(pane) {}

QRect LogPane::Lines::clipRect() const {
    return pane_.axes().rect();
}

void LogPane::Lines::applyDefaultAntialiasingHint(QCPPainter* painter) const {
    painter->setAntialiasing(false);
}

void LogPane::Lines::draw(QCPPainter* painter) {
    if (!scene_.hasLog()) return;
    drawHits(*painter);
    drawDense(*painter, linesToDraw());
    for (const Line& line : linesToDraw()) {
        if (isFew(line)) drawFew(*painter, line);
    }
}

/// From the back to the front: what is laid over does not hide the log itself.
std::vector<LogPane::Lines::Line> LogPane::Lines::linesToDraw() const {
    std::vector<Line> lines;
    for (const bool over : {true, false}) {
        for (const PaneLine& line : pane_.lines()) {
            if ((over ? line.otherColumn : line.column) >= 0) lines.push_back({&line, over});
        }
    }
    return lines;
}

const PlotBuckets& LogPane::Lines::bucketsOf(const Line& line) const {
    return line.over ? scene_.otherBuckets : scene_.buckets;
}

bool LogPane::Lines::isFew(const Line& line) const {
    const PlotBuckets& buckets = bucketsOf(line);
    return !buckets.dense && !buckets.edges.empty() &&
           buckets.edges.back() - buckets.edges.front() <= fewRows;
}

void LogPane::Lines::findPoints(const Line& line) {
    plotLine(line.over ? *scene_.other : *scene_.log, line.over ? line.line->otherColumn : line.line->column,
             bucketsOf(line), points_);
}

/// All points of a line go through one rule, worked out once.
PlotGrid LogPane::Lines::gridOf(const Line& line) const {
    const double shift = line.over ? scene_.shift : 0;
    const double left = pane_.xOf(shift);
    const double foot = pane_.yOf(*line.line, 0);
    const QRect room = pane_.axes().rect();
    return {left,        pane_.xOf(shift + 1) - left,
            foot,        pane_.yOf(*line.line, 1) - foot,
            room.left(), room.right(),
            room.top(),  room.bottom()};
}

QPen LogPane::Lines::penOf(const Line& line, double width) const {
    const auto colors = plotColors();
    const QColor color = colors[line.line->color % colors.size()];
    return {line.over ? paler(color, lookNow().surface) : color, width};
}

void LogPane::Lines::drawDense(QCPPainter& painter, std::vector<Line> lines) {
    std::erase_if(lines, [this](const Line& line) { return isFew(line); });
    if (lines.empty()) return;
    for (Line& line : lines) {
        findPoints(line);
        plotSpans(points_, gridOf(line), line.spans);
        for (const PlotSpan& span : line.spans) line.ink += span.bottom - span.top + 1;
    }
    // A quiet line would be lost behind the broad band of a noisy one.
    std::ranges::stable_sort(lines, [](const Line& one, const Line& other) {
        return one.over != other.over ? other.over : one.ink < other.ink;
    });
    if (lines.size() > 1) cover_.begin(gridOf(lines.front()));
    const bool byPixels = isPixelForPixel(painter);
    if (byPixels) clearPicture();
    for (Line& line : lines) {
        if (lines.size() > 1) cover_.takeVisible(line.spans);
        if (byPixels) {
            fillSpans(line);
            continue;
        }
        strokes_.clear();
        for (const PlotSpan& span : line.spans) strokes_.emplace_back(span.x, span.top, span.x, span.bottom);
        painter.setPen(penOf(line, 1));
        painter.drawLines(strokes_.data(), static_cast<int>(strokes_.size()));
    }
    if (byPixels) painter.drawImage(pane_.axes().rect().topLeft(), picture_);
}

/// Ten thousands of strokes are written into a picture in a third of the time that a painter takes for them.
void LogPane::Lines::clearPicture() {
    const QSize size = pane_.axes().rect().size();
    if (picture_.size() != size) picture_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
    picture_.fill(Qt::transparent);
}

void LogPane::Lines::fillSpans(const Line& line) {
    const QRgb ink = penOf(line, 1).color().rgb();
    const QPoint corner = pane_.axes().rect().topLeft();
    const auto stride = picture_.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb));
    auto* pixels = reinterpret_cast<QRgb*>(picture_.bits());
    for (const PlotSpan& span : line.spans) {
        QRgb* pixel = pixels + (span.top - corner.y()) * stride + (span.x - corner.x());
        for (int y = span.top; y <= span.bottom; ++y, pixel += stride) *pixel = ink;
    }
}

void LogPane::Lines::drawFew(QCPPainter& painter, const Line& line) {
    findPoints(line);
    const PlotGrid grid = gridOf(line);
    QPen pen = penOf(line, lineWidth);
    pen.setJoinStyle(Qt::RoundJoin);
    // Among more rows dashes would hide what happens in their gaps.
    if (line.over) pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    painter.setAntialiasing(true);
    const auto drawn = [&] {
        if (places_.size() == 1) painter.drawPoint(places_.front());
        if (places_.size() > 1) painter.drawPolyline(places_.data(), static_cast<int>(places_.size()));
        places_.clear();
    };
    places_.clear();
    for (const PlotPoint& point : points_) {
        const auto value = static_cast<double>(point.value);
        if (!std::isfinite(value)) {
            drawn();
            continue;
        }
        places_.emplace_back(grid.left + point.seconds * grid.perSecond, grid.foot + value * grid.perValue);
    }
    drawn();
    painter.setAntialiasing(false);
}

void LogPane::Lines::drawHits(QCPPainter& painter) const {
    QColor shade = lookNow().accent;
    shade.setAlphaF(hitShare);
    const QRect room = pane_.axes().rect();
    if (scene_.log->empty()) return;
    double covered = room.left();
    const auto xOf = [&](std::size_t row) {
        return pane_.xOf(scene_.log->seconds(std::min(row, scene_.log->rows() - 1)));
    };
    // A hit for each row is no reason to draw each: what ends left of what is covered is passed over at once.
    for (auto hit = scene_.hits.begin();; ++hit) {
        hit = std::partition_point(hit, scene_.hits.end(),
                                   [&](const LogHit& one) { return xOf(one.last) < covered; });
        if (hit == scene_.hits.end()) return;
        const double from = std::max(xOf(hit->first), covered);
        if (from > room.right()) return;
        // A hit of one row is seen, too.
        const double to = std::max(xOf(hit->last), from + 1);
        painter.fillRect(QRectF(from, room.top(), to - from, room.height()), shade);
        covered = to;
    }
}

// ---- What moves

LogPane::Now::Now(QCustomPlot& plot, const PlotScene& scene, const LogPane& pane)
    : QCPLayerable(&plot, QStringLiteral("overlay")), scene_(scene), pane_(pane) {}

QRect LogPane::Now::clipRect() const {
    return pane_.whole().adjusted(-1, 0, 1, 1);
}

void LogPane::Now::applyDefaultAntialiasingHint(QCPPainter* painter) const {
    painter->setAntialiasing(false);
}

void LogPane::Now::draw(QCPPainter* painter) {
    const LookColors& look = lookNow();
    if (!scene_.hasLog()) return;
    drawLegend(*painter);
    drawMarks(*painter);
    if (scene_.a) drawUpright(*painter, *scene_.a, QPen(look.changed, 2), QStringLiteral("A"));
    if (scene_.b) drawUpright(*painter, *scene_.b, QPen(look.changed, 2), QStringLiteral("B"));
    if (scene_.cursor) drawUpright(*painter, *scene_.cursor, QPen(look.liveMarker, 2), {});
    drawDots(*painter);
    if (!scene_.keyboard || scene_.paneInHand != pane_.number()) return;
    const int edge = edgeWidth(QFontMetrics(typeFont(Type::Remark)));
    painter->setPen(QPen(look.focus, edge));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(pane_.axes().rect().adjusted(edge / 2, edge / 2, -edge / 2, -edge / 2));
}

void LogPane::Now::drawLegend(QCPPainter& painter) const {
    const QFont font = typeFont(Type::Remark);
    const QFontMetrics metrics(font);
    painter.setFont(font);
    const QRect whole = pane_.whole();
    painter.fillRect(QRect(whole.topLeft(), QSize(whole.width(), pane_.axes().top() - whole.top() - 1)),
                     lookNow().surface);
    const auto colors = plotColors();
    const int gap = space(metrics, Space::Tight);
    for (std::size_t i = 0; i < pane_.lines().size(); ++i) {
        const PaneLine& line = pane_.lines()[i];
        const QColor color = line.column < 0 ? lookNow().disabledText : colors[line.color % colors.size()];
        const QRect slot = pane_.legendSlot(i);
        const int side = metrics.height() / 2;
        painter.fillRect(QRect(slot.left(), slot.center().y() - side / 2, side, side), color);
        painter.setPen(color);
        const QRect room = slot.adjusted(side + gap, 0, 0, 0);
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(legendText(scene_, line), Qt::ElideRight, room.width()));
    }
}

void LogPane::Now::drawUpright(QCPPainter& painter, double seconds, const QPen& pen,
                               const QString& letter) const {
    const QRect room = pane_.axes().rect();
    const double x = pane_.xOf(seconds);
    if (x < room.left() || x > room.right()) return;
    painter.setPen(pen);
    painter.drawLine(QPointF(x, room.top()), QPointF(x, room.bottom()));
    if (letter.isEmpty()) return;
    const QFontMetrics metrics(typeFont(Type::Strong));
    painter.setFont(typeFont(Type::Strong));
    const int width = metrics.horizontalAdvance(letter) + 2 * space(metrics, Space::Tight);
    const QRect flag(static_cast<int>(x), room.bottom() - metrics.height(), width, metrics.height());
    painter.fillRect(flag, lookNow().changedBadge);
    painter.setPen(lookNow().changedBadgeText);
    painter.drawText(flag, Qt::AlignCenter, letter);
}

void LogPane::Now::drawDots(QCPPainter& painter) const {
    if (!scene_.cursor) return;
    const QRect room = pane_.axes().rect();
    const std::size_t row = scene_.log->rowAt(*scene_.cursor);
    const auto colors = plotColors();
    const double radius = QFontMetricsF(typeFont(Type::Remark)).height() / 5;
    painter.setAntialiasing(true);
    painter.setPen(QPen(lookNow().surface, 1));
    for (const PaneLine& line : pane_.lines()) {
        if (line.column < 0) continue;
        const QPointF at(pane_.xOf(*scene_.cursor),
                         pane_.yOf(line, static_cast<double>(scene_.log->value(line.column, row))));
        if (!QRectF(room).contains(at)) continue;
        painter.setBrush(colors[line.color % colors.size()]);
        painter.drawEllipse(at, radius, radius);
    }
    painter.setAntialiasing(false);
}

void LogPane::Now::drawMarks(QCPPainter& painter) const {
    const LookColors& look = lookNow();
    const QRect room = pane_.axes().rect();
    const QFont font = typeFont(Type::Remark);
    const QFontMetrics metrics(font);
    for (const LogMark& mark : scene_.marks) {
        const double x = pane_.xOf(mark.seconds);
        if (x < room.left() || x > room.right()) continue;
        painter.setPen(QPen(look.edge, 1, Qt::DotLine));
        painter.drawLine(QPointF(x, room.top()), QPointF(x, room.bottom()));
        if (pane_.number() != 0) continue;
        const QRect flag = markFlag(pane_, mark);
        painter.fillRect(flag, look.badge);
        painter.setPen(look.badgeText);
        painter.setFont(font);
        painter.drawText(flag, Qt::AlignCenter,
                         metrics.elidedText(shownString(mark.text), Qt::ElideRight, flag.width()));
    }
}

QRect markFlag(const LogPane& pane, const LogMark& mark) {
    const QFontMetrics metrics(typeFont(Type::Remark));
    const int wanted = metrics.horizontalAdvance(shownString(mark.text)) + 2 * space(metrics, Space::Tight);
    const int width = std::clamp(wanted, metrics.height(), metrics.averageCharWidth() * mostMarkLetters);
    return {static_cast<int>(pane.xOf(mark.seconds)), pane.axes().top() + 1, width, metrics.height()};
}

}  // namespace zentaq
