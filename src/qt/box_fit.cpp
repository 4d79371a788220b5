#include "qt/box_fit.h"

#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

#include "qt/named.h"

namespace zentaq {

namespace {

/// What Qt makes no box wider than, icon and margins included, on a screen of that width.
int widestBox(int screen) {
    constexpr int smallScreen = 1024;
    return screen <= smallScreen ? screen : std::min(screen - 480, 1000);
}

/// Wider than this Qt makes a box only for what cannot be broken.
int usualBox(int screen) {
    return std::min(screen / 2, 500);
}

/// A text that is too high scrolls beside its icon; the buttons stay in sight.
void scroll(QMessageBox& message, QLabel& label, int width, int height) {
    auto* area = named(new QScrollArea(&message), "boxText", "Text of the box");
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::StrongFocus);
    delete message.layout()->replaceWidget(&label, area);
    area->setWidget(&label);
    area->setMinimumSize(width + area->verticalScrollBar()->sizeHint().width(), height);
}

}  // namespace

void fitToScreen(QMessageBox& message) {
    auto* label = message.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    if (label == nullptr) return;
    const QSize screen = message.screen()->availableGeometry().size();
    const int besideText = 3 * message.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &message);
    const int widestLine = label->fontMetrics().size(Qt::TextExpandTabs, message.text()).width();
    // A longer line is broken by Qt, which does so only in a label that asks for nothing.
    const bool broken = widestLine > widestBox(screen.width()) - besideText;
    if (!broken) label->setMinimumWidth(widestLine);
    const int width = broken ? usualBox(screen.width()) : widestLine;
    const int linesOfButtons = 6;  // with the window's own frame
    const int room = screen.height() - linesOfButtons * label->fontMetrics().lineSpacing();
    const QRect text =
        label->fontMetrics().boundingRect(0, 0, broken ? width - besideText : width, QWIDGETSIZE_MAX,
                                          Qt::TextWordWrap | Qt::TextExpandTabs, message.text());
    if (text.height() > room) scroll(message, *label, width, room);
}

}  // namespace zentaq
