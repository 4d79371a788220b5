// info, members, get, cell, record: what a file holds, and what a change would send.
#include <filesystem>
#include <ostream>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "commands.h"
#include "config/basic_figures.h"
#include "members.h"

namespace zentaq::ctl {

namespace {

/// What `info` tells of a file.
struct FileFacts {
    float kind;
    Unit& unit;
    std::uintmax_t bytes;

    int floats() const {
        constexpr int bytesPerFloat = 4;
        constexpr int headerFloats = 3;
        return static_cast<int>(bytes / bytesPerFloat) - headerFloats;
    }
    /// What a file of the kind has more, as text behind the number; an older program wrote fewer.
    std::string shortness() const {
        const int whole = unit.kind().fileFloats;
        if (floats() >= whole) return {};
        return " of " + numberText(whole) + "; the others read as 0";
    }
    std::string version() const { return formatNumber(unit.facts().programVersion, "#0.##"); }
    std::string name() const { return std::string(trimmed(unit.BiName())); }
};

void writeText(std::ostream& out, const FileFacts& facts) {
    out << "Kind:     " << numberText(facts.kind) << '\n'
        << "Model:    " << facts.unit.kind().model << '\n'
        << "Version:  " << facts.version() << '\n'
        << "Firmware: " << numberText(facts.unit.facts().firmwareCode) << " (release "
        << facts.unit.FW_Release() << ", build " << facts.unit.FW_Build() << ")\n"
        << "Name:     " << shownLine(facts.name()) << '\n'
        << "Floats:   " << facts.floats() << facts.shortness() << '\n'
        << "Bytes:    " << facts.bytes << '\n'
        << "Notes:    " << facts.unit.NOTES_TEXT() << '\n';
}

void writeJson(std::ostream& out, const std::string& file, const FileFacts& facts) {
    JsonWriter json(out);
    json.beginObject().member("file", file).member("kind", facts.kind);
    json.member("model", facts.unit.kind().model).member("version", facts.version());
    json.member("firmwareCode", facts.unit.facts().firmwareCode).member("release", facts.unit.FW_Release());
    json.member("build", facts.unit.FW_Build()).member("name", facts.name());
    json.member("floats", facts.floats()).member("bytes", static_cast<int>(facts.bytes));
    json.member("notes", facts.unit.NOTES_TEXT()).endObject();
    out << '\n';
}

void writeValue(JsonWriter& json, const Value& value) {
    std::visit([&json](const auto& each) { json.value(each); }, value);
}

/// Members of one kind; `calibration` tells the limits in force, where there is one.
struct MemberList {
    const UnitKind& kind;
    QuietCalibration* calibration = nullptr;
};

std::string rangeIn(const MemberList& list, const Member& member) {
    if (list.calibration == nullptr || member.row == nullptr) return member.range;
    std::string range = member.range;
    // A range that follows from a broken cell stays untold.
    skipFailing([&] { range = figureLimits(list.calibration->unit, member.row->name).text; });
    return range.empty() ? member.range : range;
}

std::string unitIn(const MemberList& list, const Member& member) {
    if (member.unit != "MAP") return member.unit;
    return list.calibration == nullptr ? "MAPUnits" : list.calibration->unit.MAPUnits();
}

void writeText(std::ostream& out, const MemberList& list) {
    for (const Member& member : membersOf(list.kind)) {
        out << list.kind.name << '\t' << member.name << '\t'
            << (member.cell >= 0 ? numberText(member.cell) : std::string()) << '\t' << member.count << '\t'
            << rangeIn(list, member) << '\t' << unitIn(list, member) << '\t'
            << (member.write ? "" : "read only, ") << textOf(member.reach) << '\t' << member.meaning << '\n';
    }
}

void writeJson(JsonWriter& json, const MemberList& list) {
    for (const Member& member : membersOf(list.kind)) {
        json.beginObject().member("kind", list.kind.slot).member("model", list.kind.name);
        json.member("name", member.name).key("cell");
        if (member.cell >= 0) {
            json.value(member.cell).member("stride", member.stride);
        } else {
            json.null();
        }
        json.member("count", member.count).member("range", rangeIn(list, member));
        json.member("unit", unitIn(list, member)).member("sent", textOf(member.reach));
        json.member("readOnly", !member.write).member("meaning", member.meaning).endObject();
    }
}

void writeLists(const Context& context, const std::vector<MemberList>& lists) {
    if (!context.json) {
        context.out << "Model\tMember\tCell\tCount\tRange\tUnit\tSent\tMeaning\n";
        for (const MemberList& list : lists) writeText(context.out, list);
        return;
    }
    JsonWriter json(context.out);
    json.beginArray();
    for (const MemberList& list : lists) writeJson(json, list);
    json.endArray();
    context.out << '\n';
}

void writeElement(const Context& context, const Member& member, std::optional<int> index,
                  const Value& value) {
    if (!context.json) {
        context.out << textOf(value) << '\n';
        return;
    }
    JsonWriter json(context.out);
    json.beginObject().member("member", member.name);
    if (index) json.member("index", *index);
    json.key("value");
    writeValue(json, value);
    json.endObject();
    context.out << '\n';
}

void writeAll(const Context& context, const Member& member, Unit& unit) {
    if (!context.json) {
        for (int i = 0; i < member.count; ++i) {
            const bool last = (i + 1) % member.columns == 0;
            context.out << textOf(readMember(unit, member, i)) << (last ? '\n' : ' ');
        }
        return;
    }
    JsonWriter json(context.out);
    json.beginObject().member("member", member.name).key("values").beginArray();
    for (int i = 0; i < member.count; ++i) writeValue(json, readMember(unit, member, i));
    json.endArray().endObject();
    context.out << '\n';
}

}  // namespace

void info(const Context& context, const std::string& file) {
    const auto calibration = openCalibration(context, file);
    std::error_code error;
    const auto length = std::filesystem::file_size(file, error);
    if (error) throw FileError("Cannot read " + file + ": " + error.message());
    const FileFacts facts{calibration->host.header().currentUnit, calibration->unit, length};
    if (context.json) {
        writeJson(context.out, file, facts);
    } else {
        writeText(context.out, facts);
    }
    tell(context, calibration->host);
}

void members(const Context& context, const std::string& file, const UnitKind* kind) {
    if (!file.empty()) {
        const auto calibration = openCalibration(context, file);
        return writeLists(context, {{calibration->unit.kind(), calibration.get()}});
    }
    std::vector<MemberList> lists;
    for (const UnitKind& each : unitKinds()) {
        // The second kind of a class has the members of the first.
        const bool repeats = !lists.empty() && shareFiles(lists.back().kind, each);
        if (kind == nullptr ? !repeats : kind == &each) lists.push_back({each});
    }
    writeLists(context, lists);
}

void get(const Context& context, const std::string& file, const std::string& name, std::optional<int> index) {
    const auto calibration = openCalibration(context, file);
    Unit& unit = calibration->unit;
    const Member member = memberOf(unit.kind(), name);
    if (!index && member.count > 1) return writeAll(context, member, unit);
    checkElement(member, index.value_or(0));
    writeElement(context, member, index, readMember(unit, member, index.value_or(0)));
}

void checkCell(int index) {
    if (index >= 0 && index < Unit::cellCount) return;
    throw BoundsError("Subscript out of range: a calibration has the cells 0 to " +
                      numberText(Unit::cellCount - 1));
}

void showCell(const Context& context, const std::string& file, int index) {
    checkCell(index);
    const auto calibration = openCalibration(context, file);
    const float value = calibration->unit.DirectIndex(index);
    if (context.json) {
        JsonWriter(context.out).beginObject().member("cell", index).member("value", value).endObject();
        context.out << '\n';
    } else {
        context.out << numberText(value) << '\n';
    }
}

void record(const Context& context, const std::string& file, const std::string& name,
            const std::string& value, std::optional<int> index) {
    const auto calibration = openCalibration(context, file);
    const Member member = memberOf(calibration->unit.kind(), name);
    const int element = index.value_or(0);
    calibration->unit.ONFLY_MODE(true);
    writeMember(*calibration, member, value, element);
    // A number that fits no byte of the unit is stored but not sent, and the log says so.
    if (!calibration->host.lastLogLine().empty()) throw Failure(calibration->host.lastLogLine());
    if (!context.json) {
        for (const std::string& text : calibration->host.records()) context.out << text << '\n';
        return;
    }
    JsonWriter json(context.out);
    json.beginObject().member("member", member.name).member("index", element);
    json.key("records").beginArray();
    for (const std::string& text : calibration->host.records()) json.value(text);
    json.endArray().endObject();
    context.out << '\n';
}

}  // namespace zentaq::ctl
