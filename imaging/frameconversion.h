// A camera frame to an image the filters and the painter take.
#pragma once

#include <QImage>

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

// Whether `toImage` converts this frame itself.
bool convertsItself(const QVideoFrame &frame);

} // namespace FrameConversion
