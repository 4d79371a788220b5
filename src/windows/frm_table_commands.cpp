// The toolbar of the table window and what its commands do.
#include <QPointer>

#include "base/number_text.h"
#include "base/settings_keys.h"
#include "windows/frm_table.h"

namespace zentaq {

void FrmTable::makeToolbar() {
    Toolbar1_ = new TableToolbar(this);
    const auto run = [this](const std::function<void()>& command) {
        return [this, command](const QString& caption) { inOrder(caption, command); };
    };
    const auto rebuild = [&](std::vector<Refusal> (TableModel::*command)()) {
        return run([this, command] {
            if (!model_) return;
            closeEdit();
            rebuilt((model_.get()->*command)());
        });
    };
    constexpr auto overlay = "Overlay";
    constexpr auto view = "View";
    Toolbar1_->add({"Home", "Home", "Home: show the values with the lowest row at the bottom", false, "Home"},
                   rebuild(&TableModel::home));
    Toolbar1_->add({"Save", "Save", "Save: write the grid back to the calibration", false, "Save"},
                   run([this] { saveGrid(); }));
    Toolbar1_->add({"Colors", "Turn Overlay OFF"}, run([this] { toggleColors(); }), overlay);
    Toolbar1_->add({"ColorsNorm", "&Normal Colors", "", true}, run([this] { setColourMode(0); }), overlay);
    Toolbar1_->add({"ColorsAFR", "&AFR Colors", "", true}, run([this] { setColourMode(1); }), overlay);
    Toolbar1_->add({"ColorsPersist", "Color Persist ON"}, run([this] { colorsPersist(); }), overlay);
    Toolbar1_->add({"ColorsWhiteOut", "&White Out"}, run([this] { colorsWhiteOut(); }), overlay);
    Toolbar1_->add({"Pulsewidth", "&Pulse Width (Shift+P)", "", true}, rebuild(&TableModel::togglePulsewidth),
                   view);
    Toolbar1_->add({"DutyCycle", "Duty C&ycle (Shift+D)", "", true}, rebuild(&TableModel::toggleDutyCycle),
                   view);
    Toolbar1_->add({"Absolute", "&Absolute VE (Shift+A)", "", true}, rebuild(&TableModel::toggleAbsolute),
                   view);
    Toolbar1_->add({"Invert", "&Invert Rows", "", true, "Invert"}, rebuild(&TableModel::invert), view);
    Toolbar1_->add({"Graph", "&Graph", "", false, "Graph"}, run([this] { graph(); }), view);
    Toolbar1_->add({"AutoVE", "Auto&VE", "", false, "AutoVE"}, run([this] { autoVe(); }), view);
    Toolbar1_->addSeparatorTo(view);
    Toolbar1_->add({"Reset", "&Reset", "", false, "Reset"}, rebuild(&TableModel::reset), view);
    Toolbar1_->add({"Discard", "Di&scard Changes", "", false, "Discard"}, run([this] { discard(); }), view);
    addCellCommands();
    addCompareCommands();
    Toolbar1_->add({"Manage", "Manage", "Manage: to the place of this table in the tree", false, "Manage"},
                   run([this] { manage(); }));
    Toolbar1_->add({"Print", "Print", "Print this table", false, "Print"}, run([this] { print(); }));
    Toolbar1_->add({"Docking", "Undock        ",
                    "Undock, or dock: a window of its own, or inside the main window", false, "Undock"},
                   run([this] { toggleDocking(); }));
    Toolbar1_->add({"Close", "Close", "Close the table (Shift+X)", false, "Close"}, run([this] { close(); }));
    Toolbar1_->explain(overlay, "Overlay: colors and trail of the engine (Shift+O)");
    Toolbar1_->explain(
        view, "View: absolute (Shift+A), pulse width (Shift+P), duty cycle (Shift+D), comparing, and more");
    Toolbar1_->addFields();
    connect(Toolbar1_, &TableToolbar::axisPicked, this, [this](const QString& key) {
        inOrder("New axis", [this, picked = key.toStdString()] {
            if (!model_ || !axesAgreed()) return;
            closeEdit();
            const QPointer<FrmTable> self(this);
            const auto refused = model_->pickAxis(picked);
            session_.markModified();
            rebuilt(refused);
            if (self) tellOthers();
        });
    });
}

void FrmTable::inOrder(const QString& caption, const std::function<void()>& command) {
    if (!keysWait()) return command();
    ahead_->holdCommand(caption.trimmed().toStdString(), command, true);
}

// ---- The commands

void FrmTable::rebuilt(std::span<const Refusal> refused) {
    showAll();
    sizeColumns();
    tell(refused);
}

bool FrmTable::saveGrid() {
    if (!model_) return true;
    if (txtInputValue_->isVisible()) leaveEdit();
    textLeft_ = false;
    const int written = model_->sheet().cellsWritten();
    const auto refused = model_->save();
    markIfWritten(written);
    showAll();
    return tell(refused) && refused.empty();
}

void FrmTable::toggleDocking() {
    setDocked(!docked_);
    Q_EMIT dockingAsked(docked_);
}

void FrmTable::discard() {
    if (!model_) return;
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    const Answer answer = session_.dialogs().show(
        {"Discard Changes?", "Are you sure you want to reset the table back to it's original state?",
         Icon::Question, Buttons::YesNo});
    if (!self || model != model_ || answer != Answer::Yes) return;
    closeEdit();
    const int written = model_->sheet().cellsWritten();
    const auto refused = model_->restore();
    markIfWritten(written);
    showAll();
    tell(refused);
    if (!self || model != model_ || model_->sheet().cellsWritten() == written) return;
    // Kept: nothing of it is sent, so that the engine runs on with what it was given.
    if (model_->sheet().unit().ONFLY_MODE())
        session_.notice("Discarded in the calibration alone: the running unit keeps its values.");
}

void FrmTable::toggleColors() {
    model_->cursor().toggleOverlay();
    showItems();
}

void FrmTable::setColourMode(int mode) {
    session_.TableColorMode = mode;
    session_.settings().set(settings::system, settings::TableColor, numberText(mode));
    model_->overlay().colourMode(colourModeOf(mode));
    showItems();
}

void FrmTable::clearTableColours() {
    if (!model_) return;
    LiveOverlay& overlay = model_->overlay();
    overlay.colourMode(colourModeOf(session_.TableColorMode));
    overlay.heatScale(session_.heatScaleChosen());
    // Kept: without the scale the grid stays white until it is built anew.
    overlay.heatScale() ? overlay.paintAnew() : overlay.colorizeGraph(true);
    showItems();
    Grid1_->cells().refresh();
}

/// Kept: the state of a menu item; painting does not depend on it.
void FrmTable::colorsPersist() {
    colourPersist_ = !colourPersist_;
    Toolbar1_->action("ColorsPersist")->setText(colourPersist_ ? "Color Persist OFF" : "Color Persist ON");
}

void FrmTable::colorsWhiteOut() {
    model_->overlay().whiteOut();
    Grid1_->cells().refresh();
}

}  // namespace zentaq
