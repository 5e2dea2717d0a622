// One camera frame to the finished picture of the live view: converted,
// oriented, adjusted and scaled into the view's 16:9 rectangle. The memory
// of the pictures is kept from frame to frame, so a stream of 1080p frames
// asks the C library for none (which would hand it back after each frame
// and fault it in again, or fragment its heap with it).
#pragma once

#include <array>

#include <QImage>
#include <QSize>

#include "imaging/framefilters.h"

class QVideoFrame;

class FrameRenderer final
{
public:
    struct Settings
    {
        int rotationMode = 0;
        PictureAdjustments adjustments;
        // Empty for the frame's own size.
        QSize targetSize;
    };

    // Null when the frame cannot be read.
    QImage render(const QVideoFrame &frame, const Settings &settings);

private:
    // Two of each: the last picture may still be shown while the next is made.
    std::array<QImage, 2> converted;
    std::array<QImage, 2> scaled;
};
