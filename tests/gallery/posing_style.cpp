#include "gallery/posing_style.h"

#include <QAbstractItemView>
#include <QStyleOption>
#include <QVariant>

namespace zentaq {

namespace {

constexpr auto poseProperty = "zentaqPose";

Pose poseOf(const QWidget* widget) {
    return widget == nullptr ? Pose::Normal : static_cast<Pose>(widget->property(poseProperty).toInt());
}

/// For the time of a drawing, the state of the option is the posed one.
class Posed {
 public:
    Posed(const QStyleOption* option, const QWidget* widget)
        // NOLINTNEXTLINE: given back below; a copy would lose its type
        : option_(*const_cast<QStyleOption*>(option)), before_(option->state) {
        QStyle::State& state = option_.state;
        if (!widget->isEnabled()) return;
        const Pose posed = poseOf(widget);
        const bool cell = qobject_cast<const QAbstractItemView*>(widget) != nullptr &&
                          option->type == QStyleOption::SO_ViewItem;
        state.setFlag(QStyle::State_HasFocus, posed == Pose::Focus && !cell);
        state.setFlag(QStyle::State_MouseOver, posed == Pose::Hover);
        if (posed == Pose::Pressed && !cell) state.setFlag(QStyle::State_Sunken);
    }
    ~Posed() { option_.state = before_; }
    Posed(const Posed&) = delete;
    Posed& operator=(const Posed&) = delete;

 private:
    QStyleOption& option_;
    QStyle::State before_;
};

}  // namespace

void PosingStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    if (widget == nullptr) return OutlinedStyle::drawPrimitive(element, option, painter, widget);
    const Posed posed(option, widget);
    OutlinedStyle::drawPrimitive(element, option, painter, widget);
}

void PosingStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (widget == nullptr) return OutlinedStyle::drawControl(element, option, painter, widget);
    const Posed posed(option, widget);
    OutlinedStyle::drawControl(element, option, painter, widget);
}

void PosingStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    if (widget == nullptr) return OutlinedStyle::drawComplexControl(control, option, painter, widget);
    const Posed posed(option, widget);
    OutlinedStyle::drawComplexControl(control, option, painter, widget);
}

bool PosingStyle::hasKeyboard(const QWidget& view) const {
    return poseOf(&view) == Pose::Focus;
}

void pose(QWidget& widget, Pose pose) {
    widget.setProperty(poseProperty, static_cast<int>(pose));
    widget.setEnabled(pose != Pose::Disabled);
}

}  // namespace zentaq
