#include "windows/frm_config_page_form.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/live_beside.h"
#include "base/number_text.h"
#include "config/page_rows.h"
#include "config/page_switches.h"
#include "config/shown_value.h"
#include "qt/entry_box.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "windows/frm_graph_2d.h"

namespace zentaq {

namespace {

enum FormPlaces {
    captionPlace,
    valuePlace,
    unitPlace,
    limitsPlace,
    livePlace,
    formerPlace,
    restPlace,
    placeCount
};

/// Boxes of a curve in one row, where there is room for them.
constexpr std::size_t mostBoxes = 10;
constexpr std::size_t fewestBoxes = 3;
constexpr auto memberProperty = "member";
constexpr auto widestLive = "now 20000 rpm";

bool isSwitch(const Field& field) {
    return field.kind == FieldKind::Option || field.kind == FieldKind::Check;
}

/// The name of one control of a curve: "WE_3", counted from 0.
QString nameOf(const Field& field, bool ofCurve) {
    const QString name = qString(field.control);
    return ofCurve ? name + "_" + QString::number(field.element) : name;
}

/// A range that tells the unit tells it once.
QString unitBeside(const Field& field) {
    const bool told = field.kind != FieldKind::Fact && field.limits.find(field.unit) != std::string::npos;
    return told ? QString() : shownString(field.unit);
}

bool onSameStops(const std::vector<Field>& one, const std::vector<Field>& other) {
    const FieldRow* row = fieldOf(one.front().control);
    const FieldRow* second = fieldOf(other.front().control);
    return one.size() == other.size() && row != nullptr && second != nullptr &&
           ((row->axis == FieldAxis::Cylinder) == (second->axis == FieldAxis::Cylinder));
}

QString formerText(const Field& field) {
    return field.former.empty() ? QString() : "opened: " + shownString(field.former);
}

}  // namespace

PageForm::PageForm(Session& session, QWidget* parent)
    : PageArea(parent),
      core_(session),
      session_(session),
      dot_(
          session.platform().clock,
          [this] {
              if (curve_ != nullptr) curve_->redrawDot();
          },
          this, RedrawGate::markUs),
      digits_(
          session.platform().clock, [this] { showLive(); }, this,
          QAccessible::isActive() ? RedrawGate::spokenUs : RedrawGate::digitsUs) {
    named(this, "pageForm", "Fields of the page");
    framesFollowed_ = session.frames.follow([this] {
        if (!isVisible()) return;
        dot_.request();
        digits_.request();
    });
}

// ---- Showing

std::string PageForm::shapeOf(const Display& shown) {
    std::string shape;
    for (const PageNotice& notice : shown.notices) shape += notice.text + "\n";
    for (const Field& field : shown.fields) {
        shape += field.control + numberText(field.element) + numberText(static_cast<int>(field.kind)) + "\n";
    }
    return shape;
}

void PageForm::showPage(int page) {
    const Display shown = core_.page(page);
    const std::string shape = shapeOf(shown);
    const bool another = std::exchange(page_, page) != page;
    const bool same = !another && shape == shape_ && boxes_ == boxesInRow();
    shape_ = shape;
    onFly_ = shown.onFly;
    same ? update(shown) : build(shown);
    showPicture();
    showLive();
}

/// With the bar that scrolls, whether it stands there or not: a page that is laid out anew by it could need
/// it no more, and again.
int PageForm::roomWidth() const {
    return width() - 2 * frameWidth() - verticalScrollBar()->sizeHint().width();
}

std::size_t PageForm::boxesInRow() const {
    const int box =
        digitsWidth(fontMetrics(), 7) + fontMetrics().height() + space(fontMetrics(), Space::Tight);
    const int captions = fontMetrics().averageCharWidth() * 20;
    // A curve stands beside its boxes.
    const bool halved = curveOfPage(page_) != nullptr;
    const int width = halved ? roomWidth() * 5 / 9 : roomWidth();
    const int room = (width - (halved ? captions / 2 : captions)) / std::max(box, 1);
    return std::clamp<std::size_t>(static_cast<std::size_t>(std::max(room, 0)), fewestBoxes, mostBoxes);
}

void PageForm::resizeEvent(QResizeEvent* event) {
    PageArea::resizeEvent(event);
    fitWidths();
    foldPicture();
    if (page_ >= 0 && boxes_ != boxesInRow() && commit()) showPage(page_);
}

void PageForm::build(const Display& shown) {
    const QWidget* inHand = QApplication::focusWidget();
    const QString focused = inHand != nullptr && isAncestorOf(inHand) ? inHand->objectName() : QString();
    boxes_ = boxesInRow();
    lines_.clear();
    controls_.clear();
    groups_.clear();
    notes_ = nullptr;
    lblNotesCounter_ = nullptr;
    curve_ = nullptr;
    sketch_ = nullptr;
    columns_ = nullptr;
    // The box whose entry asks for another page may be at work still.
    if (QWidget* former = takeWidget()) {
        former->hide();
        former->deleteLater();
    }
    content_ = new QWidget;
    auto* outer = new QVBoxLayout(content_);
    grid_ = new QGridLayout;
    grid_->setHorizontalSpacing(space(fontMetrics(), Space::Normal));
    grid_->setVerticalSpacing(space(fontMetrics(), Space::Tight));
    grid_->setColumnStretch(restPlace, 1);
    columns_ = new QHBoxLayout;
    columns_->setSpacing(space(fontMetrics(), Space::Wide));
    auto* fields = new QVBoxLayout;
    fields->addLayout(grid_);
    columns_->addLayout(fields, 3);
    outer->addLayout(columns_, 1);
    row_ = 0;
    for (const PageNotice& notice : shown.notices) addNotice(notice.text);
    std::vector<Fields> curves;
    const auto flush = [&] {
        if (!curves.empty()) addStrips(curves);
        curves.clear();
    };
    for (std::size_t i = 0; i < shown.fields.size();) {
        std::size_t end = i + 1;
        while (end < shown.fields.size() && shown.fields[end].control == shown.fields[i].control) ++end;
        if (end - i > 1) {
            Fields members(shown.fields.begin() + static_cast<std::ptrdiff_t>(i),
                           shown.fields.begin() + static_cast<std::ptrdiff_t>(end));
            // Curves of as many cells on the same stops stand below each other.
            if (!curves.empty() && !onSameStops(curves.front(), members)) flush();
            curves.push_back(std::move(members));
        } else {
            flush();
            shown.fields[i].kind == FieldKind::Notes ? addNotes(shown.fields[i], shown.notesCounter)
                                                     : addLine(shown.fields[i]);
        }
        i = end;
    }
    flush();
    addPicture();
    if (notes_ == nullptr) fields->addStretch(1);
    setPage(content_);
    fitWidths();
    content_->show();
    foldPicture();
    chainTab();
    if (focused.isEmpty()) return;
    if (auto* again = findChild<QWidget*>(focused)) again->setFocus();
}

/// The picture stands below the fields where there is no room beside them.
void PageForm::foldPicture() {
    if (columns_ == nullptr) return;
    const QMargins around = content_->layout()->contentsMargins();
    foldColumns(*columns_, roomWidth() - around.left() - around.right());
}

/// What is made late would come last, behind all other parts of the window.
void PageForm::chainTab() {
    QWidget* before = this;
    for (const auto& control : controls_) {
        setTabOrder(before, control->widget());
        before = control->widget();
    }
    if (notes_ != nullptr) setTabOrder(before, notes_);
    if (curve_ == nullptr) return;
    for (QWidget* part : {static_cast<QWidget*>(&curve_->picture()), static_cast<QWidget*>(&curve_->trace()),
                          curve_->findChild<QWidget*>("cmdGraph")}) {
        setTabOrder(before, part);
        before = part;
    }
}

// ---- Pictures

void PageForm::addPicture() {
    Unit& unit = session_.currentUnitObject();
    const CurveKind* kind = curveOfPage(page_);
    if (kind != nullptr && hasCurve(unit, *kind)) {
        curve_ = named(new CurvePane(session_, content_), "frmGraphs", qString(kind->title));
        auto* open = named(new QPushButton("&Graph", curve_), "cmdGraph", "Graph");
        open->setToolTip("Opens the curve beside the page");
        connect(open, &QPushButton::clicked, this, [this, kind] { openCurve(session_, kind->name); });
        curve_->addButton(open);
        curve_->showCurve(kind);
        columns_->addWidget(curve_, 2);
    } else if (settingSketch(unit, page_)) {
        sketch_ = new SketchPicture(content_);
        columns_->addWidget(sketch_, 2);
    }
}

void PageForm::showPicture() {
    if (curve_ != nullptr) curve_->redraw();
    if (sketch_ == nullptr) return;
    if (const auto sketch = settingSketch(session_.currentUnitObject(), page_)) sketch_->show(*sketch);
}

void PageForm::follow() {
    if (curve_ != nullptr && isVisible()) curve_->redraw();
}

void PageForm::showLive() {
    std::optional<std::vector<DashboardReading>> readings;
    for (auto& [place, line] : lines_) {
        if (line.live == nullptr) continue;
        // Asked for once, and only by a page that shows some.
        if (!readings) readings = readingsOfNow(session_);
        const QString text =
            shownString(liveBeside(*readings, line.live->property(memberProperty).toString().toStdString()));
        if (line.live->text() != text) line.live->setText(text);
    }
}

void PageForm::update(const Display& shown) {
    for (const Field& field : shown.fields) {
        const auto found = lines_.find({field.control, field.element});
        if (found != lines_.end()) showLine(found->second, field);
        if (field.kind == FieldKind::Notes && notes_ != nullptr) {
            const QString text = qString(field.text);
            const QSignalBlocker quiet(notes_);
            if (!notes_->hasFocus() && notes_->toPlainText() != text) notes_->setPlainText(text);
            lblNotesCounter_->setText(qString(shown.notesCounter));
        }
    }
}

// ---- Lines

void PageForm::addNotice(const std::string& text) {
    QLabel* label = plainLines("lblNotice", {}, content_);
    label->setText(qString(text));
    grid_->addWidget(label, row_++, 0, 1, placeCount);
}

FieldControl* PageForm::makeControl(const Field& field, QWidget* parent) {
    const QPointer<PageForm> self(this);
    const auto entered = [self, page = page_, control = field.control,
                          element = field.element](const std::string& text) {
        if (!self) return true;
        const bool taken = self->core_.enter(page, control, element, text);
        // Also what was refused, or is only one of a group, shows what the calibration holds.
        if (self && self->page_ == page) self->showPage(page);
        return taken;
    };
    auto* made = new FieldControl(field, entered, parent);
    made->setParent(parent);
    controls_.emplace_back(made);
    return made;
}

bool PageForm::isNarrow() const {
    constexpr int narrowLetters = 100;
    return roomWidth() < narrowLetters * fontMetrics().averageCharWidth();
}

/// A caption takes a second line only where it would have more than its share of the page, or the page is
/// narrow; ranges and live values only on a narrow one.
void PageForm::fitWidths() {
    const bool narrow = isNarrow();
    // Beside a picture there is less room.
    const int most = roomWidth() / (sketch_ != nullptr ? 4 : 3);
    for (auto& [place, line] : lines_) {
        if (line.caption != nullptr) {
            QString text = line.caption->text();
            const QFontMetrics metrics = line.caption->fontMetrics();
            const int whole = metrics.horizontalAdvance(text.remove(u'&')) + metrics.averageCharWidth();
            line.caption->setMinimumWidth(narrow ? 0 : std::min(whole, most));
        }
        if (line.limits != nullptr) line.limits->setWordWrap(narrow);
        if (line.live == nullptr) continue;
        line.live->setWordWrap(narrow);
        // It comes and goes, and nothing moves for it.
        line.live->setMinimumWidth(narrow ? 0 : line.live->fontMetrics().horizontalAdvance(widestLive));
    }
}

PageForm::Line& PageForm::lineOf(const Field& field) {
    return lines_[{field.control, field.element}];
}

void PageForm::addLine(const Field& field) {
    Line& line = lineOf(field);
    line.former = mutedLabel(content_);
    line.former->setObjectName("lblFormer_" + qString(field.control));
    grid_->addWidget(line.former, row_, formerPlace);
    if (field.kind == FieldKind::Fact) {
        QLabel* caption = plainLabel("lblCaption_" + qString(field.control), {}, content_);
        caption->setText(qString(plainCaption(field.caption)));
        caption->setWordWrap(true);
        line.caption = caption;
        line.fact = plainLabel(qString(field.control), qString(plainCaption(field.caption)), content_);
        line.fact->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid_->addWidget(caption, row_, captionPlace);
        grid_->addWidget(line.fact, row_, valuePlace);
    } else {
        line.control = makeControl(field, content_);
        const std::string group(groupOf(field.control));
        if (field.kind == FieldKind::Option && !group.empty()) {
            QButtonGroup*& buttons = groups_[group];
            if (buttons == nullptr) buttons = new QButtonGroup(content_);
            line.control->join(*buttons);
        }
        if (isSwitch(field)) {
            grid_->addWidget(line.control->widget(), row_, captionPlace, 1, limitsPlace + 1, Qt::AlignLeft);
        } else {
            QLabel* caption = line.control->addCaption();
            caption->setWordWrap(true);
            line.caption = caption;
            grid_->addWidget(caption, row_, captionPlace);
            const bool list = field.kind == FieldKind::Choice;
            grid_->addWidget(line.control->widget(), row_, valuePlace, 1,
                             list ? livePlace - valuePlace + 1 : 1, list ? Qt::Alignment() : Qt::AlignLeft);
        }
    }
    if (!isSwitch(field) && field.kind != FieldKind::Choice) {
        line.unit = plainLabel("lblUnit_" + qString(field.control), {}, content_);
        line.limits = mutedLabel(content_);
        line.limits->setObjectName("lblLimits_" + qString(field.control));
        grid_->addWidget(line.unit, row_, unitPlace);
        grid_->addWidget(line.limits, row_, limitsPlace);
    }
    if (!isSwitch(field) && !readingBeside(field.member).empty()) {
        line.live = plainLabel("lblLive_" + qString(field.control), "The engine now", content_);
        line.live->setProperty(memberProperty, qString(field.member));
        grid_->addWidget(line.live, row_, livePlace);
    }
    ++row_;
    showLine(line, field);
}

void PageForm::showLine(Line& line, const Field& field) {
    if (line.control != nullptr) {
        Field shown = field;
        if (line.ofCurve) {
            // A box of a curve is told by what it stands for.
            const std::string number = numberText(field.element + 1);
            shown.caption = plainCaption(field.caption) + ", cell " + number;
            if (!field.axis.empty() && field.axis != number) shown.caption += ": " + field.axis;
            shown.tip = field.limits + (field.former.empty() ? "" : ", opened: " + field.former);
        }
        line.control->show(shown);
        line.control->mark(onFly_);
        line.control->widget()->setObjectName(nameOf(field, line.ofCurve));
        if (line.ofCurve) {
            QFont font = line.control->widget()->font();
            font.setBold(!field.former.empty());
            line.control->widget()->setFont(font);
        }
    }
    if (line.fact != nullptr) line.fact->setText(shownString(field.text));
    if (line.unit != nullptr) line.unit->setText(unitBeside(field));
    if (line.stop != nullptr) line.stop->setText(shownString(field.axis));
    if (line.limits != nullptr && field.kind != FieldKind::Fact) {
        line.limits->setText(shownString(withoutParentheses(field.limits)));
        showUsable(*line.limits, field.enabled);
    }
    if (line.former != nullptr) line.former->setText(formerText(field));
}

// ---- Curves

void PageForm::addStrips(const std::vector<Fields>& members) {
    addHeading(members);
    const std::size_t cells = members.front().size();
    // Rows of the same length, as few as there is room for.
    const std::size_t rows = (cells + boxes_ - 1) / boxes_;
    const std::size_t inRow = (cells + rows - 1) / rows;
    for (std::size_t first = 0; first < cells; first += inRow)
        addBlock(members, first, std::min(inRow, cells - first));
}

void PageForm::addHeading(const std::vector<Fields>& members) {
    for (const Fields& cells : members) {
        const Field& field = cells.front();
        QString text = qString(plainCaption(field.caption));
        if (const QString unit = unitBeside(field); !unit.isEmpty()) text += ", " + unit;
        const bool alike =
            std::ranges::all_of(cells, [&](const Field& one) { return one.limits == field.limits; });
        if (alike && !field.limits.empty()) text += ": " + shownString(withoutParentheses(field.limits));
        QLabel* label = plainLines("lblCurve_" + qString(field.control), {}, content_);
        label->setText(text);
        grid_->addWidget(label, row_++, 0, 1, placeCount);
    }
}

void PageForm::addBlock(const std::vector<Fields>& members, std::size_t first, std::size_t count) {
    auto* strip = new QWidget(content_);
    auto* boxes = new QGridLayout(strip);
    boxes->setContentsMargins(0, 0, 0, space(fontMetrics(), Space::Tight));
    boxes->setHorizontalSpacing(space(fontMetrics(), Space::Tight));
    boxes->setVerticalSpacing(space(fontMetrics(), Space::Line));
    const FieldRow* row = fieldOf(members.front().front().control);
    const QString in =
        row == nullptr ? QString() : shownString(shownStopUnit(session_.currentUnitObject(), row->axis));
    int line = 0;
    if (!in.isEmpty()) {
        QLabel* unit = mutedLabel(strip);
        unit->setText(in);
        boxes->addWidget(unit, line, 0);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const Field& field = members.front()[first + i];
        QLabel* stop = mutedLabel(strip);
        stop->setAlignment(Qt::AlignRight);
        stop->setObjectName("lblStop_" + nameOf(field, true));
        lineOf(field).stop = stop;
        boxes->addWidget(stop, line, static_cast<int>(i) + 1);
    }
    for (const Fields& cells : members) {
        ++line;
        QLabel* name = plainLabel("lblRow_" + qString(cells.front().control), {}, strip);
        const bool alone = members.size() == 1;
        name->setText(alone ? shownString(cells.front().unit) : qString(cells.front().member));
        boxes->addWidget(name, line, 0);
        for (std::size_t i = 0; i < count; ++i) {
            const Field& field = cells[first + i];
            Line& one = lineOf(field);
            one.ofCurve = true;
            one.control = makeControl(field, strip);
            boxes->addWidget(one.control->widget(), line, static_cast<int>(i) + 1);
            showLine(one, field);
        }
    }
    boxes->setColumnStretch(static_cast<int>(count) + 1, 1);
    grid_->addWidget(strip, row_++, 0, 1, placeCount);
}

// ---- Notes

void PageForm::addNotes(const Field& field, const std::string& counter) {
    notes_ = named(new QPlainTextEdit(qString(field.text), content_), qString(field.control), "Notes");
    notes_->setTabChangesFocus(true);
    notes_->setProperty(helpKeyProperty, qString(field.help));
    lblNotesCounter_ = plainLabel("lblNotesCounter", "Characters used", content_);
    lblNotesCounter_->setText(qString(counter));
    grid_->addWidget(notes_, row_, 0, 1, placeCount);
    grid_->setRowStretch(row_++, 1);
    grid_->addWidget(lblNotesCounter_, row_++, 0, 1, placeCount);
    connect(notes_, &QPlainTextEdit::textChanged, this, &PageForm::notesEdited);
}

void PageForm::notesEdited() {
    const QString typed = notes_->toPlainText();
    core_.enterNotes(typed.toStdString());
    const QString kept = qString(session_.currentUnitObject().NOTES_TEXT());
    if (kept != typed) {
        // More than there is room for is not taken.
        const QSignalBlocker quiet(notes_);
        const int place = notes_->textCursor().position();
        notes_->setPlainText(kept);
        QTextCursor cursor = notes_->textCursor();
        cursor.setPosition(std::min<int>(place, static_cast<int>(kept.size())));
        notes_->setTextCursor(cursor);
    }
    lblNotesCounter_->setText(qString(notesCounter(kept.toStdString())));
}

// ---- With the window

bool PageForm::commit() {
    for (const auto& control : controls_) {
        if (control != nullptr && !control->commit()) return false;
    }
    return true;
}

void PageForm::takeFocus() {
    if (notes_ != nullptr) return notes_->setFocus();
    for (const auto& control : controls_) {
        if (control == nullptr || !control->widget()->isEnabled()) continue;
        return control->widget()->setFocus(Qt::OtherFocusReason);
    }
}

bool PageForm::goTo(const std::string& control) {
    for (const auto& one : controls_) {
        if (one == nullptr || one->shown().control != control) continue;
        ensureWidgetVisible(one->widget());
        one->widget()->setFocus(Qt::OtherFocusReason);
        // A value that is typed now takes the place of the one that stands there.
        if (auto* box = qobject_cast<QLineEdit*>(one->widget())) box->selectAll();
        return true;
    }
    return false;
}

}  // namespace zentaq
