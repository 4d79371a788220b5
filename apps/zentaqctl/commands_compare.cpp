// diff, merge, export, import: calibrations under version control.
#include <ostream>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/number_text.h"
#include "commands.h"
#include "config/calibration_diff.h"
#include "config/calibration_listing.h"
#include "config/calibration_merge.h"
#include "unit/safe_file.h"

namespace zentaq::ctl {

namespace {

std::string_view textOf(DifferenceIn in) {
    switch (in) {
        case DifferenceIn::Kind:
            return "kind";
        case DifferenceIn::Header:
            return "header";
        case DifferenceIn::Text:
            return "text";
        case DifferenceIn::Option:
            return "option";
        case DifferenceIn::Value:
            return "value";
        case DifferenceIn::Curve:
            return "curve";
        case DifferenceIn::Table:
            return "table";
        case DifferenceIn::Pin:
            return "pin";
        case DifferenceIn::Cell:
            return "cell";
        default:
            return "surplus";
    }
}

void writeJson(std::ostream& out, const std::vector<Difference>& found) {
    JsonWriter json(out);
    json.beginArray();
    for (const Difference& each : found) {
        json.beginObject().member("in", textOf(each.in)).member("member", std::string_view(each.member));
        json.member("element", std::string_view(each.element)).member("place", std::string_view(each.place));
        json.member("first", std::string_view(each.first)).member("second", std::string_view(each.second));
        json.member("unit", std::string_view(each.unit)).member("information", each.information).endObject();
    }
    json.endArray();
    out << '\n';
}

/// A core failure tells what is wrong with the bytes; the user wants to know in which file.
template <typename Work>
auto naming(const std::string& file, Work&& work) {
    try {
        return work();
    } catch (const FileError&) {
        throw;
    } catch (const Failure& failure) {
        throw Failure(file + ": " + failure.what());
    }
}

}  // namespace

bool diff(const Context& context, const std::string& first, const std::string& second) {
    const std::string firstBytes = readWholeFile(first);
    const std::string secondBytes = readWholeFile(second);
    const auto found = naming(first + ", " + second, [&] { return differences(firstBytes, secondBytes); });
    if (context.json) {
        writeJson(context.out, found);
    } else {
        for (const Difference& each : found) context.out << lineOf(each) << '\n';
    }
    return found.empty();
}

void mergeFiles(const Context& context, const std::string& base, const std::string& first,
                const std::string& second, const std::string& output) {
    refuseStandardOutput(output);
    const std::string baseBytes = readWholeFile(base);
    const std::string firstBytes = readWholeFile(first);
    const std::string secondBytes = readWholeFile(second);
    const MergeResult result = merge(baseBytes, firstBytes, secondBytes);
    if (result.clean()) return writeFileSafely(output, result.bytes);
    for (const MergeConflict& conflict : result.conflicts) context.out << lineOf(conflict) << '\n';
    const auto count = static_cast<int>(result.conflicts.size());
    throw Failure(numberText(count) + (count == 1 ? " conflict" : " conflicts") + ": nothing was written");
}

void exportText(const Context& context, const std::string& file, const std::string& output) {
    refuseSameFile(output, file);
    writeOutput(context, output, naming(file, [&] { return listingOf(readWholeFile(file)); }));
}

void importText(const Context&, const std::string& input, const std::string& output) {
    refuseStandardOutput(output);
    refuseSameFile(output, input);
    const std::string text = readInput(input);
    const std::string name = input == "-" ? "standard input" : input;
    writeFileSafely(output, naming(name, [&] { return fileFromListing(text); }));
}

}  // namespace zentaq::ctl
