// frmGPIO without its window: pins, functions and parameters of the calibration in hand, and what an entry,
// another function or a row that is an action does.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/session.h"
#include "unit/gpio_model.h"

namespace zentaq {

class PinManager {
 public:
    explicit PinManager(Session& session);
    ~PinManager();

    std::vector<GpioPinRow> pins();
    GpioFunctionList functions(int pin);
    /// Of the pin's own function.
    std::vector<GpioParamRow> parameters(int pin);

    /// Another function from the list of the pin: all its parameters become 0. Refused with a box while the
    /// unit takes changes; the lists show the stored function then.
    void choose(int pin, int code);
    /// A typed value for a row. False: refused, the user has been told.
    bool enter(int pin, int row, std::string_view text);
    /// "Retrieve Datalog from unit": asks for a file, and the unit for its datalog.
    void retrieveDatalog();

 private:
    Unit& unit() { return session_.currentUnitObject(); }
    std::string chooseFile();
    void changed();

    Session& session_;
};

}  // namespace zentaq
