#include "logs/log_export.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "logs/log_channel.h"
#include "logs/log_columns.h"

namespace zentaq {

namespace {

/// A column that is written: its name and unit, and where a row of the log has it.
struct OutColumn {
    std::string name;
    std::string unit;
    int source = -1;  ///< in the row; -1: the log has it not
    double scale = 1;
    bool whole = false;  ///< counts and states, which have no digits behind the point
    int decimals = 0;
    bool computed = false;  ///< nobody has measured more digits than `decimals`
    bool counted = false;   ///< made of seconds: the nearest whole number
};

constexpr int timeDecimals = 3;
constexpr int computedDecimals = 3;

std::vector<OutColumn> columnsOf(const DatalogHead& head) {
    std::vector<OutColumn> all;
    const double secondsPerStep = head.format == DatalogFormat::Oldest ? 1 : secondsPerFrame;
    all.push_back({"Time", "s", 0, secondsPerStep, false, timeDecimals, true});
    for (const std::string& name : datalogColumns(DatalogFormat::Newest)) {
        OutColumn column{name,
                         channelUnit(name, head.mapUnits),
                         columnOfChannel(head.columns, name),
                         1,
                         false,
                         channelDecimals(name)};
        const Channel* channel = channelNamed(name);
        column.whole = channel == nullptr || channel->isLamp();
        // The oldest format tells these itself.
        const bool inLog = head.format == DatalogFormat::Oldest;
        if (channel != nullptr && channel->log.heading.empty() && !inLog) {
            column.computed = true;
            column.decimals = computedDecimals;
        }
        if (isTimeColumn(name)) {
            // The older format has seconds in its place.
            column.source = 0;
            column.scale = secondsPerStep / secondsPerFrame;
            column.counted = head.format == DatalogFormat::Oldest;
        }
        all.push_back(std::move(column));
    }
    return all;
}

void appendFixed(std::string& out, double value, int decimals) {
    // Long enough for the largest number that there is.
    std::array<char, 400> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed, decimals);
    out.append(digits.data(), end.ptr);
}

/// Shortest digits that give the number back, always without an exponent.
void appendPlain(std::string& out, double value) {
    std::array<char, 400> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    out.append(digits.data(), end.ptr);
}

void append(std::string& out, const OutColumn& column, double value) {
    if (column.computed) return appendFixed(out, value, column.decimals);
    appendPlain(out, value);
}

class Writer : public DatalogSink {
 public:
    Writer(std::ostream& out, const ExportedLog& about) : out_(out), about_(about) {}

    void head(const DatalogHead& head) override {
        columns_ = columnsOf(head);
        writeHead();
    }
    void row(std::span<const double> values, std::int64_t /*line*/) override {
        values_.clear();
        for (const OutColumn& column : columns_) values_.push_back(valueIn(values, column));
        while (nextMark_ < about_.marks.size() && about_.marks[nextMark_].seconds <= values_.front()) {
            writeMark(nextMark_ + 1, about_.marks[nextMark_]);
            ++nextMark_;
        }
        writeRow();
        constexpr std::size_t piece = 64 * 1024;
        if (text_.size() >= piece) flush();
    }
    void finish() {
        for (; nextMark_ < about_.marks.size(); ++nextMark_)
            writeMark(nextMark_ + 1, about_.marks[nextMark_]);
        flush();
        out_.flush();
        if (!out_) throw FileError("The file cannot be written: the disk is full, or it has gone.");
    }

 protected:
    virtual void writeHead() = 0;
    virtual void writeRow() = 0;
    virtual void writeMark(std::size_t number, const LogMark& mark) = 0;

    void flush() {
        out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
        text_.clear();
    }
    const std::vector<OutColumn>& columns() const { return columns_; }
    const std::vector<double>& values() const { return values_; }
    const ExportedLog& about() const { return about_; }
    std::string& text() { return text_; }

 private:
    /// NaN where the log has it not.
    static double valueIn(std::span<const double> row, const OutColumn& column) {
        if (column.source < 0) return std::numeric_limits<double>::quiet_NaN();
        const double value = row[static_cast<std::size_t>(column.source)] * column.scale;
        return column.counted ? roundHalfEven(value) : value;
    }

    std::ostream& out_;
    const ExportedLog& about_;
    std::vector<OutColumn> columns_;
    std::vector<double> values_;
    std::string text_;
    std::size_t nextMark_ = 0;
};

/// RFC 4180. A channel that the log has not is empty, and a number with digits behind the point always shows
/// some, so that whoever guesses types guesses the same for every file.
class CsvWriter : public Writer {
 public:
    using Writer::Writer;

 private:
    void writeHead() override {
        for (std::size_t i = 0; i < columns().size(); ++i) {
            const OutColumn& column = columns()[i];
            if (i > 0) text() += ',';
            text() += quoted(column.unit.empty() ? column.name : column.name + " (" + column.unit + ")");
        }
        text() += "\r\n";
    }
    void writeRow() override {
        for (std::size_t i = 0; i < columns().size(); ++i) {
            if (i > 0) text() += ',';
            const double value = values()[i];
            if (std::isnan(value)) continue;
            const std::size_t before = text().size();
            append(text(), columns()[i], value);
            if (!columns()[i].whole && text().find('.', before) == std::string::npos) text() += ".0";
        }
        text() += "\r\n";
    }
    void writeMark(std::size_t /*number*/, const LogMark& /*mark*/) override {}

    static std::string quoted(const std::string& field) {
        if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
        std::string inside;
        for (const char c : field) inside += c == '"' ? std::string("\"\"") : std::string(1, c);
        return '"' + inside + '"';
    }
};

class MslWriter : public Writer {
 public:
    using Writer::Writer;

 private:
    void writeHead() override {
        text() += "\"Zentaq4 " ZENTAQ_VERSION ": " + withoutQuotes(about().name) + "\"\n";
        line([](const OutColumn& column) { return column.name; });
        line([](const OutColumn& column) { return column.unit; });
    }
    template <typename Text>
    void line(const Text& textOf) {
        for (std::size_t i = 0; i < columns().size(); ++i) {
            if (i > 0) text() += '\t';
            text() += textOf(columns()[i]);
        }
        text() += '\n';
    }
    void writeRow() override {
        for (std::size_t i = 0; i < columns().size(); ++i) {
            if (i > 0) text() += '\t';
            // A reader takes one number a channel; a channel that the log has not stands still.
            const double value = std::isnan(values()[i]) ? 0 : values()[i];
            append(text(), columns()[i], value);
        }
        text() += '\n';
    }
    void writeMark(std::size_t number, const LogMark& mark) override {
        text() +=
            "MARK " + formatNumber(static_cast<double>(number), "000") + " - " + shownLine(mark.text) + "\n";
    }
    static std::string withoutQuotes(const std::string& name) {
        std::string kept = shownLine(name);
        std::ranges::replace(kept, '"', '\'');
        return kept;
    }
};

/// Version 1, all numbers big-endian, every channel a 32-bit float.
class MlgWriter : public Writer {
 public:
    using Writer::Writer;

 private:
    static constexpr std::size_t headBytes = 22;
    static constexpr std::size_t fieldBytes = 55;
    static constexpr std::size_t nameBytes = 34;
    static constexpr std::size_t unitBytes = 10;
    static constexpr std::size_t markBytes = 50;
    enum FieldType : std::uint8_t { float32 = 7 };
    enum DisplayStyle : std::uint8_t { number = 0, onOff = 4 };
    enum BlockType : std::uint8_t { valueBlock = 0, markBlock = 1 };

    void writeHead() override {
        // A log has far fewer than 16-bit counts can tell.
        const std::size_t fields = columns().size();
        const std::size_t info = headBytes + fieldBytes * fields;
        const std::string about = "Zentaq4 " ZENTAQ_VERSION ": " + shownLine(this->about().name);
        text() += "MLVLG";
        byte(0);
        word(1);
        longWord(static_cast<std::uint32_t>(this->about().startedAt));
        word(info);
        longWord(static_cast<std::uint32_t>(info + about.size() + 1));
        word(fields * sizeof(float));
        word(fields);
        std::vector<std::string> taken;
        for (const OutColumn& column : columns()) field(column, taken);
        text() += about;
        byte(0);
    }
    void field(const OutColumn& column, std::vector<std::string>& taken) {
        byte(float32);
        taken.push_back(freeName(column.name, taken));
        padded(taken.back(), nameBytes);
        padded(column.unit, unitBytes);
        const Channel* channel = channelNamed(column.name);
        byte(channel != nullptr && channel->isLamp() ? onOff : number);
        real(1);
        real(0);
        byte(static_cast<std::uint8_t>(column.whole ? 0 : column.decimals));
    }
    /// At most 33 bytes, and equal to no other one.
    static std::string freeName(const std::string& name, const std::vector<std::string>& taken) {
        std::string cut = name.substr(0, nameBytes - 1);
        for (int i = 2; std::ranges::find(taken, cut) != taken.end(); ++i) {
            const std::string tail = "~" + numberText(i);
            cut = name.substr(0, nameBytes - 1 - tail.size()) + tail;
        }
        return cut;
    }
    void blockHead(BlockType type, double seconds) {
        constexpr double stepsPerSecond = 100000;  // 10 microseconds
        constexpr double wrap = 65536;
        byte(type);
        byte(counter_++);
        const double steps = std::floor(seconds * stepsPerSecond + 0.5);
        word(static_cast<std::size_t>(std::fmod(std::max(steps, 0.0), wrap)));
    }
    void writeRow() override {
        blockHead(valueBlock, values().front());
        const std::size_t begin = text().size();
        for (const double value : values()) real(floatOf(value));
        std::uint8_t sum = 0;
        for (std::size_t i = begin; i < text().size(); ++i)
            sum = static_cast<std::uint8_t>(sum + static_cast<std::uint8_t>(text()[i]));
        byte(sum);
    }
    void writeMark(std::size_t /*number*/, const LogMark& mark) override {
        blockHead(markBlock, mark.seconds);
        padded(shownLine(mark.text), markBytes);
    }

    /// What the log has not stands still. A time in frames may be larger than the seconds that the log holds.
    static float floatOf(double value) {
        constexpr double most = std::numeric_limits<float>::max();
        return std::isnan(value) ? 0 : static_cast<float>(std::clamp(value, -most, most));
    }
    void byte(std::uint8_t value) { text() += static_cast<char>(value); }
    void word(std::size_t value) {
        byte(static_cast<std::uint8_t>(value >> 8U));
        byte(static_cast<std::uint8_t>(value));
    }
    void longWord(std::uint32_t value) {
        word(value >> 16U);
        word(value & 0xFFFFU);
    }
    void real(float value) { longWord(std::bit_cast<std::uint32_t>(value)); }
    /// Ends with a zero; a character of several bytes is not torn.
    void padded(const std::string& what, std::size_t bytes) {
        std::size_t length = std::min(what.size(), bytes - 1);
        const auto inside = [&](std::size_t at) {
            return (static_cast<unsigned char>(what[at]) & 0xC0U) == 0x80U;
        };
        while (length > 0 && length < what.size() && inside(length)) --length;
        text().append(what, 0, length);
        text().append(bytes - length, '\0');
    }

    std::uint8_t counter_ = 0;
};

std::unique_ptr<Writer> makeWriter(std::ostream& out, LogExport format, const ExportedLog& about) {
    switch (format) {
        case LogExport::Msl:
            return std::make_unique<MslWriter>(out, about);
        case LogExport::Mlg:
            return std::make_unique<MlgWriter>(out, about);
        case LogExport::Csv:
            break;
    }
    return std::make_unique<CsvWriter>(out, about);
}

}  // namespace

std::string_view exportName(LogExport format) {
    switch (format) {
        case LogExport::Msl:
            return "msl";
        case LogExport::Mlg:
            return "mlg";
        case LogExport::Csv:
            break;
    }
    return "csv";
}

DatalogReading exportLog(std::istream& in, std::ostream& out, LogExport format, const ExportedLog& about,
                         const DatalogOptions& options) {
    const auto writer = makeWriter(out, format, about);
    DatalogReading reading = readDatalog(in, *writer, options);
    writer->finish();
    return reading;
}

}  // namespace zentaq
