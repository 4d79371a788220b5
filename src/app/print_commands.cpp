#include "app/print_commands.h"

#include "base/errors.h"
#include "base/message_codes.h"
#include "base/settings_keys.h"
#include "base/text_pdf.h"
#include "config/display.h"
#include "config/print_out.h"

namespace zentaq {

void PrintCommands::askedByToolbar() {
    const Answer answer =
        session_.dialogs().show({"Print", "Are you sure you want to send this information to the Printer?",
                                 Icon::Question, Buttons::YesNo});
    if (answer == Answer::Yes) print(bySetting);
}

void PrintCommands::print(int code) {
    if (code == bySetting) {
        code = currentForm;
        skipFailing([&] { code = static_cast<int>(session_.settingNumber(settings::Print)); });
    }
    if (code != calibrationFile) {
        return end(
            session_.windows().printForm([this] { session_.sysLog("USER: Print Current Form Requested."); }));
    }
    if (session_.slotInHand() == 0) return session_.messages.Display_Error(codes::NoCalibration);
    const PrintEnd ended = session_.windows().printText(session_.CurrentFile, [this] { return listing(); });
    if (ended == PrintEnd::Printed) session_.addToLastLine("SUCCESS!");
    end(ended);
}

/// Made behind the dialog: what is in hand then is printed.
std::string PrintCommands::listing() {
    session_.sysLog("USER: Print .BIN File Requested.");
    session_.sysLog("Printing Bin File Infomation...");
    Unit& unit = session_.currentUnitObject();
    const Clock& clock = session_.platform().clock;
    const DisplayNames names = displayNames(unit, session_.reference());
    const PrintFacts facts{unit.BinFile(), clock.dateText(), clock.timeText(),
                           names.engine,   names.sensor,     session_.VersionText};
    return printedPages(printOut(unit, facts), facts, pdfColumns, pdfLines);
}

void PrintCommands::end(PrintEnd end) {
    if (end == PrintEnd::GivenUp) session_.sysLog("Print Request Aborted.");
    if (end == PrintEnd::Failed) session_.messages.Display_Error(codes::FormNotPrinted);
}

}  // namespace zentaq
