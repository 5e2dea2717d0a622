// One live frame at 1920x1080, stage by stage, for the camera's YUY2 and
// NV12: map, conversion to RGB, orientation, the filters (none and all nine),
// scaling into the 1280x720 view, the window's copy of the finished picture,
// and the whole path as the render thread runs it. Against, in the same run,
// a plain copy of the frame's bytes and Qt's own QVideoFrame::toImage(),
// offscreen and (through a child of this program under Xvfb) on an X display.
// Usage: bench_framepath [repetitions, default 40]
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>
#include <QVideoFrame>
#include <QVideoSink>

#include "app/memorytuning.h"
#include "imaging/frameconversion.h"
#include "allnine.h"
#include "imaging/framefilters.h"
#include "imaging/framerenderer.h"
#include "imaging/liveframepipeline.h"

namespace {

const QSize frameSize(1920, 1080);
const QSize viewSize(1280, 720);

double threadCpuMs()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

double wallMs()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

struct Cost
{
    double wall = 0;
    double cpu = 0;
};

// Median of the repetitions, after one run to warm caches and tables.
Cost measure(int repetitions, const std::function<void()> &stage)
{
    stage();
    std::vector<double> walls, cpus;
    for (int i = 0; i < repetitions; ++i) {
        const double wall = wallMs(), cpu = threadCpuMs();
        stage();
        walls.push_back(wallMs() - wall);
        cpus.push_back(threadCpuMs() - cpu);
    }
    std::nth_element(walls.begin(), walls.begin() + walls.size() / 2, walls.end());
    std::nth_element(cpus.begin(), cpus.begin() + cpus.size() / 2, cpus.end());
    return { walls[walls.size() / 2], cpus[cpus.size() / 2] };
}

// A picture with detail and colour everywhere, as a camera gives.
QVideoFrame cameraFrame(QVideoFrameFormat::PixelFormat format)
{
    QVideoFrame frame(QVideoFrameFormat(frameSize, format));
    frame.map(QVideoFrame::WriteOnly);
    quint32 seed = 2024;
    for (int plane = 0; plane < frame.planeCount(); ++plane) {
        uchar *bits = frame.bits(plane);
        const int stride = frame.bytesPerLine(plane);
        const int lines = frame.mappedBytes(plane) / stride;
        for (int y = 0; y < lines; ++y) {
            for (int x = 0; x < stride; ++x) {
                seed = seed * 1103515245 + 12345;
                bits[y * stride + x] = uchar(16 + ((x / 3 + y / 2) * 7 + (seed >> 29)) % 220);
            }
        }
    }
    frame.unmap();
    return frame;
}

const QList<std::pair<const char *, QVideoFrameFormat::PixelFormat>> formats = {
    { "YUY2", QVideoFrameFormat::Format_YUYV },
    { "NV12", QVideoFrameFormat::Format_NV12 },
};

// Qt's own conversion of each format, in milliseconds.
QList<double> qtConversion(int repetitions)
{
    QList<double> costs;
    for (const auto &[name, format] : formats) {
        // A frame keeps the image Qt made of it: each run gets a new frame.
        std::vector<QVideoFrame> frames;
        for (int i = 0; i <= repetitions; ++i)
            frames.push_back(cameraFrame(format));
        size_t next = 0;
        costs << measure(repetitions, [&] { QImage image = frames.at(next++).toImage(); }).wall;
    }
    return costs;
}

// Runs this program on its own X server for Qt's conversion there.
QList<double> qtConversionOnX(int repetitions)
{
    if (QStandardPaths::findExecutable(QStringLiteral("xvfb-run")).isEmpty())
        return {};
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    child.setProcessEnvironment(environment);
    child.start(QStringLiteral("xvfb-run"), { QStringLiteral("-a"), QStringLiteral("-s"), QStringLiteral("-screen 0 1920x1080x24"),
                                              QCoreApplication::applicationFilePath(), QStringLiteral("--qt-conversion"),
                                              QString::number(repetitions) });
    if (!child.waitForFinished(300000) || child.exitCode() != 0)
        return {};
    QList<double> costs;
    for (const QByteArray &line : child.readAllStandardOutput().split('\n')) {
        bool ok = false;
        const double cost = line.trimmed().toDouble(&ok);
        if (ok)
            costs << cost;
    }
    return costs.size() == formats.size() ? costs : QList<double>();
}

// The whole path through the render thread: frames given to the sink as
// fast as pictures are taken, the mean render time from its own figures.
double pipelineRenderMs(QVideoFrameFormat::PixelFormat format, int repetitions)
{
    // Two frames in turn: the sink ignores the frame it already has.
    const QVideoFrame frames[2] = { cameraFrame(format), cameraFrame(format) };
    LiveFramePipeline pipeline;
    pipeline.setRotationMode(1);
    pipeline.setAdjustments(allNine());
    pipeline.setTargetSize(viewSize);
    quint64 last = 0;
    for (int i = 0; i <= repetitions; ++i) {
        pipeline.videoSink()->setVideoFrame(frames[i % 2]);
        while (true) {
            const LiveFramePipeline::Picture picture = pipeline.takePicture();
            if (picture.serial > last) {
                last = picture.serial;
                break;
            }
            QThread::usleep(200);
        }
        if (i == 0)
            pipeline.statistics().takePeriod();
    }
    return pipeline.statistics().takePeriod().meanRenderMs;
}

void row(const char *stage, const QList<Cost> &costs, const QList<Cost> &copies)
{
    std::printf("| %-44s |", stage);
    for (int i = 0; i < costs.size(); ++i) {
        if (costs[i].wall < 0)
            std::printf("      n/a |       |");
        else
            std::printf(" %8.2f | %5.2f |", costs[i].wall, costs[i].wall / copies[i].wall);
    }
    std::printf("\n");
}

} // namespace

int main(int argc, char **argv)
{
    const bool childRun = argc > 1 && std::strcmp(argv[1], "--qt-conversion") == 0;
    if (!childRun)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // As the program's main() does.
    MemoryTuning::apply();
    QGuiApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (childRun) {
        const int repetitions = arguments.value(2, QStringLiteral("20")).toInt();
        for (double cost : qtConversion(repetitions))
            std::printf("%.3f\n", cost);
        return 0;
    }
    const int repetitions = std::max(5, arguments.value(1, QStringLiteral("40")).toInt());

    QList<Cost> copies, maps, conversions, orientations, noFilters, nineFilters, scales, windowCopies, wholes;
    QList<Cost> threadRenders;
    for (const auto &[name, format] : formats) {
        QVideoFrame frame = cameraFrame(format);
        frame.map(QVideoFrame::ReadOnly);
        qsizetype bytes = 0;
        for (int plane = 0; plane < frame.planeCount(); ++plane)
            bytes += frame.mappedBytes(plane);
        std::vector<uchar> copy(static_cast<size_t>(bytes));
        volatile uchar seen = 0;
        copies << measure(repetitions, [&] {
            size_t at = 0;
            for (int plane = 0; plane < frame.planeCount(); ++plane) {
                std::memcpy(copy.data() + at, frame.bits(plane), size_t(frame.mappedBytes(plane)));
                at += size_t(frame.mappedBytes(plane));
            }
            seen = copy[at / 2];
        });
        frame.unmap();
        maps << measure(repetitions, [&] {
            frame.map(QVideoFrame::ReadOnly);
            frame.unmap();
        });
        frame.map(QVideoFrame::ReadOnly);
        // Each stage as the render thread runs it: in memory kept from frame
        // to frame, in place where it can be.
        QImage image;
        conversions << measure(repetitions, [&] { FrameConversion::toImage(frame, image); });
        frame.unmap();
        orientations << measure(repetitions, [&] { FrameFilters::orientInPlace(image, 1); });
        noFilters << measure(repetitions, [&] { FrameFilters::adjust(image, PictureAdjustments()); });
        const PictureAdjustments nine = allNine();
        nineFilters << measure(repetitions, [&] { FrameFilters::adjust(image, nine); });
        QImage picture;
        scales << measure(repetitions, [&] { FrameFilters::scaledForView(image, viewSize, picture); });
        QImage window(viewSize, QImage::Format_RGB32);
        windowCopies << measure(repetitions, [&] {
            QPainter painter(&window);
            painter.drawImage(QPoint(0, 0), picture);
        });
        // Two frames in turn, as a camera's come from different memory.
        FrameRenderer renderer;
        const FrameRenderer::Settings settings { 1, nine, viewSize };
        const QVideoFrame frames[2] = { frame, cameraFrame(format) };
        int turn = 0;
        wholes << measure(repetitions, [&] { renderer.render(frames[turn++ % 2], settings); });
        threadRenders << Cost { pipelineRenderMs(format, repetitions), 0 };
    }

    const QList<double> qtOffscreen = qtConversion(repetitions);
    const QList<double> qtOnX = qtConversionOnX(std::min(repetitions, 20));
    QList<Cost> offscreenCosts, xCosts;
    for (int i = 0; i < formats.size(); ++i) {
        offscreenCosts << Cost { qtOffscreen.value(i, -1), 0 };
        xCosts << Cost { qtOnX.value(i, -1), 0 };
    }

    std::printf("One 1920x1080 frame, median of %d runs, milliseconds and ratio to a plain copy of its bytes\n\n", repetitions);
    std::printf("| %-44s | YUY2 ms | ratio | NV12 ms | ratio |\n", "stage");
    std::printf("|----------------------------------------------|---------|-------|---------|-------|\n");
    row("plain copy of the frame (reference)", copies, copies);
    row("map and unmap", maps, copies);
    row("conversion to RGB", conversions, copies);
    row("orientation (rotated 180)", orientations, copies);
    row("filters: none", noFilters, copies);
    row("filters: all nine", nineFilters, copies);
    row("scaling into the 1280x720 view", scales, copies);
    row("window: copying the finished picture", windowCopies, copies);
    row("whole render path, one thread", wholes, copies);
    row("whole render path, on the render thread", threadRenders, copies);
    row("Qt's QVideoFrame::toImage(), offscreen", offscreenCosts, copies);
    row("Qt's QVideoFrame::toImage(), on X (Xvfb)", xCosts, copies);
    std::printf("\nCPU of the whole render path, one thread: YUY2 %.2f ms, NV12 %.2f ms\n", wholes[0].cpu, wholes[1].cpu);
    return 0;
}
