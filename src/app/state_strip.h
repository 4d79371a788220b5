// What the state strip says: short words about unit, changes and gauges, what each means, how urgent it is
// and which command it stands for. A window shows the rows and knows nothing else of them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

class Session;

/// How a part looks.
enum class StripTone {
    Plain,  ///< tells, and asks for nothing
    Good,
    OnFly,    ///< acts on the running engine
    Changed,  ///< differs from what is stored
    Warning,  ///< needs a look soon
    Alarm     ///< needs a hand now
};

/// From left to right.
enum class StripPart {
    Unit,
    Gauges,
    OnFly,
    NotStored,
    NotSaved,
    ZeroAdvance,
    Work,
    Notice,
    File,
    Cell,
    Firmware
};

struct StripRow {
    StripPart part = StripPart::Unit;
    std::string text;     ///< empty: there is nothing to say, and the part is not shown
    std::string meaning;  ///< in whole sentences: what is, and what a press does
    StripTone tone = StripTone::Plain;
    std::string_view command = {};  ///< the menu entry that a press stands for
    std::string_view topic = {};    ///< without one: the place of the user guide that tells more
};

/// The name of a part's control.
std::string_view stripName(StripPart part);

/// What the rows are made of.
struct StripFacts {
    // The link
    bool portOpen = false;
    bool adapterAway = false;
    bool searching = false;
    bool unitFound = false;
    bool unitLost = false;  ///< it was there before
    bool identified = false;
    bool oldFirmware = false;
    std::string port;      ///< "1"
    std::string unit;      ///< "ORB A 001234"
    std::string firmware;  ///< "ZQA5099"
    std::string panel3;    ///< the same, as the third panel shows it
    enum class Transfer { None, Calibration, Firmware, Datalog };
    Transfer transfer = Transfer::None;
    int percent = 0;  ///< of a transfer
    bool zeroAdvance = false;
    bool zeroAdvanceAsked = false;
    bool onFly = false;
    bool changesNotStored = false;
    bool framesCome = false;
    bool framesCame = false;  ///< the gauges show something
    bool showsLog = false;    ///< a log that is played back
    bool recording = false;

    // The calibration in hand
    bool inHand = false;
    bool creating = false;
    bool modified = false;
    bool kindAgrees = false;  ///< with the unit on the link
    std::string model;        ///< "ORB A"
    std::string file;         ///< "tune.ZQ4OA"

    // Work
    bool reading = false;
    bool saving = false;    ///< for longer than a moment
    std::string cell;       ///< the one in hand of a table, with its axes, value and limits
    std::string cellState;  ///< the same in whole sentences
    std::string notice;
    int notices = 0;  ///< that one and those behind it
};

StripFacts stripFacts(Session& session);

/// One row a part, in their order.
std::vector<StripRow> stripRows(const StripFacts& facts);

/// For whoever does not look: a message that has come, an alarm that has begun.
bool isToldAtOnce(const StripRow& now, const StripRow& former);
/// Whether live values come: the gauges show what the engine does at this moment. Not while a unit is
/// programmed.
bool gaugesLive(Session& session);

/// Which of the parts, from left to right, have no room: the least important ones go first. `widths` are
/// those of the parts, 0 for one that is not shown; a menu with what is folded takes `menuWidth` itself.
std::vector<bool> foldedParts(std::span<const int> widths, int room, int menuWidth, int gap);

}  // namespace zentaq
