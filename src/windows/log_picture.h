// A plot as a picture file.
#pragma once

#include <qcustomplot.h>

#include <QString>

namespace zentaq {

/// PNG in twice the size of the screen, or a drawing as SVG or PDF, by the end of the path. What went wrong;
/// empty where nothing did.
QString savePlotPicture(QCustomPlot& plot, const QString& path);

}  // namespace zentaq
