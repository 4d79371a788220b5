// clsmyProgress: the progress bar of the workspace with its percentage and message, as plain data.
// The link panel shows `state()` and redraws when `changes()` moves.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zentaq {

class Progress {
 public:
    struct State {
        bool visible = false;  ///< the frame that holds bar, percentage and message
        double minimum = 0;
        double maximum = 100;
        double value = 0;        ///< of `ProgressBar1`, between the two bounds
        std::string percentage;  ///< `lblProgress_Percentage`, for example "42%"
        std::string message;     ///< `lblProgress_Message`
    };

    /// Shows the frame with the bar at its minimum and "0%".
    void Init(double maximum, double minimum, std::string_view message);
    /// Sets the bar to `value` and shows `value` / `maximum` * 100 as a whole number, halves to even. A share
    /// that is no 16-bit number (a maximum of 0, say) leaves the percentage as it was.
    void Active(double value, double maximum);
    /// The bar goes back to its minimum; no percentage.
    void Clear();
    /// Clears and hides the frame.
    void Remove();

    const State& state() const { return state_; }
    std::uint64_t changes() const { return changes_; }

 private:
    State state_;
    std::uint64_t changes_ = 0;
};

}  // namespace zentaq
