// print, check: a calibration as a listing, and what is doubtful in it.
#include <cstdlib>

#include "base/text.h"
#include "base/text_pdf.h"
#include "commands.h"
#include "config/display.h"
#include "config/print_out.h"
#include "outputs.h"
#include "platform/posix_clock.h"
#include "tables/calibration_check.h"

namespace zentaq::ctl {

namespace {

constexpr std::string_view standardOutput = "-";

bool isPdf(const std::string& output) {
    return upper(output).ends_with(".PDF");
}

/// What a command makes anew at any time.
bool beginsAsPrinted(std::string_view beginning) {
    return beginning.starts_with("%PDF-") ||
           beginning.substr(0, beginning.find('\n')).find("  DATE: ") != beginning.npos;
}

PrintFacts factsOf(const Context& context, Unit& unit, const std::string& file) {
    PrintFacts facts;
    const PosixClock clock;
    facts.file = file;
    facts.date = clock.dateText();
    facts.time = clock.timeText();
    facts.version = ZENTAQ_VERSION;
    const Database* database = nullptr;
    // Without reference data its names are left out, and the print goes on.
    skipFailing([&] { database = &context.database.get(); });
    const DisplayNames names = displayNames(unit, database);
    facts.engine = names.engine;
    facts.sensor = names.sensor;
    return facts;
}

}  // namespace

void print(const Context& context, const std::string& file, const std::string& output) {
    const bool toFile = !output.empty() && output != standardOutput;
    if (toFile) {
        refuseSameFile(output, file);
        refuseReplacingOther(context, output, "listing", beginsAsPrinted);
    }
    const auto calibration = openCalibration(context, file);
    const PrintFacts facts = factsOf(context, calibration->unit, file);
    const std::string text = printedPages(printOut(calibration->unit, facts), facts, pdfColumns, pdfLines);
    tell(context, calibration->host);
    if (!toFile) {
        // On a terminal a page ends where the next one begins.
        std::string whole = text;
        std::erase(whole, '\f');
        context.out << whole;
        return;
    }
    const std::string content = isPdf(output) ? textPdf(text, file) : text;
    if (wroteNew(context, output, content)) return;
    refuseReplacingOther(context, output, "listing", beginsAsPrinted);
    writeOutput(context, output, content);
}

bool check(const Context& context, const std::string& file) {
    const auto calibration = openCalibration(context, file);
    const std::vector<Doubt> doubts = doubtsOf(calibration->unit);
    for (const Doubt& doubt : doubts) context.out << doubt.line() << '\n';
    tell(context, calibration->host);
    return doubts.empty();
}

}  // namespace zentaq::ctl
