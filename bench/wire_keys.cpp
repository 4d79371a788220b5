// From a keystroke in a table to the last byte of its record on the wire, while frames keep the line busy.
#include <QKeyEvent>
#include <functional>

#include "wire_rig.h"

namespace zentaq::bench {
namespace {

constexpr int keystrokes = 200;

/// One change of a cell on its way.
struct Keystroke {
    double wholeMs = 0;   ///< from the key to the last byte on the wire
    double beyondMs = 0;  ///< the same without what was left of the exchange in flight
};

class KeyTimer {
 public:
    explicit KeyTimer(WireBench& bench) : bench_(bench) {
        bench_.meter.onWritten = [this](std::string_view bytes, std::int64_t nowUs) {
            written(bytes, nowUs);
        };
    }
    ~KeyTimer() { bench_.meter.onWritten = nullptr; }
    KeyTimer(const KeyTimer&) = delete;
    KeyTimer& operator=(const KeyTimer&) = delete;

    /// Presses the key and waits until its record has left and was answered. Into the control itself: a
    /// display without a window manager gives nobody the focus.
    bool press(QWidget& control, int key, const QString& text = {}) {
        recordUs_ = 0;
        nextWriteUs_ = 0;
        const bool inFlight = bench_.meter.lastReplyUs < bench_.meter.lastWriteUs;
        keyUs_ = bench_.nowUs();
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(&control, &down);
        if (!Program::waitFor([this] { return recordUs_ != 0 && !bench_.session().link.OnFlyBusy(); },
                              2000)) {
            return false;
        }
        const double lastByteUs = static_cast<double>(recordUs_) + bytes_ * byteSeconds * 1e6;
        const double whole = (lastByteUs - static_cast<double>(keyUs_)) / 1000;
        const double rest =
            inFlight ? static_cast<double>(std::max<std::int64_t>(0, flightEndUs_ - keyUs_)) / 1000 : 0;
        all.push_back({whole, whole - rest});
        return true;
    }

    std::vector<Keystroke> all;

 private:
    void written(std::string_view bytes, std::int64_t nowUs) {
        if (nextWriteUs_ == 0) {
            // What was on the line at the key has been answered by now.
            nextWriteUs_ = nowUs;
            flightEndUs_ = bench_.meter.lastReplyUs;
        }
        if (recordUs_ != 0 || !bytes.starts_with("P2")) return;
        recordUs_ = nowUs;
        bytes_ = static_cast<double>(bytes.size());
    }

    WireBench& bench_;
    std::int64_t keyUs_ = 0;
    std::int64_t nextWriteUs_ = 0;
    std::int64_t flightEndUs_ = 0;
    std::int64_t recordUs_ = 0;
    double bytes_ = 0;
};

/// Presses keys at every phase of a frame, with the queue as full as monitoring alone makes it.
void measure(benchmark::State& state, WireBench& bench, const std::function<bool(KeyTimer&, int)>& press) {
    for (auto unused : state) {
        KeyTimer timer(bench);
        const auto framesBefore = bench.session().live.frames;
        const std::int64_t begin = bench.nowUs();
        for (int i = 0; i < keystrokes; ++i) {
            Program::runFor(120 + i * 7 % 23);
            if (!press(timer, i)) {
                const bool there = bench.session().link.linked().UnitIdentified;
                return state.SkipWithError(there ? "No record was sent" : "The link was lost");
            }
        }
        std::vector<double> whole, beyond;
        for (const Keystroke& key : timer.all) {
            whole.push_back(key.wholeMs);
            beyond.push_back(key.beyondMs);
        }
        state.counters["keys"] = static_cast<double>(timer.all.size());
        state.counters["whole_50"] = quantile(whole, 0.5);
        state.counters["whole_95"] = quantile(whole, 0.95);
        state.counters["beyond_50"] = quantile(beyond, 0.5);
        state.counters["beyond_95"] = quantile(beyond, 0.95);
        state.counters["frames/s"] = static_cast<double>(bench.session().live.frames - framesBefore) * 1e6 /
                                     static_cast<double>(bench.nowUs() - begin);
    }
}

void keystroke(benchmark::State& state, const QStringList& unitOptions) {
    WireBench bench(unitOptions);
    if (!bench.ready) return state.SkipWithError("The unit was not found");
    bench.openTable("VE", "Volumetric Efficiency Table");
    FrmTable* table = bench.program->windows.form<FrmTable>();
    table->grid().setFocus();
    measure(state, bench, [&](KeyTimer& timer, int i) {
        // Up and down again, so that no cell reaches its limit.
        const bool up = i / 5 % 2 == 0;
        return timer.press(table->grid(), up ? Qt::Key_Period : Qt::Key_Comma, up ? "." : ",");
    });
}

/// Enter in a box of a page.
void fieldEntry(benchmark::State& state) {
    WireBench bench;
    if (!bench.ready) return state.SkipWithError("The unit was not found");
    EntryBox* box = bench.openPage("Warm-Up Enrichments", "WE_4");
    if (box == nullptr) return state.SkipWithError("The page has no such box");
    measure(state, bench, [&](KeyTimer& timer, int i) {
        box->setText(QString::number(20 + i % 7));
        box->setModified(true);
        return timer.press(*box, Qt::Key_Return);
    });
}
BENCHMARK(fieldEntry)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(keystroke, wide, QStringList{})->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(keystroke, narrow, QStringList{"--firmware", "ZQA-404099"})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace
}  // namespace zentaq::bench
