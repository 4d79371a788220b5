// What the windows paint themselves, in the states that it has: cells of a table, badges, the state strip,
// the dashboard, the link and what else is no control of the toolkit.
#pragma once

#include <QWidget>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/state_strip.h"
#include "config/curve_graph.h"
#include "logs/log_columns.h"
#include "qt/look.h"
#include "tables/surface_model.h"
#include "tables/table_grid.h"
#include "testing/memory_settings.h"
#include "unit/quiet_host.h"
#include "windows/table_view.h"

class QVBoxLayout;

namespace zentaq {

class OwnWidgets : public QWidget {
    Q_OBJECT

 public:
    /// `posing` lets a table look as if it had the keyboard.
    OwnWidgets(QStyle& posing, QWidget* parent);

    /// What is painted in colors of its own is told the mode, as its window tells it.
    void showMode(DisplayMode mode);

 private:
    void addHeading(const QString& text);
    void addTables(QStyle& posing);
    TableGridView* addTable(QStyle& posing, const QString& name, bool keyboard);
    void addTableBars();
    void addSurface();
    void addCurves();
    void addStrips();
    void addDashboards();
    void addLink();
    void addTexts();
    void addPages();
    void addPlot();

    QVBoxLayout* column_;
    TableGrid cells_;
    QuietHost host_;
    Unit unit_{*unitKindOfSlot(3), host_};
    LiveValues live_;
    PaintMemory paint_;
    std::unique_ptr<SurfaceModel> surface_;
    std::unique_ptr<CurveGraph> curve_;
    MemorySettings settings_;
    LogColumns log_;
    std::deque<std::string> lines_;
    std::vector<std::function<void(DisplayMode)>> followers_;
};

/// Every state of the program that the strip tells otherwise than another one.
std::vector<StripFacts> stripStates();

}  // namespace zentaq
