// The time from starting the program to its first camera picture painted,
// over repeated starts, measured from outside: each start is a new process
// on the same virtual camera and X server, ended by SIGTERM before the
// next. In the same run the floor: a new process that finds the same camera
// through GStreamer's device monitor and hands its first frame to
// ximagesink. Every third start follows one that was killed, as after a
// crash. Its own perf lines say where each start spent its time.
// Runs itself under xvfb-run without a display.
// Usage: bench_startup [starts, default 20]
#include <algorithm>
#include <cstdio>
#include <vector>

#include <csignal>

#include <gst/gst.h>

#include <QElapsedTimer>
#include <QMap>
#include <QCameraDevice>
#include <QMediaDevices>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include "benchapplication.h"

namespace {
const char *const plainArgument = "--plain-pipeline";

// The floor's process: camera by name, first frame into ximagesink, then
// "shown" on stdout and out.
int runPlainPipeline(const char *cameraName)
{
    gst_init(nullptr, nullptr);
    GstDeviceMonitor *monitor = gst_device_monitor_new();
    gst_device_monitor_add_filter(monitor, "Video/Source", nullptr);
    GstElement *source = nullptr;
    GList *devices = gst_device_monitor_get_devices(monitor);
    for (GList *it = devices; it; it = it->next) {
        gchar *name = gst_device_get_display_name(GST_DEVICE(it->data));
        if (!source && g_strcmp0(name, cameraName) == 0)
            source = gst_device_create_element(GST_DEVICE(it->data), nullptr);
        g_free(name);
    }
    g_list_free_full(devices, gst_object_unref);
    gst_object_unref(monitor);
    if (!source)
        return 1;
    GstElement *pipeline = gst_pipeline_new("floor");
    GstElement *tail = gst_parse_bin_from_description("videoconvert ! videoscale ! video/x-raw,width=960,height=540 ! "
                                                      "ximagesink name=sink sync=false",
                                                      TRUE, nullptr);
    gst_bin_add_many(GST_BIN(pipeline), source, tail, nullptr);
    if (!gst_element_link(source, tail))
        return 1;
    GstElement *sink = gst_bin_get_by_name(GST_BIN(tail), "sink");
    GstPad *pad = gst_element_get_static_pad(sink, "sink");
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, [](GstPad *, GstPadProbeInfo *, gpointer) {
        std::printf("shown\n");
        std::fflush(stdout);
        return GST_PAD_PROBE_REMOVE;
    }, nullptr, nullptr);
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus *bus = gst_element_get_bus(pipeline);
    gst_message_unref(gst_bus_timed_pop_filtered(bus, 10 * GST_SECOND, GST_MESSAGE_ERROR));
    return 0;
}

struct Start
{
    double shownMs = -1; // -1: never within the wait
    QMap<QString, double> steps; // the program's own perf lines
};

// Starts `program` and waits for `marker` on its output; then ends it,
// killed as by a crash when `crash` is set.
Start timeOneStart(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment,
                   const QByteArray &marker, bool crash = false)
{
    Start start;
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    QElapsedTimer clock;
    clock.start();
    process.start(program, arguments);
    QByteArray output;
    const QRegularExpression step(QStringLiteral("start-up: (.+) at (\\d+) ms"));
    while (clock.elapsed() < 15000 && process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(5);
        const QByteArray more = process.readAll();
        if (more.isEmpty())
            continue;
        output += more;
        if (output.contains(marker)) {
            start.shownMs = clock.nsecsElapsed() / 1e6;
            break;
        }
    }
    QTest::qWait(300);
    output += process.readAll();
    for (const QString &line : QString::fromLocal8Bit(output).split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch match = step.match(line);
        if (match.hasMatch())
            start.steps.insert(match.captured(1), match.captured(2).toDouble());
    }
    if (crash)
        process.kill();
    else
        process.terminate();
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished();
    }
    return start;
}

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return -1;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, size_t(fraction * (values.size() - 1) + 0.5))];
}

void printRow(const char *what, const std::vector<Start> &starts, double floorMedian)
{
    std::vector<double> times;
    int never = 0;
    for (const Start &start : starts) {
        if (start.shownMs < 0)
            ++never;
        else
            times.push_back(start.shownMs);
    }
    const double median = percentile(times, 0.5);
    const double underSecond = times.empty() ? 0
            : 100.0 * std::count_if(times.cbegin(), times.cend(), [](double ms) { return ms < 1000; }) / starts.size();
    std::printf("| %s | %zu | %.0f | %.0f | %.0f | %.0f %% | %d | %.2f |\n", what, starts.size(), median,
                percentile(times, 0.95), times.empty() ? -1 : *std::max_element(times.cbegin(), times.cend()),
                underSecond, never, floorMedian > 0 ? median / floorMedian : 0);
}
}

int main(int argc, char *argv[])
{
    if (argc > 2 && qstrcmp(argv[1], plainArgument) == 0)
        return runPlainPipeline(argv[2]);
    if (runUnderXvfb(argc, argv))
        return 1;
    qputenv("QT_QPA_PLATFORM", "xcb");
    BenchApplication bench(argc, argv);
    const int starts = argc > 1 ? std::max(3, std::atoi(argv[1])) : 20;
    VirtualDevices &devices = bench.devices;
    const QString cameraName = QStringLiteral("Orvix Full HD Camera");
    if (!bench.startDevices(VirtualDevices::fullHdCamera()))
        return 1;
    devices.makeStorageRoot(QStringLiteral("bench"));

    QProcessEnvironment environment = devices.environment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.debug=false;orvix.perf.info=true"));

    // Every third start follows a crash: the one before it was killed.
    std::vector<Start> program, afterCrash, floor;
    QStringList stepNames;
    bool crashed = false;
    for (int i = 0; i < starts; ++i) {
        // Alternated, so that a slow spell of the machine falls on both.
        floor.push_back(timeOneStart(QCoreApplication::applicationFilePath(), { QString::fromLatin1(plainArgument), cameraName },
                                     environment, "shown"));
        const bool crash = i % 3 == 1;
        const Start start = timeOneStart(QStringLiteral(ORVIX_PROGRAM), {}, environment, "first picture painted", crash);
        (crashed ? afterCrash : program).push_back(start);
        for (const QString &name : start.steps.keys()) {
            if (!stepNames.contains(name))
                stepNames.append(name);
        }
        std::printf("start %2d%s: program %6.0f ms, floor %6.0f ms%s\n", i + 1, crashed ? " (after a crash)" : "",
                    start.shownMs, floor.back().shownMs, crash ? "; killed" : "");
        std::fflush(stdout);
        crashed = crash;
    }
    std::sort(stepNames.begin(), stepNames.end(), [&](const QString &a, const QString &b) {
        return program.front().steps.value(a, 1e9) < program.front().steps.value(b, 1e9);
    });

    std::vector<double> floorTimes;
    for (const Start &start : floor)
        floorTimes.push_back(start.shownMs);
    const double floorMedian = percentile(floorTimes, 0.5);
    std::printf("\n| from the start to the first picture | starts | median ms | p95 ms | worst ms | within 1 s | never "
                "| median against floor |\n|---|---|---|---|---|---|---|---|\n");
    printRow("floor: GStreamer, device monitor, ximagesink", floor, floorMedian);
    printRow("Orvix", program, floorMedian);
    printRow("Orvix after a crash", afterCrash, floorMedian);
    std::vector<Start> all = program;
    all.insert(all.end(), afterCrash.cbegin(), afterCrash.cend());
    printRow("Orvix, all starts", all, floorMedian);

    std::printf("\nthe program's own steps, ms after its start (median, worst):\n");
    for (const QString &name : std::as_const(stepNames)) {
        std::vector<double> times;
        for (const Start &start : all) {
            if (start.steps.contains(name))
                times.push_back(start.steps.value(name));
        }
        std::printf("  %-28s %6.0f %6.0f\n", qPrintable(name), percentile(times, 0.5),
                    times.empty() ? -1 : *std::max_element(times.cbegin(), times.cend()));
    }
    return 0;
}
