// The live picture's software adjustments, its orientation and its place.
#pragma once

#include <array>

#include <QImage>
#include <QList>
#include <QRect>
#include <QSize>
#include <QString>

// The eleven adjustment values of the Video Quality dialog; 0 means none.
struct PictureAdjustments
{
    int brightness = 0;
    int contrast = 0;
    int hue = 0;
    int saturation = 0;
    int whiteBalance = 0;
    int gamma = 0;
    int backlight = 0;
    int gain = 0;
    int colorEnable = 0; // stored, not applied
    int sharpness = 0;   // stored, not applied
    int exposure = 0;
};

namespace FrameFilters {

// 0 none, 1 rotated 180 degrees, 2 flipped top to bottom, 3 both.
QImage orient(const QImage &image, int mode);
// The mirrors that make up an orientation.
struct Mirrors
{
    bool horizontal = false;
    bool vertical = false;
};
Mirrors mirrorsOf(int mode);
void orientInPlace(QImage &image, int mode);

// Lookup tables of the three table filters.
using Table = std::array<int, 256>;
Table brightnessTable(int value);
Table contrastTable(int factor);
Table gammaTable(int g);

// The filters work in place on an image the caller owns, so that a frame
// costs no further 8 MB allocations: fresh memory is slow to fault in.
void applyBrightness(QImage &image, int value);
// The slider value, not the factor: -100 leaves the picture, anything else
// uses value + 200.
void applyContrast(QImage &image, int value);
// The slider value, not g: g is value + 100.
void applyGamma(QImage &image, int value);
void applyHue(QImage &image, int h);
void applySaturation(QImage &image, int s);
void applyWarmth(QImage &image, int w);
// All non-zero adjustments in their fixed order.
void adjust(QImage &image, const PictureAdjustments &values);

// The same, on a copy.
QImage brightness(const QImage &image, int value);
QImage contrast(const QImage &image, int value);
QImage gamma(const QImage &image, int value);
QImage hue(const QImage &image, int h);
QImage saturation(const QImage &image, int s);
QImage warmth(const QImage &image, int w);
QImage adjusted(const QImage &image, const PictureAdjustments &values);

// Hue and saturation build their tables on first use; this builds them ahead
// so that the first adjusted frame does not wait. Safe from any thread.
void warmUpColourTables();

// The per-pixel loops: the fastest set the processor has runs, but any set
// it has can be chosen, so that the tests hold each to the same pictures.
enum class Loops { Portable, Avx2, Avx512 };
// Portable first, the fastest last.
QList<Loops> availableLoops();
void useLoops(Loops loops);
QString loopsName(Loops loops);

// QColor::fromHsl(hue, saturation, lightness, 255).rgb(), as the saturation
// filter computes it.
QRgb hslToRgb(int hue, int saturation, int lightness);

// The centred 16:9 rectangle of a widget of this size.
QRect targetRect(const QSize &widget);

// The picture scaled to the view's rectangle as the view itself would draw
// it (no smoothing), opaque, so that the view copies it without blending;
// into `scaled`'s own memory where it is the right size and no one else
// holds it.
void scaledForView(const QImage &image, const QSize &size, QImage &scaled);

} // namespace FrameFilters
