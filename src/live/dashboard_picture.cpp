#include "live/dashboard_picture.h"

#include <array>
#include <cmath>

namespace zentaq {
namespace {

constexpr double radiansPerDegree = 0.017453292519943278;

/// In the order of Needle.
constexpr std::array<NeedlePlace, needleNames.size()> places{{
    {{223, 99}, 93},
    {{352, 59}, 50},
    {{563, 85}, 50},
    {{409, 85}, 50},
    {{352, 138}, 50},
    {{120, 72}, 66},
    {{211, 139}, 50},
}};

}  // namespace

NeedlePlace needlePlace(Needle needle) {
    return places[static_cast<std::size_t>(needle)];
}

PicturePoint needleEnd(const NeedlePlace& place, double degrees, double part) {
    const double length = place.length * part;
    return {place.centre.x - std::sin(-degrees * radiansPerDegree) * length,
            place.centre.y - std::sin((degrees + 90) * radiansPerDegree) * length};
}

std::string dashboardPictureName(bool day, int revScale, bool fuel) {
    const std::string ending = day ? "_White.bmp" : "_Black.jpg";
    const std::string scale = revScale > 9000 ? "18000" : "9000";
    if (!fuel) return "DashBoard_" + scale + "_PZK2" + ending;
    // Kept: this one name has a small b, and there are folders with pictures under it.
    return (scale == "18000" ? "Dashboard_" : "DashBoard_") + scale + ending;
}

}  // namespace zentaq
