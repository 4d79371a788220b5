// AutoVE over the open table: its window, and what it does to the cells.
#include "base/errors.h"
#include "tables/auto_ve_run.h"
#include "windows/frm_auto_ve.h"
#include "windows/frm_table.h"

namespace zentaq {

class FrmTable::AutoVeCells : public AutoVeGrid {
 public:
    explicit AutoVeCells(FrmTable& table) : table_(table), model_(table.model_), run_(model_->sheet()) {}

    void prepareAutoVE() override {
        run_.rule().prepare();
        model_->overlay().colorizeGraph(true);
        table_.showAll();
    }
    void Init_Auto_VE_Ranges(int constant) override {
        run_.rule().constant(constant);
        model_->cursor().Set_KeyDownFlag(false);
        table_.showItems();
    }
    void Auto_VE(float rpm, float map, float correction) override {
        table_.showAutoVe(run_.Auto_VE(rpm, map, correction));
    }
    void Show_Current_Activity(float rpm, float map) override { table_.Show_Current_Activity(rpm, map); }
    void autoVeActive(bool on) override {
        model_->overlay().autoVeActive(on);
        if (!on) model_->cursor().Set_KeyDownFlag(true);
    }
    void keepChanges() override {
        table_.saveGrid();
        rebuilt(model_->rebuild());
    }
    void restore() override { rebuilt(model_->restore()); }

    bool onModel(const TableModel* model) const { return model_.get() == model; }

 private:
    void rebuilt(const std::vector<Refusal>& refused) {
        if (table_.model_ == model_) table_.rebuilt(refused);
    }

    FrmTable& table_;
    std::shared_ptr<TableModel> model_;
    AutoVeRun run_;
};

void FrmTable::autoVe() {
    if (!model_ || session_.AutoVEActive) return;
    // The sums of a run are those of the table that it ran on, until it is built anew.
    if (!autoVeCells_ || !autoVeCells_->onModel(model_.get())) autoVeCells_ = std::make_shared<AutoVeCells>(*this);
    frmAutoVE_ = new FrmAutoVE(session_, *autoVeCells_, this);
    frmAutoVE_->setAttribute(Qt::WA_DeleteOnClose);
    // Back in the table, the keyboard is where it was.
    connect(frmAutoVE_, &QDialog::finished, this, [this] { takeFocus(); });
    frmAutoVE_->open();
}

void FrmTable::showAutoVe(const std::vector<GridCell>& cells) {
    dirtyCells_.insert(dirtyCells_.end(), cells.begin(), cells.end());
    redraw_->request();
}

void FrmTable::feedAutoVe() {
    if (!session_.AutoVEActive || !autoVeCells_ || !frmAutoVE_ || frmAutoVE_->tuning().logRuns()) return;
    autoVeCells_->Auto_VE(session_.live.RPM, session_.live.MAP, session_.live.EGOC);
}

void FrmTable::leaveAutoVe() {
    if (!frmAutoVE_) return;
    endOnFailure([&] { frmAutoVE_->tuning().leaveTable(); }, [this](const std::string& why) { session_.sysLog(why); });
    if (frmAutoVE_) frmAutoVE_->close();
}

}  // namespace zentaq
