#include "qt/kept_splitter.h"

#include <QChildEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <numeric>

#include "base/errors.h"
#include "base/settings_keys.h"
#include "qt/named.h"

namespace zentaq {

namespace {

/// No screen is wider; a larger number in the store is damage.
constexpr int farthest = 100'000;

/// A handle at rest for so long is where the user wants it.
constexpr int restMs = 500;

QString splitText(const QList<int>& places) {
    QStringList numbers;
    for (const int size : places) numbers.append(QString::number(size));
    return numbers.join(u' ');
}

/// Empty when the text is none of ours.
QList<int> partsOf(const QString& text) {
    QList<int> places;
    for (const QString& part : text.split(u' ', Qt::SkipEmptyParts)) {
        bool readable = false;
        const int size = part.toInt(&readable);
        if (!readable || size < 0 || size > farthest) return {};
        places.append(size);
    }
    return places;
}

}  // namespace

KeptSplitter::KeptSplitter(Qt::Orientation orientation, const QString& name, SettingsStore& settings,
                           Shares byDefault, QWidget* parent)
    : QSplitter(orientation, parent), settings_(settings), byDefault_(std::move(byDefault)) {
    named(this, name);
    setChildrenCollapsible(false);
    readKept();
    tmrStore_.setSingleShot(true);
    tmrStore_.setInterval(restMs);
    connect(&tmrStore_, &QTimer::timeout, this, &KeptSplitter::store);
    connect(this, &QSplitter::splitterMoved, this, &KeptSplitter::moved);
}

KeptSplitter::~KeptSplitter() {
    if (tmrStore_.isActive()) store();
}

void KeptSplitter::readKept() {
    std::string stored;
    skipFailing([&] { stored = settings_.get(settings::forms, objectName().toStdString()); });
    kept_ = partsOf(QString::fromStdString(stored));
    // All parts without any room are no place that a user has chosen.
    if (std::ranges::all_of(kept_, [](int size) { return size == 0; })) kept_.clear();
}

// A part that is hidden meanwhile keeps its share.
void KeptSplitter::moved() {
    const QList<int> now = sizes();
    const QList<int> former = kept_.size() == count() ? kept_ : byDefault_(length());
    kept_ = now;
    for (int i = 0; i < now.size() && i < former.size(); ++i) {
        if (widget(i)->isHidden()) kept_[i] = former.at(i);
    }
    tmrStore_.start();
}

void KeptSplitter::store() {
    tmrStore_.stop();
    skipFailing(
        [&] { settings_.set(settings::forms, objectName().toStdString(), splitText(kept_).toStdString()); });
}

void KeptSplitter::toDefault() {
    kept_.clear();
    store();
    shareOut();
}

// Beyond its greatest length a part would stand in an empty space.
void KeptSplitter::giveAwayWhatFolded(QList<int>& places) const {
    int left = 0;
    int open = -1;
    for (int i = 0; i < count(); ++i) {
        const QSize most = widget(i)->maximumSize();
        const int greatest = orientation() == Qt::Horizontal ? most.width() : most.height();
        left += std::max(0, places.at(i) - greatest);
        places[i] = std::min(places.at(i), greatest);
        if (greatest == QWIDGETSIZE_MAX && !widget(i)->isHidden()) open = i;
    }
    if (open >= 0) places[open] += left;
}

int KeptSplitter::lengthByDefault(const QWidget& part) const {
    const QList<int> shares = byDefault_(length());
    for (int i = 0; i < count() && i < shares.size(); ++i) {
        if (widget(i) == &part) return shares.at(i);
    }
    return length();
}

void KeptSplitter::shareOut() {
    if (sharing_ || length() <= 0) return;
    const QScopedValueRollback guard(sharing_, true);
    // Parts have come or gone since the place was kept: it is no place for these.
    const QList<int> shares = kept_.size() == count() ? kept_ : byDefault_(length());
    const auto sum = std::accumulate(shares.begin(), shares.end(), qint64{0});
    if (shares.size() != count() || sum <= 0) return;
    QList<int> places;
    for (const int share : shares) places.append(static_cast<int>(qint64{share} * length() / sum));
    giveAwayWhatFolded(places);
    setSizes(places);
    shared_ = shownParts();
}

QList<bool> KeptSplitter::shownParts() const {
    QList<bool> shown;
    for (int i = 0; i < count(); ++i) shown.append(!widget(i)->isHidden());
    return shown;
}

// A part that comes into view takes what its hint asks for, whatever its share is.
bool KeptSplitter::event(QEvent* event) {
    const bool done = QSplitter::event(event);
    if (event->type() == QEvent::LayoutRequest && isVisible() && shownParts() != shared_) shareOut();
    return done;
}

void KeptSplitter::resizeEvent(QResizeEvent* event) {
    QSplitter::resizeEvent(event);
    shareOut();
}

void KeptSplitter::showEvent(QShowEvent* event) {
    QSplitter::showEvent(event);
    shareOut();
}

void KeptSplitter::childEvent(QChildEvent* event) {
    QSplitter::childEvent(event);
    if (isVisible() && event->added()) shareOut();
}

void restoreSplitters(const QWidget& window) {
    for (auto* splitter : window.findChildren<KeptSplitter*>()) splitter->toDefault();
}

}  // namespace zentaq
