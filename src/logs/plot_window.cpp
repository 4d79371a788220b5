#include "logs/plot_window.h"

#include <algorithm>

namespace zentaq {

namespace {

constexpr std::size_t mostSteps = 100;
constexpr double leastShare = 0.001;

}  // namespace

bool PlotWindow::showsAll() const {
    return now_.from <= first_ && now_.to >= last_ &&
           std::ranges::all_of(now_.shares, [](const Share& share) { return share == Share{}; });
}

PlotWindow::Share PlotWindow::share(std::size_t pane) const {
    return pane < now_.shares.size() ? now_.shares[pane] : Share{};
}

void PlotWindow::limits(double first, double last) {
    last = std::max(last, first + shortest);
    const bool whole = now_.from <= first_ && now_.to >= last_;
    const bool atEnd = now_.to >= last_;
    const double grown = last - last_;
    first_ = first;
    last_ = last;
    if (whole) {
        now_.from = first;
        now_.to = last;
    } else if (atEnd) {
        place(now_.from + grown, now_.to + grown);
    } else {
        place(now_.from, now_.to);
    }
}

void PlotWindow::reset(double first, double last) {
    before_.clear();
    kind_ = Kind::Other;
    first_ = first;
    last_ = std::max(last, first + shortest);
    now_ = {first_, last_};
}

void PlotWindow::zoom(double factor, double around) {
    remember(Kind::Zoom);
    const double wanted = std::clamp(length() * factor, shortest, last_ - first_);
    const double part = (around - now_.from) / length();
    place(around - part * wanted, around + (1 - part) * wanted);
}

void PlotWindow::move(double part) {
    remember(Kind::Move);
    const double by = part * length();
    place(now_.from + by, now_.to + by);
}

void PlotWindow::show(double from, double to) {
    remember(Kind::Other);
    place(from, to);
}

void PlotWindow::showBox(double from, double to, std::size_t pane, Share part) {
    remember(Kind::Other);
    place(from, to);
    const Share old = share(pane);
    const double height = old.high - old.low;
    part.low = std::clamp(part.low, 0.0, 1.0);
    part.high = std::clamp(part.high, 0.0, 1.0);
    if (part.high - part.low < leastShare) return;
    if (now_.shares.size() <= pane) now_.shares.resize(pane + 1);
    now_.shares[pane] = {old.low + part.low * height, old.low + part.high * height};
}

void PlotWindow::all() {
    if (showsAll()) return;
    remember(Kind::Other);
    now_ = {first_, last_};
}

bool PlotWindow::back() {
    if (before_.empty()) return false;
    const Shown shown = before_.back();
    before_.pop_back();
    kind_ = Kind::Other;
    now_.shares = shown.shares;
    place(shown.from, shown.to);
    return true;
}

void PlotWindow::bring(double seconds) {
    if (seconds >= now_.from && seconds <= now_.to) return;
    // What comes next is seen, whichever way it plays.
    constexpr double ahead = 0.1;
    const double from = seconds < now_.from ? seconds - (1 - ahead) * length() : seconds - ahead * length();
    place(from, from + length());
}

void PlotWindow::wholeHeights() {
    now_.shares.clear();
    for (Shown& shown : before_) shown.shares.clear();
}

void PlotWindow::remember(Kind kind) {
    const bool goesOn = kind == kind_ && kind != Kind::Other && !before_.empty();
    kind_ = kind;
    if (goesOn) return;
    before_.push_back(now_);
    if (before_.size() > mostSteps) before_.erase(before_.begin());
}

void PlotWindow::place(double from, double to) {
    if (to < from) std::swap(from, to);
    const double wanted = std::clamp(to - from, shortest, last_ - first_);
    // A box that is too small grows to both sides.
    from -= (wanted - (to - from)) / 2;
    now_.from = std::clamp(from, first_, last_ - wanted);
    now_.to = now_.from + wanted;
}

}  // namespace zentaq
