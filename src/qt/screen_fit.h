// Puts rectangles onto screens: no window may open where the user cannot reach it.
#pragma once

#include <QList>
#include <QRect>

namespace zentaq {

/// `wanted`, shrunk to the screen that shows most of it and moved onto that screen whole. Without any overlap
/// the first screen takes it; without screens `wanted` comes back. All in device-independent pixels of the
/// desktop; `screens` are the parts that windows may use, the primary screen first.
QRect fittedOnScreens(const QRect& wanted, const QList<QRect>& screens);

}  // namespace zentaq
