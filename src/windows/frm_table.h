// frmTABLE: one window for any of the tables. It forwards keys, mouse and live frames to the table model and
// shows the model's grid. Keys typed while a change is on its way to the unit wait and are played back in
// order.
#pragma once

#include "app/session.h"
#include "app/table_comparing.h"
#include "tables/edit_commands.h"
#include "tables/table_model.h"

#include <QPointer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "windows/cell_box.h"
#include "windows/dock.h"
#include "windows/formula_line.h"
#include "windows/redraw_gate.h"
#include "windows/table_toolbar.h"
#include "windows/table_view.h"
#include "windows/typed_ahead.h"

namespace zentaq {

class FrmAutoVE;

class FrmTable : public QWidget, public DockingForm {
    Q_OBJECT

 public:
    explicit FrmTable(Session& session, QWidget* parent = nullptr);
    ~FrmTable() override;

    /// A second opening of the same table keeps it as it is, selection and all.
    void openOn(const std::string& table, const std::string& title) override;
    void takeBack() override;
    void setupNodes() override { followPaint(); }
    void onFlyChanged(bool on) override;
    void look(bool day) override { setMode(day ? DisplayMode::Day : DisplayMode::Night); }

    /// Builds the grid of a table of the calibration in hand. An empty name or title keeps the current one.
    void Setup_Grid(const std::string& table, const std::string& title);
    /// Empty before the first Setup_Grid.
    std::string tableName() const { return model_ ? model_->sheet().table() : std::string{}; }
    std::string title() const override { return model_ ? model_->sheet().title() : std::string{}; }
    /// The calibration in hand was changed elsewhere: reads it again.
    void showUnit() override;

    /// A frame has been decoded. Does nothing unless the calibration in hand is of the linked unit's kind.
    void refreshLive();
    /// Another calibration or unit has come: what it has not painted goes from the cells.
    void followPaint();
    /// The live point, or a recorded one; both 0 take the live values. The picture follows at most 60 times a
    /// second.
    void Show_Current_Activity(float x = 0, float y = 0);
    void logRowShown(float rpm, float map) override;
    /// Told on each idle tick; only a change does something.
    void onFlyLock(bool busy) override;
    bool locked() const { return locked_; }

    // ---- Edits and the commands behind them
    /// Keys and clicks wait for a change that is on its way to the unit.
    bool keysWait() const override { return ahead_->waits(); }
    void behindKeys(const std::string& caption, std::function<void()> command) override {
        ahead_->holdCommand(caption, std::move(command), false);
    }
    Left takeWaiting() override { return ahead_->take(); }
    /// What is being typed is entered. False: it was refused, and the user has been told.
    bool finishEntry();
    /// The same, and what the user has left in cells without Enter is written.
    bool finishEdits() override;

    /// The keyboard goes to the grid, or to what is being typed: the box over a cell, or a time.
    void takeFocus() override;
    void moves(bool on) override { moving_ = on; }

    bool docked() const { return docked_; }
    void setDocked(bool docked) override;
    void followLook() override;
    void cellsChanged() override;
    /// An entry of the pop-up, which sits on the main window, by its name.
    void tableCommand(const std::string& name) override;
    /// The options were applied: a white grid, or the heat scale, and the colour mode of the session from
    /// here on.
    void clearTableColours() override;
    /// Kept: the door for other windows, by number: 1 redoes the docking, 3 refreshes which toolbar items are
    /// shown.
    void Load_Command(int command);

    TableGridView& grid() { return *Grid1_; }
    QLineEdit& inputBox() { return *txtInputValue_; }
    QLineEdit& formulaLine() { return *txtFormula_; }
    /// What puts a form on paper; nothing for the system's printer dialog.
    void printsBy(std::function<void(QWidget&)> print) { print_ = std::move(print); }
    /// nullptr before the first Setup_Grid.
    TableModel* model() { return model_.get(); }
    /// How often live news were brought to the screen.
    int redraws() const { return redraws_; }

 Q_SIGNALS:
    /// The user wants the table docked (true) or in a window of its own.
    void dockingAsked(bool docked);

 protected:
    /// Not by a focus proxy, which would let Tab pass the tool bar by.
    void focusInEvent(QFocusEvent*) override { takeFocus(); }
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    // ---- Making
    void makeToolbar();
    void inOrder(const QString& caption, const std::function<void()>& command);
    std::vector<QObject*> watchedObjects() const;

    // ---- Keys
    bool handled(const QObject* watched, QEvent* event);
    bool gridEvent(QEvent* event);
    bool viewportEvent(QEvent* event);
    bool boxEvent(QEvent* event);
    /// How an entry over the cells ends.
    struct EntryEnds {
        std::function<void()> leave;  ///< the keyboard goes elsewhere
        std::function<void()> enter;
        std::function<void()> close;  ///< Esc
    };
    bool entryEvent(QEvent* event, const EntryEnds& ends);
    bool timeFieldEvent(QLineEdit* field, QEvent* event);
    bool formulaEvent(QEvent* event);
    bool gridKey(const QKeyEvent& event);
    bool selectingKey(const QKeyEvent& event);
    void selectLine(bool column);
    bool waits() const { return locked_ || keysWait(); }
    /// False: an entry was refused.
    bool play(const TypedAhead::Held& held);
    void click(const TypedAhead::Held& held);
    QLineEdit* txtTOG() const { return Toolbar1_->timeOfGap(); }
    QLineEdit* txtIOT() const { return Toolbar1_->injectorOn(); }
    std::string storedTime(const QLineEdit& field) const;
    bool timeBeingTyped(const QLineEdit& field) const;
    QLineEdit* timeInHand() const;  ///< none where none is being typed
    void pressed(char key);
    void nudge(bool up);

    // ---- Editing
    void openEdit(char key);
    bool commitEdit();
    /// False: behind the box this table is gone, or another one is shown.
    bool tell(std::span<const Refusal> refused);
    bool tell(const EntryOutcome& outcome);
    void speakRefusal(const Refusal& refused);
    void leaveEdit();
    void closeEdit();
    void placeEdit();
    void holdCursor();
    void letCursorGo();
    void headerDoubleClicked(int row, int column);
    void cellDoubleClicked();
    void copy();
    void paste();
    bool takeTime(QLineEdit* field);
    void showPopup(const QPoint& place);
    /// Marks the calibration as changed if a command has stored a cell since `writtenBefore`.
    void markIfWritten(int writtenBefore);

    // ---- Commands on the cells in hand: frm_table_cells.cpp
    void addCellCommands();
    void addCompareCommands();
    void addKey(const char* name, const char* keys, const std::function<void()>& command);
    void runCommand(const EditCommand& command);
    bool agreed(const EditCommand& command);
    /// Asks before axes are changed while the unit takes each change at once.
    bool axesAgreed();
    void openFormula(const QString& start);
    bool commitFormula();
    void closeFormula();
    void showKeys();
    void graph();
    void rebin();
    void compareFile();
    void compareOpened();
    void compareWith(const std::optional<ComparedCalibration>& other);
    void compareNoMore();
    void newHeader(bool column);
    void manage();
    void print();
    /// Other windows show the same calibration.
    void tellOthers();
    void tellContext(bool now);

    // ---- AutoVE: frm_table_auto_ve.cpp
    class AutoVeCells;
    void autoVe();
    void showAutoVe(const std::vector<GridCell>& cells);
    /// The frame of now, while AutoVE runs on live data.
    void feedAutoVe();
    void leaveAutoVe();

    // ---- Toolbar commands
    void rebuilt(std::span<const Refusal> refused);
    bool saveGrid();
    void toggleDocking();
    void discard();
    void toggleColors();
    void colorsWhiteOut();
    void colorsPersist();

    // ---- Showing
    void setMode(DisplayMode mode);
    void setColourMode(int mode);
    void showAll();
    void sizeColumns();
    void showCursor();
    void selectionChanged();
    void drawLive();
    void showTimes();
    void showItems();

    Session& session_;
    std::shared_ptr<TableModel> model_;  ///< held while a box is read: the table may go under it
    const Unit* unit_ = nullptr;

    TableToolbar* Toolbar1_ = nullptr;
    TableGridView* Grid1_ = nullptr;
    CellBox* txtInputValue_ = nullptr;
    FormulaLine* txtFormula_ = nullptr;
    TypedAhead* ahead_ = nullptr;
    RedrawGate* redraw_ = nullptr;

    std::shared_ptr<AutoVeCells> autoVeCells_;
    QPointer<FrmAutoVE> frmAutoVE_;
    FrameFeed::Subscription framesFollowed_;

    bool moving_ = false;    ///< from the workspace into a window of its own, or back
    bool textLeft_ = false;  ///< a cell shows what was typed into it and left without Enter
    std::vector<GridCell> dirtyCells_;
    bool locked_ = false;
    bool docked_ = true;
    bool colourPersist_ = false;
    std::function<void(QWidget&)> print_;
    bool syncing_ = false;     ///< the view follows the model; its signals are no user's doing
    bool committing_ = false;  ///< a refusal is told, or the edit box goes: its text is no entry meanwhile
    int refusals_ = 0;         ///< told so far
    bool closing_ = false;
    bool ownChange_ = false;  ///< the table itself has changed the calibration
    int redraws_ = 0;
    std::uint64_t erasuresSeen_ = 0;
};

}  // namespace zentaq
