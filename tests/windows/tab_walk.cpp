#include "windows/tab_walk.h"

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QImage>
#include <QRadioButton>
#include <QTabBar>
#include <algorithm>
#include <unordered_map>

#include "qt/look.h"
#include "qt/style_shapes.h"
#include "windows/key_press.h"
#include "windows/layout_faults.h"

namespace zentaq {
namespace {

/// A page of a text goes from link to link before it lets the key out.
constexpr int mostPresses = 300;

bool has(const std::vector<QWidget*>& controls, const QWidget* one) {
    return std::find(controls.begin(), controls.end(), one) != controls.end();
}

void pressTab(bool backward) {
    pressKey(backward ? Qt::Key_Backtab : Qt::Key_Tab, backward ? Qt::ShiftModifier : Qt::NoModifier, "\t");
}

bool sameGroup(const QAbstractButton& one, const QAbstractButton& other) {
    if (one.group() != nullptr || other.group() != nullptr) return one.group() == other.group();
    return one.autoExclusive() && one.parentWidget() == other.parentWidget();
}

/// Another one of its options is chosen, or comes before it.
bool isReachedByArrows(const QWidget& control, const std::vector<QWidget*>& all) {
    const auto* option = qobject_cast<const QRadioButton*>(&control);
    if (option == nullptr || option->isChecked()) return false;
    return std::any_of(all.begin(), all.end(), [&](const QWidget* one) {
        const auto* other = qobject_cast<const QRadioButton*>(one);
        return other != nullptr && other != option && sameGroup(*option, *other) && other->isChecked();
    });
}

/// Of a control that is scrolled out of sight in part, what is in sight; of one that is not, all of it.
/// Inside of `page` nothing is cut: there all stands in the place that it has once it is scrolled to.
QRect placeIn(const QWidget& control, const QWidget& window, const QWidget& page) {
    const QRect whole(control.mapTo(&window, QPoint(0, 0)), control.size());
    QRect seen = whole;
    const QWidget* around = page.isAncestorOf(&control) ? control.parentWidget() : nullptr;
    for (; around != nullptr && around != &page; around = around->parentWidget())
        seen &= QRect(around->mapTo(&window, QPoint(0, 0)), around->size());
    return seen.isEmpty() ? whole : seen;
}

/// The innermost widget that both are in.
const QWidget& commonOf(const QWidget& one, const QWidget& other) {
    const QWidget* around = &one;
    while (around != &other && !around->isAncestorOf(&other)) around = around->parentWidget();
    return *around;
}

bool isAgainstTheEye(const QRect& from, const QRect& to) {
    const bool sameColumn = from.left() <= to.right() && to.left() <= from.right();
    const bool sameRow = from.top() <= to.bottom() && to.top() <= from.bottom();
    return (sameColumn && to.bottom() < from.top()) || (sameRow && to.right() < from.left());
}

std::string placeText(const QRect& place) {
    return std::to_string(place.x()) + "," + std::to_string(place.y());
}

/// None of the ring stands above it in its column: there the ring may begin. What is scrolled out of sight
/// stands nowhere.
bool isBeginning(const QWidget& control, const std::vector<QWidget*>& ring, const QWidget& window) {
    const QRect here = placeIn(control, window, window);
    return std::ranges::none_of(ring, [&](const QWidget* one) {
        if (one->visibleRegion().isEmpty()) return false;
        const QRect there = placeIn(*one, window, window);
        const bool sameColumn = there.left() <= here.right() && here.left() <= there.right();
        return sameColumn && there.bottom() < here.top();
    });
}

/// The toolkit shades what it paints by a little.
bool isNear(const QColor& one, const QColor& other) {
    constexpr int shade = 16;
    return std::abs(one.red() - other.red()) <= shade && std::abs(one.green() - other.green()) <= shade &&
           std::abs(one.blue() - other.blue()) <= shade;
}

/// With what the style paints around it.
QImage pictureOf(QWidget& control) {
    constexpr int around = 4;
    QApplication::processEvents();
    QWidget* parent = control.parentWidget();
    return parent->grab(control.geometry().adjusted(-around, -around, around, around)).toImage();
}

}  // namespace

TabWalk walkByTab(QWidget& window, bool backward) {
    TabWalk walk;
    QWidget* now = QApplication::focusWidget();
    if (now == nullptr || now->window() != &window) pressTab(backward);
    for (now = QApplication::focusWidget(); now != nullptr && !has(walk.controls, now);
         now = QApplication::focusWidget()) {
        walk.controls.push_back(now);
        for (int i = 0; i < mostPresses && QApplication::focusWidget() == now; ++i) pressTab(backward);
        if (QApplication::focusWidget() == now && tabControls(window).size() > 1) walk.holding = now;
    }
    return walk;
}

std::vector<QWidget*> tabControls(const QWidget& window) {
    std::vector<QWidget*> all;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool byTab = (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
        if (!byTab || !widget->isVisible() || !widget->isEnabled()) continue;
        if (widget->window() != &window || widget->focusProxy() != nullptr || isPartOfControl(*widget))
            continue;
        all.push_back(widget);
    }
    const std::vector<QWidget*> found = all;
    std::erase_if(all, [&](const QWidget* one) { return isReachedByArrows(*one, found); });
    return all;
}

std::vector<std::string> stepsAgainstTheEye(const std::vector<QWidget*>& ring, const QWidget& window) {
    std::vector<std::string> steps;
    bool begun = false;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const QWidget& from = *ring[i];
        const QWidget& to = *ring[(i + 1) % ring.size()];
        // A page that has the keyboard itself stands around what is on it.
        if (from.isAncestorOf(&to) || to.isAncestorOf(&from)) continue;
        const QWidget& both = commonOf(from, to);
        const QRect here = placeIn(from, window, both);
        const QRect there = placeIn(to, window, both);
        if (!isAgainstTheEye(here, there)) continue;
        // Somewhere the ring goes back to its beginning.
        if (!begun && isBeginning(to, ring, window)) {
            begun = true;
            continue;
        }
        steps.push_back(pathOf(from) + " at " + placeText(here) + " to " + pathOf(to) + " at " +
                        placeText(there));
    }
    return steps;
}

namespace {

/// The color that most of it has.
QColor groundOf(const QImage& picture) {
    std::unordered_map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
    }
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return most == counts.end() ? QColor() : QColor(most->first);
}

}  // namespace

bool showsFocus(QWidget& control) {
    control.setFocus(Qt::TabFocusReason);
    const QImage with = pictureOf(control);
    control.clearFocus();
    const QImage without = pictureOf(control);
    if (with.size() != without.size()) return true;
    const QColor frame = lookColors(appliedLook(*qApp)).focus;
    const QColor frameThere = seenOn(frame, groundOf(without));
    const auto isFrame = [&](const QColor& color) {
        return isNear(color, frame) || isNear(color, frameThere);
    };
    int changed = 0;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x)
            changed += isFrame(with.pixelColor(x, y)) && !isFrame(without.pixelColor(x, y));
    }
    const auto* tabs = qobject_cast<QTabBar*>(&control);
    QSize framed = tabs != nullptr ? tabs->tabRect(tabs->currentIndex()).size() : control.size();
    // The toolkit's grid of colors frames the one in hand.
    if (control.inherits("QWellArray")) framed = {1, 1};
    return changed >= framed.width() + framed.height();
}

}  // namespace zentaq
