#include "windows/text_room.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>
#include <QTabBar>
#include <QTextDocument>
#include <QToolButton>
#include <QTreeView>
#include <algorithm>

namespace zentaq {
namespace {

constexpr int anyLength = 100'000;

/// The rectangle around the letters themselves would be smaller than what the toolkit lays out.
QSize linesOf(const QFontMetrics& metrics, const QString& text) {
    return metrics.size(Qt::TextShowMnemonic | Qt::TextExpandTabs, text);
}

QSize brokenAt(int width, const QFont& font, const QString& text) {
    constexpr auto how = Qt::TextWordWrap | Qt::TextExpandTabs;
    return QFontMetrics(font).boundingRect(0, 0, width, anyLength, how, text).size();
}

/// A number of a table stands in the middle of its cell, and needs no room for letters that reach below the
/// line.
QSize lettersOf(const QFontMetrics& metrics, const QString& text) {
    QSize size = linesOf(metrics, text);
    if (text.contains(u'\n')) return size;
    const QRect ink = metrics.tightBoundingRect(text);
    const int above = metrics.ascent() + ink.top();
    const int below = metrics.descent() - ink.bottom();
    size.rheight() -= 2 * std::max(0, std::min(above, below));
    return size;
}

bool isRich(const QLabel& label) {
    if (label.textFormat() == Qt::AutoText) return Qt::mightBeRichText(label.text());
    return label.textFormat() != Qt::PlainText;
}

QSize documentSize(const QLabel& label, int width) {
    QTextDocument document;
    document.setDefaultFont(label.font());
    document.setDocumentMargin(0);
    document.setHtml(label.text());
    if (label.wordWrap()) document.setTextWidth(width);
    return document.size().toSize();
}

TextRoom ofLabel(const QLabel& label) {
    const int margin = 2 * label.margin();
    const QSize given = label.contentsRect().size() - QSize(margin, margin);
    if (isRich(label)) return {label.text(), documentSize(label, given.width()), given};
    if (!label.wordWrap()) return {label.text(), linesOf(label.fontMetrics(), label.text()), given};
    return {label.text(), brokenAt(given.width(), label.font(), label.text()), given};
}

/// With its icon beside it.
QSize captionSize(const QAbstractButton& button, bool besideIcon) {
    QSize size = linesOf(button.fontMetrics(), button.text());
    if (besideIcon && !button.icon().isNull()) size.rwidth() += button.iconSize().width();
    return size;
}

template <typename Option, typename Button>
QSize contentsOf(const Button& button, QStyle::SubElement part) {
    Option option;
    option.initFrom(&button);
    return button.style()->subElementRect(part, &option, &button).size();
}

TextRoom ofButton(const QAbstractButton& button) {
    if (const auto* tool = qobject_cast<const QToolButton*>(&button)) {
        if (tool->toolButtonStyle() == Qt::ToolButtonIconOnly && !tool->icon().isNull()) return {};
        const bool beside = tool->toolButtonStyle() == Qt::ToolButtonTextBesideIcon;
        QSize needed = captionSize(button, beside);
        if (tool->toolButtonStyle() == Qt::ToolButtonTextUnderIcon)
            needed.rheight() += tool->iconSize().height();
        return {button.text(), needed, button.size()};
    }
    const QSize needed = captionSize(button, true);
    if (qobject_cast<const QCheckBox*>(&button) != nullptr)
        return {button.text(), needed, contentsOf<QStyleOptionButton>(button, QStyle::SE_CheckBoxContents)};
    if (qobject_cast<const QRadioButton*>(&button) != nullptr)
        return {button.text(), needed,
                contentsOf<QStyleOptionButton>(button, QStyle::SE_RadioButtonContents)};
    return {button.text(), needed, button.size()};
}

std::vector<TextRoom> ofTabs(const QTabBar& bar) {
    std::vector<TextRoom> rooms;
    QRect shown = bar.rect();
    for (const auto* arrow : bar.findChildren<QToolButton*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (arrow->isVisible()) shown.setRight(std::min(shown.right(), arrow->x() - 1));
    }
    for (int i = 0; i < bar.count(); ++i) {
        if (!bar.isTabVisible(i)) continue;
        const QSize needed = linesOf(bar.fontMetrics(), bar.tabText(i));
        // What is wholly out of sight is scrolled to by the bar's own arrows.
        const QRect seen = bar.tabRect(i) & shown;
        if (!seen.isEmpty()) rooms.push_back({bar.tabText(i), needed, seen.size()});
    }
    return rooms;
}

std::vector<TextRoom> ofHeader(const QHeaderView& header) {
    std::vector<TextRoom> rooms;
    if (header.model() == nullptr) return rooms;
    for (int i = 0; i < header.count(); ++i) {
        if (header.isSectionHidden(i)) continue;
        const QString text = header.model()->headerData(i, header.orientation()).toString();
        const QSize along = header.orientation() == Qt::Horizontal
                                ? QSize(header.sectionSize(i), header.height())
                                : QSize(header.width(), header.sectionSize(i));
        rooms.push_back({text, lettersOf(header.fontMetrics(), text), along});
    }
    return rooms;
}

QModelIndex rowBelow(const QAbstractItemView& view, const QModelIndex& index) {
    if (const auto* tree = qobject_cast<const QTreeView*>(&view)) return tree->indexBelow(index);
    return index.siblingAtRow(index.row() + 1);
}

QString withoutPadding(QString text) {
    while (text.endsWith(u' ')) text.chop(1);
    return text;
}

/// Rows below the end of the list are reached by scrolling, and so is the end of a row where the list scrolls
/// to it.
std::vector<TextRoom> ofItems(const QAbstractItemView& view) {
    std::vector<TextRoom> rooms;
    if (view.model() == nullptr || view.horizontalScrollBar()->maximum() > 0) return rooms;
    for (QModelIndex index = view.indexAt(QPoint(1, 1)); index.isValid(); index = rowBelow(view, index)) {
        const QRect place = view.visualRect(index);
        if (place.isEmpty() || place.top() > view.viewport()->height()) break;
        const QString text = withoutPadding(index.data().toString());
        if (index.data(Qt::ToolTipRole).toString() == text) continue;
        QFont font = view.font();
        if (const QVariant own = index.data(Qt::FontRole); own.isValid()) font = own.value<QFont>();
        const bool breaks = view.property("wordWrap").toBool();
        rooms.push_back({text,
                         breaks ? brokenAt(place.width(), font, text) : lettersOf(QFontMetrics(font), text),
                         place.size()});
    }
    return rooms;
}

TextRoom ofComboBox(const QComboBox& box) {
    QStyleOptionComboBox option;
    option.initFrom(&box);
    option.editable = box.isEditable();
    const QRect field =
        box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
    const QString text = box.currentIndex() < 0 ? box.placeholderText() : box.currentText();
    return {text, linesOf(box.fontMetrics(), text), field.size()};
}

/// Its caption's room is what the style leaves, not what it gives to the letters.
TextRoom ofGroup(const QGroupBox& group) {
    return {group.title(), linesOf(group.fontMetrics(), group.title()), group.size()};
}

/// A text that is longer than its field is scrolled; only its lines have to be whole, and what invites to
/// type.
TextRoom ofField(const QLineEdit& field) {
    const QString text = field.text().isEmpty() ? field.placeholderText() : QString();
    const QSize needed(linesOf(field.fontMetrics(), text).width(), field.fontMetrics().height());
    return {text.isEmpty() ? field.text() : text, needed, field.contentsRect().size()};
}

std::vector<TextRoom> allOf(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) return {ofLabel(*label)};
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return {ofButton(*button)};
    if (const auto* bar = qobject_cast<const QTabBar*>(&widget)) return ofTabs(*bar);
    if (const auto* header = qobject_cast<const QHeaderView*>(&widget)) return ofHeader(*header);
    if (const auto* view = qobject_cast<const QAbstractItemView*>(&widget)) return ofItems(*view);
    if (const auto* box = qobject_cast<const QComboBox*>(&widget)) return {ofComboBox(*box)};
    if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) return {ofGroup(*group)};
    if (const auto* field = qobject_cast<const QLineEdit*>(&widget)) return {ofField(*field)};
    return {};
}

/// A label that is no more than the toolkit's cuts without saying so.
bool cutsOnPurpose(const QWidget& widget, const QString& text) {
    const bool plain = std::string_view(widget.metaObject()->className()) == "QLabel";
    return !plain && widget.toolTip() == text;
}

}  // namespace

std::vector<TextRoom> textRooms(const QWidget& widget) {
    std::vector<TextRoom> rooms = allOf(widget);
    std::erase_if(
        rooms, [&](const TextRoom& room) { return room.text.isEmpty() || cutsOnPurpose(widget, room.text); });
    return rooms;
}

}  // namespace zentaq
