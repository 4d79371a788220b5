#include "windows/layout_faults.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QRubberBand>
#include <QScrollArea>
#include <QScrollBar>
#include <QSizeGrip>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <sstream>

#include "windows/text_room.h"

namespace zentaq {
namespace {

/// The frames of two neighbours may share a line.
constexpr int sharedLine = 1;

std::string sizeText(const QSize& size) {
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
}

std::string rectText(const QRect& rect) {
    return sizeText(rect.size()) + " at " + std::to_string(rect.x()) + "," + std::to_string(rect.y());
}

bool isViewport(const QWidget& widget) {
    const auto* area = qobject_cast<const QAbstractScrollArea*>(widget.parentWidget());
    return area != nullptr && area->viewport() == &widget;
}

bool isShown(const QWidget& widget) {
    return widget.isVisible() && !widget.isWindow();
}

std::vector<QWidget*> shownChildren(const QWidget& parent) {
    std::vector<QWidget*> children;
    for (QObject* child : parent.children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget != nullptr && isShown(*widget) && !isPartOfControl(*widget)) children.push_back(widget);
    }
    return children;
}

using Siblings = std::vector<QWidget*>;

using Siblings = std::vector<QWidget*>;

/// Dims what stands below it and takes no click.
bool veils(const QWidget& one, const QWidget& below) {
    return one.testAttribute(Qt::WA_TransparentForMouseEvents) && one.geometry().contains(below.geometry());
}

/// From the lowest to the topmost: one of two stands on the other where that is veiled, or is a veil itself.
bool mayCover(const Siblings& siblings, std::size_t below, std::size_t above) {
    if (siblings[below]->testAttribute(Qt::WA_TransparentForMouseEvents)) return true;
    for (std::size_t i = below + 1; i <= above; ++i) {
        if (veils(*siblings[i], *siblings[below])) return true;
    }
    return false;
}

/// These cut their text themselves, or scroll.
bool asksForMore(const QWidget& widget) {
    const QSize least = widget.minimumSizeHint();
    if (least.width() <= widget.width() && least.height() <= widget.height()) return false;
    if (widget.layout() != nullptr && widget.layout()->hasHeightForWidth()) return false;
    return qobject_cast<const QLabel*>(&widget) == nullptr &&
           qobject_cast<const QHeaderView*>(&widget) == nullptr;
}

class Finder {
 public:
    Finder(const QWidget& window, const QRect& room) : window_(window), room_(room) {}

    std::vector<std::string> all() {
        if (!room_.contains(window_.geometry()))
            tell("outside the screen", window_) << rectText(window_.geometry());
        walk(window_);
        std::vector<std::string> lines;
        for (const std::ostringstream& fault : faults_) {
            lines.push_back(fault.str() + " (room " + sizeText(room_.size()) + ")");
        }
        return lines;
    }

 private:
    std::ostringstream& tell(const char* what, const QWidget& widget) {
        faults_.emplace_back();
        faults_.back() << what << ": " << pathOf(widget) << ": ";
        return faults_.back();
    }

    void walk(const QWidget& parent) {
        const Siblings children = shownChildren(parent);
        for (std::size_t i = 0; i < children.size(); ++i) {
            for (std::size_t j = i + 1; j < children.size(); ++j) {
                if (!mayCover(children, i, j)) compare(*children[i], *children[j]);
            }
            look(*children[i]);
            walk(*children[i]);
        }
    }

    void look(const QWidget& widget) {
        if (widget.width() == 0 || widget.height() == 0) {
            // A label that says nothing, or an empty place, takes no room.
            if (!widget.minimumSizeHint().isEmpty()) tell("no room", widget) << sizeText(widget.size());
            return;
        }
        const QWidget& parent = *widget.parentWidget();
        if (!isViewport(parent) && !parent.rect().contains(widget.geometry()))
            tell("outside its parent", widget)
                << rectText(widget.geometry()) << " in " << sizeText(parent.size());
        if (asksForMore(widget)) {
            tell("squeezed", widget) << sizeText(widget.size()) << " of "
                                     << sizeText(widget.minimumSizeHint());
        }
        const auto* area = qobject_cast<const QScrollArea*>(&widget);
        if (area != nullptr && area->horizontalScrollBar()->maximum() > 0)
            tell("scrolls sideways", widget) << area->horizontalScrollBar()->maximum() << " pixels";
        for (const TextRoom& text : textRooms(widget)) {
            if (!text.clipped()) continue;
            tell("clipped text", widget) << '"' << text.text.toStdString() << "\" has "
                                         << sizeText(text.given) << " of " << sizeText(text.needed);
        }
    }

    void compare(const QWidget& one, const QWidget& other) {
        const QRect both = one.geometry() & other.geometry();
        if (both.width() <= sharedLine || both.height() <= sharedLine) return;
        tell("overlap", one) << rectText(one.geometry()) << " and " << pathOf(other) << ' '
                             << rectText(other.geometry());
    }

    const QWidget& window_;
    QRect room_;
    std::vector<std::ostringstream> faults_;
};

}  // namespace

bool isPartOfControl(const QWidget& widget) {
    const QWidget* parent = widget.parentWidget();
    if (parent == nullptr) return false;
    if (qobject_cast<const QSizeGrip*>(&widget) != nullptr ||
        qobject_cast<const QRubberBand*>(&widget) != nullptr ||
        qobject_cast<const QSplitterHandle*>(&widget) != nullptr) {
        return true;
    }
    for (const char* composite :
         {"QComboBox", "QAbstractSpinBox", "QLineEdit", "QTabBar", "QCalendarWidget"}) {
        if (parent->inherits(composite)) return true;
    }
    const auto* area = qobject_cast<const QAbstractScrollArea*>(parent);
    if (area == nullptr) return false;
    // The headers of a table stand beside its cells; all other parts of it are the toolkit's.
    return area->viewport() != &widget && qobject_cast<const QHeaderView*>(&widget) == nullptr;
}

std::string pathOf(const QWidget& widget) {
    QString path = widget.objectName();
    for (const QWidget* above = widget.parentWidget(); above != nullptr && !widget.isWindow();
         above = above->isWindow() ? nullptr : above->parentWidget()) {
        if (!above->objectName().isEmpty() && !above->objectName().startsWith("qt_"))
            path.prepend(above->objectName() + QLatin1Char('/'));
    }
    return path.toStdString() + " (" + widget.metaObject()->className() + ")";
}

std::vector<std::string> layoutFaults(const QWidget& window, const QRect& room) {
    return Finder(window, room).all();
}

}  // namespace zentaq
