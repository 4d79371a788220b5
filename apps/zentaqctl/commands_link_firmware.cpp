// firmware: a new firmware for a unit, with all the questions asked before one byte goes out.
#include <unistd.h>

#include <cstddef>
#include <iostream>
#include <ostream>
#include <string>

#include "base/box_texts.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"
#include "commands_link.h"
#include "link/firmware_file.h"
#include "link_desk.h"
#include "unit_names.h"

namespace zentaq::ctl {

namespace {

constexpr std::string_view consent = "YES";
constexpr const char* breakOffWarning =
    "Press again within 3 s to break off; the unit will have no firmware then.";

/// What the user types, as far as it can be the consent.
std::string answerLine() {
    constexpr std::size_t longest = 80;
    std::string answer;
    for (char letter = 0; answer.size() < longest && std::cin.get(letter) && letter != '\n';)
        answer += letter;
    return answer;
}

/// Throws NotConfirmed where nobody can be asked, Failure where the user says no.
void askFirst(const Context& context) {
    if (::isatty(STDIN_FILENO) == 0) {
        throw NotConfirmed(
            "Nothing was sent: there is no terminal to ask on. --yes goes on without a question.");
    }
    context.notes << firmwareWarning() << "\n\nType " << consent << " to go on: " << std::flush;
    if (trimmed(answerLine()) != consent) throw Failure("Nothing was sent: the upgrade was not confirmed.");
}

/// What a unit is sent of a whole firmware file.
std::string checkedFile(const std::string& file) {
    const std::string text = readFirmwareFile(file);
    try {
        return checkFirmware(text).text;
    } catch (const Failure& failure) {
        throw Failure(file + " is no whole firmware file. " + failure.what() +
                      " Nothing was sent to the unit.");
    }
}

void refuseForeignFile(const UnitKind& kind, const std::string& file) {
    const std::string name = fileNameOf(file);
    if (name.starts_with(kind.firmwarePrefix)) return;
    throw Failure("This firmware file is not valid for this unit. The name of a file for " +
                  std::string(kind.name) + " begins with " + std::string(kind.firmwarePrefix) +
                  ". Nothing was sent to the unit.");
}

/// Whom the firmware is for.
struct Target {
    std::string name;  ///< for the line of result
    int slot = 0;
};

/// Who is there, or who the user says is there. Throws where the firmware is not for that unit.
Target unitForFirmware(LinkDesk& desk, const FirmwareWish& wish) {
    const UnitKind* named = wish.kindWithoutFirmware.empty() ? nullptr : unitKindOf(wish.kindWithoutFirmware);
    const Found found = desk.search();
    if (found == Found::Nobody) {
        if (named == nullptr) {
            throw NoUnit(errorLine(codes::NoUnit) + " (" + desk.portName() +
                         ") A unit that has lost its firmware takes one with --unit-without-firmware.");
        }
        refuseForeignFile(*named, wish.file);
        return {std::string(named->name), named->slot};
    }
    if (found == Found::OldFirmware) {
        throw Failure(desk.unitName() +
                      " has a firmware that this program cannot upgrade: it must be sent to "
                      "Norvalia. Nothing was sent to the unit.");
    }
    const UnitKind& kind = desk.session().linkedUnit().kind();
    if (named != nullptr) desk.requireKind(*named);
    refuseForeignFile(kind, wish.file);
    return {desk.unitName(), kind.slot};
}

std::string howFar(const TransferReport& end) {
    if (end.lines == 0) return {};
    const std::string of = numberText(end.lines) + " of " + numberText(end.total);
    if (end.ending == Ending::Refused) return " The unit refused line " + of + ".";
    if (end.ending == Ending::Silent) return " The unit did not answer to line " + of + ".";
    return " The unit took " + of + " lines.";
}

std::string whyNotUpgraded(const TransferReport& end) {
    if (end.ending == Ending::Unclear) {
        return "The unit took " + numberText(end.lines) + " of " + numberText(end.total) +
               " lines and did not verify the firmware. Cycle the power on the unit and see whether it "
               "answers.";
    }
    switch (end.firmware) {
        case FirmwareLeft::Former:
            return messageLine(codes::FirmwareNotStarted);
        case FirmwareLeft::Lost:
            return messageLine(codes::UnitLost);
        default:
            return messageLine(codes::FirmwareFailed) + howFar(end);
    }
}

std::string whatABreakLeaves(const TransferReport& end) {
    if (end.lines == 0) return "Interrupted before the first line. Please cycle the power on the unit.";
    return "Interrupted after " + numberText(end.lines) + " of " + numberText(end.total) +
           " lines. There is now no firmware installed on this unit, the upgrade must be completed "
           "successfully "
           "before the unit will function.";
}

TransferReport upgrade(LinkDesk& desk, const std::string& file, const std::string& text, int slot) {
    const auto hold = desk.holdSignals();
    const TransferReport end = desk.session().transferFirmware(file, text, slot);
    desk.clearProgress();
    return end;
}

}  // namespace

void firmware(const Context& context, const std::string& port, const FirmwareWish& wish) {
    const std::string text = checkedFile(wish.file);
    if (!wish.confirmed) askFirst(context);
    DatabaseHost host(context.database);
    LinkDesk desk(context, port, host);
    const Target unit = unitForFirmware(desk, wish);
    if (desk.link().linked().LinkedUnitKind != 0) desk.requireSameUnit();
    desk.stopOnSecondSignal(breakOffWarning);
    const TransferReport end = upgrade(desk, wish.file, text, unit.slot);
    if (end.ending == Ending::Stopped) throw Interrupted(whatABreakLeaves(end), desk.signal());
    if (end.ending != Ending::Done) throw Failure(whyNotUpgraded(end));
    context.out << unit.name << ": " << messageLine(codes::Programmed) << ' '
                << messageLine(codes::LoadCalibration) << '\n';
}

}  // namespace zentaq::ctl
