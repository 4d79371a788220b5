// A page of frmConfig as a form: the control of every field with its caption, unit and range, curves as
// strips of boxes below their stops, and what the calibration held when it was opened beside what differs
// from it. It shows what the core answers and hands every entry to it.
#pragma once

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <map>
#include <string>
#include <vector>

#include "app/page_editor.h"
#include "qt/field_control.h"
#include "qt/page_area.h"
#include "windows/curve_pane.h"
#include "windows/redraw_gate.h"
#include "windows/sketch_picture.h"

namespace zentaq {

class PageForm : public PageArea {
    Q_OBJECT

 public:
    PageForm(Session& session, QWidget* parent);

    /// Shows a page, or the one that is shown with the values of now: what is being typed stays.
    void showPage(int page);
    int page() const { return page_; }
    /// Hands over what is being typed. False: refused, the user has been told, and the box has the keyboard.
    bool commit();
    /// The first control that takes an entry.
    void takeFocus();
    /// The curve and what stands beside the fields show what the engine does now.
    void follow();
    /// nullptr for a page without a curve.
    CurvePane* curve() const { return curve_; }
    /// One field of the page in hand. False where it is not shown.
    bool goTo(const std::string& control);

 protected:
    void resizeEvent(QResizeEvent* event) override;

 private:
    /// A control with what stands beside it.
    struct Line {
        FieldControl* control = nullptr;  ///< none for a label and for the notes
        QLabel* caption = nullptr;
        QLabel* fact = nullptr;
        QLabel* unit = nullptr;
        QLabel* stop = nullptr;  ///< above the first curve of a strip
        bool ofCurve = false;
        QLabel* limits = nullptr;
        QLabel* former = nullptr;
        QLabel* live = nullptr;  ///< none where no live value is about the setting
    };
    using Fields = std::vector<Field>;

    void build(const Display& shown);
    void chainTab();
    void update(const Display& shown);
    void addLine(const Field& field);
    void addStrips(const std::vector<Fields>& members);
    void addBlock(const std::vector<Fields>& members, std::size_t first, std::size_t count);
    void addNotes(const Field& field, const std::string& counter);
    void addNotice(const std::string& text);
    void addPicture();
    void showPicture();
    void showLive();
    void addHeading(const std::vector<Fields>& members);
    int roomWidth() const;
    bool isNarrow() const;
    bool hasPicture() const { return curve_ != nullptr || sketch_ != nullptr; }
    void fitWidths();
    void foldPicture();
    Line& lineOf(const Field& field);
    FieldControl* makeControl(const Field& field, QWidget* parent);
    void showLine(Line& line, const Field& field);
    void notesEdited();
    std::size_t boxesInRow() const;
    static std::string shapeOf(const Display& shown);

    PageEditor core_;
    Session& session_;
    int page_ = -1;
    std::string shape_;
    QWidget* content_ = nullptr;
    QBoxLayout* columns_ = nullptr;  ///< the fields and the picture of what they do
    QGridLayout* grid_ = nullptr;
    int row_ = 0;
    std::map<std::pair<std::string, int>, Line> lines_;
    std::vector<QPointer<FieldControl>> controls_;  ///< in the order of the page
    std::map<std::string, QButtonGroup*> groups_;
    CurvePane* curve_ = nullptr;  ///< frmGraphs
    SketchPicture* sketch_ = nullptr;
    RedrawGate dot_;
    RedrawGate digits_;
    FrameFeed::Subscription framesFollowed_;
    QPlainTextEdit* notes_ = nullptr;
    QLabel* lblNotesCounter_ = nullptr;
    std::size_t boxes_ = 0;
    bool onFly_ = false;
};

}  // namespace zentaq
