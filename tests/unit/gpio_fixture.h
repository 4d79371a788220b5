// A calibration of any kind for tests of the input/output blocks. Base cells and pin counts are written out
// here, apart from the descriptions under test.
#pragma once

#include <string>
#include <vector>

#include "unit/gpio_model.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {

struct PinBlocks {
    int slot;
    int base;
    int pins;
};
inline constexpr PinBlocks pinBlocks[] = {{3, 336, 8},  {4, 336, 9}, {5, 94, 4},
                                          {6, 334, 13}, {7, 336, 7}, {8, 336, 7}};

struct GpioCalibration {
    RecordingHost host;
    Unit unit;
    GpioModel model{unit};

    explicit GpioCalibration(int slot, int release = 5, int build = 99) : unit(*unitKindOfSlot(slot), host) {
        host.head.currentUnit = static_cast<float>(slot);
        setFirmwareCode(unit, static_cast<float>(release * 1000 + build));
        unit.FW_Release(release);
        unit.FW_Build(build);
        // Ratios of 0 have no byte.
        for (int element = 0; element < 10; ++element) storeIfThere("Get_Y", 14.64F, element);
        for (int element = 0; element < 256; ++element) storeIfThere("Get_AFR", 14.7F, element);
    }
    void storeIfThere(const char* member, float value, int element) {
        if (unit.has(member)) unit.store(member, value, element);
    }
    /// A sensor of 0.05 volts per user unit and 0.5 volts at 0: -10 to 90.
    void plainSensor(const char* units = "kPa") {
        unit.AssignDirectIndex(0.05F, unit.kind().cells.mapScaler);
        unit.AssignDirectIndex(0.5F, unit.kind().cells.mapOffset);
        unit.MAPUnits(units);
    }
    std::vector<int> bytes(int first, int count) const {
        std::vector<int> result;
        for (int i = first; i < first + count; ++i) {
            result.push_back(static_cast<int>(unit.ImageData().at(static_cast<std::size_t>(i))));
        }
        return result;
    }
    std::vector<std::string> pinTexts() const {
        std::vector<std::string> texts;
        for (const GpioPinRow& row : model.Show_GPIO()) texts.push_back(row.text);
        return texts;
    }
    std::vector<int> pinNumbers() const {
        std::vector<int> pins;
        for (const GpioPinRow& row : model.Show_GPIO()) pins.push_back(row.pin);
        return pins;
    }
    /// "code text" of every function that a pin may have.
    std::vector<std::string> functions(int pin) const {
        std::vector<std::string> texts;
        for (const auto& item : model.Show_GPIO_Func(pin).items) {
            texts.push_back(std::to_string(item.code) + " " + item.text);
        }
        return texts;
    }
    std::vector<int> codes(int pin) const {
        std::vector<int> result;
        for (const auto& item : model.Show_GPIO_Func(pin).items) result.push_back(item.code);
        return result;
    }
    /// The code of the selected item; -999 for none.
    int selectedCode(int pin) const {
        const GpioFunctionList list = model.Show_GPIO_Func(pin);
        return list.selected < 0 ? -999 : list.items.at(static_cast<std::size_t>(list.selected)).code;
    }
    /// "mode|unit|parameter" of every row.
    std::vector<std::string> rows(int pin, int code) {
        std::vector<std::string> texts;
        for (const GpioParamRow& row : model.Show_GPIO_Param(pin, code)) {
            texts.push_back(row.mode + "|" + row.unit + "|" + std::to_string(row.parameter));
        }
        return texts;
    }
};

}  // namespace zentaq::testing
