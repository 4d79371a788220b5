#include "app/options.h"

#include <algorithm>

#include "app/data_points.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/settings_keys.h"
#include "base/text.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr std::string_view degree = "\u00B0";
constexpr std::string_view keepAlarm = "-";
constexpr float lowestAlarm = -40;
constexpr float highestCelsius = 150;
constexpr float highestFahrenheit = 302;
constexpr float highestColour = 0xFFFFFF;
/// Far outside every range, so that the range check refuses it.
constexpr double hugeEntry = 1e30;

const OptionRow& rowOf(std::string_view control) {
    for (const OptionRow& row : optionTable()) {
        if (row.control == control) return row;
    }
    throw BoundsError("No option " + std::string(control));
}

std::string designOf(const OptionRow& row) {
    return row.kind == FieldKind::Slider ? numberText(row.most) : std::string(row.design);
}

float entryOf(std::string_view text) {
    return static_cast<float>(std::clamp(numberOf(text), -hugeEntry, hugeEntry));
}

EntryOutcome checkEntered(const std::string& text, const Limits& limits) {
    if (auto numeric = checkNumeric(text); !numeric) return numeric;
    return checkLimits(entryOf(text), limits);
}

EntryOutcome checkNumber(const std::string& text) {
    return trimmed(text).empty() ? EntryOutcome() : checkNumeric(text);
}

EntryOutcome checkColour(const std::string& text) {
    if (trimmed(text).empty()) return {};  // the mode's own colour
    if (auto within = checkEntered(text, {0, highestColour, "(0 - 16777215)"}); !within) return within;
    return checkWhole(numberOf(text));
}

/// A number in its plain decimal form; another text as it is.
std::string plainNumber(const std::string& text) {
    const auto number = parseNumber(text);
    return number ? numberText(*number) : std::string(trimmed(text));
}

}  // namespace

Options::Options(Session& session) : session_(session) {
    load();
}

// ---- Reading

void Options::load() {
    for (const OptionRow& row : optionTable()) loadRow(row);
    dataPoints_.clear();
    for (const int place : storedDataPoints(session_.settings())) {
        if (place != 0) dataPoints_.insert(place);
    }
}

bool Options::refresh() {
    bool moved = false;
    for (const OptionRow& row : optionTable()) {
        if (row.key.empty() || stored(row) == seen_[std::string(row.key)]) continue;
        moved = true;
        // A group has a row for each of its buttons; the first one reads for all.
        loadRow(row);
        if (row.control == "chkTemperature") loadAll(FieldKind::Alarm);
    }
    return moved;
}

std::string Options::stored(const OptionRow& row) const {
    return session_.settings().get(settings::system, std::string(row.key));
}

void Options::loadAll(FieldKind kind) {
    for (const OptionRow& row : optionTable()) {
        if (row.kind == kind) loadRow(row);
    }
}

void Options::loadColours() {
    loadAll(FieldKind::Colour);
}

void Options::loadRow(const OptionRow& row) {
    std::string& shown = values_[std::string(row.control)];
    if (row.key.empty()) {
        shown = row.design;
        return;
    }
    const std::string text = stored(row);
    seen_[std::string(row.key)] = text;
    const auto number = parseNumber(text);
    // No number where one is needed leaves the control at its design value.
    shown = number ? shownNumber(row, *number) : designOf(row);
    if (row.kind == FieldKind::Port) loadPort();
    // Every value but "0" means Fahrenheit wherever a temperature is shown, none at all included.
    if (row.control == "chkTemperature") shown = session_.fahrenheit() ? "1" : "0";
}

// The number follows the device, as at the start of the program.
void Options::loadPort() {
    portIdentity_ = session_.settings().get(settings::system, settings::CommPortIdentity);
    if (portIdentity_.empty()) return;
    for (const PortInfo& port : session_.platform().port.list()) {
        if (port.identity == portIdentity_) values_["cmbCOMM"] = numberText(port.number);
    }
}

std::string Options::shownNumber(const OptionRow& row, double number) const {
    switch (row.kind) {
        case FieldKind::Check:
        case FieldKind::Option:
            return number == 1 ? "1" : "0";  // the readers of these settings ask for 1
        case FieldKind::Port:
            return number >= 1 && number <= 255 ? numberText(toInt16(number)) : std::string(row.design);
        case FieldKind::Slider: {
            if (!(number > 0)) return designOf(row);
            const double rate = std::clamp<double>(number, row.least, row.most);
            return numberText(toInt16(rate));
        }
        case FieldKind::Colour: {
            const bool colour = number >= 0 && number <= highestColour && number == truncate(number);
            return colour ? numberText(number) : std::string(row.design);
        }
        case FieldKind::Alarm:
            return shownTemperature(number);
        default:
            return numberText(number);
    }
}

std::string Options::shownTemperature(double celsius) const {
    const auto value = static_cast<float>(std::clamp(celsius, -hugeEntry, hugeEntry));
    return numberText(session_.fahrenheit() ? toFahrenheit(value) : value);
}

const std::string& Options::value(std::string_view control) const {
    const auto found = values_.find(control);
    if (found == values_.end()) throw BoundsError("No option " + std::string(control));
    return found->second;
}

Field Options::field(const OptionRow& row) const {
    const bool button = row.kind == FieldKind::Option;
    const std::string& text = value(row.control);
    return {.control = controlName(row),
            .kind = row.kind,
            .caption = std::string(row.caption),
            .text = text,
            .on = text == (button ? numberText(row.index) : "1"),
            .enabled = row.kind != FieldKind::Colour || coloursChoosable(),
            .unit = row.kind == FieldKind::Alarm ? temperatureUnit() : std::string(row.unit),
            .help = std::string(row.help),
            .tip = std::string(row.tip),
            .beside = std::string(row.beside),
            .least = row.least,
            .most = row.most};
}

std::string Options::temperatureUnit() const {
    return std::string(degree) + (session_.fahrenheit() ? "F" : "C");
}

// ---- The user's entries

void Options::store(std::string_view key, const std::string& text) {
    seen_[std::string(key)] = text;
    session_.settings().set(settings::system, std::string(key), text);
}

void Options::change(std::string_view control, std::string_view value) {
    const OptionRow& row = rowOf(control);
    values_[std::string(control)] = value;
    if (row.kind == FieldKind::Port) portIdentity_.clear();
    if (row.stored == Stored::OnApply) return;
    store(row.key, std::string(value));
    if (row.clicked != nullptr) row.clicked(*this, session_);
}

void Options::choosePort(int number, const std::string& identity) {
    change("cmbCOMM", numberText(number));
    portIdentity_ = identity;
}

void Options::checkDataPoint(int place, bool checked) {
    if (checked) {
        dataPoints_.insert(place);
    } else {
        dataPoints_.erase(place);
    }
}

void Options::convertAlarms() {
    for (const OptionRow& row : optionTable()) {
        if (row.kind != FieldKind::Alarm) continue;
        std::string& field = values_[std::string(row.control)];
        if (!isNumeric(field)) continue;
        const float entry = entryOf(field);
        field = numberText(session_.fahrenheit() ? toFahrenheit(entry) : toCelsius(entry));
    }
}

int Options::detectPort(UnitCommands& commands) {
    const int port = commands.autodetectPort();
    if (port > 0) loadRow(rowOf("cmbCOMM"));
    return port;
}

// ---- Apply

std::vector<std::string> Options::apply() {
    struct Step {
        int turn;
        const OptionRow* row;
        OptionAct act;  ///< none: the row is stored
    };
    std::vector<Step> steps;
    for (const OptionRow& row : optionTable()) {
        // A group has a row for each of its buttons; the first one stores for all.
        const bool isStored = !row.key.empty() && row.stored != Stored::AtOnce && row.index <= 0;
        if (isStored || row.kind == FieldKind::List) steps.push_back({row.turn, &row, nullptr});
        if (row.applied.act != nullptr) steps.push_back({row.applied.turn, &row, row.applied.act});
    }
    std::ranges::stable_sort(steps, {}, &Step::turn);
    refused_.clear();
    refusals_.clear();
    try {
        for (const Step& step : steps) {
            if (step.act == nullptr) {
                storeRow(*step.row);
            } else {
                step.act(*this, session_);
            }
        }
    } catch (...) {
        // What was refused until then is not stored either, and its user is told so.
        session_.messages.tell(refusals_);
        throw;
    }
    session_.messages.tell(refusals_);
    session_.sysLog("Application Options Have Been Applied.");
    session_.sysLog("**NOTE: Some changes require program restart before taking effect.");
    return refused_;
}

void Options::storeRow(const OptionRow& row) {
    switch (row.kind) {
        case FieldKind::Port:
            return storePort();
        case FieldKind::List:
            return storeDataPoints();
        case FieldKind::Alarm:
            return storeAlarm(row);
        default:
            return storeSetting(row);
    }
}

/// The port that is open stays open: the note at the end of an Apply tells of it.
void Options::storePort() {
    // The search stands on the port that it tries, and stores the one that it finds.
    if (session_.link.searching()) {
        session_.sysLog("**NOTE: A port is being searched; the port of the options was not taken.");
        return;
    }
    const std::string& port = value("cmbCOMM");
    const int number = toInt16(numberOf(port));
    if (portIdentity_.empty()) {
        session_.link.commPort(number);
        portIdentity_ = session_.link.commIdentity();
    } else {
        session_.link.commPort(number, portIdentity_);
    }
    store(settings::CommPort, port);
    store(settings::CommPortIdentity, portIdentity_);
}

void Options::storeSetting(const OptionRow& row) {
    std::string& shown = values_[std::string(row.control)];
    if (row.kind == FieldKind::Text && !taken(row.control, checkNumber(shown))) return;
    if (row.kind == FieldKind::Colour && !taken(row.control, checkColour(shown))) return;
    shown = plainNumber(shown);
    store(row.key, shown);
}

bool Options::taken(std::string_view control, const EntryOutcome& outcome) {
    if (outcome) return true;
    refused_.emplace_back(control);
    refusals_.push_back(outcome.refusal());
    return false;
}

void Options::storeAlarm(const OptionRow& row) {
    std::string& field = values_[std::string(row.control)];
    if (trimmed(field) == keepAlarm || !taken(row.control, checkAlarm(field))) return;
    const float entry = entryOf(field);
    const float celsius = session_.fahrenheit() ? toCelsius(entry) : entry;
    store(row.key, numberText(celsius));
    // Shown as stored: hundredths of a degree may differ from what was typed in Fahrenheit.
    field = shownTemperature(static_cast<double>(celsius));
}

EntryOutcome Options::checkAlarm(const std::string& text) const {
    if (auto filled = checkFilled(text); !filled) return filled;
    const float highest = session_.fahrenheit() ? highestFahrenheit : highestCelsius;
    return checkEntered(
        text, {lowestAlarm, highest,
               "(" + numberText(lowestAlarm) + " - " + numberText(highest) + temperatureUnit() + ")"});
}

void Options::storeDataPoints() {
    const std::vector<int> places(dataPoints_.begin(), dataPoints_.end());
    for (const DataPointWrite& write : dataPointWrites(places)) {
        session_.settings().set(settings::datalog, write.key, write.value);
    }
}

}  // namespace zentaq
