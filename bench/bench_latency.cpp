// The time from a camera frame to its picture on the screen, measured from
// outside the program: the virtual camera's "clock" pattern writes into
// each frame the moment it left the camera element, and a grabber reads the
// live view's region of the X screen through shared memory about every
// half millisecond, noting when each frame's time first shows. Cases: the
// program idle, recording with the nine filters on, recording with a core
// kept busy; and in the same run the floor, a plain GStreamer pipeline
// showing the same camera at the same size with ximagesink sync=false.
// Runs itself under xvfb-run without a display.
// Usage: bench_latency [seconds per case, default 20]
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

#include <gst/gst.h>

#include <QLineEdit>
#include <QMediaDevices>
#include <QMediaRecorder>
#include <QProcess>
#include <QTest>

#include "allnine.h"
#include "benchapplication.h"
#include "imaging/framefilters.h"
#include "mainwindow/mainwindow.h"
#include "movieprobe.h"
#include "widgets/orvixvideowidget.h"

// Last: Xlib's macros (Bool, Status, None) break Qt's headers.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>

namespace {
// The camera's frame and its blocks, as the "clock" pattern draws them.
constexpr int frameWidth = 1920;
constexpr int frameHeight = 1080;
constexpr int block = 64;
constexpr int columns = 16;
constexpr int rows = 4;
constexpr double framePeriodMs = 1000.0 / 30;

struct Sighting
{
    quint32 stamp; // when the frame left the camera, µs modulo 2^32
    quint32 seen;  // when its picture first showed, on the same clock
};

// Reads the clock blocks of a picture shown at `picture` (screen
// coordinates) as fast as the X server hands them out.
class Grabber
{
public:
    explicit Grabber(const QRect &picture)
    {
        display = XOpenDisplay(nullptr);
        if (!display || !XShmQueryExtension(display))
            return;
        const double scale = double(picture.width()) / frameWidth;
        for (int column = 0; column < columns; ++column)
            xs[column] = int((block * (1 + column) + block / 2) * scale);
        for (int row = 0; row < rows; ++row)
            ys[row] = picture.y() + int((block * (1 + row) + block / 2) * scale);
        left = picture.x();
        width = xs[columns - 1] + 2;
        image = XShmCreateImage(display, DefaultVisual(display, DefaultScreen(display)),
                                DefaultDepth(display, DefaultScreen(display)), ZPixmap, nullptr, &segment,
                                unsigned(width), 1);
        segment.shmid = shmget(IPC_PRIVATE, size_t(image->bytes_per_line), IPC_CREAT | 0600);
        segment.shmaddr = image->data = static_cast<char *>(shmat(segment.shmid, nullptr, 0));
        segment.readOnly = False;
        XShmAttach(display, &segment);
        XSync(display, False);
        shmctl(segment.shmid, IPC_RMID, nullptr);
        ready = true;
    }

    ~Grabber()
    {
        stop();
        if (image) {
            XShmDetach(display, &segment);
            XDestroyImage(image);
            shmdt(segment.shmaddr);
        }
        if (display)
            XCloseDisplay(display);
    }

    bool isReady() const { return ready; }

    void start()
    {
        sightings.clear();
        running = true;
        worker = std::thread([this] { run(); });
    }

    QList<Sighting> stop()
    {
        running = false;
        if (worker.joinable())
            worker.join();
        return sightings;
    }

private:
    void run()
    {
        quint32 last = 0;
        int values[columns * rows];
        while (running) {
            for (int row = 0; row < rows; ++row) {
                XShmGetImage(display, DefaultRootWindow(display), image, left, ys[row], AllPlanes);
                for (int column = 0; column < columns; ++column)
                    values[row * columns + column] = int(XGetPixel(image, xs[column], 0) >> 8 & 0xff);
            }
            const quint32 seen = quint32(g_get_monotonic_time());
            quint32 stamp = 0;
            if (read(values, &stamp) && stamp != last) {
                sightings.append({ stamp, seen });
                last = stamp;
            }
            usleep(500);
        }
    }

    // The 32 bits and their complements: every pair must disagree, and
    // clearly, or the picture is a blend or no clock at all.
    static bool read(const int *values, quint32 *stamp)
    {
        quint32 value = 0;
        for (int bit = 0; bit < 32; ++bit) {
            const int set = values[bit], unset = values[32 + bit];
            if (qAbs(set - unset) < 96)
                return false;
            if (set > unset)
                value |= 1u << bit;
        }
        *stamp = value;
        return true;
    }

    Display *display = nullptr;
    XImage *image = nullptr;
    XShmSegmentInfo segment {};
    int xs[columns] {};
    int ys[rows] {};
    int left = 0;
    int width = 0;
    bool ready = false;
    std::atomic<bool> running { false };
    std::thread worker;
    QList<Sighting> sightings;
};

struct Figures
{
    double median = 0, p95 = 0, p99 = 0, worst = 0, shownPerSecond = 0;
    qint64 neverShown = 0;
    // What the program's own perf log says: the frames' mean age when shown.
    double ownMeanAgeMs = -1;
};

Figures figuresOf(const QList<Sighting> &sightings, double seconds)
{
    Figures figures;
    if (sightings.size() < 2)
        return figures;
    QList<double> latencies;
    for (const Sighting &sighting : sightings)
        latencies.append(quint32(sighting.seen - sighting.stamp) / 1000.0);
    std::sort(latencies.begin(), latencies.end());
    const auto at = [&](double share) { return latencies[qMin(latencies.size() - 1, qsizetype(share * latencies.size()))]; };
    figures.median = at(0.5);
    figures.p95 = at(0.95);
    figures.p99 = at(0.99);
    figures.worst = latencies.last();
    figures.shownPerSecond = sightings.size() / seconds;
    // A gap of more than one frame period between two stamps is a frame
    // the camera made and the screen never showed.
    for (qsizetype i = 1; i < sightings.size(); ++i) {
        const double gapMs = quint32(sightings[i].stamp - sightings[i - 1].stamp) / 1000.0;
        figures.neverShown += qMax<qint64>(0, qRound64(gapMs / framePeriodMs) - 1);
    }
    return figures;
}

Figures measure(const QRect &picture, int seconds, MainWindow *window = nullptr)
{
    Grabber grabber(picture);
    if (!grabber.isReady())
        return {};
    if (window)
        window->liveView().statistics().takePeriod();
    grabber.start();
    runEventLoop(seconds * 1000);
    Figures figures = figuresOf(grabber.stop(), seconds);
    if (window)
        figures.ownMeanAgeMs = window->liveView().statistics().takePeriod().meanAgeMs;
    return figures;
}

// The same camera in a plain pipeline, scaled to the live view's size, in
// ximagesink's own window at the screen's corner (no window manager).
Figures measureFloor(const QString &cameraName, const QSize &size, int seconds)
{
    GstDeviceMonitor *monitor = gst_device_monitor_new();
    gst_device_monitor_add_filter(monitor, "Video/Source", nullptr);
    GstElement *source = nullptr;
    GList *devices = gst_device_monitor_get_devices(monitor);
    for (GList *it = devices; it; it = it->next) {
        gchar *name = gst_device_get_display_name(GST_DEVICE(it->data));
        if (!source && cameraName == QString::fromUtf8(name))
            source = gst_device_create_element(GST_DEVICE(it->data), nullptr);
        g_free(name);
    }
    g_list_free_full(devices, gst_object_unref);
    gst_object_unref(monitor);
    if (!source) {
        std::fprintf(stderr, "the floor found no camera named %s\n", qPrintable(cameraName));
        return {};
    }
    const QByteArray rest = QStringLiteral("capsfilter caps=\"video/x-raw,format=YUY2,width=%1,height=%2,framerate=30/1\" ! videoconvert ! "
                                           "videoscale ! video/x-raw,width=%3,height=%4 ! ximagesink sync=false")
                                    .arg(frameWidth)
                                    .arg(frameHeight)
                                    .arg(size.width())
                                    .arg(size.height())
                                    .toLatin1();
    GstElement *pipeline = gst_pipeline_new("floor");
    GstElement *tail = gst_parse_bin_from_description(rest.constData(), TRUE, nullptr);
    gst_bin_add_many(GST_BIN(pipeline), source, tail, nullptr);
    if (!gst_element_link(source, tail)
        || gst_element_set_state(pipeline, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        std::fprintf(stderr, "the floor's pipeline did not start\n");
        gst_object_unref(pipeline);
        return {};
    }
    runEventLoop(3000);
    const Figures figures = measure(QRect(QPoint(0, 0), size), seconds);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return figures;
}

// Processes that keep cores busy for as long as they live, as a loaded
// machine does.
struct Spinners
{
    explicit Spinners(int count)
    {
        for (int i = 0; i < count; ++i) {
            auto *spinner = new QProcess;
            spinner->start(QStringLiteral("sh"), { QStringLiteral("-c"), QStringLiteral("while :; do :; done") });
            spinner->waitForStarted();
            processes.emplace_back(spinner);
        }
    }
    ~Spinners()
    {
        for (const auto &spinner : processes) {
            spinner->kill();
            spinner->waitForFinished();
        }
    }
    std::vector<std::unique_ptr<QProcess>> processes;
};

void setFilters(MainWindow &window, const PictureAdjustments &values)
{
    window.setBrightness(values.brightness);
    window.setContrast(values.contrast);
    window.setGamma(values.gamma);
    window.setHue(values.hue);
    window.setStaturation(values.saturation);
    window.setWhiteBal(values.whiteBalance);
    window.setBacklight(values.backlight);
    window.setGain(values.gain);
    window.setExposure(values.exposure);
}

void print(const char *what, const Figures &figures, const Figures &floor)
{
    const QByteArray own = figures.ownMeanAgeMs >= 0 ? QByteArray::number(figures.ownMeanAgeMs, 'f', 1) : "-";
    std::printf("| %s | %.1f | %.1f | %.1f | %.1f | %.1f | %lld | %.2fx | %s |\n", what, figures.median, figures.p95,
                figures.p99, figures.worst, figures.shownPerSecond, figures.neverShown,
                floor.median > 0 ? figures.median / floor.median : 0.0, own.constData());
    std::fflush(stdout);
}
} // namespace

int main(int argc, char *argv[])
{
    // The grabber reads a real X screen.
    if (runUnderXvfb(argc, argv))
        return 1;
    qputenv("QT_QPA_PLATFORM", "xcb");
    BenchApplication bench(argc, argv);
    const int seconds = argc > 1 ? std::max(5, std::atoi(argv[1])) : 20;
    VirtualDevices &devices = bench.devices;
    const QString cameraName = QStringLiteral("Orvix Full HD Camera");
    if (!bench.startDevices(VirtualDevices::fullHdCamera() + QStringLiteral("|virtual:clock|clock")))
        return 1;
    devices.makeStorageRoot(QStringLiteral("bench"));

    Figures idle, filtered, busy, bothBusy;
    MovieProbe recorded;
    QSize pictureSize;
    {
        MainWindow window;
        window.resize(1280, 720);
        window.move(0, 0);
        window.show();
        window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("latency"));
        if (!QTest::qWaitFor([&] { return window.isCameraLive(); }, 10000))
            return 1;
        runEventLoop(3000);
        auto *view = window.findChild<OrvixVideoWidget *>();
        const QRect target = FrameFilters::targetRect(view->size());
        const QRect picture(view->mapToGlobal(target.topLeft()), target.size());
        pictureSize = picture.size();
        std::printf("live view picture %dx%d at %d,%d; %d s a case\n", picture.width(), picture.height(), picture.x(),
                    picture.y(), seconds);

        idle = measure(picture, seconds, &window);
        setFilters(window, allNine());
        window.captureVideo();
        runEventLoop(2000);
        filtered = measure(picture, seconds, &window);
        setFilters(window, PictureAdjustments());
        {
            const Spinners spinner(1);
            busy = measure(picture, seconds, &window);
        }
        {
            const Spinners spinners(2);
            bothBusy = measure(picture, seconds, &window);
        }
        const QString moviePath = window.recordingFile();
        window.captureVideo();
        if (!QTest::qWaitFor([&] { return window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState; }, 10000))
            std::fprintf(stderr, "the recording did not stop within 10 s\n");
        // The live view's priority must not have cost the recording frames.
        recorded = MovieProbe::probe(moviePath);
    }
    const Figures floor = measureFloor(cameraName, pictureSize, seconds);
    Figures floorBusy;
    {
        const Spinners spinner(1);
        floorBusy = measureFloor(cameraName, pictureSize, seconds);
    }

    std::printf("\n| case | median ms | p95 ms | p99 ms | worst ms | shown/s | never shown | median against floor "
                "| perf log's mean frame age ms |\n|---|---|---|---|---|---|---|---|---|\n");
    print("floor: GStreamer, ximagesink sync=false", floor, floor);
    print("program idle", idle, floor);
    print("recording, nine filters", filtered, floor);
    print("recording, one core busy", busy, floor);
    print("recording, both cores busy", bothBusy, floor);
    print("floor with one core busy (for comparison)", floorBusy, floor);
    std::printf("\nthe recording over the three recording cases: %lld frames in %.1f s, %.2f frames/s\n",
                recorded.frames, recorded.videoSeconds, recorded.framesPerSecond());
    return 0;
}
