// The live picture's filters at 1920x1080 on one core: each filter alone, the
// whole chain with all nine on, the literal per-pixel QColor versions, and a
// plain frame copy as the unit everything else is measured in. Prints
// Google Benchmark's table and then milliseconds and ratios from the same run.
#include <cmath>
#include <cstdio>
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <QColor>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>

#include "referencefilters.h"
#include "allnine.h"
#include "imaging/framefilters.h"

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

// Collects each benchmark's best time per iteration for the closing table:
// on a shared machine the best of many short repetitions is the steadiest
// figure, since a short one more often misses the other guests' bursts.
class TableReporter : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, double> millis;

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.aggregate_name == "min" || run.run_type == Run::RT_Iteration)
                millis[run.run_name.function_name] = run.GetAdjustedRealTime();
        }
    }
};

double minimum(const std::vector<double> &values)
{
    return *std::min_element(values.begin(), values.end());
}

struct FastFilter
{
    const char *name;
    void (*filter)(QImage &);
};

const FastFilter fastFilters[] = {
    { "copyFrame", [](QImage &) { } },
    { "brightness", [](QImage &f) { FrameFilters::applyBrightness(f, 10); } },
    { "contrast", [](QImage &f) { FrameFilters::applyContrast(f, 20); } },
    { "gamma", [](QImage &f) { FrameFilters::applyGamma(f, -15); } },
    { "hue", [](QImage &f) { FrameFilters::applyHue(f, 40); } },
    { "saturation", [](QImage &f) { FrameFilters::applySaturation(f, -25); } },
    { "whiteBalance", [](QImage &f) { FrameFilters::applyWarmth(f, 12); } },
    { "chainAllNine", [](QImage &f) { FrameFilters::adjust(f, allNine()); } },
    // Without hue, saturation cannot fold into a table: the slowest chain.
    { "chainAllButHue", [](QImage &f) {
          PictureAdjustments values = allNine();
          values.hue = 0;
          FrameFilters::adjust(f, values);
      } },
};

struct ReferenceFilter
{
    const char *name;
    QImage (*filter)(const QImage &);
};

const ReferenceFilter referenceFilters[] = {
    { "referenceHue", [](const QImage &f) { return ReferenceFilters::hue(f, 40); } },
    { "referenceSaturation", [](const QImage &f) { return ReferenceFilters::saturation(f, -25); } },
    { "referenceWhiteBalance", [](const QImage &f) { return ReferenceFilters::warmth(f, 12); } },
};

// The benchmark name of a filter run with one set of loops.
std::string nameWith(const char *filter, FrameFilters::Loops loops)
{
    return std::string(filter) + "." + FrameFilters::loopsName(loops).toStdString();
}

// Each fast filter with every set of loops the processor has.
void registerAll()
{
    for (const FrameFilters::Loops loops : FrameFilters::availableLoops()) {
        for (const FastFilter &fast : fastFilters) {
            benchmark::RegisterBenchmark(nameWith(fast.name, loops).c_str(), [fast, loops](benchmark::State &state) {
                FrameFilters::useLoops(loops);
                run(state, fast.filter);
            })->Unit(benchmark::kMillisecond)->MinTime(0.1)->Repetitions(20)->ReportAggregatesOnly(true)->ComputeStatistics("min", minimum);
        }
    }
    for (const ReferenceFilter &reference : referenceFilters) {
        benchmark::RegisterBenchmark(reference.name, [reference](benchmark::State &state) {
            runReference(state, reference.filter);
        })->Unit(benchmark::kMillisecond)->Iterations(2);
    }
}
}

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    frame();
    // The colour tables are made once per process; the live view builds them
    // ahead of time, so they are timed apart from the filters.
    QElapsedTimer clock;
    clock.start();
    FrameFilters::warmUpColourTables();
    const double tablesMs = clock.nsecsElapsed() / 1e6;

    benchmark::Initialize(&argc, argv);
    registerAll();
    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    auto ms = [&reporter](const std::string &name) { return reporter.millis.count(name) ? reporter.millis[name] : 0.0; };
    // Fastest first.
    QList<FrameFilters::Loops> sets = FrameFilters::availableLoops();
    std::reverse(sets.begin(), sets.end());
    const FrameFilters::Loops fastest = sets.constFirst();
    const double copyMs = ms(nameWith("copyFrame", fastest));
    std::printf("\n1920x1080, one core, best of 20 runs of 0.1 s. Each fast filter works in place\n"
                "on a fresh copy of the frame, as the live view does; \"alone\" takes that copy away.\n"
                "Ratios are against the copy. The loops run by default: %s.\n\n",
                qPrintable(FrameFilters::loopsName(fastest)));
    std::printf("%-24s %10s %10s %10s", "", "ms/frame", "alone", "x copy");
    for (const FrameFilters::Loops loops : sets.mid(1))
        std::printf(" %16s", qPrintable(FrameFilters::loopsName(loops) + QStringLiteral(" alone")));
    std::printf("\n");
    const auto alone = [&ms](const FastFilter &fast, FrameFilters::Loops loops) {
        const double total = ms(nameWith(fast.name, loops));
        return std::string(fast.name) == "copyFrame" ? total : total - ms(nameWith("copyFrame", loops));
    };
    for (const FastFilter &fast : fastFilters) {
        if (!reporter.millis.count(nameWith(fast.name, fastest)))
            continue;
        std::printf("%-24s %10.2f %10.2f %10.1f", fast.name, ms(nameWith(fast.name, fastest)), alone(fast, fastest),
                    alone(fast, fastest) / copyMs);
        for (const FrameFilters::Loops loops : sets.mid(1))
            std::printf(" %16.2f", alone(fast, loops));
        std::printf("\n");
    }
    for (const ReferenceFilter &reference : referenceFilters) {
        if (reporter.millis.count(reference.name))
            std::printf("%-24s %10.2f %10.2f %10.1f\n", reference.name, ms(reference.name), ms(reference.name), ms(reference.name) / copyMs);
    }
    std::printf("%-24s %10.2f %10.2f %10.1f\n", "colour tables, once", tablesMs, tablesMs, tablesMs / copyMs);
    const double literal = ms("referenceHue") + ms("referenceSaturation");
    std::printf("\nhue and saturation, literal per-pixel QColor / fast: %.0fx\n",
                literal / (ms(nameWith("hue", fastest)) + ms(nameWith("saturation", fastest)) - 2 * copyMs));
    std::printf("whole chain: %.1f frames per second on one core\n", 1000.0 / ms(nameWith("chainAllNine", fastest)));
    return 0;
}
