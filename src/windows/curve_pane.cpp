#include "windows/curve_pane.h"

#include <QAccessible>
#include <QPointer>
#include <QVBoxLayout>

#include "app/state_strip.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/settings_keys.h"
#include "qt/field_control.h"
#include "qt/help_key.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

CurvePane::CurvePane(Session& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      core_(session),
      digits_(
          session.platform().clock, [this] { showLive(); }, this,
          QAccessible::isActive() ? RedrawGate::spokenUs : RedrawGate::digitsUs) {
    picture_ = new CurvePicture(this);
    picture_->setToolTip(
        "Arrow keys: Left and Right go from point to point, Up and Down change it, Page Up and Page Down by "
        "ten steps. With the mouse: drag a point.");
    lblPoint_ = plainLabel("lblPoint", "Point in hand", this);
    lblLive_ = plainLabel("lblLive", "The engine now", this);
    chkTrace_ = named(new QCheckBox("T&race", this), "chkTrace");
    chkTrace_->setToolTip("Shows where the engine was last on the curve");
    chkTrace_->setChecked(session.settings().get(settings::system, settings::CurveTrace) == "1");
    picture_->showTrace(chkTrace_->isChecked());
    bar_ = new QHBoxLayout;
    bar_->setSpacing(space(fontMetrics(), Space::Normal));
    bar_->addWidget(lblLive_, 1);
    bar_->addWidget(chkTrace_);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(space(fontMetrics(), Space::Line));
    whole->addWidget(picture_, 1);
    whole->addWidget(lblPoint_);
    whole->addLayout(bar_);
    connect(picture_, &CurvePicture::stood, this, &CurvePane::showPoint);
    connect(picture_, &CurvePicture::moveAsked, this,
            [this](std::size_t point, CurveWay way, const std::string& entry) {
                enter(point, way, [entry] { return entry; });
            });
    connect(picture_, &CurvePicture::stepAsked, this, [this](std::size_t point, CurveWay way, int steps) {
        enter(point, way, [this, point, way, steps] {
            graph_->GRAPH_LAYOUT();
            return graph_->entryAfter(point, way, steps);
        });
    });
    connect(chkTrace_, &QCheckBox::clicked, this, [this](bool on) {
        picture_->showTrace(on);
        skipFailing([&] { session_.settings().set(settings::system, settings::CurveTrace, on ? "1" : "0"); });
    });
}

bool CurvePane::isInHand() const {
    return graph_ != nullptr && unit_ == &session_.currentUnitObject() && session_.slotInHand() != 0;
}

void CurvePane::showCurve(const CurveKind* kind) {
    picture_->show(nullptr);
    graph_.reset();
    unit_ = &session_.currentUnitObject();
    Unit& unit = session_.currentUnitObject();
    if (kind != nullptr && session_.slotInHand() != 0 && hasCurve(unit, *kind)) {
        graph_ = std::make_unique<CurveGraph>(unit, *kind);
        picture_->setAccessibleName(QStringLiteral("Curve: ") + qString(kind->title));
        const FieldRow* row = fieldOf(kind->up.control);
        if (row != nullptr) picture_->setProperty(helpKeyProperty, qString(row->help));
    }
    picture_->show(graph_.get());
    showPoint();
    showLive();
}

void CurvePane::redraw() {
    if (!isInHand()) return;
    bool changed = graph_->GRAPH_LAYOUT();
    const int linked = session_.link.linked().LinkedUnitKind;
    if (graph_->dot() && (linked != session_.slotInHand() || !gaugesLive(session_))) {
        graph_->forgetLive();
        changed = true;
    }
    if (!changed) return;
    picture_->show(graph_.get());
    showPoint();
    showLive();
}

void CurvePane::redrawDot() {
    const int linked = session_.link.linked().LinkedUnitKind;
    if (!isInHand() || linked == 0 || linked != session_.slotInHand()) return;
    if (!graph_->redrawDot(session_.live)) return;
    digits_.request();
    picture_->update();
}

void CurvePane::showPoint() {
    QString text;
    if (graph_ != nullptr) text = shownString(graph_->inWords(picture_->point()));
    if (lblPoint_->text() != text) lblPoint_->setText(text);
}

void CurvePane::showLive() {
    QString text;
    if (const auto dot = graph_ == nullptr ? std::optional<ChartPoint>() : graph_->dot()) {
        text = "Now at " + shownString(numberText(roundTo(graph_->getLiveVal(session_.live), 0))) + ": " +
               shownString(numberText(roundTo(dot->y, 1)));
    }
    if (lblLive_->text() != text) lblLive_->setText(text);
}

// ---- Changes

void CurvePane::enter(std::size_t point, CurveWay way, std::function<std::string()> entry) {
    const QPointer<CurvePane> self(this);
    // What is typed in a box and not entered yet comes before it.
    session_.windows().afterEdits("Graph", [self, point, way, entry] {
        if (self) self->enterNow(point, way, entry);
    });
}

void CurvePane::enterNow(std::size_t point, CurveWay way, const std::function<std::string()>& asked) {
    if (!isInHand()) return;
    const std::string entry = asked();
    // Another step would leave the range.
    if (entry.empty()) return;
    const CurveKind& kind = graph_->kind();
    const std::string control(way == CurveWay::Up ? kind.up.control : kind.across.control);
    const auto element = static_cast<int>(point);
    const Display shown = core_.page(kind.page);
    const Field* field = shown.field(control, element);
    if (field == nullptr || !field->enabled) {
        session_.notice("This curve cannot be changed with this engine.");
        return;
    }
    const QPointer<CurvePane> self(this);
    core_.enter(kind.page, control, element, entry);
    if (self) self->redraw();
}

}  // namespace zentaq
