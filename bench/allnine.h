// All nine applied picture adjustments on at once, at values a user might
// choose: what the benchmarks measure the filters with.
#pragma once

#include "imaging/framefilters.h"

inline PictureAdjustments allNine()
{
    PictureAdjustments values;
    values.brightness = 10;
    values.contrast = 20;
    values.gamma = -15;
    values.hue = 40;
    values.saturation = -25;
    values.whiteBalance = 12;
    values.backlight = 1;
    values.gain = 5;
    values.exposure = -8;
    return values;
}
