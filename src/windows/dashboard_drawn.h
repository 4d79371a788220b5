// The faces of all dials in one picture, as the program draws them itself: what stands in "bin/images" until
// a user puts his own there.
#pragma once

#include <QImage>

namespace zentaq {

/// pictureWidth x pictureHeight pixels, in the colors of the mode, temperatures in degrees Celsius. Needs an
/// application.
QImage drawnDashboard(bool day, int revScale, bool fuel);

}  // namespace zentaq
