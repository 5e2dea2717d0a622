// A camera frame to an image the filters and the painter take.
#pragma once

#include <QImage>

#include "imaging/framefilters.h"

class QVideoFrame;

namespace FrameConversion {

// The mapped frame as a premultiplied ARGB image. The camera's YUV formats
// are converted on the processor with SIMD code; Qt's own conversion goes
// through OpenGL when a display is open, at 46 ms a 1080p frame in software
// rendering, and stays the way for every other format.
QImage toImage(const QVideoFrame &mappedFrame);
// The same into `image`, in its own memory where it is the right size and no
// one else holds it, so that a stream of frames needs no new memory.
void toImage(const QVideoFrame &mappedFrame, QImage &image);

// The mapped frame, mirrored, then scaled to `size` as the view scales a
// picture (nearest pixel, unsmoothed), as opaque RGB32 into `image`'s own
// memory where it can: the same pixels, but only the rows and columns the
// view shows are converted. False where `toImage` would not convert the
// frame itself.
bool toScaledImage(const QVideoFrame &mappedFrame, const QSize &size, FrameFilters::Mirrors mirrors, QImage &image);

// Whether `toImage` converts this frame itself.
bool convertsItself(const QVideoFrame &frame);

} // namespace FrameConversion
