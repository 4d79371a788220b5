#include "gallery/gallery.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSplitter>
#include <QTabBar>
#include <QTableWidget>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <array>
#include <functional>

#include "gallery/own_widgets.h"
#include "gallery/posing_style.h"
#include "qt/colour_swatch.h"
#include "qt/field_control.h"
#include "qt/icons.h"
#include "qt/look.h"
#include "windows/gauge_widget.h"
#include "windows/live_label.h"
#include "windows/strip_button.h"

namespace zentaq {

namespace {

constexpr std::array poses{Pose::Normal, Pose::Hover, Pose::Focus, Pose::Pressed, Pose::Disabled};
constexpr std::array poseNames{"Normal", "Under the pointer", "With the keyboard", "Pressed or on",
                               "Disabled"};
constexpr auto sampleText = "Injector time";

struct Kind {
    const char* name;
    std::function<QWidget*()> make;
};

template <typename Button>
QWidget* button(bool on) {
    auto* made = new Button;
    made->setText(sampleText);
    made->setCheckable(true);
    made->setChecked(on);
    return made;
}

QWidget* toolButton(bool raised) {
    auto* made = new QToolButton;
    made->setText("Save");
    made->setIcon(icon("Save"));
    made->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    made->setAutoRaise(raised);
    return made;
}

QWidget* defaultButton() {
    auto* made = new QPushButton("Save");
    made->setDefault(true);
    return made;
}

QWidget* comboBox() {
    auto* made = new QComboBox;
    made->addItems({"ttyUSB0 adapter", "ttyS0"});
    return made;
}

QWidget* lineEdit() {
    return new QLineEdit("14.7");
}

/// A field of a form whose changes act on the running engine.
QWidget* onTheFly(FieldKind kind) {
    Field shown;
    shown.kind = kind;
    shown.text = "12.5";
    shown.choices = {"12.5", "13"};
    shown.onTheFly = true;
    auto* field = new FieldControl(
        shown, [](const std::string&) { return true; }, nullptr);
    field->setParent(field->widget());
    field->mark(true);
    return field->widget();
}

QWidget* slider() {
    auto* made = new QSlider(Qt::Horizontal);
    made->setRange(0, 100);
    made->setValue(40);
    return made;
}

QWidget* tabs() {
    auto* made = new QTabBar;
    made->addTab("Engine");
    made->addTab("Sensors");
    return made;
}

QWidget* progress() {
    auto* made = new QProgressBar;
    made->setValue(42);
    return made;
}

QWidget* scrollBar() {
    auto* made = new QScrollBar(Qt::Horizontal);
    made->setRange(0, 100);
    made->setValue(30);
    return made;
}

QWidget* list() {
    auto* made = new QListWidget;
    made->addItems({"Dwell time", "Rev limit", "Idle speed"});
    made->setAlternatingRowColors(true);
    made->setCurrentRow(1);
    auto* off = made->item(2);
    off->setFlags(off->flags() & ~Qt::ItemIsEnabled);
    return made;
}

QWidget* tickList() {
    auto* made = new QListWidget;
    for (const auto* text : {"RPM", "MAP", "EGO"}) {
        auto* row = new QListWidgetItem(text, made);
        row->setCheckState(made->count() % 2 == 1 ? Qt::Checked : Qt::Unchecked);
    }
    made->setCurrentRow(0);
    return made;
}

QWidget* tree() {
    auto* made = new QTreeWidget;
    made->setHeaderLabel("Calibration");
    auto* engine = new QTreeWidgetItem(made, {"Engine"});
    new QTreeWidgetItem(engine, {"Rev limit"});
    new QTreeWidgetItem(made, {"Sensors"});
    made->expandAll();
    made->setCurrentItem(engine);
    return made;
}

QWidget* table() {
    auto* made = new QTableWidget(3, 3);
    for (int cell = 0; cell < 9; ++cell) {
        made->setItem(cell / 3, cell % 3, new QTableWidgetItem(QString::number(12.5 + cell)));
    }
    made->setCurrentCell(1, 1);
    return made;
}

QWidget* text() {
    auto* made = new QTextBrowser;
    made->setHtml("A page with a <a href='#x'>link</a>, read by keyboard.");
    return made;
}

QWidget* group() {
    auto* made = new QGroupBox("Limits");
    auto* inside = new QVBoxLayout(made);
    inside->addWidget(new QCheckBox("Soft limit"));
    return made;
}

QWidget* splitter() {
    auto* made = new QSplitter(Qt::Horizontal);
    made->addWidget(new QLabel("Left"));
    made->addWidget(new QLabel("Right"));
    return made;
}

/// As it hangs below its bar.
QWidget* menu() {
    auto* made = new QMenu;
    made->setWindowFlags(Qt::Widget);
    made->addAction(icon("Save"), "Save");
    auto* chosen = made->addAction("Day mode");
    chosen->setCheckable(true);
    chosen->setChecked(true);
    made->addSeparator();
    made->addAction("Program")->setEnabled(false);
    made->setActiveAction(made->actions().front());
    return made;
}

const std::array kinds{
    Kind{"Button", [] { return button<QPushButton>(false); }},
    Kind{"Button, switched on", [] { return button<QPushButton>(true); }},
    Kind{"Button at hand", defaultButton},
    Kind{"Tool button", [] { return toolButton(false); }},
    Kind{"Tool button of a bar", [] { return toolButton(true); }},
    Kind{"Check box", [] { return button<QCheckBox>(false); }},
    Kind{"Check box, ticked", [] { return button<QCheckBox>(true); }},
    Kind{"Radio button", [] { return button<QRadioButton>(false); }},
    Kind{"Radio button, chosen", [] { return button<QRadioButton>(true); }},
    Kind{"Entry field", lineEdit},
    Kind{"List that opens", comboBox},
    Kind{"Field on the fly", [] { return onTheFly(FieldKind::Text); }},
    Kind{"List on the fly", [] { return onTheFly(FieldKind::Choice); }},
    Kind{"Slider", slider},
    Kind{"Tabs", tabs},
    Kind{"Progress", progress},
    Kind{"Scroll bar", scrollBar},
    Kind{"List", list},
    Kind{"List to tick", tickList},
    Kind{"Tree", tree},
    Kind{"Table", table},
    Kind{"Text", text},
    Kind{"Group", group},
    Kind{"Splitter", splitter},
    Kind{"Menu", menu},
};

QLabel* label(const QString& text, Type type) {
    auto* made = new QLabel(text);
    made->setFont(typeFont(type));
    return made;
}

/// Text of one colour on a ground of another, whichever mode is in force.
class Sample : public QLabel {
 public:
    explicit Sample(const LookPair& pair) : pair_(pair) {
        setAutoFillBackground(true);
        setAlignment(Qt::AlignCenter);
        setMargin(edgeWidth(fontMetrics()));
        const auto name = [](QColor LookColors::*part) {
            for (const LookColor& row : lookTable()) {
                if (row.part == part) return row.name;
            }
            return "";
        };
        setText(QStringLiteral("%1 on %2").arg(name(pair.ink), name(pair.ground)));
        show(lookColors(appliedLook(*qApp)));
    }
    bool event(QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange) show(lookColors(appliedLook(*qApp)));
        return QLabel::event(event);
    }
    using QLabel::show;
    void show(const LookColors& colors) {
        QPalette palette;
        palette.setColor(QPalette::Window, colors.*pair_.ground);
        palette.setColor(QPalette::WindowText, colors.*pair_.ink);
        setPalette(palette);
    }

 private:
    LookPair pair_;
};

}  // namespace

Gallery::Gallery() : posing_(new PosingStyle) {
    posing_->setParent(this);
    setWindowTitle("Gallery");
    inside_ = new QWidget;
    auto* grid = new QGridLayout(inside_);
    const QFontMetrics metrics = fontMetrics();
    grid->setContentsMargins(margins(metrics, Space::Wide));
    grid->setHorizontalSpacing(space(metrics, Space::Wide));
    grid->setVerticalSpacing(space(metrics, Space::Normal));
    addControls(*grid);
    addInstruments(*grid);
    addBadges(*grid);
    own_ = new OwnWidgets(*posing_, this);
    grid->addWidget(own_, grid->rowCount(), 0, 1, -1);
    addIcons(*grid);
    addColours(*grid);
    addType(*grid);
    auto* scroll = new QScrollArea;
    scroll->setObjectName("scrGallery");
    scroll->setWidget(inside_);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(margins(metrics, Space::None));
    whole->addWidget(scroll);
    resize(inside_->sizeHint().width() + 2 * space(metrics, Space::Section), metrics.height() * 45);
}

int Gallery::wholeHeight() const {
    return inside_->sizeHint().height() + 2 * edgeWidth(fontMetrics());
}

void Gallery::addHeading(QGridLayout& grid, const QString& text) {
    grid.addWidget(label(text, Type::Heading), grid.rowCount(), 0, 1, -1);
}

void Gallery::addControls(QGridLayout& grid) {
    for (std::size_t column = 0; column < poses.size(); ++column) {
        grid.addWidget(label(poseNames[column], Type::Strong), 0, static_cast<int>(column) + 1);
    }
    for (const Kind& kind : kinds) {
        const int row = grid.rowCount();
        grid.addWidget(label(kind.name, Type::Body), row, 0);
        int column = 0;
        for (const Pose pose : poses) {
            QWidget* made = kind.make();
            made->setObjectName(
                QStringLiteral("%1 %2").arg(kind.name, poseNames[static_cast<std::size_t>(pose)]));
            made->setStyle(posing_);
            made->setMaximumHeight(fontMetrics().height() * 6);
            zentaq::pose(*made, pose);
            grid.addWidget(made, row, ++column);
            pieces_.push_back({kind.name, pose, made});
        }
    }
}

void Gallery::addInstruments(QGridLayout& grid) {
    addHeading(grid, "Instruments");
    const int row = grid.rowCount();
    grid.setRowMinimumHeight(row, fontMetrics().height() * 4);
    const bool day = appliedLook(*qApp) == DisplayMode::Day;
    const DashColors colors = dashColors(day);
    int column = 0;
    for (const auto& [name, alarm] : {std::pair("Value", false), std::pair("Value in alarm", true)}) {
        auto* value = new LiveLabel({name, "MAP", "kPa", "888.8"}, this);
        value->setText("101.3");
        value->setColors(colors);
        if (alarm) value->setAlarm(colors.redZone);
        grid.addWidget(value, row, column++);
    }
    for (const auto& [name, lit] : {std::pair("Lamp", false), std::pair("Lamp, lit", true)}) {
        auto* lamp = new LiveLamp(name, "CHKE", this);
        lamp->setColors(colors);
        if (lit) lamp->light(colors.redZone);
        grid.addWidget(lamp, row, column++);
    }
    GaugeFace face;
    face.name = "Dial";
    face.bounds = QRectF(-1.1, -1.1, 2.2, 2.2);
    face.ticks = {{-120, "0"}, {-60, ""}, {0, "5"}, {60, ""}, {120, "10"}};
    face.zones = {{60, 120, &DashColors::redZone}};
    face.restAngle = -30;
    auto* gauge = new GaugeWidget(face, nullptr, this);
    gauge->setColors(colors);
    grid.setRowMinimumHeight(row, fontMetrics().height() * 8);
    grid.addWidget(gauge, row, column++);
    auto* swatch = new ColourSwatch(this);
    swatch->setColour(colors.needle);
    grid.addWidget(swatch, row, column++);
}

void Gallery::addBadges(QGridLayout& grid) {
    addHeading(grid, "Badges of the state strip");
    const int row = grid.rowCount();
    int column = 0;
    for (const auto& [text, tone] :
         {std::pair("PORT 1", StripTone::Plain), std::pair("LIVE", StripTone::Good),
          std::pair("ON THE FLY", StripTone::OnFly), std::pair("CHANGES NOT SAVED", StripTone::Changed),
          std::pair("GAUGES NOT LIVE", StripTone::Warning), std::pair("ZERO ADVANCE", StripTone::Alarm)}) {
        auto* badge = new StripButton(text, false, this);
        badge->say(text, "A badge", tone);
        grid.addWidget(badge, row, column++);
    }
}

/// What is painted in colors of its own is told the mode, as its window tells it.
void Gallery::showMode(DisplayMode mode) {
    applyLook(*qApp, mode);
    const DashColors colors = dashColors(mode == DisplayMode::Day);
    for (auto* label : inside_->findChildren<LiveLabel*>(Qt::FindDirectChildrenOnly)) {
        label->setColors(colors);
        if (label->alarm()) label->setAlarm(colors.redZone);
    }
    for (auto* lamp : inside_->findChildren<LiveLamp*>(Qt::FindDirectChildrenOnly)) {
        lamp->setColors(colors);
        if (lamp->lit()) lamp->light(colors.redZone);
    }
    for (auto* gauge : inside_->findChildren<GaugeWidget*>(Qt::FindDirectChildrenOnly)) {
        gauge->setColors(colors);
    }
    own_->showMode(mode);
    for (auto* field : findChildren<FieldControl*>()) field->mark(true);
}

void Gallery::addIcons(QGridLayout& grid) {
    addHeading(grid, "Icons");
    auto* all = new QWidget;
    auto* rows = new QGridLayout(all);
    const int columns = 20;
    int place = 0;
    for (const QString& name : iconNames()) {
        for (const bool usable : {true, false}) {
            auto* button = new QToolButton;
            button->setIcon(icon(name));
            button->setToolTip(name);
            button->setEnabled(usable);
            button->setIconSize(QSize(1, 1) * (fontMetrics().height() * 3 / 2));
            button->setAutoRaise(true);
            rows->addWidget(button, place / columns, place % columns);
            ++place;
        }
    }
    grid.addWidget(all, grid.rowCount(), 0, 1, -1);
}

void Gallery::addColours(QGridLayout& grid) {
    addHeading(grid, "What may stand on what");
    const int columns = static_cast<int>(poses.size()) + 1;
    const int first = grid.rowCount();
    int place = 0;
    for (const LookPair& pair : lookPairs()) {
        auto* sample = new Sample(pair);
        grid.addWidget(sample, first + place / columns, place % columns);
        ++place;
    }
}

void Gallery::addType(QGridLayout& grid) {
    addHeading(grid, "Type");
    for (const auto& [name, type] :
         {std::pair("Remark", Type::Remark), std::pair("Body", Type::Body), std::pair("Strong", Type::Strong),
          std::pair("Caption", Type::Caption), std::pair("Badge", Type::Badge),
          std::pair("Strip", Type::Strip), std::pair("Heading", Type::Heading),
          std::pair("Value 0123", Type::Value), std::pair("Title", Type::Title),
          std::pair("Display", Type::Display)}) {
        grid.addWidget(label(name, type), grid.rowCount(), 0, 1, -1);
    }
}

void Gallery::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F7) return showMode(DisplayMode::Day);
    if (event->key() == Qt::Key_F8) return showMode(DisplayMode::Night);
    QWidget::keyPressEvent(event);
}

}  // namespace zentaq
