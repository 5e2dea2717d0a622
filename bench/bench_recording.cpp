// Recording at 1080p 30 fps from the virtual camera and microphone: frames
// per second in the file, CPU seconds per recorded second and bit rate, for
// the program with its live view on, against a plain GStreamer pipeline that
// encodes the same picture and sound with the same encoder settings, in the
// same run; and with all nine picture filters on, the frames the live view
// shows. Usage: bench_recording [seconds, default 60]
#include <cstdio>

#include <sys/resource.h>

#include <gst/gst.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLineEdit>
#include <QMediaDevices>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include "app/settingskeys.h"
#include "capture/recordingelements.h"
#include "mainwindow/mainwindow.h"
#include "movieprobe.h"
#include "benchapplication.h"

namespace {
const char *const cameraCaps = "video/x-raw,format=YUY2,width=1920,height=1080,framerate=30/1";

double cpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct Run
{
    const char *name;
    MovieProbe movie;
    double cpu = 0;
    double bytes = 0;
    // The live view: frames drawn a second, and the mean cost of one.
    double shownPerSecond = 0;
    double renderMs = 0;
};

// The camera's own source and the microphone, encoded as the recorder does.
Run plainPipeline(const QString &path, int seconds)
{
    using namespace RecordingElements;
    const QString description = QStringLiteral(
            "videotestsrc is-live=true pattern=smpte ! %1 ! videoconvert ! video/x-raw,format=I420 "
            "! x264enc speed-preset=%2 tune=%3 bitrate=%4 key-int-max=%5 ! h264parse "
            "! mp4mux name=mux fragment-duration=%6 fragment-mode=dash-or-mss ! filesink location=\"%7\" "
            "pulsesrc device=mic1 ! audioconvert ! lamemp3enc ! mpegaudioparse ! mux.")
            .arg(QString::fromLatin1(cameraCaps), QString::fromLatin1(speedPreset), QString::fromLatin1(tune))
            .arg(bitrateKbit)
            .arg(keyframeInterval)
            .arg(fragmentMilliseconds)
            .arg(path);
    GError *error = nullptr;
    GstElement *pipeline = gst_parse_launch(description.toUtf8().constData(), &error);
    if (!pipeline) {
        std::fprintf(stderr, "pipeline: %s\n", error ? error->message : "?");
        std::exit(1);
    }
    const double cpuBefore = cpuSeconds();
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    runEventLoop(seconds * 1000);
    gst_element_send_event(pipeline, gst_event_new_eos());
    GstBus *bus = gst_element_get_bus(pipeline);
    GstMessage *message = gst_bus_timed_pop_filtered(bus, 10 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    if (message)
        gst_message_unref(message);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    Run run { "plain GStreamer pipeline" };
    run.cpu = cpuSeconds() - cpuBefore;
    run.movie = MovieProbe::probe(path);
    run.bytes = QFileInfo(path).size();
    return run;
}

Run program(const QString &root, int seconds, bool record, bool filters = false)
{
    QSettings().setValue(SettingsKeys::storageLocation, root);
    MainWindow window;
    window.resize(1280, 760);
    window.show();
    window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("bench"));
    if (filters) {
        // All nine picture filters at once, the most the live view can be asked.
        window.setBrightness(10);
        window.setContrast(-20);
        window.setGamma(15);
        window.setHue(33);
        window.setStaturation(-20);
        window.setWhiteBal(12);
        window.setBacklight(1);
        window.setGain(5);
        window.setExposure(-7);
    }
    // Past the camera's start.
    runEventLoop(2000);
    window.liveView().statistics().takePeriod();
    const double cpuBefore = cpuSeconds();
    if (record)
        window.captureVideo();
    const QString path = window.recordingFile();
    runEventLoop(seconds * 1000);
    const FrameStatistics::Period shown = window.liveView().statistics().takePeriod();
    Run run { filters ? "Orvix, 9 filters, recording" : record ? "Orvix, live view on" : "Orvix, live view only" };
    run.shownPerSecond = shown.shown / double(seconds);
    run.renderMs = shown.meanRenderMs;
    if (record) {
        window.captureVideo();
        if (!QTest::qWaitFor([&] { return window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState; }, 10000))
            std::fprintf(stderr, "the recording did not stop\n");
    }
    run.cpu = cpuSeconds() - cpuBefore;
    if (record) {
        run.movie = MovieProbe::probe(path);
        run.bytes = QFileInfo(path).size();
    } else {
        run.movie.videoSeconds = seconds;
    }
    return run;
}

void print(const Run &run, const Run &reference)
{
    const double seconds = run.movie.videoSeconds;
    const double cpuPerSecond = seconds > 0 ? run.cpu / seconds : 0;
    const double referenceCpu = reference.cpu / reference.movie.videoSeconds;
    // The live view alone writes no file: no frame rate or bit rate to show.
    const QByteArray fps = run.bytes > 0 ? QByteArray::number(run.movie.framesPerSecond(), 'f', 2) : QByteArray("-");
    const QByteArray bitrate = run.bytes > 0 ? QByteArray::number(run.bytes * 8 / seconds / 1e6, 'f', 2) : QByteArray("-");
    const QByteArray shown = run.shownPerSecond > 0 ? QByteArray::number(run.shownPerSecond, 'f', 1) : QByteArray("-");
    const QByteArray render = run.shownPerSecond > 0 ? QByteArray::number(run.renderMs, 'f', 1) : QByteArray("-");
    std::printf("| %-28s | %6s | %7.1f | %9.3f | %7.2f | %8s | %6s | %6s |\n", run.name, fps.constData(), seconds, cpuPerSecond,
                cpuPerSecond / referenceCpu, bitrate.constData(), shown.constData(), render.constData());
}
}

int main(int argc, char *argv[])
{
    BenchApplication bench(argc, argv);
    VirtualDevices &devices = bench.devices;
    const int seconds = argc > 1 ? std::max(5, std::atoi(argv[1])) : 60;

    QString error;
    if (!devices.startAudio(&error) || !devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    devices.setCameras({ VirtualDevices::cameraLine(QStringLiteral("Orvix Full HD Camera"), QString::fromLatin1(cameraCaps)) });
    if (!QTest::qWaitFor([] { return !QMediaDevices::videoInputs().isEmpty(); }, 5000)) {
        std::fprintf(stderr, "the virtual camera did not appear\n");
        return 1;
    }
    gst_init(nullptr, nullptr);

    QTemporaryDir folder;
    QDir().mkpath(folder.path() + QStringLiteral("/Movie"));
    std::printf("Recording %d s of 1920x1080 at 30 fps with sound on %d cores\n", seconds, QThread::idealThreadCount());
    const Run reference = plainPipeline(folder.path() + QStringLiteral("/plain.mp4"), seconds);
    const Run live = program(folder.path(), std::max(5, seconds / 4), false);
    const Run recording = program(folder.path(), seconds, true);
    const Run filtered = program(folder.path(), seconds, true, true);

    std::printf("| %-28s | %6s | %7s | %9s | %7s | %8s | %6s | %6s |\n", "run", "fps", "seconds", "CPU s/s", "ratio",
                "Mbit/s", "shown", "render");
    std::printf("|%s|%s|%s|%s|%s|%s|%s|%s|\n", "------------------------------", "--------", "---------", "-----------",
                "---------", "----------", "--------", "--------");
    print(reference, reference);
    print(live, reference);
    print(recording, reference);
    print(filtered, reference);
    std::printf("\nplain:   %s\nprogram: %s\n", qPrintable(reference.movie.describe()), qPrintable(recording.movie.describe()));
    return 0;
}
