// A plot of a small log, with a mouse and keys for it.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QMouseEvent>
#include <QTableWidget>
#include <QWheelEvent>

#include "testing/memory_settings.h"
#include "windows/log_plot_view.h"

namespace zentaq {

/// `rows` at 50 a second: RPM goes from 1000 up by one a row, MAP is 20 with a spike of 100 in row `spike`,
/// TPS, EGOC and both mixtures stand still.
inline LogColumns plotLog(std::size_t rows, std::size_t spike = 500) {
    DatalogHead head;
    head.columns = {"Frame", "RPM", "MAP", "TPS", "EGOC", "DAFR", "AAFR", "PRIDUTY"};
    head.mapUnits = "kPa";
    LogColumns log;
    log.begin(head, rows);
    for (std::size_t row = 0; row < rows; ++row) {
        const auto at = static_cast<double>(row);
        log.append(std::vector<double>{at, 1000 + at, row == spike ? 100.0 : 20.0, 1.5, 2, 14.7, 14.2, 10});
    }
    return log;
}

class LogPlotTest : public testing::Test {
 protected:
    LogPlotTest() : log(plotLog(1001)) { make(); }
    void make() {
        view = std::make_unique<LogPlotView>(settings, nullptr);
        view->resize(1200, 700);
        view->showLog(&log, "run.dat");
        view->show();
        view->area().setFocus();
        settle();
    }
    void settle() {
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
    }
    LogPlotArea& area() { return view->area(); }
    const PlotWindow& window() { return area().scene().window; }
    template <typename Widget>
    Widget* find(const char* name) {
        return view->findChild<Widget*>(name);
    }
    QListWidgetItem* row(const QString& caption) {
        const auto items = find<QListWidget>("lstChannels")->findItems(caption, Qt::MatchExactly);
        return items.isEmpty() ? nullptr : items.front();
    }
    void tick(const QString& caption, bool on) {
        row(caption)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
        settle();
    }
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent press(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&area(), &press);
        settle();
    }
    bool passesOn(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent press(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&area(), &press);
        return !press.isAccepted();
    }

    // ---- Mouse
    QPointF at(double seconds, std::size_t pane = 0, double part = 0.5) {
        const LogPane& drawn = *area().drawnPanes().at(pane);
        return {drawn.xOf(seconds), drawn.axes().bottom() - part * drawn.axes().height()};
    }
    void mouse(QEvent::Type type, QPointF place, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               Qt::MouseButton button = Qt::LeftButton) {
        const bool up = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, place, area().mapToGlobal(place),
                          type == QEvent::MouseMove ? Qt::NoButton : button, up ? Qt::NoButton : button,
                          modifiers);
        QApplication::sendEvent(&area(), &event);
    }
    void click(QPointF place) {
        mouse(QEvent::MouseButtonPress, place);
        mouse(QEvent::MouseButtonRelease, place);
        settle();
    }
    void drag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
              Qt::MouseButton button = Qt::LeftButton) {
        mouse(QEvent::MouseButtonPress, from, modifiers, button);
        mouse(QEvent::MouseMove, (from + to) / 2, modifiers, button);
        mouse(QEvent::MouseMove, to, modifiers, button);
        mouse(QEvent::MouseButtonRelease, to, modifiers, button);
        settle();
    }
    void wheel(QPointF place, int notches, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWheelEvent event(place, area().mapToGlobal(place), {}, {0, 120 * notches}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&area(), &event);
        settle();
    }

    MemorySettings settings;
    LogColumns log;
    std::unique_ptr<LogPlotView> view;
};

}  // namespace zentaq
