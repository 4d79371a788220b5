// A curve graph with what stands around its picture: the point in hand in words, the engine's value and the
// switch for the trace. It follows the calibration and the engine, and enters what is moved in the picture
// as the box of the point does.
#pragma once

#include "app/page_editor.h"
#include "app/session.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "windows/curve_picture.h"
#include "windows/redraw_gate.h"

namespace zentaq {

class CurvePane : public QWidget {
    Q_OBJECT

 public:
    CurvePane(Session& session, QWidget* parent);

    /// A curve of the calibration in hand, or nothing where its kind has it not.
    void showCurve(const CurveKind* kind);
    const CurveGraph* graph() const { return graph_.get(); }
    CurvePicture& picture() { return *picture_; }
    QCheckBox& trace() { return *chkTrace_; }
    /// Stands behind the switch of the trace.
    void addButton(QWidget* button) { bar_->addWidget(button); }

    /// What the curve holds by now, with its frame and the engine's dot.
    void redraw();
    /// The engine's value of now, if it is another one than before.
    void redrawDot();

 private:
    /// `entry` is asked for behind the edits before it.
    void enter(std::size_t point, CurveWay way, std::function<std::string()> entry);
    void enterNow(std::size_t point, CurveWay way, const std::function<std::string()>& entry);
    void showPoint();
    void showLive();
    bool isInHand() const;

    Session& session_;
    PageEditor core_;
    const Unit* unit_ = nullptr;
    std::unique_ptr<CurveGraph> graph_;
    RedrawGate digits_;
    CurvePicture* picture_ = nullptr;
    QLabel* lblPoint_ = nullptr;
    QLabel* lblLive_ = nullptr;
    QCheckBox* chkTrace_ = nullptr;
    QHBoxLayout* bar_ = nullptr;
};

}  // namespace zentaq
