// clsFlightRecord: records the live values into a datalog at fifty lines a second, and plays a loaded log
// back. The page of the recorder shows what it holds and fires its two timers at the intervals that it tells.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/log_exporting.h"
#include "app/log_loading.h"
#include "app/log_storing.h"
#include "live/frame_feed.h"
#include "logs/log_columns.h"
#include "logs/log_marks.h"
#include "logs/log_playback.h"
#include "platform/line_appender.h"

namespace zentaq {

class Session;

/// The buttons cmdFlightRecord.
enum class RecorderButton : std::uint8_t {
    FullBack,
    StepBack,
    Reverse,
    Stop,
    Play,
    Record,
    StepForward,
    FullForward
};
inline constexpr int recorderButtons = 8;

/// A value of the row on show.
struct ShownChannel {
    std::string caption;
    std::string value;
    std::string unit;
};

class FlightRecord {
 public:
    explicit FlightRecord(Session& session);
    ~FlightRecord();
    FlightRecord(const FlightRecord&) = delete;
    FlightRecord& operator=(const FlightRecord&) = delete;

    // ---- Recording
    /// Asks for a session and begins; nothing where the user gives it up. Tells where no unit is linked.
    void Record();
    /// One firing of tmrFlightRecord2: what is due since the last one is recorded.
    void RecordData();
    /// Lines of the recording that runs, or ran last.
    std::int64_t linesRecorded() const { return lines_; }

    // ---- Playback
    void Toolbar(int button);
    /// One firing of tmrFlightRecord1.
    void firePlayback();
    /// As LogPlayback: -1, 1, or 0 to a share of the log; what has moved is shown.
    StepStatus FrameUpdate(int step, float fraction = 0);
    /// To a time of the log, as a click into a plot asks for it.
    void goTo(double seconds);
    void Display();
    void SetPlaySpeed(int intervalMs);
    void SetPlayTimer(bool on);
    /// sldPlaybackSpeed: 0 to 100.
    void playbackSpeed(int place);
    static int intervalOf(int place);

    // ---- The log in hand
    void LoadData(const std::string& path);
    /// cmdFlightRecord_Import: asks for a file.
    void importLog();
    /// What has been read meanwhile; while `loading()` it is called before each picture.
    void takeLoaded();
    bool loading() const { return loads_; }
    bool storing() const { return storing_.running(); }
    bool exporting() const { return exporting_.running(); }
    /// Something goes on beside the program's thread: takeLoaded() is to be called.
    bool busy() const { return loading() || storing() || !exportTold_; }
    double loadedShare() const { return loading_.share(); }
    double exportedShare() const { return exporting_.share(); }
    double storedShare() const { return storing_.share(); }
    void cancelLoading();
    /// Gives up whatever goes on.
    void cancelAll();
    /// "Save As": asks for a name and writes the log in hand for other programs.
    void exportLog(LogExport format);
    const LogColumns& log() const { return log_; }
    /// Goes up with each log that comes into hand.
    int logsLoaded() const { return logsLoaded_; }
    const std::string& path() const { return path_; }
    /// kept: the rows of the log, for whoever reads them beside the recorder.
    const LogColumns& GetFlightRecordDatabase() const { return log_; }
    std::int32_t Count_Frames() { return playback_.Count_Frames(); }

    std::vector<LogMark> marks() const { return marks_; }
    void marks(const std::vector<LogMark>& marks);

    // ---- State
    void Mode(int value);
    /// A monitor session begins or ends.
    void monitorSession(bool on);
    /// The page is seen, or not any more.
    void pageShown(bool shown);
    /// What the dashboard shows comes from the log, and nobody polls the unit.
    bool showsLog() const { return showsLog_; }
    void endAll();  ///< the program ends

    std::string SessionName;
    std::int16_t PlayState = 0;  ///< 1 forward, -1 backward
    int PlaySpeed = 20;          ///< ms
    std::string FrameField = "Frame";
    bool Recording = false;

    std::int32_t FrameNumber() const { return Recording ? recorded_ : playback_.FrameNumber; }
    std::int32_t LastFrame() const { return playback_.LastFrame; }
    std::int32_t CurrentRow() const { return playback_.CurrentRow; }
    std::size_t row() const { return playback_.row(); }
    /// Of the row on show, in the log's own time.
    double seconds() const;

    // ---- What the page shows
    const std::string& status() const { return status_; }
    std::string frameText() const;
    /// "01:02.40".
    std::string timeText() const;
    bool enabled(RecorderButton button) const;
    /// "<", ">", or the pause mark on the one that plays.
    std::string caption(RecorderButton button) const;
    /// Where the row stands in the log, from 0 to 1.
    double place() const;
    std::vector<ShownChannel> shown() const;
    int playbackIntervalMs() const { return playTimer_ ? PlaySpeed : 0; }
    int recordingIntervalMs() const { return Recording ? frameMs : 0; }

    static constexpr int frameMs = 20;

 private:
    std::string suggestedSession() const;
    std::optional<std::string> askSession();
    void beginFile(const std::string& path);
    void writeDue();
    void endRecording();
    void recordingFailed(const std::string& why);
    void press(RecorderButton button);
    void stop();
    void play(int direction);
    void step(int direction);
    void jumped();
    void setStatus(std::string text);
    void takeHead();
    void loaded();
    void loadFailed(const std::string& why);
    void storeLog();
    void takeStored();
    void tellNotStored(const std::string& why);
    void takeExported();
    void followLog();
    void showRowOnGauges();
    void changed();

    Session& session_;
    FrameFeed::Subscription framesFollowed_;
    LogColumns log_;
    LogPlayback playback_;
    LogLoading loading_;
    LogStoring storing_;
    LogExporting exporting_;
    std::string exportTarget_;
    bool exportTold_ = true;
    std::shared_ptr<LineAppender> file_;
    std::vector<LogMark> marks_;
    std::string path_;
    std::string status_;
    std::array<bool, recorderButtons> enabled_{};
    bool playTimer_ = false;
    bool loads_ = false;
    bool headTaken_ = false;
    bool pageShown_ = false;
    bool showsLog_ = false;
    bool storedTold_ = true;
    int logsLoaded_ = 0;
    std::int32_t recorded_ = 0;
    std::int64_t lines_ = 0;
    std::int64_t recordingBeganUs_ = 0;
};

/// What may not stand in the name of a file becomes "-", and a quote two apostrophes.
std::string sessionForFile(const std::string& session);

}  // namespace zentaq
