// Where the pieces of the dashboard stand in the room that there is: dials as far as they fit, tiles in the
// order of what a tuner looks at first, and what finds no place on further pages.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

/// In device-independent pixels.
struct DashArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

struct DashRoom {
    int width = 0;
    int height = 0;
    int gap = 0;          ///< between two pieces
    int tileWidth = 0;    ///< the least that a caption with its unit needs
    int tileHeight = 0;   ///< the least for a caption above a value
    int dialReadout = 0;  ///< the width of a read-out beside a small dial
    int status = 0;       ///< the width of codes, inputs and outputs; 0: there is nothing to show
    int codes = 0;        ///< the least for a code on one line; 0: there is none. It is shown in any room
    double picture = 0;   ///< all dials are one picture, so many times as wide as high; 0: each has its place
    bool fuel = true;     ///< false: a unit that only ignites
    bool oneLine = false;  ///< folded: read-outs alone, and of the lamps those that are lit
};

struct DashPlace {
    std::string_view name;  ///< "lblMAP", "Tachometer", "shpOverRev", "dashboardPicture"
    DashArea area;
};

struct DashPlan {
    std::vector<DashPlace> dials;  ///< the small ones with their read-outs
    std::vector<DashPlace> tiles;  ///< of the page shown, lamps among them
    DashArea status;               ///< without width where there is none
    DashArea more;                 ///< the button for the next page; without width where there is one page
    int page = 0;                  ///< the one shown
    int pages = 1;
};

/// The read-outs and lamps from the most to the least important one. The lamps stand on every page.
std::span<const std::string_view> tileOrder();
/// The read-out that stands beside a small dial: "lblTPS" of "TPS"; empty for the two large ones.
std::string_view readoutOfDial(std::string_view dial);
/// The read-out of the channel that a dial points to, wherever it stands.
std::string_view readoutLikeDial(std::string_view dial);

/// `tiles` are the names to be shown, in their order; what stands beside a dial is left out of them. A page
/// behind the last one begins anew.
DashPlan planDashboard(const DashRoom& room, std::span<const std::string_view> tiles, int page);

}  // namespace zentaq
