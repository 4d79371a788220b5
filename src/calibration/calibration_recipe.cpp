#include "calibration/calibration_recipe.h"

#include <sstream>

#include "base/number_text.h"
#include "base/text.h"

namespace zentaq {

namespace {

constexpr int rowCells = 16;

std::vector<std::string> wordsOf(std::string_view text) {
    std::istringstream in{std::string(text)};
    std::vector<std::string> words;
    for (std::string word; in >> word;) words.push_back(word);
    return words;
}

/// A line's first word and the rest of the line.
struct Parts {
    std::string key;
    std::string rest;
};
Parts partsOf(std::string_view line) {
    const auto end = line.find_first_of(" \t");
    if (end == std::string_view::npos) return {std::string(line), {}};
    return {std::string(line.substr(0, end)), std::string(trimmed(line.substr(end)))};
}

class Parser {
 public:
    explicit Parser(std::string file) { recipe_.file = std::move(file); }

    CalibrationRecipe parse(std::string_view text) {
        for (const std::string& line : split(text, '\n')) {
            ++line_;
            const std::string_view content = trimmed(line);
            if (!content.empty() && content.front() != '#') take(partsOf(content));
        }
        if (recipe_.model.empty() || recipe_.engine.empty() || recipe_.sensor.empty()) {
            fail("Unit, Engine and Sensor must be named");
        }
        return std::move(recipe_);
    }

 private:
    void take(const Parts& parts) {
        if (parts.rest.empty()) fail(parts.key + " has no value");
        if (parts.key == "Unit") {
            recipe_.model = parts.rest;
        } else if (parts.key == "Engine") {
            recipe_.engine = parts.rest;
        } else if (parts.key == "Sensor") {
            recipe_.sensor = parts.rest;
        } else if (parts.key == "Camshaft") {
            takeCamshaft(parts.rest);
        } else if (parts.key == "Note") {
            recipe_.notes += (recipe_.notes.empty() ? "" : "\n") + parts.rest;
        } else if (!takeFigure(parts)) {
            takeValues(parts);
        }
    }

    void takeCamshaft(std::string_view style) {
        if (style != "street" && style != "race") fail("Camshaft is street or race");
        recipe_.figures.raceCam = style == "race";
    }

    bool takeFigure(const Parts& parts) {
        for (const EngineFigure& figure : engineFigures) {
            if (figure.member != parts.key || figure.number == nullptr) continue;
            recipe_.figures.*figure.number = static_cast<float>(numberIn(parts.rest));
            return true;
        }
        return false;
    }

    /// "VALUE", "INDEX VALUE", "row ROW 16 values" or "all values".
    void takeValues(const Parts& parts) {
        std::vector<std::string> words = wordsOf(parts.rest);
        RecipeValues values{line_, parts.key, 0, {}};
        std::size_t first = 0;
        if (words.front() == "all") {
            first = 1;
        } else if (words.front() == "row") {
            first = 2;
            if (words.size() != first + rowCells) fail("a row has a number and 16 values");
            values.firstElement = indexIn(words[1]) * rowCells;
        } else if (words.size() == 2) {
            first = 1;
            values.firstElement = indexIn(words[0]);
        } else if (words.size() > 2) {
            fail("say row or all before more than one value");
        }
        values.values.assign(words.begin() + static_cast<std::ptrdiff_t>(first), words.end());
        if (values.values.empty()) fail(parts.key + " has no value");
        recipe_.values.push_back(std::move(values));
    }

    double numberIn(const std::string& text) const {
        const auto number = parseNumber(text);
        if (!number) fail(text + " is no number");
        return *number;
    }

    int indexIn(const std::string& text) const {
        constexpr double last = 255;
        const double number = numberIn(text);
        if (!(number >= 0 && number <= last) || number != static_cast<int>(number)) {
            fail(text + " is no index");
        }
        return static_cast<int>(number);
    }

    [[noreturn]] void fail(std::string_view what) const { throw RecipeError(recipe_.file, line_, what); }

    CalibrationRecipe recipe_;
    int line_ = 0;
};

const UnitKind& kindOfModel(const CalibrationRecipe& recipe) {
    for (const UnitKind& kind : unitKinds()) {
        if (kind.model == recipe.model) return kind;
    }
    throw RecipeError(recipe.file, 1, "there is no unit " + recipe.model);
}

void expectTaken(const CalibrationRecipe& recipe, const RefusedMembers& refused) {
    if (refused.empty()) return;
    const RefusedMember& first = refused.front();
    throw RecipeError(recipe.file, 1, first.name + " refused its default value: " + first.why.line());
}

void applyValues(QuietCalibration& calibration, const CalibrationRecipe& recipe, const RecipeValues& values) {
    int element = values.firstElement;
    try {
        for (const std::string& value : values.values) {
            setOrThrow(calibration.unit, values.member, value, element++);
        }
    } catch (const Failure& failure) {
        throw RecipeError(recipe.file, values.line, values.member + ": " + failure.what());
    }
}

}  // namespace

RecipeError::RecipeError(std::string_view file, int line, std::string_view what)
    : FileError(std::string(file) + ":" + numberText(line) + ": " + std::string(what)) {}

CalibrationRecipe CalibrationRecipe::parse(std::string_view text, const std::string& file) {
    return Parser(file).parse(text);
}

std::unique_ptr<QuietCalibration> makeCalibration(const CalibrationRecipe& recipe, const Database& database) {
    const UnitKind& kind = kindOfModel(recipe);
    const auto engine = database.engineByName(recipe.engine, kind.engines);
    if (!engine) throw RecipeError(recipe.file, 1, "there is no engine " + recipe.engine);
    const auto sensor = database.mapSensorByName(recipe.sensor);
    if (!sensor) throw RecipeError(recipe.file, 1, "there is no sensor " + recipe.sensor);

    auto calibration = std::make_unique<QuietCalibration>(kind, &database);
    Unit& unit = calibration->unit;
    startNewCalibration(unit);
    expectTaken(recipe, chooseEngine(unit, *engine));
    expectTaken(recipe, chooseSensor(unit, *sensor));
    expectTaken(recipe, loadDefaults(unit, database, recipe.figures));
    for (const RecipeValues& values : recipe.values) applyValues(*calibration, recipe, values);
    // The first note cell is also the fuel trim of the eighth cylinder. It stays empty, which readers of the
    // notes skip, so that the trim is none.
    if (!recipe.notes.empty()) unit.NOTES_TEXT(std::string(1, '\0') + recipe.notes);
    return calibration;
}

}  // namespace zentaq
