#include "live/datalog_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "base/channels.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"

namespace zentaq {

namespace {

constexpr std::string_view newestBanner = "ZENTAQ 4.10 DATALOG";
constexpr std::string_view newerBanner = "ZENTAQ 4.5 DATALOG";
constexpr std::string_view oldestBanner = "ZENTAQ 4.0 DATALOG";
constexpr std::size_t chunkBytes = 256 * 1024;
/// Some fifty times the longest line that a program writes.
constexpr std::size_t longestLine = 64 * 1024;
constexpr int rowsBetweenQuestions = 1024;
constexpr std::string_view frameColumn = "Frame";

/// Fields of a line of the oldest format, in their order; those in no column of the table are left out.
constexpr std::array<std::string_view, 31> oldestFields{
    "Session", "Seconds", "RPM",  "MAP",  "TPS",  "CLT",  "MAT",  "VOLT", "KNK", "EGOV", "CHKE",
    "TPSB",    "ADV",     "SADV", "KNKR", "TFPW", "UAP",  "IPPC", "PIP",  "PID", "PPW",  "PIO",
    "SID",     "SPW",     "SIO",  "POPD", "EGOC", "DAFR", "AAFR", "IAC",  "SD"};
constexpr int oldestPins = 9;

std::string withoutBlanks(std::string_view text) {
    std::string kept(text);
    std::erase(kept, ' ');
    return kept;
}

/// Digits with a point among them perhaps, as nearly every field has them. A number of up to 15 digits and
/// its power of ten are exact, and so their quotient is the nearest there is. Nothing for anything else.
std::optional<double> plainValue(std::string_view field) {
    constexpr std::array<double, 16> powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool negative = field.starts_with('-');
    if (negative) field.remove_prefix(1);
    if (field.empty() || field.size() >= powers.size()) return {};
    std::int64_t digits = 0;
    std::size_t behindPoint = 0;
    bool point = false;
    for (const char c : field) {
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9') return {};
        digits = digits * 10 + (c - '0');
        if (point) ++behindPoint;
    }
    if (field == ".") return {};
    const double value = static_cast<double>(digits) / powers[behindPoint];
    return negative ? -value : value;
}

/// Live values are 32-bit floats, and so is whatever is kept or written of a log.
bool fitsAFloat(double value) {
    return std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max());
}

/// Behind the field that begins at `at`. In lines with commas a text stands in quotes and may hold some.
std::size_t endOfField(std::string_view line, std::size_t at, char separator) {
    if (separator == ',' && at < line.size() && line[at] == '"') {
        const std::size_t quote = line.find('"', at + 1);
        if (quote != line.npos) at = quote;
    }
    return std::min(line.find(separator, at), line.size());
}

/// A number that a 32-bit float can hold, with blanks anywhere in it.
std::optional<double> valueOf(std::string_view field) {
    while (!field.empty() && field.front() == ' ') field.remove_prefix(1);
    while (!field.empty() && field.back() == ' ') field.remove_suffix(1);
    if (const auto plain = plainValue(field)) return plain;
    std::string kept;
    if (field.find(' ') != field.npos) {
        kept = withoutBlanks(field);
        field = kept;
    }
    double value = 0;
    const auto read = std::from_chars(field.data(), field.data() + field.size(), value);
    if (read.ec != std::errc() || read.ptr != field.data() + field.size() || !fitsAFloat(value)) return {};
    return value;
}

/// Lines of a stream, without their ends.
class Lines {
 public:
    explicit Lines(std::istream& in) : in_(in) {}

    /// The next one; it stands until the one after it is asked for. Nothing at the end.
    std::optional<std::string_view> next() {
        for (;;) {
            const std::size_t end = text_.find('\n', at_);
            if (end != text_.npos) return taken(end, end + 1);
            if (ended_)
                return at_ < text_.size() ? std::optional(taken(text_.size(), text_.size())) : std::nullopt;
            fill();
        }
    }
    std::int64_t number() const { return number_; }
    std::uint64_t bytes() const { return bytes_; }
    /// The one that was taken is longer than any line of a log.
    bool tooLong() const { return tooLong_; }
    /// The one that was taken ends with the file, in the middle perhaps.
    bool open() const { return open_; }

 private:
    std::string_view taken(std::size_t end, std::size_t next) {
        std::string_view line = std::string_view(text_).substr(at_, end - at_);
        open_ = next == end;
        at_ = next;
        tooLong_ = std::exchange(dropped_, false) || line.size() > longestLine;
        if (line.ends_with('\r')) line.remove_suffix(1);
        ++number_;
        return line;
    }
    void fill() {
        text_.erase(0, at_);
        at_ = 0;
        // What is longer than a line can be is read past, and never held.
        if (text_.size() > longestLine) {
            text_.clear();
            dropped_ = true;
        }
        const std::size_t before = text_.size();
        text_.resize(before + chunkBytes);
        in_.read(text_.data() + before, static_cast<std::streamsize>(chunkBytes));
        const auto got = static_cast<std::size_t>(in_.gcount());
        text_.resize(before + got);
        bytes_ += got;
        ended_ = got == 0;
    }

    std::istream& in_;
    std::string text_;
    std::size_t at_ = 0;
    std::int64_t number_ = 0;
    std::uint64_t bytes_ = 0;
    bool ended_ = false;
    bool tooLong_ = false;
    bool dropped_ = false;
    bool open_ = false;
};

/// Where a field of a line goes.
constexpr int nowhere = -1;

/// How the fields of a line become a row.
struct Layout {
    std::vector<int> places;  ///< of each field: a column, or `nowhere`
    char separator = '\t';
};

int columnOf(const std::vector<std::string>& columns, std::string_view name) {
    const auto found = std::ranges::find(columns, name);
    return found == columns.end() ? nowhere : static_cast<int>(found - columns.begin());
}

/// The names of the fields of a data line, in their order, as the table calls them.
std::vector<std::string> newestFields() {
    std::vector<std::string> names{std::string(frameColumn)};
    const auto add = [&](std::span<const Channel> part) {
        for (const Channel& channel : part) {
            if (!channel.log.heading.empty()) names.emplace_back(channel.name);
        }
    };
    add(channelsBeforePins);
    for (const std::string_view pin : pinNames) names.emplace_back(pin);
    add(channelsBehindPins);
    return names;
}

std::vector<std::string> oldestNames() {
    std::vector<std::string> names(oldestFields.begin(), oldestFields.end());
    for (int pin = 1; pin <= oldestPins; ++pin) names.push_back("GPIO" + numberText(pin));
    return names;
}

Layout layoutOf(const std::vector<std::string>& fields, const std::vector<std::string>& columns,
                char separator) {
    Layout layout;
    layout.separator = separator;
    for (const std::string& field : fields) layout.places.push_back(columnOf(columns, field));
    return layout;
}

/// The column that a heading of another program's log means; empty for none.
std::string columnNamed(std::string_view heading) {
    const std::string wanted = upper(withoutBlanks(heading));
    if (wanted == "FRAME") return std::string(frameColumn);
    for (const Channel& channel : channels) {
        if (upper(channel.name) == wanted) return std::string(channel.name);
        if (!channel.log.heading.empty() && upper(withoutBlanks(channel.log.heading)) == wanted)
            return std::string(channel.name);
    }
    for (const std::string_view pin : pinNames) {
        if (upper(pin) == wanted) return std::string(pin);
    }
    return {};
}

class Reader {
 public:
    Reader(std::istream& in, DatalogSink& sink, const DatalogOptions& options)
        : lines_(in), sink_(sink), options_(options) {}

    DatalogReading run() {
        begin();
        for (auto line = lines_.next(); line; line = lines_.next()) {
            if (!takesMore()) {
                reading_.cancelled = true;
                break;
            }
            take(*line);
        }
        // A log of a head alone is one.
        if (!begun_) tellHead();
        return std::move(reading_);
    }

 private:
    void begin() {
        const auto first = lines_.next();
        if (!first || first->empty()) throw Failure("The file is empty: it is no datalog.");
        const auto fields = split(*first, '\t');
        head_.banner = std::string(trimmed(fields.front()));
        if (head_.banner == newestBanner || head_.banner == newerBanner) {
            head_.format = DatalogFormat::Newest;
        } else if (head_.banner == oldestBanner) {
            head_.format = DatalogFormat::Oldest;
        } else {
            return beginPlain(*first);
        }
        if (fields.size() > 1) head_.firmware = std::string(trimmed(fields[1]));
        head_.columns = datalogColumns(head_.format);
        const bool oldest = head_.format == DatalogFormat::Oldest;
        layout_ = layoutOf(oldest ? oldestNames() : newestFields(), head_.columns, '\t');
        headLines_ = 2;
    }

    void beginPlain(std::string_view first) {
        constexpr int leastKnown = 3;
        head_.format = DatalogFormat::Plain;
        head_.columns = datalogColumns(head_.format);
        const char separator = first.find('\t') != first.npos ? '\t' : ',';
        std::vector<std::string> names;
        int known = 0;
        bool speed = false;
        for (const std::string& field : split(first, separator)) {
            std::string heading = field;
            std::erase(heading, '"');
            names.push_back(columnNamed(heading));
            known += names.back().empty() ? 0 : 1;
            speed = speed || names.back() == "RPM";
        }
        if (!speed || known < leastKnown) {
            throw Failure(
                "It is no datalog: its first line is neither the banner of one nor the names of its "
                "columns.");
        }
        layout_ = layoutOf(names, head_.columns, separator);
    }

    bool takesMore() {
        if (!options_.goOn || ++sinceQuestion_ < rowsBetweenQuestions) return true;
        sinceQuestion_ = 0;
        return options_.goOn(lines_.bytes());
    }

    void take(std::string_view line) {
        if (lines_.tooLong()) return skip("The line is longer than any line of a log");
        if (line.find_first_not_of(" \t,") == line.npos) return;
        const std::string_view why = parse(line);
        // The lines of the head may be missing, and then the first values stand there.
        if (headLines_ > 0 && !why.empty()) return takeHead(line);
        if (!why.empty()) return skip(lines_.open() ? "The last line is cut" : why);
        if (!begun_) tellHead();
        headLines_ = 0;
        sink_.row(values_, lines_.number());
        ++reading_.rows;
    }

    void takeHead(std::string_view line) {
        if (headLines_ == 2 && head_.settings.empty()) readSettings(line);
        --headLines_;
    }

    void readSettings(std::string_view line) {
        constexpr std::size_t unitsFromEnd = 2;
        head_.settings = split(line, line.find('\t') != line.npos ? '\t' : ',');
        if (const auto bar = valueOf(head_.settings.front())) head_.mapBar = static_cast<float>(*bar);
        if (head_.settings.size() < unitsFromEnd) return;
        const std::string units = withoutBlanks(head_.settings[head_.settings.size() - unitsFromEnd]);
        constexpr std::array<std::string_view, 6> known{"kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow"};
        if (std::ranges::find(known, units) != known.end()) head_.mapUnits = units;
    }

    void tellHead() {
        begun_ = true;
        sink_.head(head_);
    }

    /// Why the line is no row; empty where it is one, whose values stand in `values_`.
    std::string_view parse(std::string_view line) {
        values_.assign(head_.columns.size(), 0);
        char separator = layout_.separator;
        if (head_.format == DatalogFormat::Oldest && line.find('\t') == line.npos) separator = ',';
        std::size_t field = 0;
        for (std::size_t at = 0; at <= line.size();) {
            const std::size_t end = endOfField(line, at, separator);
            if (field >= layout_.places.size()) {
                // A separator behind the last value ends the line.
                if (end == line.size() && end == at) break;
                return "It has too many fields";
            }
            const int place = layout_.places[field++];
            if (place != nowhere) {
                const auto value = valueOf(line.substr(at, end - at));
                if (!value) return "A field is no number";
                values_[static_cast<std::size_t>(place)] = *value;
            }
            at = end + 1;
        }
        if (field < layout_.places.size()) return "It has too few fields";
        compute();
        return {};
    }

    /// What no line tells: the time between two injections, and what the injectors are off of it, in ms.
    void compute() {
        if (head_.format == DatalogFormat::Oldest) return;
        if (places_.empty()) {
            for (const char* name : {"RPM", "PRIPW", "SECPW", "IPP", "PRIOFFTIME", "SECOFFTIME"})
                places_.push_back(static_cast<std::size_t>(columnOf(head_.columns, name)));
        }
        const auto at = [&](std::size_t which) -> double& { return values_[places_[which]]; };
        const double speed = at(0);
        double cycle = speed > 0 ? options_.cycleFactor * 1000 / speed : 0;
        // An engine that needs longer than any float for a turn stands.
        if (!fitsAFloat(cycle)) cycle = 0;
        at(3) = cycle;
        at(4) = std::max(cycle - at(1), 0.0);
        at(5) = std::max(cycle - at(2), 0.0);
    }

    void skip(std::string_view why) {
        ++reading_.skipped;
        if (reading_.warnings.size() < mostDatalogWarnings)
            reading_.warnings.push_back({lines_.number(), std::string(why)});
    }

    Lines lines_;
    DatalogSink& sink_;
    const DatalogOptions& options_;
    DatalogHead head_;
    Layout layout_;
    DatalogReading reading_;
    std::vector<double> values_;
    std::vector<std::size_t> places_;
    int headLines_ = 0;
    int sinceQuestion_ = 0;
    bool begun_ = false;
};

}  // namespace

std::vector<std::string> datalogColumns(DatalogFormat format) {
    std::vector<std::string> names;
    if (format == DatalogFormat::Oldest) {
        for (const std::string& name : oldestNames()) {
            constexpr std::array<std::string_view, 4> inNoColumn{"Session", "TPSB", "UAP", "IPPC"};
            if (std::ranges::find(inNoColumn, name) == inNoColumn.end()) names.push_back(name);
        }
        return names;
    }
    constexpr int pinsInTheMiddle = 16;
    const auto addPins = [&](int first, int last) {
        for (int pin = first; pin <= last; ++pin) names.push_back("GPIO" + numberText(pin));
    };
    names.emplace_back(frameColumn);
    for (const Channel& channel : channels) {
        names.emplace_back(channel.name);
        if (channel.name == "IACD") addPins(1, pinsInTheMiddle);
        if (channel.name == "ISRPM") addPins(pinsInTheMiddle + 1, static_cast<int>(pinNames.size()));
    }
    return names;
}

DatalogReading readDatalog(std::istream& in, DatalogSink& sink, const DatalogOptions& options) {
    return Reader(in, sink, options).run();
}

}  // namespace zentaq
