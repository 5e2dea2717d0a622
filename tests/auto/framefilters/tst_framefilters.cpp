// The fast picture filters against the literal per-pixel QColor algorithm:
// bit for bit, over every 8-bit colour, a dense sample of the colour cube for
// every slider value, and translucent pictures; the camera's conversion, and
// the live view's render thread.
#include <vector>

#include <QVideoSink>

#include "orvixtest.h"
#include "imaging/frameconversion.h"
#include "referencefilters.h"
#include "imaging/framefilters.h"
#include "imaging/liveframepipeline.h"

namespace {
// Pixels as stored, with the alpha the renderer will draw.
QList<QRgb> pixels(const QImage &image)
{
    const QImage rgb = image.convertToFormat(QImage::Format_ARGB32);
    QList<QRgb> result;
    result.reserve(qsizetype(rgb.width()) * rgb.height());
    for (int y = 0; y < rgb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(rgb.constScanLine(y));
        for (int x = 0; x < rgb.width(); ++x)
            result.append(line[x]);
    }
    return result;
}

// Names the first differing pixel, for a readable failure.
QString firstDifference(const QImage &source, const QImage &fast, const QImage &reference)
{
    if (fast.size() != reference.size())
        return QStringLiteral("sizes differ");
    const QList<QRgb> a = pixels(fast), b = pixels(reference), in = pixels(source);
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (a[i] != b[i])
            return QStringLiteral("pixel %1 from %2: fast %3, reference %4")
                    .arg(i).arg(in[i], 8, 16, QLatin1Char('0')).arg(a[i], 8, 16, QLatin1Char('0')).arg(b[i], 8, 16, QLatin1Char('0'));
    }
    return QString();
}

using Filter = QImage (*)(const QImage &, int);

struct FilterPair
{
    const char *name;
    Filter fast;
    Filter reference;
    int from;
    int to;
};

// Each slider's range; backlight, gain and exposure use the brightness step.
const FilterPair filters[] = {
    { "brightness", FrameFilters::brightness, ReferenceFilters::brightness, -100, 100 },
    { "contrast", FrameFilters::contrast, ReferenceFilters::contrast, -100, 100 },
    { "gamma", FrameFilters::gamma, ReferenceFilters::gamma, -100, 100 },
    { "hue", FrameFilters::hue, ReferenceFilters::hue, 1, 120 },
    { "saturation", FrameFilters::saturation, ReferenceFilters::saturation, -100, 50 },
    { "white balance", FrameFilters::warmth, ReferenceFilters::warmth, -30, 30 },
};

// Runs a check once with each set of per-pixel loops this processor has:
// the portable ones always, the vector ones where there are any.
template<typename Check>
void withEachKernel(Check check)
{
    const QList<FrameFilters::Loops> sets = FrameFilters::availableLoops();
    for (const FrameFilters::Loops loops : sets) {
        FrameFilters::useLoops(loops);
        check(FrameFilters::loopsName(loops));
        if (QTest::currentTestFailed())
            break;
    }
    FrameFilters::useLoops(sets.constLast());
}

// The literal chain: each non-zero adjustment in the fixed order.
QImage referenceChain(QImage image, const PictureAdjustments &values)
{
    const std::pair<int, Filter> steps[] = {
        { values.brightness, ReferenceFilters::brightness }, { values.contrast, ReferenceFilters::contrast },
        { values.gamma, ReferenceFilters::gamma },           { values.hue, ReferenceFilters::hue },
        { values.saturation, ReferenceFilters::saturation }, { values.whiteBalance, ReferenceFilters::warmth },
        { values.backlight, ReferenceFilters::brightness },  { values.gain, ReferenceFilters::brightness },
        { values.exposure, ReferenceFilters::brightness },
    };
    for (const auto &[value, filter] : steps) {
        if (value)
            image = filter(image, value);
    }
    return image;
}

PictureAdjustments adjustments(std::initializer_list<int> nine)
{
    const std::vector<int> v(nine);
    PictureAdjustments values;
    values.brightness = v[0];
    values.contrast = v[1];
    values.gamma = v[2];
    values.hue = v[3];
    values.saturation = v[4];
    values.whiteBalance = v[5];
    values.backlight = v[6];
    values.gain = v[7];
    values.exposure = v[8];
    return values;
}

QImage noise(int width)
{
    QImage image(width, 3, QImage::Format_RGB32);
    quint32 seed = 99;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525u + 1013904223u;
            image.setPixel(x, y, seed >> 8);
        }
    }
    return image;
}

QImage translucentPicture(QImage::Format format)
{
    QImage image(256, 64, QImage::Format_ARGB32);
    quint32 seed = 7;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            seed = seed * 1664525u + 1013904223u;
            image.setPixel(x, y, qRgba(x, (seed >> 8) & 0xff, (seed >> 16) & 0xff, y * 4 + (x & 3)));
        }
    }
    return image.convertToFormat(format);
}

}

Q_DECLARE_METATYPE(PictureAdjustments)

class tst_FrameFilters : public QObject
{
    Q_OBJECT

public:
    explicit tst_FrameFilters(VirtualDevices &) { }

private slots:
    // First of all, while the renderer's tables are fresh: -1 is a hue of
    // its own (grey), not the mark of a table never built.
    void hueMinusOneFromAFreshStart()
    {
        const QImage picture = ReferenceFilters::colourCube(9);
        PictureAdjustments values;
        values.hue = -1;
        QCOMPARE(firstDifference(picture, FrameFilters::adjusted(picture, values), ReferenceFilters::hue(picture, -1)), QString());
    }

    // The camera's formats converted by the program look as Qt converts them.
    void conversionMatchesQt_data()
    {
        QTest::addColumn<QVideoFrameFormat::PixelFormat>("format");
        QTest::addRow("YUYV") << QVideoFrameFormat::Format_YUYV;
        QTest::addRow("UYVY") << QVideoFrameFormat::Format_UYVY;
        QTest::addRow("NV12") << QVideoFrameFormat::Format_NV12;
        QTest::addRow("YUV420P") << QVideoFrameFormat::Format_YUV420P;
    }

    void conversionMatchesQt()
    {
        QFETCH(QVideoFrameFormat::PixelFormat, format);
        QVideoFrame frame(QVideoFrameFormat(QSize(96, 64), format));
        QVERIFY(frame.map(QVideoFrame::WriteOnly));
        quint32 seed = 12345;
        for (int plane = 0; plane < frame.planeCount(); ++plane) {
            uchar *bits = frame.bits(plane);
            for (int i = 0; i < frame.mappedBytes(plane); ++i) {
                seed = seed * 1103515245 + 12345;
                // Smooth enough that chroma placement does not dominate.
                bits[i] = uchar(16 + ((i / 7) * 37 + (seed >> 28)) % 220);
            }
        }
        frame.unmap();
        QVERIFY(frame.map(QVideoFrame::ReadOnly));
        if (!FrameConversion::convertsItself(frame))
            QSKIP("built without libyuv: Qt converts every format");
        const QImage ours = FrameConversion::toImage(frame).convertToFormat(QImage::Format_ARGB32);
        const QImage qts = frame.toImage().convertToFormat(QImage::Format_ARGB32);
        // The live view samples the frame while converting it: in every
        // orientation, the very pixels the view's own unsmoothed scaling of
        // the whole oriented picture picks.
        for (int mode = 0; mode < 4; ++mode) {
            for (const QSize size : { QSize(40, 26), QSize(33, 17), QSize(96, 64) }) {
                QImage sampled, scaled;
                QVERIFY(FrameConversion::toScaledImage(frame, size, FrameFilters::mirrorsOf(mode), sampled));
                FrameFilters::scaledForView(FrameFilters::orient(FrameConversion::toImage(frame), mode), size, scaled);
                QVERIFY2(sampled == scaled, qPrintable(QStringLiteral("orientation %1, %2x%3: %4").arg(mode)
                        .arg(size.width()).arg(size.height()).arg(firstDifference(sampled, scaled, sampled))));
            }
        }
        frame.unmap();
        QCOMPARE(ours.size(), qts.size());
        int worst = 0;
        for (int y = 0; y < ours.height(); ++y) {
            for (int x = 0; x < ours.width(); ++x) {
                const QRgb a = ours.pixel(x, y), b = qts.pixel(x, y);
                worst = std::max({ worst, qAbs(qRed(a) - qRed(b)), qAbs(qGreen(a) - qGreen(b)), qAbs(qBlue(a) - qBlue(b)) });
            }
        }
        QVERIFY2(worst <= 4, qPrintable(QStringLiteral("a channel differs by %1").arg(worst)));
    }

    void everyColourOnce_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<int>("value");
        QTest::addRow("hue 1") << 3 << 1;
        QTest::addRow("hue 120") << 3 << 120;
        QTest::addRow("saturation -100") << 4 << -100;
        QTest::addRow("saturation -37") << 4 << -37;
        QTest::addRow("saturation 50") << 4 << 50;
        QTest::addRow("white balance -30") << 5 << -30;
        QTest::addRow("gamma -99") << 2 << -99;
        QTest::addRow("contrast 1") << 1 << 1;
    }

    // All 16.7 million colours against the reference for a few values.
    void everyColourOnce()
    {
        QFETCH(int, filter);
        QFETCH(int, value);
        const QImage cube = ReferenceFilters::colourCube(1);
        const QImage reference = filters[filter].reference(cube, value);
        withEachKernel([&](const QString &kernel) {
            const QString difference = firstDifference(cube, filters[filter].fast(cube, value), reference);
            QVERIFY2(difference.isEmpty(), qPrintable(kernel + QStringLiteral(": ") + difference));
        });
    }

    // The saturation filter's HSL to RGB step against QColor, for every
    // hue, saturation and lightness.
    void hslToRgbMatchesQColor()
    {
        QStringList wrong;
        for (int hue = -1; hue < 360; ++hue) {
            for (int saturation = 0; saturation < 256; ++saturation) {
                for (int lightness = 0; lightness < 256; ++lightness) {
                    const QRgb expected = QColor::fromHsl(hue, saturation, lightness, 255).rgb();
                    const QRgb actual = FrameFilters::hslToRgb(hue, saturation, lightness);
                    if (actual != expected && wrong.size() < 5)
                        wrong << QStringLiteral("hsl(%1,%2,%3): %4 not %5").arg(hue).arg(saturation).arg(lightness)
                                         .arg(actual, 8, 16).arg(expected, 8, 16);
                }
            }
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QStringLiteral("; "))));
    }

    void everySliderValue_data()
    {
        QTest::addColumn<int>("filter");
        for (int i = 0; i < int(std::size(filters)); ++i)
            QTest::addRow("%s", filters[i].name) << i;
    }

    // Every value of each slider's range on a dense sample of the cube.
    void everySliderValue()
    {
        QFETCH(int, filter);
        const QImage sample = ReferenceFilters::colourCube(17);
        QStringList wrong;
        for (int value = filters[filter].from; value <= filters[filter].to; ++value) {
            const QImage reference = filters[filter].reference(sample, value);
            withEachKernel([&](const QString &kernel) {
                const QString difference = firstDifference(sample, filters[filter].fast(sample, value), reference);
                if (!difference.isEmpty())
                    wrong << QStringLiteral("%1 %2: %3").arg(kernel).arg(value).arg(difference);
            });
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join(QStringLiteral("; "))));
    }

    // Whatever is on, the chain is one pass; these cover each shape it takes,
    // on opaque pictures and on translucent ones with any alpha.
    void chainMatchesTheReferenceChain_data()
    {
        QTest::addColumn<PictureAdjustments>("values");
        QTest::addColumn<int>("width");
        //                                              bri  con  gam  hue  sat  wb  back gain exp
        QTest::addRow("all nine") << adjustments({ 10, -20, 15, 33, -20, 12, 1, 5, -7 }) << 0;
        QTest::addRow("channel steps only") << adjustments({ 10, 20, -15, 0, 0, 0, 1, 0, -3 }) << 0;
        QTest::addRow("hue between steps") << adjustments({ 0, 0, 30, 200, 0, -9, 0, 4, 0 }) << 0;
        QTest::addRow("hue and saturation alone") << adjustments({ 0, 0, 0, 1, 45, 0, 0, 0, 0 }) << 0;
        QTest::addRow("saturation between steps") << adjustments({ -5, 0, -40, 0, -70, 20, 0, 0, 8 }) << 0;
        QTest::addRow("saturation then steps") << adjustments({ 0, 0, 0, 0, 30, 0, 2, 0, 0 }) << 0;
        QTest::addRow("warmth first, then brightness") << adjustments({ 0, 0, 0, 0, 0, 25, 3, 0, 0 }) << 0;
        QTest::addRow("contrast -100 does nothing") << adjustments({ 0, -100, 0, 90, 0, 0, 0, 0, 0 }) << 0;
        QTest::addRow("nothing on") << adjustments({ 0, 0, 0, 0, 0, 0, 0, 0, 0 }) << 0;
        // The vector loops take eight or sixteen pixels, and AVX2's
        // saturation 64, at a time; the rest of a line ends in the portable
        // loops or goes through masks.
        for (int width : { 1, 7, 9, 15, 17, 63, 65, 71, 133 })
            QTest::addRow("%d wide", width) << adjustments({ 0, 0, 0, 0, -40, 9, 0, 0, 0 }) << width;
    }

    void chainMatchesTheReferenceChain()
    {
        QFETCH(PictureAdjustments, values);
        QFETCH(int, width);
        values.colorEnable = 80; // stored, never applied
        values.sharpness = -50;
        const QList<QImage> pictures = width ? QList<QImage> { noise(width) }
                                             : QList<QImage> { ReferenceFilters::colourCube(9),
                                                               translucentPicture(QImage::Format_ARGB32),
                                                               translucentPicture(QImage::Format_ARGB32_Premultiplied) };
        for (const QImage &picture : pictures) {
            const QImage reference = referenceChain(picture, values);
            withEachKernel([&](const QString &kernel) {
                const QString difference = firstDifference(picture, FrameFilters::adjusted(picture, values), reference);
                QVERIFY2(difference.isEmpty(), qPrintable(QStringLiteral("%1, format %2: %3").arg(kernel).arg(int(picture.format())).arg(difference)));
            });
        }
    }

    // The live view calls with one value after another; what is kept from the
    // last frame must never leak into the next.
    void tablesFollowTheValues()
    {
        const QImage sample = ReferenceFilters::colourCube(15);
        const PictureAdjustments sequence[] = {
            adjustments({ 0, 0, 0, 40, 0, 0, 0, 0, 0 }),  adjustments({ 0, 0, 0, 41, 0, 0, 0, 0, 0 }),
            adjustments({ 0, 0, 0, 41, 0, 10, 0, 0, 0 }), adjustments({ 0, 0, 0, 41, -30, 10, 0, 0, 0 }),
            adjustments({ 0, 0, 0, 41, -31, 10, 0, 0, 0 }), adjustments({ 0, 0, 0, 41, -31, 0, 0, 0, 0 }),
            adjustments({ 0, 0, 0, 0, -31, 0, 0, 0, 0 }), adjustments({ 0, 0, 0, 0, -31, 0, 0, 6, 0 }),
            adjustments({ 0, 0, 0, 41, 0, 0, 0, 0, 0 }),  adjustments({ 5, 0, 0, 41, 0, 0, 0, 0, 0 }),
        };
        withEachKernel([&](const QString &kernel) {
            for (const PictureAdjustments &values : sequence) {
                const QString difference = firstDifference(sample, FrameFilters::adjusted(sample, values), referenceChain(sample, values));
                QVERIFY2(difference.isEmpty(), qPrintable(QStringLiteral("%1, hue %2 saturation %3 warmth %4 gain %5: %6").arg(kernel)
                                                                  .arg(values.hue).arg(values.saturation).arg(values.whiteBalance)
                                                                  .arg(values.gain).arg(difference)));
            }
        });
    }

    void filterEdges_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<int>("value");
        QTest::addColumn<QRgb>("in");
        QTest::addColumn<QRgb>("out");
        QTest::addRow("brightness 100 is white") << 0 << 100 << qRgb(3, 90, 200) << qRgb(255, 255, 255);
        QTest::addRow("brightness -100 is black") << 0 << -100 << qRgb(250, 90, 200) << qRgb(0, 0, 0);
        QTest::addRow("contrast -100 copies") << 1 << -100 << qRgb(10, 20, 30) << qRgb(10, 20, 30);
        QTest::addRow("contrast 1 doubles") << 1 << 1 << qRgb(127, 137, 117) << qRgb(127, 147, 107);
        QTest::addRow("gamma -100: below 255 is 0") << 2 << -100 << qRgb(254, 255, 1) << qRgb(0, 255, 0);
        QTest::addRow("hue 1 tints") << 3 << 1 << qRgb(0, 0, 255) << QColor::fromHsv(1, 255, 255).rgb();
        QTest::addRow("hue keeps grey grey") << 3 << 60 << qRgb(90, 90, 90) << qRgb(90, 90, 90);
        // A pale colour, HSL saturation below 100, turns grey at -100.
        const int lightness = QColor(120, 100, 80).lightness();
        QTest::addRow("saturation -100 greys a pale colour") << 4 << -100 << qRgb(120, 100, 80)
                                                             << qRgb(lightness, lightness, lightness);
        QTest::addRow("warmth leaves blue") << 5 << 30 << qRgb(250, 10, 77) << qRgb(255, 40, 77);
        QTest::addRow("cool") << 5 << -30 << qRgb(20, 10, 77) << qRgb(0, 0, 77);
    }

    void filterEdges()
    {
        QFETCH(int, filter);
        QFETCH(int, value);
        QFETCH(QRgb, in);
        QFETCH(QRgb, out);
        QImage image(1, 1, QImage::Format_RGB32);
        image.setPixel(0, 0, in);
        QCOMPARE(filters[filter].fast(image, value).pixel(0, 0), out);
    }

    void indexedImagesChangeOnlyTheirColourTable()
    {
        QImage indexed(4, 1, QImage::Format_Indexed8);
        indexed.setColorTable({ qRgb(10, 20, 30), qRgb(200, 100, 50) });
        for (int x = 0; x < 4; ++x)
            indexed.setPixel(x, 0, uint(x % 2));
        const QImage brighter = FrameFilters::brightness(indexed, 10);
        QCOMPARE(brighter.format(), QImage::Format_Indexed8);
        QCOMPARE(brighter.colorTable(), QList<QRgb>({ qRgb(35, 45, 55), qRgb(225, 125, 75) }));
    }

    void orientation_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QList<QRgb>>("corners"); // top-left, top-right, bottom-left, bottom-right
        const QRgb a = qRgb(255, 0, 0), b = qRgb(0, 255, 0), c = qRgb(0, 0, 255), d = qRgb(255, 255, 0);
        QTest::addRow("0 unchanged") << 0 << QList<QRgb> { a, b, c, d };
        QTest::addRow("1 rotated 180") << 1 << QList<QRgb> { d, c, b, a };
        QTest::addRow("2 flipped top to bottom") << 2 << QList<QRgb> { c, d, a, b };
        QTest::addRow("3 rotation and flip: left-right") << 3 << QList<QRgb> { b, a, d, c };
        QTest::addRow("unknown mode unchanged") << 7 << QList<QRgb> { a, b, c, d };
    }

    void orientation()
    {
        QFETCH(int, mode);
        QFETCH(QList<QRgb>, corners);
        QImage image(3, 2, QImage::Format_RGB32);
        image.fill(Qt::white);
        image.setPixel(0, 0, qRgb(255, 0, 0));
        image.setPixel(2, 0, qRgb(0, 255, 0));
        image.setPixel(0, 1, qRgb(0, 0, 255));
        image.setPixel(2, 1, qRgb(255, 255, 0));
        const QImage turned = FrameFilters::orient(image, mode);
        QCOMPARE(QList<QRgb>({ turned.pixel(0, 0), turned.pixel(2, 0), turned.pixel(0, 1), turned.pixel(2, 1) }), corners);
    }

    // The render thread makes a picture of the newest frame only, and no
    // next one until the last has been taken: a slow window skips frames
    // instead of queuing them.
    void pipelineRendersTheNewestFrameOnly()
    {
        const auto flatFrame = [](int luma) {
            QVideoFrame frame(QVideoFrameFormat(QSize(64, 36), QVideoFrameFormat::Format_YUYV));
            frame.map(QVideoFrame::WriteOnly);
            uchar *bits = frame.bits(0);
            for (int i = 0; i < frame.mappedBytes(0); i += 2) {
                bits[i] = uchar(luma);
                bits[i + 1] = 128;
            }
            frame.unmap();
            return frame;
        };
        PictureAdjustments values;
        values.brightness = 30;
        values.whiteBalance = -20;
        const auto expectedColour = [&](const QVideoFrame &source) {
            QVideoFrame frame = source;
            frame.map(QVideoFrame::ReadOnly);
            const QImage image = FrameConversion::toImage(frame);
            frame.unmap();
            return ReferenceFilters::warmth(ReferenceFilters::brightness(image, 30), -20).pixel(0, 0);
        };

        LiveFramePipeline pipeline;
        pipeline.setRotationMode(1);
        pipeline.setAdjustments(values);
        pipeline.setTargetSize(QSize(32, 18));
        int ready = 0;
        connect(&pipeline, &LiveFramePipeline::pictureReady, this, [&] { ++ready; }, Qt::QueuedConnection);

        QList<QVideoFrame> frames;
        for (int i = 0; i < 5; ++i)
            frames << flatFrame(40 + 30 * i);
        pipeline.videoSink()->setVideoFrame(frames[0]);
        QTRY_COMPARE(ready, 1);
        for (int i = 1; i < 5; ++i)
            pipeline.videoSink()->setVideoFrame(frames[i]);
        QTest::qWait(100);
        QCOMPARE(ready, 1);

        const LiveFramePipeline::Picture first = pipeline.takePicture();
        QCOMPARE(first.image.size(), QSize(32, 18));
        QCOMPARE(first.frameSize, QSize(64, 36));
        QCOMPARE(first.image.pixel(5, 5), expectedColour(frames[0]));
        QTRY_COMPARE(ready, 2);
        const LiveFramePipeline::Picture newest = pipeline.takePicture();
        QCOMPARE(newest.serial, first.serial + 1);
        QCOMPARE(newest.image.pixel(5, 5), expectedColour(frames[4]));
        // Taken twice, a picture counts once; nothing is left to render.
        QCOMPARE(pipeline.takePicture().serial, newest.serial);
        QTest::qWait(100);
        QCOMPARE(ready, 2);

        const FrameStatistics::Period period = pipeline.statistics().takePeriod();
        QCOMPARE(period.received, 5);
        QCOMPARE(period.shown, 2);
        QCOMPARE(period.skipped, 3);

        // A camera gone leaves no picture behind.
        pipeline.clear();
        QVERIFY(pipeline.takePicture().image.isNull());
    }
};

ORVIX_TEST_MAIN(tst_FrameFilters)
#include "tst_framefilters.moc"
