// The numbers of the boxes that a user can be told about, and of the checks of an entry: the one place that
// names them. A warning and an error may have one number. The texts stand in `box_texts.cpp` and
// `warning_texts.cpp`.
#pragma once

namespace zentaq::codes {

enum Error : int {
    FormNotPrinted = 1000,
    PortInUse = 1001,       ///< told by zentaqctl; the windows show the port's state
    InvalidBinFile = 1002,  ///< never raised
    NoCalibration = 1003,   ///< what the user asked for needs a calibration in hand
    NoModel = 1004,         ///< no kind of unit has been chosen for a new calibration
    NoUnit = 1005,          ///< nothing to program on the link
    WrongUnit = 1006,       ///< the unit on the link is of another kind than the calibration
    NoSensor = 1007         ///< no MAP sensor has been chosen for a new calibration
};

enum Warning : int {
    NotANumber = 1000,
    OutOfRange = 1001,  ///< the text is the range
    NotWhole = 1002,
    OwnWarning = 1003,  ///< the text is the caller's own
    InvalidEntry = 1004,
    BlankEntry = 1005,
    NotAscending = 1006,  ///< a stop of an axis does not lie above the one to the left
    OldFirmware = 1007    ///< the unit's firmware is older than the program expects
};

enum Message : int {
    Help = 0,           ///< the text is the caller's own
    HelpLogged = 1000,  ///< the same, with a line of the log
    DataSaved = 1001,
    Programmed = 1002,
    CalibrationFailed = 1003,
    FirmwareFailed = 1004,
    FirmwareNotStarted = 1005,  ///< the unit is not in upgrade mode, and keeps the firmware it has
    LogDownloaded = 1006,
    LogFailed = 1007,
    LoadCalibration = 1008,  ///< a new firmware is there, and no calibration yet
    UnitLost = 1009          ///< a firmware failed for good
};

/// Checks of an entry; what they refuse is told by the warning beside them.
enum Check : int {
    IsNumber = 1000,   ///< NotANumber
    IsWhole = 1002,    ///< NotWhole
    IsFilled = 1003,   ///< BlankEntry
    MarksField = 1004  ///< no box: the field is marked
};

}  // namespace zentaq::codes
