// Pages of settings on the screen at 1920 by 1080: from a click in the tree to the drawn page, for every page
// of a full unit. Aim: below 30 ms for each.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <algorithm>

#include "app/fake_platform.h"
#include "calibration_bench.h"
#include "config/gui_rules.h"
#include "qt/look.h"
#include "windows/frm_config_page_form.h"

namespace zentaq {
namespace {

struct OpenPages {
    FakeSession fake;
    std::unique_ptr<PageForm> form;
    std::vector<int> pages;

    OpenPages() {
        const std::string data = fake.folder.path("reference.pak");
        std::filesystem::copy_file(builtReference(), data);
        fake.session.database = Database::open(data);
        fake.session.makeUnits();
        fake.session.CurrentUnit(3);
        fake.session.currentUnitObject().FileOpen(bench::sampleFile);
        fake.session.noteOpened();
        form = std::make_unique<PageForm>(fake.session, nullptr);
        form->resize(1500, 500);
        form->show();
        QApplication::processEvents();
        for (const int page : fieldPageNumbers()) {
            if (guiRules(fake.session.currentUnitObject()).pageVisible(page)) pages.push_back(page);
        }
    }
    void open(int page) {
        form->showPage(page);
        QApplication::processEvents();
        form->repaint();
    }
};

/// One round through all pages. `worst` is the slowest page and `page` its number.
void pageOpens(benchmark::State& state) {
    OpenPages program;
    double worst = 0;
    int slowest = 0;
    for (auto _ : state) {
        for (const int page : program.pages) {
            QElapsedTimer watch;
            watch.start();
            program.open(page);
            const double ms = static_cast<double>(watch.nsecsElapsed()) / 1e6;
            if (ms > worst) slowest = page;
            worst = std::max(worst, ms);
        }
    }
    state.counters["pages"] = static_cast<double>(program.pages.size());
    state.counters["worst_ms"] = worst;
    state.counters["page"] = slowest;
}
BENCHMARK(pageOpens)->Unit(benchmark::kMillisecond);

/// A value from elsewhere shows on the page in hand.
void pageFollows(benchmark::State& state) {
    OpenPages program;
    program.open(6);
    int value = 0;
    for (auto _ : state) {
        if (!program.fake.session.currentUnitObject().set("CHKTBL", ++value % 200, 3))
            return state.SkipWithError("the value was refused");
        program.open(6);
    }
}
BENCHMARK(pageFollows)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zentaq

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    zentaq::applyLook(application, zentaq::DisplayMode::Night);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
