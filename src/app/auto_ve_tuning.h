// frmAutoVE without its window: AutoVE on the open fuel table, live or from a log, its questions and notes.
#pragma once

#include <cstdint>
#include <string>

#include "app/session.h"

namespace zentaq {

/// What AutoVE does to the table that is open. Its window answers.
class AutoVeGrid {
 public:
    virtual ~AutoVeGrid() = default;
    /// White cells, and no correction remembered.
    virtual void prepareAutoVE() = 0;
    virtual void Init_Auto_VE_Ranges(int constant) = 0;
    virtual void Auto_VE(float rpm, float map, float correction) = 0;
    virtual void Show_Current_Activity(float rpm, float map) = 0;
    /// The cursor follows the engine and paints nothing; or as before, and held.
    virtual void autoVeActive(bool on) = 0;
    /// The grid goes into the calibration. Refused cells keep their values and have been told.
    virtual void keepChanges() = 0;
    /// The values of the last build come back.
    virtual void restore() = 0;
};

class AutoVeTuning {
 public:
    enum class Mode { Live, DataLog, Stop };

    AutoVeTuning(Session& session, AutoVeGrid& grid);

    // ---- What the user does
    void live();     ///< cmdLiveAutoVE
    void dataLog();  ///< cmdDataLogAutoVE
    /// txtAutoVEConst, as typed.
    std::string constant = "50";

    /// The link has come or gone, or the log has been read: brings the captions up to date. Whether a log
    /// runs and wants its records.
    bool follow();
    /// Some records of the log that runs. The last one ends the run.
    void runRecords(int count);

    /// The table goes while AutoVE runs: its own question and its own note.
    void leaveTable();

    // ---- What the window shows
    static constexpr const char* title = "Start AutoVE";
    static constexpr const char* initText =
        "Enter the number of data points for the AutoVE table calibration constant (5 - 200):";
    struct Shown {
        std::string liveCaption = "Using live data";
        bool liveEnabled = true;
        std::string logCaption = "Using a data log";
        bool logEnabled = true;
        bool constantEnabled = true;
        bool cancelEnabled = true;
        std::string message;  ///< lblMessage; empty: hidden
        bool progressVisible = false;
        int percent = 0;
    };
    const Shown& shown() const { return shown_; }
    bool active() const { return session_.AutoVEActive; }
    bool logRuns() const { return logRuns_; }

 private:
    void run(Mode mode);
    bool takesConstant();
    void runLive();
    void askLog();
    void logLoaded();
    void stop();
    void Stop_Auto_VE();
    void activate(bool on);
    void refreshIdle();
    void finish(bool keep, const char* note);

    Session& session_;
    AutoVeGrid& grid_;
    Shown shown_;
    bool logLoads_ = false;
    bool logRuns_ = false;
    std::size_t record_ = 0;
};

}  // namespace zentaq
