// What happens on the link, as types. Whoever hears it finds the words (`link/link_teller.h`).
#pragma once

#include <string_view>

namespace zentaq {

/// In brackets what `text`, `more` and `number` of the news hold.
enum class LinkEvent {
    // The port and the line
    Initialized,    ///< the link begins its life (port number)
    Terminated,     ///< and ends it
    Opening,        ///< a connection is begun
    PortForced,     ///< a port number below 1 was meant: from here on it is 1
    PortNamed,      ///< the port of the connection (port number, identity)
    Opened,         ///< (number: a unit has told its serial number before)
    NotOpened,      ///< (port number, why)
    PortTrouble,    ///< the port is there all the same (why it cannot be opened)
    Closed,         ///< by the program
    Writing,        ///< a command or a line goes out
    PortStirs,      ///< the port tells something
    BytesCame,      ///< it tells of bytes
    ReplyCame,      ///< a reply is whole (key of the command in flight)
    LineGoesOut,    ///< a line of a transfer (key of the command in flight)
    AdapterGone,    ///< the adapter of the open port vanishes (its name, its device)
    AdapterAway,    ///< it is looked for (the same)
    AdapterBackAs,  ///< it comes back (its name, its device now)
    AdapterBack,    ///< the unit behind it is asked for (the same)
    // A link that is lost
    LinkLost,
    NoPort,           ///< no port is open
    FirmwareMissing,  ///< the unit lost its firmware in a run that broke off
    UnitSilent,
    KillNotAnswered,
    KillNotSent,
    // Who is there
    OldFirmware,      ///< a unit of the oldest format; told once
    KindFound,        ///< a unit of a kind answers (number: its slot)
    LabelTold,        ///< how its kind is called in short (label)
    UnitReady,        ///< the unit is taken (serial number)
    UnitMustUpgrade,  ///< the same for one of the oldest format (serial number)
    UnknownAnswers,   ///< who answers never says what it is
    OtherUnit,        ///< another unit than the one that a transfer was for
    FirmwareTold,     ///< (firmware)
    UnitMismatch,     ///< the calibration in hand is of another kind; told once
    NewFirmware,      ///< newer than the program knows; told once
    UnitIdentified,   ///< the unit has told all (firmware, name of its calibration)
    UnitAgrees,       ///< and the calibration in hand is of its kind
    // Replies
    TableLock,      ///< on each idle tick (number: a change is on its way)
    FrameDecoded,   ///< into the live values
    CodesReceived,  ///< check-engine words have been stored in the unit's object
    CodesCleared,   ///< the unit has cleared them
    ZeroAdvanceOn,
    ZeroAdvanceOff,
    ChangesSaved,
    ChangeRefused,
    // The start of a transfer
    ConversionBegins,   ///< (file name of the calibration)
    ProgrammingBegins,  ///< of the calibration that has been converted
    FirmwareBegins,     ///< (path)
    DownloadBegins,     ///< (path)
    NotBegun            ///< the transfer cannot begin
};

struct LinkNews {
    LinkEvent event;
    std::string_view text{};
    std::string_view more{};
    int number = 0;
};

enum class TransferMode { Calibration = 1, Firmware = 2, Datalog = 3 };

/// How a transfer ended.
enum class TransferResult {
    Verified,     ///< "PN"; a datalog: read to its end and written
    RanOut,       ///< all lines went out and were taken, but nothing verified them
    Refused,      ///< "AR"; a datalog: the unit has nothing to give
    NotAnswered,  ///< no answer in time, or the link is lost
    BadRecord,    ///< a download that stands still behind a record that is none
    NotWritten,   ///< a download whose file cannot be written
    NotRead,      ///< the lines could not be read to their end
    OtherUnit     ///< another unit than the one that the transfer was for answers
};

/// What a firmware run that failed leaves in the unit, as far as can be known.
enum class FirmwareLeft {
    Former,  ///< the one that it had
    None,    ///< nothing: the upgrade must be completed
    Lost     ///< nothing, and the unit does not answer any more
};

struct TransferEnd {
    TransferMode mode = TransferMode::Calibration;
    TransferResult result = TransferResult::NotAnswered;
    FirmwareLeft firmware = FirmwareLeft::Former;  ///< of a firmware run that failed
    int lines = 0;                                 ///< lines sent, or records read
    int total = 0;                                 ///< lines of the file; 0 for a download
    bool answered = false;                         ///< what was written last had its answer

    bool succeeded() const { return result == TransferResult::Verified || result == TransferResult::RanOut; }
};

}  // namespace zentaq
