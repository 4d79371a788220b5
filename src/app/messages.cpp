#include "app/messages.h"

#include <algorithm>

#include "base/box_texts.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"
#include "base/warning_texts.h"

namespace zentaq {

namespace {

/// The most lines of a box about many refused entries; the log has them all.
constexpr std::size_t mostRefusalsShown = 8;

/// What a box says of the refusals behind its first one.
std::string furtherLines(std::span<const Refusal> further) {
    std::string lines;
    for (const Refusal& refusal : further.first(std::min(further.size(), mostRefusalsShown)))
        lines += "\n" + refusal.brief();
    if (further.size() > mostRefusalsShown) {
        lines += "\nand " + numberText(static_cast<double>(further.size() - mostRefusalsShown)) +
                 " more, which are in the console.";
    }
    return lines;
}

/// Behind the first one's text. Of cells of a table all are named, the first one as well.
std::string linesBehind(std::span<const Refusal> refused) {
    if (refused.front().where.empty()) return furtherLines(refused.subspan(1));
    return "\n" + numberText(static_cast<int>(refused.size())) +
           (refused.size() == 1 ? " cell was refused:" : " cells were refused:") + furtherLines(refused);
}

}  // namespace

void Messages::Display_Error(int code) {
    const ErrorText* row = errorText(code);
    if (row == nullptr) return;
    const std::string number = "Error " + numberText(code);
    dialogs_.show({number, number + ":\n" + std::string(row->text), Icon::Critical, Buttons::Ok});
    sysLog_(number + ": " + std::string(row->log));
}

void Messages::warn(const WarningText& warning, std::string_view text, const std::string& further) {
    dialogs_.show(
        {std::string(warning.title), filled(warning.text, text) + further, Icon::Exclamation, Buttons::Ok});
    sysLog_(filled(warning.log, text));
    focusForm_(ActiveFormName);
}

void Messages::Display_Warning(int code, std::string_view text) {
    const WarningText* warning = warningText(code);
    if (warning != nullptr && code != codes::NotAscending) warn(*warning, text);
}

bool Messages::tell(const EntryOutcome& outcome) {
    std::vector<Refusal> refused;
    noteRefusal(refused, outcome);
    tell(refused);
    return !outcome;
}

void Messages::tell(std::span<const Refusal> refused) {
    if (refused.empty()) return;
    for (const Refusal& further : refused.subspan(1)) sysLog_(further.brief());
    const Refusal& first = refused.front();
    warn(*warningText(first.warning), first.text, linesBehind(refused));
    if (first.warning != codes::OutOfRange) return;
    sysLog_(first.text);
    sysLog_("Invalid Entry: " + first.entry + " -> " + first.limits);
}

void Messages::Display_Message(int code, std::string_view text) {
    const MessageText* row = messageText(code);
    if (row == nullptr) return;
    const Icon icon = row->title == failedTitle ? Icon::Exclamation : Icon::Information;
    dialogs_.show({std::string(row->title), filled(row->text, text), icon, Buttons::Ok});
    if (code == codes::HelpLogged) sysLog_("Message 1000: " + std::string(text));
}

bool Messages::Check_Input(int code, std::string_view value) {
    switch (code) {
        case codes::IsNumber:
            // kept: the key codes of the full stop and of two control keys pass, as any number does.
            return tell(checkNumeric(value));
        case codes::IsWhole:
            // Kept: the pair ".," is refused, neither character alone; "1.5" passes.
            if (value.find(".,") == std::string_view::npos) return false;
            return tell(Refusal{.warning = codes::NotWhole});
        case codes::IsFilled:
            return tell(checkFilled(value));
        case codes::MarksField:
            return checkAndMark(value);
        default:
            return false;
    }
}

bool Messages::checkAndMark(std::string_view value) {
    if (!SilentEdit) mark("Modified");
    if (!trimmed(value).empty()) return false;
    mark("Invalid Entry");
    return true;
}

void Messages::mark(std::string_view state) const {
    if (markField_) markField_(state);
}

bool Messages::Check_Range(float value, float minimum, float maximum, std::string_view rangeText) {
    return tell(checkLimits(value, {minimum, maximum, std::string(rangeText)}));
}

bool Messages::Check_Ascending(const std::vector<std::string>& fields, int index) {
    if (index < 1 || index >= static_cast<int>(fields.size())) return false;
    const auto right = fields.begin() + index;
    return tell(checkAscending(*(right - 1), *right));
}

}  // namespace zentaq
