#include "app/state_strip.h"

#include <algorithm>
#include <array>

#include "app/flight_record.h"
#include "app/session.h"
#include "base/number_text.h"
#include "base/text.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

using Transfer = StripFacts::Transfer;

constexpr std::string_view identify = "mnuIdentifyORB";
constexpr std::string_view flightRecorder = "mnuFlightRecorder";
constexpr std::string_view searchPorts = "mnuAutoDetectPort";

struct PartRow {
    StripPart part;
    std::string_view name;
    int importance;  ///< the highest stays longest
};

constexpr PartRow parts[] = {
    {StripPart::Unit, "stripUnit", 10},
    {StripPart::Gauges, "stripGauges", 5},
    {StripPart::OnFly, "StatusBar1_Panel2", 8},
    {StripPart::NotStored, "stripNotStored", 7},
    {StripPart::NotSaved, "StatusBar1_Panel4", 6},
    {StripPart::ZeroAdvance, "stripZeroAdvance", 11},
    {StripPart::Work, "stripWork", 4},
    {StripPart::Notice, "stripNotice", 9},
    {StripPart::File, "StatusBar1_Panel1", 2},
    {StripPart::Cell, "stripCell", 3},
    {StripPart::Firmware, "StatusBar1_Panel3", 1},
};

/// A save that takes no longer than this is not worth a word.
constexpr std::int64_t momentUs = 200'000;

/// Gauges are live while values come this often, or at a third of the rate that the user has asked for.
constexpr std::int64_t liveUs = 1'000'000;
constexpr std::int64_t mostLiveUs = 10'000'000;

StripRow unitInTransfer(const StripFacts& facts) {
    const std::string percent = " " + numberText(facts.percent) + "%";
    switch (facts.transfer) {
        case Transfer::Firmware:
            return {.text = "FIRMWARE" + percent,
                    .meaning =
                        "The unit gets a new firmware. Leave its power and the cable alone until it has "
                        "ended: without the whole firmware it does not run.",
                    .tone = StripTone::Warning,
                    .topic = "firmware-upgrades"};
        case Transfer::Datalog:
            return {.text = "READING DATALOG",
                    .meaning = "The unit's datalog is read. Other commands wait until that has ended.",
                    .tone = StripTone::Plain,
                    .topic = "programming"};
        default:
            return {.text = "PROGRAMMING" + percent,
                    .meaning =
                        "The unit is being programmed. Leave its power and the cable alone until it has "
                        "ended.",
                    .tone = StripTone::Warning,
                    .topic = "programming"};
    }
}

StripRow unitNotThere(const StripFacts& facts) {
    if (facts.searching) {
        return {.text = "Searching ports",
                .meaning = "A unit is searched on ports 1 to 12. Press to end the search.",
                .tone = StripTone::Plain,
                .command = searchPorts};
    }
    if (facts.adapterAway) {
        return {.text = "ADAPTER UNPLUGGED",
                .meaning = "The adapter of the port has gone. Plug it in again: it is looked for.",
                .tone = StripTone::Alarm,
                .topic = "troubleshooting#no-link"};
    }
    if (!facts.portOpen) {
        return {.text = "NO PORT",
                .meaning =
                    "No port is open. It is opened as soon as it is there. Press to search ports 1 to 12 "
                    "for a unit.",
                .tone = facts.unitLost ? StripTone::Alarm : StripTone::Plain,
                .command = searchPorts};
    }
    if (facts.unitLost) {
        return {.text = "LINK LOST",
                .meaning = facts.unit +
                           " does not answer any more. Look at its power and the cable. Press to ask "
                           "who is there.",
                .tone = StripTone::Alarm,
                .command = identify};
    }
    return {.text = "NO UNIT",
            .meaning = "Port " + facts.port + " is open, and no unit answers. Press to ask again.",
            .tone = StripTone::Plain,
            .command = identify};
}

StripRow unitThere(const StripFacts& facts) {
    if (facts.oldFirmware) {
        return {.text = "OLD FIRMWARE",
                .meaning =
                    facts.unit + " has a firmware that this program cannot use: it must be sent to Norvalia.",
                .tone = StripTone::Alarm,
                .topic = "firmware-upgrades"};
    }
    if (!facts.identified) {
        return {
            .text = facts.unit,
            .meaning = facts.unit + " is on the link and has not told its firmware yet. Press to ask again.",
            .tone = StripTone::Plain,
            .command = identify};
    }
    if (facts.inHand && !facts.creating && !facts.kindAgrees) {
        return {.text = facts.unit + ", FILE FOR " + facts.model,
                .meaning = "On the link is " + facts.unit + ", and the calibration in hand is for " +
                           facts.model + ". Nothing that you change goes to the unit.",
                .tone = StripTone::Warning,
                .topic = "troubleshooting#connected-but-onfly-does-not-appear"};
    }
    return {.text = facts.unit,
            .meaning = "On the link is " + facts.unit +
                       (facts.firmware.empty() ? "" : ", firmware " + facts.firmware) +
                       ". Press to ask it again who it is.",
            .tone = StripTone::Good,
            .command = identify};
}

StripRow unitRow(const StripFacts& facts) {
    if (facts.transfer != Transfer::None) return unitInTransfer(facts);
    return facts.unitFound && !facts.searching ? unitThere(facts) : unitNotThere(facts);
}

StripRow gaugesRow(const StripFacts& facts) {
    if (facts.showsLog) {
        return {.text = "Gauges show a datalog",
                .meaning =
                    "Gauges and tables show the datalog in hand, not what an engine does now. Press to "
                    "see the recorder.",
                .tone = StripTone::Changed,
                .command = flightRecorder};
    }
    const bool live = facts.framesCome && facts.transfer == Transfer::None;
    if (facts.recording) {
        return {.text = live ? "Recording" : "Recording, gauges not live",
                .meaning = live ? "Live values are being recorded. Press to see the recorder."
                                : "The recording goes on, and no values come from the unit. Press to see the "
                                  "recorder.",
                .tone = live ? StripTone::Changed : StripTone::Warning,
                .command = flightRecorder};
    }
    if (live) return {};
    StripRow row{.text = "Gauges not live"};
    row.tone = facts.framesCame ? StripTone::Warning : StripTone::Plain;
    const std::string old = facts.framesCame ? " What the gauges show is old." : "";
    if (facts.transfer != Transfer::None) {
        row.meaning = "No values come while a transfer runs." + old;
    } else {
        row.meaning = "No values come from a unit." + old;
    }
    if (facts.transfer == Transfer::None && facts.portOpen) {
        row.meaning += " Press to ask who is there.";
        row.command = identify;
    } else {
        row.topic = "troubleshooting#the-dashboard-stands-still";
    }
    return row;
}

StripRow onFlyRow(const StripFacts& facts) {
    if (!facts.onFly) return {};
    return {
        .text = "ONFLY",
        .meaning = "On the fly: changes act on the running engine at once. Press to read what that means.",
        .tone = StripTone::OnFly,
        .topic = "on-the-fly"};
}

StripRow notStoredRow(const StripFacts& facts) {
    if (!facts.changesNotStored) return {};
    StripRow row{.text = "Not stored in ORB", .tone = StripTone::Changed};
    row.meaning = "Changes went to the unit and are not stored in it: they are lost when its power goes.";
    if (facts.identified && facts.kindAgrees && facts.transfer == Transfer::None) {
        row.meaning += " Press to store them.";
        row.command = "mnuStoreONFLY";
    } else {
        row.topic = "on-the-fly#store";
    }
    return row;
}

StripRow notSavedRow(const StripFacts& facts) {
    if (facts.creating) {
        return {.text = "New, not saved",
                .meaning = "The new calibration is in no file yet. Press to save it.",
                .tone = StripTone::Changed,
                .command = "mnuSave"};
    }
    if (!facts.modified) return {};
    return {.text = "Modified, not saved",
            .meaning = "The file on the disk is older than what you see. Press to save it.",
            .tone = StripTone::Changed,
            .command = "mnuSave"};
}

StripRow zeroAdvanceRow(const StripFacts& facts) {
    if (facts.zeroAdvance) {
        return {.text = "ZERO ADVANCE",
                .meaning = facts.zeroAdvanceAsked
                               ? "The unit holds the timing at zero advance. Press to give the timing back."
                               : "The unit holds the timing at zero advance. It has been asked to end that.",
                .tone = StripTone::Alarm,
                .command = "mnuZeroAdv"};
    }
    if (!facts.zeroAdvanceAsked) return {};
    return {.text = "Zero advance asked",
            .meaning = "The unit has been asked to hold the timing at zero advance. Press to take that back.",
            .tone = StripTone::Warning,
            .command = "mnuZeroAdv"};
}

StripRow workRow(const StripFacts& facts) {
    if (facts.reading) {
        return {.text = "Opening . . .",
                .meaning = "A calibration is being read. What you ask for meanwhile comes behind it.",
                .topic = "calibration-files"};
    }
    if (!facts.saving) return {};
    return {.text = "Saving . . .",
            .meaning =
                "The calibration is on its way to the disk. You may go on working; what needs its end "
                "comes behind it.",
            .topic = "calibration-files"};
}

StripRow noticeRow(const StripFacts& facts) {
    if (facts.notice.empty()) return {};
    StripRow row{.text = facts.notice, .tone = StripTone::Warning};
    row.meaning = "Press to put this message away.";
    if (const int behind = facts.notices - 1; behind > 0) {
        row.text += " (+" + numberText(behind) + " more)";
        row.meaning = "Press to put this message away and to read the one before it.";
    }
    row.meaning += " It stands in the console too.";
    return row;
}

StripRow fileRow(const StripFacts& facts) {
    if (!facts.inHand) {
        return {.text = "No calibration", .meaning = "Press to open one.", .command = "mnuOpen"};
    }
    const std::string name = facts.creating ? "new calibration" : facts.file;
    return {.text = facts.model + "  " + name,
            .meaning = "The calibration in hand. Press to save it under another name.",
            .command = "mnuSaveAs"};
}

StripRow cellRow(const StripFacts& facts) {
    if (facts.cell.empty()) return {};
    return {.text = facts.cell, .meaning = facts.cellState};
}

StripRow firmwareRow(const StripFacts& facts) {
    return {.text = facts.panel3,
            .meaning = "The firmware of the unit. Press to read about firmwares.",
            .topic = "firmware-upgrades"};
}

using RowMaker = StripRow (*)(const StripFacts&);

constexpr std::array<RowMaker, std::size(parts)> makers = {
    unitRow, gaugesRow, onFlyRow, notStoredRow, notSavedRow, zeroAdvanceRow,
    workRow, noticeRow, fileRow,  cellRow,      firmwareRow,
};

Transfer transferOf(const Link& link) {
    const zentaq::Transfer& transfer = link.transfer();
    if (!transfer.pending()) return Transfer::None;
    if (transfer.firmware()) return Transfer::Firmware;
    return transfer.programming() ? Transfer::Calibration : Transfer::Datalog;
}

void tellLink(StripFacts& facts, Session& session) {
    const Link& link = session.link;
    const LinkedUnit& linked = link.linked();
    const LinkStatus& status = session.linkDisplay.status();
    facts.portOpen = session.platform().port.isOpen();
    facts.adapterAway = session.unitMemory.adapterAway();
    facts.searching = link.searching();
    facts.unitFound = linked.LinkedUnitKind != 0;
    facts.unitLost = session.unitMemory.lost();
    facts.identified = linked.UnitIdentified;
    facts.oldFirmware = linked.OldFirmware;
    facts.port = status.port;
    facts.unit = session.unitMemory.name();
    facts.firmware = status.firmware;
    facts.panel3 = status.panel3;
    facts.transfer = transferOf(link);
    facts.percent = status.progressPercent;
    facts.zeroAdvance = linked.zeroAdvance;
    facts.zeroAdvanceAsked = link.zeroAdvanceAsked();
    facts.kindAgrees = link.kindInHand();
    facts.changesNotStored = session.unitMemory.changesNotStored();
}

}  // namespace

std::string_view stripName(StripPart part) {
    return std::ranges::find(parts, part, &PartRow::part)->name;
}

bool isToldAtOnce(const StripRow& now, const StripRow& former) {
    if (now.text.empty() || now.text == former.text) return false;
    return now.part == StripPart::Notice || now.tone == StripTone::Alarm;
}

bool gaugesLive(Session& session) {
    if (session.link.transfer().pending() || session.recorder->showsLog()) return false;
    const std::int64_t asked = std::int64_t{pollIntervalMs(session.settings())} * 3000;
    const std::int64_t patience = std::clamp(asked, liveUs, mostLiveUs);
    return session.unitMemory.framesCome(session.platform().clock.monotonicUs(), patience);
}

StripFacts stripFacts(Session& session) {
    StripFacts facts;
    tellLink(facts, session);
    Unit& unit = session.currentUnitObject();
    facts.onFly = unit.ONFLY_MODE();
    facts.framesCome = gaugesLive(session);
    facts.framesCame = session.unitMemory.framesCame();
    facts.showsLog = session.recorder->showsLog();
    facts.recording = session.recorder->Recording;
    facts.inHand = session.slotInHand() != 0;
    facts.creating = session.creating();
    facts.modified = session.DataModified;
    facts.model = unit.kind().model;
    facts.file = fileNameOf(session.CurrentFile);
    const std::int64_t now = session.platform().clock.monotonicUs();
    facts.reading = session.saving.reading();
    facts.saving = session.saving.running() && now - session.saving.beganUs() > momentUs;
    facts.cell = session.cellContext.line;
    facts.cellState = session.cellContext.words;
    facts.notice = session.notices.text(now);
    facts.notices = session.notices.count(now);
    return facts;
}

std::vector<StripRow> stripRows(const StripFacts& facts) {
    std::vector<StripRow> rows;
    for (std::size_t i = 0; i < std::size(parts); ++i) {
        rows.push_back(makers[i](facts));
        rows.back().part = parts[i].part;
    }
    return rows;
}

std::vector<bool> foldedParts(std::span<const int> widths, int room, int menuWidth, int gap) {
    std::vector<bool> folded(widths.size(), false);
    const auto needed = [&] {
        int sum = std::ranges::find(folded, true) == folded.end() ? 0 : menuWidth + gap;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            if (widths[i] > 0 && !folded[i]) sum += widths[i] + gap;
        }
        return sum - gap;
    };
    while (needed() > room) {
        std::size_t least = widths.size();
        for (std::size_t i = 0; i < widths.size(); ++i) {
            if (widths[i] <= 0 || folded[i]) continue;
            if (least == widths.size() || parts[i].importance < parts[least].importance) least = i;
        }
        if (least == widths.size()) break;
        folded[least] = true;
    }
    return folded;
}

}  // namespace zentaq
