// The live picture's filters at 1920x1080 on one core: each filter alone, the
// whole chain with all nine on, the literal per-pixel QColor versions, and a
// plain frame copy as the unit everything else is measured in. Prints
// Google Benchmark's table and then milliseconds and ratios from the same run.
#include <cmath>
#include <cstdio>
#include <map>

#include <benchmark/benchmark.h>

#include <QColor>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>

#include "app/memorytuning.h"
#include "referencefilters.h"
#include "widgets/framefilters.h"

namespace {
// A busy picture: smooth colour fields, edges and sensor noise, so that the
// frame holds hundreds of thousands of distinct colours like a real one.
QImage makeFrame()
{
    QImage frame(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    quint32 noise = 12345;
    for (int y = 0; y < frame.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(frame.scanLine(y));
        for (int x = 0; x < frame.width(); ++x) {
            noise = noise * 1664525u + 1013904223u;
            const int grain = int((noise >> 24) % 13) - 6;
            const int hue = (x * 360 / frame.width() + y / 8) % 360;
            const int saturation = 60 + (y * 195 / frame.height());
            const int value = 40 + int(180 * (0.5 + 0.5 * std::sin(x / 97.0) * std::cos(y / 61.0)));
            const QColor colour = QColor::fromHsv(hue, saturation, value);
            line[x] = qRgb(qBound(0, colour.red() + grain, 255), qBound(0, colour.green() + grain, 255),
                           qBound(0, colour.blue() + grain, 255));
        }
    }
    return frame;
}

const QImage &frame()
{
    static const QImage image = makeFrame();
    return image;
}

// As in the live view: each frame is a fresh image, filtered in place.
template<typename Filter>
void run(benchmark::State &state, Filter filter)
{
    for (auto _ : state) {
        QImage work = frame().copy();
        filter(work);
        benchmark::DoNotOptimize(work.constBits());
    }
}

template<typename Filter>
void runReference(benchmark::State &state, Filter filter)
{
    for (auto _ : state) {
        QImage result = filter(frame());
        benchmark::DoNotOptimize(result.constBits());
    }
}

PictureAdjustments allNine()
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

// Collects each benchmark's time per iteration for the closing table.
class TableReporter : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, double> millis;
    std::vector<std::string> order;

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            std::string name = run.benchmark_name();
            name = name.substr(0, name.find('/'));
            if (!millis.count(name))
                order.push_back(name);
            millis[name] = run.GetAdjustedRealTime() / 1e6 * (run.time_unit == benchmark::kMillisecond ? 1e6 : 1.0);
        }
    }
};
}

static void copyFrame(benchmark::State &s) { run(s, [](QImage &) { }); }
static void brightness(benchmark::State &s) { run(s, [](QImage &f) { FrameFilters::applyBrightness(f, 10); }); }
static void contrast(benchmark::State &s) { run(s, [](QImage &f) { FrameFilters::applyContrast(f, 20); }); }
static void gamma(benchmark::State &s) { run(s, [](QImage &f) { FrameFilters::applyGamma(f, -15); }); }
static void hue(benchmark::State &s) { run(s, [](QImage &f) { FrameFilters::applyHue(f, 40); }); }
static void saturation(benchmark::State &s) { run(s, [](QImage &f) { FrameFilters::applySaturation(f, -25); }); }
static void whiteBalance(benchmark::State &s) { run(s, [](QImage &f) { FrameFilters::applyWarmth(f, 12); }); }
static void chainAllNine(benchmark::State &s) { run(s, [](QImage &f) { FrameFilters::adjust(f, allNine()); }); }
static void referenceHue(benchmark::State &s) { runReference(s, [](const QImage &f) { return ReferenceFilters::hue(f, 40); }); }
static void referenceSaturation(benchmark::State &s) { runReference(s, [](const QImage &f) { return ReferenceFilters::saturation(f, -25); }); }
static void referenceWhiteBalance(benchmark::State &s) { runReference(s, [](const QImage &f) { return ReferenceFilters::warmth(f, 12); }); }

BENCHMARK(copyFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(brightness)->Unit(benchmark::kMillisecond);
BENCHMARK(contrast)->Unit(benchmark::kMillisecond);
BENCHMARK(gamma)->Unit(benchmark::kMillisecond);
BENCHMARK(hue)->Unit(benchmark::kMillisecond);
BENCHMARK(saturation)->Unit(benchmark::kMillisecond);
BENCHMARK(whiteBalance)->Unit(benchmark::kMillisecond);
BENCHMARK(chainAllNine)->Unit(benchmark::kMillisecond);
BENCHMARK(referenceHue)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(referenceSaturation)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(referenceWhiteBalance)->Unit(benchmark::kMillisecond)->Iterations(2);

int main(int argc, char **argv)
{
    MemoryTuning::keepFrameMemory();
    QGuiApplication app(argc, argv);
    frame();
    // The colour tables are made once per process; the live view builds them
    // ahead of time, so they are timed apart from the filters.
    QElapsedTimer clock;
    clock.start();
    FrameFilters::warmUpColourTables();
    const double tablesMs = clock.nsecsElapsed() / 1e6;

    benchmark::Initialize(&argc, argv);
    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const double copyMs = reporter.millis["copyFrame"];
    std::printf("\n1920x1080, one core. Each fast filter works in place on a fresh copy of the frame,\n"
                "as the live view does; \"alone\" takes that copy away. Ratios are against the copy.\n");
    std::printf("%-28s %10s %10s %10s\n", "", "ms/frame", "alone", "x copy");
    for (const std::string &name : reporter.order) {
        const bool reference = name.rfind("reference", 0) == 0;
        const double alone = reference || name == "copyFrame" ? reporter.millis[name] : reporter.millis[name] - copyMs;
        std::printf("%-28s %10.2f %10.2f %10.1f\n", name.c_str(), reporter.millis[name], alone, alone / copyMs);
    }
    std::printf("%-28s %10.2f %10.2f %10.1f\n", "colour tables, once", tablesMs, tablesMs, tablesMs / copyMs);
    const double chain = reporter.millis["chainAllNine"];
    const double literal = reporter.millis["referenceHue"] + reporter.millis["referenceSaturation"];
    std::printf("\nhue and saturation, literal per-pixel QColor / fast: %.0fx\n",
                literal / (reporter.millis["hue"] + reporter.millis["saturation"] - 2 * copyMs));
    std::printf("whole chain: %.1f frames per second on one core\n", 1000.0 / chain);
    return 0;
}
