// monitor: the live values of a running unit.
#include <algorithm>
#include <cmath>
#include <ostream>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/number_text.h"
#include "commands_link.h"
#include "headless/headless_monitor.h"
#include "link/frame_timing.h"
#include "link_desk.h"
#include "live/frame_decoder.h"
#include "outputs.h"

namespace zentaq::ctl {

namespace {

constexpr double usPerSecond = 1e6;
/// Thirty years; more is as good as no end.
constexpr double longestSeconds = 1e9;

/// The values that frames of this unit carry, in their order; a lamp too.
std::vector<const Channel*> channelsOf(const UnitKind& kind, bool wide) {
    const auto content = contentOfFrame(kind, wide ? 'W' : 'F');
    return content ? content->values : std::vector<const Channel*>{};
}

/// Empty for a value that is not known, such as a pressure without a sensor.
std::string textOf(const LiveValues& live, const Channel& channel) {
    const float value = channel.in(live);
    return std::isnan(value) ? std::string() : numberText(value);
}

class FrameWriter {
 public:
    FrameWriter(std::ostream& out, const LiveValues& live, std::vector<const Channel*> carried)
        : out_(out), live_(live), channels_(std::move(carried)) {}

    void csvHeader() {
        out_ << "Seconds";
        for (const Channel* channel : channels_) out_ << ',' << channel->name;
        out_ << '\n' << std::flush;
    }
    void csv(std::int64_t elapsedUs) {
        out_ << secondsText(elapsedUs);
        for (const Channel* channel : channels_) out_ << ',' << textOf(live_, *channel);
        out_ << '\n';
    }
    void json(std::int64_t elapsedUs) {
        JsonWriter json(out_);
        json.beginObject().member("Seconds",
                                  static_cast<float>(static_cast<double>(elapsedUs) / usPerSecond));
        for (const Channel* channel : channels_) member(json, *channel);
        json.endObject();
        out_ << '\n';
    }
    void second(int seconds, int frames) {
        out_ << "t=" << numberText(seconds);
        for (const Channel* channel : channels_) {
            const std::string text = textOf(live_, *channel);
            if (channel->is(Channel::glance) && !text.empty()) out_ << ' ' << channel->name << '=' << text;
        }
        out_ << " frames=" << numberText(frames) << '\n' << std::flush;
    }
    void flush() { out_ << std::flush; }

 private:
    static std::string secondsText(std::int64_t us) {
        return formatNumber(static_cast<double>(us) / usPerSecond, "0.000");
    }
    void member(JsonWriter& json, const Channel& channel) const {
        const float value = channel.in(live_);
        json.key(channel.name);
        if (channel.isLamp()) {
            json.value(value != 0);
        } else if (std::isnan(value)) {
            json.null();
        } else {
            json.value(value);
        }
    }

    std::ostream& out_;
    const LiveValues& live_;
    std::vector<const Channel*> channels_;
};

/// Measures while it lives.
class TimedPort {
 public:
    explicit TimedPort(SerialPort& port) : port_(port) { port_.watch(timing_); }
    ~TimedPort() { port_.unwatch(timing_); }
    TimedPort(const TimedPort&) = delete;
    TimedPort& operator=(const TimedPort&) = delete;

    std::string words(std::int64_t nowUs) const { return frameTimesText(timing_.shares(nowUs)); }

 private:
    SerialPort& port_;
    FrameTiming timing_;
};

HeadlessMonitor::Wishes wishesOf(const Context& context, const MonitorWish& wish, FrameWriter& writer,
                                 std::ostream* log) {
    HeadlessMonitor::Wishes wishes;
    if (wish.seconds) {
        wishes.durationUs = static_cast<std::int64_t>(std::min(*wish.seconds, longestSeconds) * usPerSecond);
    }
    wishes.log = log;
    if (wish.form == MonitorForm::Csv) wishes.onFrame = [&](std::int64_t us) { writer.csv(us); };
    if (wish.form == MonitorForm::Json) wishes.onFrame = [&](std::int64_t us) { writer.json(us); };
    wishes.onSecond = [&](int) { writer.flush(); };
    wishes.onLink = [&](bool there) {
        context.notes << (there ? "The unit answers again.\n" : "The unit does not answer; waiting for it.\n")
                      << std::flush;
    };
    return wishes;
}

void requireFrames(Ending ending, int frames) {
    const std::string after = " (" + numberText(frames) + " frames).";
    switch (ending) {
        case Ending::Done:
        case Ending::Stopped:  // the usual end of a monitor without a time
            return;
        case Ending::Silent:
            throw Failure("The unit does not answer any more" + after);
        default:
            throw Failure("The unit answers, but its frames cannot be read" + after);
    }
}

/// Before anything is asked of a unit.
void refuseLosses(const Context& context, const MonitorWish& wish) {
    if (wish.log.empty()) return;
    refuseSameFile(wish.log, wish.calibration);
    refuseSameFile(wish.log, context.trace);
    refuseReplacing(context, wish.log, "datalog");
}

}  // namespace

void monitor(const Context& context, const std::string& port, const MonitorWish& wish) {
    refuseLosses(context, wish);
    std::unique_ptr<QuietCalibration> calibration;
    if (!wish.calibration.empty()) {
        calibration = openCalibration(context, wish.calibration);
        calibration->unit.BinFile(wish.calibration);
        calibration->host.firmwareKnown(true);
    }
    DatabaseHost host(context.database);
    LinkDesk desk(context, port, host, calibration ? &calibration->unit : nullptr);
    desk.findUnit();
    Unit& unit = desk.session().linkedUnit();
    if (calibration) desk.requireKind(calibration->unit.kind());

    const auto log = wish.log.empty() ? nullptr : openGrowing(context, wish.log, "datalog");
    forgetNumbers(desk.session().live());
    FrameWriter writer(context.out, desk.session().live(),
                       channelsOf(unit.kind(), desk.link().linked().WideMonitor));
    if (wish.form == MonitorForm::Csv) writer.csvHeader();
    auto wishes = wishesOf(context, wish, writer, log.get());
    std::unique_ptr<HeadlessMonitor> watch;
    if (wish.form == MonitorForm::Seconds) {
        wishes.onSecond = [&](int seconds) { writer.second(seconds, watch->frames()); };
    }
    watch = std::make_unique<HeadlessMonitor>(desk.session(), std::move(wishes));
    const TimedPort timed(desk.port());
    const Ending ending = watch->run();
    writer.flush();
    if (log != nullptr) {
        log->finish();
        context.notes << numberText(watch->records()) << " lines written to " << wish.log << '\n';
    }
    requireFrames(ending, watch->frames());
    const std::string times = timed.words(desk.session().clock().monotonicUs());
    if (context.out && !times.empty()) context.notes << times << '\n';
}

}  // namespace zentaq::ctl
