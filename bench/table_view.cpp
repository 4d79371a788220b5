// A table on the screen at 1920 by 1080: from a key to the drawn grid, and frames of the engine. Aims: a key
// below 8 ms; frames at the pace of the wire (25 a second) below 5 % of a core, which is 2 ms a frame; a
// surface below 8 ms.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>

#include "app/fake_platform.h"
#include "calibration_bench.h"
#include "windows/frm_table.h"
#include "windows/surface_picture.h"

namespace zentaq {
namespace {

/// Counts how often a widget has painted itself.
struct PaintCount : QObject {
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

struct OpenTable {
    FakeSession fake;
    PaintCount count;
    std::unique_ptr<FrmTable> form;

    explicit OpenTable(const char* table) {
        fake.session.makeUnits();
        fake.session.CurrentUnit(3);
        fake.session.currentUnitObject().FileOpen(bench::sampleFile);
        form = std::make_unique<FrmTable>(fake.session);
        form->resize(1920, 800);
        form->show();
        form->Setup_Grid(table, "Table");
        QApplication::processEvents();
        form->grid().viewport()->installEventFilter(&count);
    }
    /// Until what the key has changed is on the screen.
    void key(benchmark::State& state, int code, const char* text) {
        const int before = count.paints;
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, QLatin1String(text));
        QApplication::sendEvent(&form->grid(), &press);
        QApplication::processEvents();
        if (count.paints == before) state.SkipWithError("the key has drawn nothing");
    }
};

void nudgeOfOneCell(benchmark::State& state) {
    OpenTable table("VE");
    table.form->grid().setCurrentIndex(table.form->grid().model()->index(8, 8));
    bool up = true;
    for (auto _ : state) {
        up ? table.key(state, Qt::Key_Period, ".") : table.key(state, Qt::Key_Comma, ",");
        up = !up;
    }
}
BENCHMARK(nudgeOfOneCell)->Unit(benchmark::kMillisecond);

void nudgeOfAllCells(benchmark::State& state) {
    OpenTable table("SPW");
    table.form->grid().selectAll();
    bool up = true;
    for (auto _ : state) {
        up ? table.key(state, Qt::Key_Period, ".") : table.key(state, Qt::Key_Comma, ",");
        up = !up;
    }
}
BENCHMARK(nudgeOfAllCells)->Unit(benchmark::kMillisecond);

void arrowKey(benchmark::State& state) {
    OpenTable table("VE");
    table.form->grid().setCurrentIndex(table.form->grid().model()->index(8, 8));
    bool left = true;
    for (auto _ : state) {
        table.key(state, left ? Qt::Key_Left : Qt::Key_Right, "");
        left = !left;
    }
}
BENCHMARK(arrowKey)->Unit(benchmark::kMillisecond);

/// Only what a frame has changed is drawn, as on the screen.
void frameOfTheEngine(benchmark::State& state) {
    OpenTable table("VE");
    QPixmap screen(table.form->size());
    float speed = 800;
    for (auto _ : state) {
        speed = speed > 6500 ? 800 : speed + 37;
        table.form->Show_Current_Activity(speed, 30 + speed / 100);
        table.fake.clock.nowUs += 20'000;
        QApplication::processEvents();
    }
}
BENCHMARK(frameOfTheEngine)->Unit(benchmark::kMillisecond);

/// The surface of 16 by 16 cells on the whole screen. Aim: below 8 ms.
void surface(benchmark::State& state) {
    OpenTable table("VE");
    SurfaceModel model(table.fake.session.currentUnitObject(), table.fake.session.live,
                       table.fake.session.paintMemory, "VE", "Table", TableView::Values);
    const SurfacePicture picture(model, nullptr);
    QImage screen(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        QPainter painter(&screen);
        picture.draw(painter, screen.rect());
    }
}
BENCHMARK(surface)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zentaq

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    zentaq::applyLook(application, zentaq::DisplayMode::Night);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
