// The picture filters done the literal way, pixel by pixel with QColor: the
// reference the fast filters must match bit for bit.
#pragma once

#include <QImage>

namespace ReferenceFilters {
QImage table(const QImage &image, int (*entry)(int i, int value), int value);
QImage brightness(const QImage &image, int value);
QImage contrast(const QImage &image, int value);
QImage gamma(const QImage &image, int value);
QImage hue(const QImage &image, int h);
QImage saturation(const QImage &image, int s);
QImage warmth(const QImage &image, int w);

// An image holding every 8-bit colour once (4096 x 4096), or every colour
// whose channels are multiples of step plus all greys.
QImage colourCube(int step = 1);
} // namespace ReferenceFilters
