// Printing: the calibration in hand as a listing, or what is on the screen.
#pragma once

#include <string>

#include "app/session.h"

namespace zentaq {

class PrintCommands {
 public:
    explicit PrintCommands(Session& session) : session_(session) {}

    static constexpr int currentForm = 0;
    static constexpr int calibrationFile = 1;
    static constexpr int bySetting = 99;
    /// The print command: shows the printer dialog, and prints.
    void print(int code);
    /// The button of the toolbar: asks first, and prints what the setting says.
    void askedByToolbar();

 private:
    std::string listing();
    void end(PrintEnd end);

    Session& session_;
};

}  // namespace zentaq
