// A field: one control of a page, form or window as it is to be shown now. The rows that fields are made from
// stand with what they tell of (config/field_pages, app/general_fields, app/options_table); qt/field_control
// makes the control of every one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

enum class FieldKind : std::uint8_t {
    Number,  ///< a box, checked when it is left
    Text,    ///< a box, taken as it is typed
    Alarm,   ///< the same: a temperature in the user's scale from which an alarm is raised
    Colour,  ///< the same for red + 256 * green + 65536 * blue, with a swatch and a choice
    Fact,    ///< a label: the value follows from another choice
    Option,  ///< one of a group, or a switch
    Check,
    Choice,  ///< one of a list
    List,    ///< a list to check entries of
    Slider,
    Port,    ///< a serial port
    Action,  ///< a button
    Notes
};

struct Field {
    std::string control;  ///< "txtREV_Primary"
    FieldKind kind = FieldKind::Number;
    std::string caption;               ///< with "&" before an access key
    std::string member;                ///< name in the parameter table; empty for none
    std::string text;                  ///< value of a box, entry of a list, number of an option
    std::vector<std::string> choices;  ///< of a list; a text from elsewhere may be none of them
    bool on = false;                   ///< options and check boxes
    bool visible = true;
    bool enabled = true;    ///< false: nothing may be entered, or nothing be chosen
    bool onTheFly = false;  ///< a change acts on the running engine
    std::string limits;     ///< as the range check words them; empty for none
    std::string unit;       ///< "RPM", "kPa", "Fahrenheit"
    std::string help;       ///< key in table FastHelp
    std::string tip;        ///< a sentence for the tuner
    std::string beside;     ///< name of what stands beside the control: a number, a unit, a button
    int least = 0;          ///< of a slider
    int most = 0;
    int page = 0;
    int element = 0;       ///< of an indexed member
    std::string axis;      ///< what stands at its head: "-40", "1500"
    std::string former{};  ///< what the calibration held when it was opened, where that was another value
};

/// A caption without its access key, as a search or a screen reader takes it.
std::string plainCaption(std::string_view caption);

}  // namespace zentaq
