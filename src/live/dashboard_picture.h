// The dashboard as one picture with needles over it: which file of the application folder it is, and where
// its needles turn.
#pragma once

#include <string>

#include "live/gauges.h"

namespace zentaq {

/// Pixels of a picture; one of another size is stretched to this one.
constexpr int pictureWidth = 640;
constexpr int pictureHeight = 200;

/// Pixels of a picture, y downwards.
struct PicturePoint {
    double x = 0;
    double y = 0;
};

/// A needle is a line from its centre outwards.
struct NeedlePlace {
    PicturePoint centre;
    double length = 0;
};

NeedlePlace needlePlace(Needle needle);
/// The far end of a needle, in a `part` of its length. The needle of the mixture has a second line, which is
/// shortMixtureLine of its first one.
PicturePoint needleEnd(const NeedlePlace& place, double degrees, double part = 1);
constexpr double shortMixtureLine = 0.6;

/// The name in "bin/images" for a mode, a rev scale of 9000 or 18000 and a unit with a fuel side or without.
std::string dashboardPictureName(bool day, int revScale, bool fuel);

}  // namespace zentaq
