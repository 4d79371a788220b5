// The windows with surface graphs that are open: eleven at most, each by its own name.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zentaq {

class SurfaceWindows {
 public:
    static constexpr std::array<std::string_view, 11> names{
        "frmGraph_3D",  "frmGraph_3D2", "frmGraph_3D3", "frmGraph_3D4",  "frmGraph_3D5", "frmGraph_3D6",
        "frmGraph_3D7", "frmGraph_3D8", "frmGraph_3D9", "frmGraph_3D10", "frmGraph_3D11"};

    /// The name of one that is not open; empty where all are.
    std::string_view free() const {
        const auto found = std::ranges::find(open_, false);
        return found == open_.end() ? std::string_view()
                                    : names[static_cast<std::size_t>(found - open_.begin())];
    }
    void opened(std::string_view name, bool open) {
        const auto found = std::ranges::find(names, name);
        if (found != names.end()) open_[static_cast<std::size_t>(found - names.begin())] = open;
    }

 private:
    std::array<bool, names.size()> open_{};
};

}  // namespace zentaq
