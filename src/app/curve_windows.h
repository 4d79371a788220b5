// The windows with curve graphs that are open: eleven at most, each with the curve that it shows.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace zentaq {

class CurveWindows {
 public:
    static constexpr std::array<std::string_view, 11> names{
        "frmGraph_2D",  "frmGraph_2D2", "frmGraph_2D3", "frmGraph_2D4",  "frmGraph_2D5", "frmGraph_2D6",
        "frmGraph_2D7", "frmGraph_2D8", "frmGraph_2D9", "frmGraph_2D10", "frmGraph_2D11"};

    /// The window that shows a curve, else one that is not open; empty where all show others.
    std::string_view forCurve(std::string_view kind) const {
        auto found = std::ranges::find(shown_, kind);
        if (found == shown_.end()) found = std::ranges::find(shown_, std::string());
        return found == shown_.end() ? std::string_view()
                                     : names[static_cast<std::size_t>(found - shown_.begin())];
    }
    /// An empty kind: it has been closed.
    void shows(std::string_view name, std::string_view kind) {
        const auto found = std::ranges::find(names, name);
        if (found != names.end()) shown_[static_cast<std::size_t>(found - names.begin())] = kind;
    }

 private:
    std::array<std::string, names.size()> shown_;
};

}  // namespace zentaq
