// GStreamer elements of our own under Qt's recorder.
#include "recordingelements.h"

#include "app/orvixlogging.h"
#include "capture/silencefeeder.h"
#include "imaging/liveframepipeline.h"
#include "tasks/threadpriority.h"

#ifdef ORVIX_HAVE_GSTREAMER

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include <gst/gst.h>

namespace {

// Above the stock elements' primary rank, so that encodebin prefers ours.
constexpr int elementRank = GST_RANK_PRIMARY + 100;

GObjectClass *muxerParentClass = nullptr;
GObjectClass *encoderParentClass = nullptr;
GObjectClass *soundEncoderParentClass = nullptr;

// How long data may wait for a peer that is starting.
constexpr gint64 peerStartWaitUsec = 2 * G_USEC_PER_SEC;

// Whether data pushed from `pad` would be refused because a pad on its way
// is not yet running. A bin's input is followed inside: Qt adds the
// recorder's bin with its inputs already running while the parts behind
// them are not.
bool peerStarting(GstPad *pad)
{
    GstPad *peer = gst_pad_get_peer(pad);
    bool starting = false;
    while (peer && !starting) {
        starting = GST_PAD_IS_FLUSHING(peer);
        GstPad *next = nullptr;
        if (!starting && GST_IS_GHOST_PAD(peer)) {
            if (GstProxyPad *inside = gst_proxy_pad_get_internal(GST_PROXY_PAD(peer))) {
                next = gst_pad_get_peer(GST_PAD(inside));
                gst_object_unref(inside);
            }
        }
        gst_object_unref(peer);
        peer = next;
    }
    if (peer)
        gst_object_unref(peer);
    return starting;
}

// A live source whose data meets a peer that is not yet running takes the
// refusal as the end of its stream and stops for good. Qt links the camera
// and the microphone to parts of the capture session, and each recording's
// branch to them, before those parts run: a microphone stopped that way
// leaves every later recording without a byte, and its stop hangs. Data
// waits at such a link until the peer runs, or until its own side stops.
GstPadProbeReturn waitForRunningPeer(GstPad *pad, GstPadProbeInfo *, gpointer)
{
    const gint64 deadline = g_get_monotonic_time() + peerStartWaitUsec;
    while (!GST_PAD_IS_FLUSHING(pad) && peerStarting(pad) && g_get_monotonic_time() < deadline)
        g_usleep(1000);
    return GST_PAD_PROBE_OK;
}

// The live sources seen, to set going again one that stopped all the same.
std::mutex sourcesLock;
std::vector<GWeakRef *> sources;
int revivedTotal = 0;

void rememberSource(GstElement *element)
{
    std::lock_guard<std::mutex> locked(sourcesLock);
    auto *ref = new GWeakRef;
    g_weak_ref_init(ref, element);
    sources.push_back(ref);
}

bool isGlue(GstElement *element)
{
    if (!element)
        return false;
    if (GST_OBJECT_FLAG_IS_SET(element, GST_ELEMENT_FLAG_SOURCE))
        return true;
    GstElementFactory *factory = gst_element_get_factory(element);
    const gchar *name = factory ? gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)) : nullptr;
    return name && (g_str_equal(name, "tee") || g_str_equal(name, "capsfilter"));
}

// Before the link is made: a tee pushes into a new branch the moment it is
// linked, and a wait put in after the link came too late now and then (one
// file start in seventy had its source stopped).
void padLinking(GObject *, GstClockTime, GstPad *source, GstPad *)
{
    if (g_object_get_data(G_OBJECT(source), "orvix-waits"))
        return;
    GstElement *element = gst_pad_get_parent_element(source);
    if (isGlue(element)) {
        if (GST_OBJECT_FLAG_IS_SET(element, GST_ELEMENT_FLAG_SOURCE))
            rememberSource(element);
        g_object_set_data(G_OBJECT(source), "orvix-waits", GINT_TO_POINTER(1));
        qCDebug(lcRecording) << "data waits for a starting peer at" << GST_OBJECT_NAME(element) << GST_OBJECT_NAME(source);
        gst_pad_add_probe(source, GST_PAD_PROBE_TYPE_DATA_DOWNSTREAM, waitForRunningPeer, nullptr, nullptr);
    }
    if (element)
        gst_object_unref(element);
}

bool madeBy(GstPad *pad, const char *factoryName)
{
    GstElement *element = gst_pad_get_parent_element(pad);
    GstElementFactory *factory = element ? gst_element_get_factory(element) : nullptr;
    const bool made = factory && g_str_equal(gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)), factoryName);
    if (element)
        gst_object_unref(element);
    return made;
}

// The live view's perf log tells how old frames are when shown: their time
// stamps count from the pipeline's base time, which a pause moves. Only the
// system's monotonic clock is the one the view can read.
GstPadProbeReturn noteClockBase(GstPad *pad, GstPadProbeInfo *, gpointer)
{
    GstElement *sink = gst_pad_get_parent_element(pad);
    if (!sink)
        return GST_PAD_PROBE_OK;
    qint64 base = -1;
    if (GstClock *clock = gst_element_get_clock(sink)) {
        GstClockType type = GST_CLOCK_TYPE_REALTIME;
        if (GST_IS_SYSTEM_CLOCK(clock))
            g_object_get(clock, "clock-type", &type, nullptr);
        if (type == GST_CLOCK_TYPE_MONOTONIC)
            base = qint64(gst_element_get_base_time(sink));
        gst_object_unref(clock);
    }
    LiveFramePipeline::setClockBase(base);
    gst_object_unref(sink);
    return GST_PAD_PROBE_OK;
}

// A live picture is shown the moment it arrives. Qt's video sink otherwise
// holds each frame until the pipeline's latency has passed on the clock:
// the camera's frame period and the sink's 20 ms processing deadline, some
// 50 ms in all, for a picture that is ready in under 10. A movie played
// from storage keeps its pace: only a pipeline whose source is live is
// changed, which the first frame's latency query tells.
GstPadProbeReturn showOnArrivalIfLive(GstPad *pad, GstPadProbeInfo *, gpointer)
{
    GstQuery *query = gst_query_new_latency();
    gboolean live = FALSE;
    if (gst_pad_peer_query(pad, query))
        gst_query_parse_latency(query, &live, nullptr, nullptr);
    gst_query_unref(query);
    if (live) {
        GstElement *sink = gst_pad_get_parent_element(pad);
        if (sink) {
            g_object_set(sink, "sync", FALSE, nullptr);
            qCDebug(lcRecording) << "live pictures shown on arrival at" << GST_OBJECT_NAME(sink);
            gst_object_unref(sink);
        }
        gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, noteClockBase, nullptr, nullptr);
    }
    return GST_PAD_PROBE_REMOVE;
}

void watchLiveViewSink(GstPad *pad)
{
    GstElement *element = gst_pad_get_parent_element(pad);
    if (!element)
        return;
    if (g_str_equal(G_OBJECT_TYPE_NAME(element), "QGstVideoRendererSink"))
        gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, showOnArrivalIfLive, nullptr, nullptr);
    gst_object_unref(element);
}

// A recording's sound branch just linked to its encoder: silence fills in
// where the microphone falls behind. A live view's sink is watched too.
void padLinked(GObject *, GstClockTime, GstPad *source, GstPad *sink, GstPadLinkReturn result)
{
    if (result == GST_PAD_LINK_OK)
        watchLiveViewSink(sink);
    if (result != GST_PAD_LINK_OK || !madeBy(sink, "encodebin"))
        return;
    if (g_str_has_prefix(GST_OBJECT_NAME(sink), "audio"))
        SilenceFeeder::watch(source, sink);
    else if (g_str_has_prefix(GST_OBJECT_NAME(sink), "video"))
        SilenceFeeder::watchPicture(sink);
}

// The file writer keeps a few kilobytes in a buffer of its own, which a
// killed program never writes: the last fragment on disk would end short.
// Unbuffered, each finished fragment is in the system's hands at once.
void elementMade(GObject *, GstClockTime, GstElement *element)
{
    GstElementFactory *factory = gst_element_get_factory(element);
    if (factory && g_str_equal(gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)), "filesink"))
        gst_util_set_object_arg(G_OBJECT(element), "buffer-mode", "unbuffered");
    // A microphone must not be the clock that the camera, the live view and
    // the recording keep time by: one that stops, or hands out its sound in
    // bursts, would hold all of them up. Its sound follows the system clock.
    // Its ring buffer holds 0.2 s by default: of a microphone that hands
    // out its sound in blocks of seconds, all but the last 0.2 s of each
    // block was overwritten before it was read. It holds the muxer's wait.
    if (factory && g_str_equal(gst_plugin_feature_get_name(GST_PLUGIN_FEATURE(factory)), "pulsesrc"))
    {
        g_object_set(element, "provide-clock", FALSE, "buffer-time",
                     gint64(RecordingElements::lateSoundMilliseconds) * 1000, nullptr);
        gst_util_set_object_arg(G_OBJECT(element), "slave-method", "re-timestamp");
    }
}

// The links and elements are made by Qt, out of reach; a tracer hears of
// every one.
void sourceWatcherInit(GTypeInstance *instance, gpointer)
{
    gst_tracing_register_hook(GST_TRACER(instance), "pad-link-pre", G_CALLBACK(padLinking));
    gst_tracing_register_hook(GST_TRACER(instance), "pad-link-post", G_CALLBACK(padLinked));
    gst_tracing_register_hook(GST_TRACER(instance), "element-new", G_CALLBACK(elementMade));
}

void watchLinks()
{
    GTypeQuery query;
    g_type_query(GST_TYPE_TRACER, &query);
    GTypeInfo info = {};
    info.class_size = guint16(query.class_size);
    info.instance_size = guint16(query.instance_size);
    info.instance_init = sourceWatcherInit;
    const GType type = g_type_register_static(GST_TYPE_TRACER, "OrvixLinkWatcher", &info, GTypeFlags(0));
    // Lives as long as the process.
    g_object_new(type, nullptr);
}

// Every muxer made, to find the ones Qt keeps (see releaseKeptMuxers).
struct TrackedMuxer
{
    GWeakRef ref;
    gint64 outSince = 0;
};
std::mutex muxersLock;
std::vector<TrackedMuxer *> muxers;
std::atomic<int> muxersAlive { 0 };
std::atomic<bool> muxersFreedByQt { false };
// Set while this code drops the reference Qt kept, on the thread that does.
thread_local bool releasingKeptMuxer = false;

void muxerFinalize(GObject *object)
{
    --muxersAlive;
    if (!releasingKeptMuxer)
        muxersFreedByQt = true;
    muxerParentClass->finalize(object);
}

void muxerConstructed(GObject *object)
{
    if (muxerParentClass->constructed)
        muxerParentClass->constructed(object);
    ++muxersAlive;
    {
        std::lock_guard<std::mutex> locked(muxersLock);
        auto *tracked = new TrackedMuxer;
        g_weak_ref_init(&tracked->ref, object);
        muxers.push_back(tracked);
    }
    // Plain fragments, each playable as soon as it is on disk. The mode that
    // rewrites the file into an unfragmented one at the end writes MP3 sound
    // that no player can open after a crash.
    g_object_set(object, "fragment-duration", guint(RecordingElements::fragmentMilliseconds), nullptr);
    gst_util_set_object_arg(object, "fragment-mode", "dash-or-mss");
    // Sound that comes a little late goes into the file at its time; the
    // picture waits for it in the muxer, as encoded frames, no longer.
    g_object_set(object, "latency", GstClockTime(RecordingElements::lateSoundMilliseconds) * GST_MSECOND, nullptr);
}

// Replaces a stock element's pad template by one of the same name that
// takes less.
void narrowPadTemplate(gpointer klass, const char *name, const char *capsText)
{
    auto *elementClass = GST_ELEMENT_CLASS(klass);
    GstPadTemplate *stock = gst_element_class_get_pad_template(elementClass, name);
    if (!stock)
        return;
    GstCaps *caps = gst_caps_from_string(capsText);
    const GType padType = GST_PAD_TEMPLATE_GTYPE(stock);
    GstPadTemplate *narrowed = padType == G_TYPE_NONE
            ? gst_pad_template_new(name, GST_PAD_TEMPLATE_DIRECTION(stock), GST_PAD_TEMPLATE_PRESENCE(stock), caps)
            : gst_pad_template_new_with_gtype(name, GST_PAD_TEMPLATE_DIRECTION(stock),
                                              GST_PAD_TEMPLATE_PRESENCE(stock), caps, padType);
    gst_caps_unref(caps);
    gst_element_class_add_pad_template(elementClass, narrowed);
}

void muxerClassInit(gpointer klass, gpointer)
{
    muxerParentClass = G_OBJECT_CLASS(g_type_class_peek_parent(klass));
    G_OBJECT_CLASS(klass)->constructed = muxerConstructed;
    G_OBJECT_CLASS(klass)->finalize = muxerFinalize;

    // Only 4:2:0 profiles on the video input: the encoder then agrees on
    // High 4:2:0 instead of following the camera's 4:2:2.
    narrowPadTemplate(klass, "video_%u",
                      "video/x-h264, stream-format=(string)avc, alignment=(string)au, "
                      "profile=(string){ constrained-baseline, baseline, main, high }, "
                      "width=(int)[ 16, MAX ], height=(int)[ 16, MAX ]");
}

// The encoder's threads work a little below the live view and the X server.
// On a loaded machine they otherwise take the one free core just when a
// picture is on its way to the screen, for each frame at once. At nice 5
// they still get their share next to busy processes, and the file keeps
// its frame rate with both cores taken.
using RecordingElements::encoderThreadsNice;
// The encoder starts its threads when it learns the picture's format, at
// the latest with the first frame; they are looked for a little longer.
constexpr int encoderThreadSearchFrames = 30;

struct EncoderThreads
{
    std::vector<long> before;
    int framesLeft = 0;
};

// Runs on the streaming thread that feeds the encoder, which is the thread
// that starts the encoder's own and gives them its name.
GstPadProbeReturn lowerEncoderThreads(GstPad *pad, GstPadProbeInfo *info, gpointer data)
{
    auto *threads = static_cast<EncoderThreads *>(data);
    if (GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM) {
        if (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) == GST_EVENT_CAPS) {
            threads->before = threadsNamedLikeThisOne();
            threads->framesLeft = encoderThreadSearchFrames;
        }
        return GST_PAD_PROBE_OK;
    }
    if (threads->framesLeft <= 0)
        return GST_PAD_PROBE_OK;
    --threads->framesLeft;
    int lowered = 0;
    for (long id : threadsNamedLikeThisOne()) {
        if (std::find(threads->before.begin(), threads->before.end(), id) == threads->before.end()
                && lowerThread(id, encoderThreadsNice))
            ++lowered;
    }
    if (lowered > 0) {
        qCDebug(lcRecording) << "encoder threads at nice" << encoderThreadsNice << ":" << lowered
                             << "at" << GST_OBJECT_NAME(GST_OBJECT_PARENT(pad));
        threads->framesLeft = 0;
    }
    return GST_PAD_PROBE_OK;
}

void encoderConstructed(GObject *object)
{
    if (encoderParentClass->constructed)
        encoderParentClass->constructed(object);
    if (GstPad *sink = gst_element_get_static_pad(GST_ELEMENT(object), "sink")) {
        gst_pad_add_probe(sink, GstPadProbeType(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM),
                          lowerEncoderThreads, new EncoderThreads,
                          [](gpointer data) { delete static_cast<EncoderThreads *>(data); });
        gst_object_unref(sink);
    }
    gst_util_set_object_arg(object, "speed-preset", RecordingElements::speedPreset);
    gst_util_set_object_arg(object, "tune", RecordingElements::tune);
    g_object_set(object, "bitrate", guint(RecordingElements::bitrateKbit),
                 "key-int-max", guint(RecordingElements::keyframeInterval), nullptr);
}

void encoderClassInit(gpointer klass, gpointer)
{
    encoderParentClass = G_OBJECT_CLASS(g_type_class_peek_parent(klass));
    G_OBJECT_CLASS(klass)->constructed = encoderConstructed;
}

void soundEncoderConstructed(GObject *object)
{
    if (soundEncoderParentClass->constructed)
        soundEncoderParentClass->constructed(object);
    gst_util_set_object_arg(object, "target", "bitrate");
    g_object_set(object, "bitrate", gint(RecordingElements::soundBitrateKbit), "cbr", TRUE, nullptr);
}

void soundEncoderClassInit(gpointer klass, gpointer)
{
    soundEncoderParentClass = G_OBJECT_CLASS(g_type_class_peek_parent(klass));
    G_OBJECT_CLASS(klass)->constructed = soundEncoderConstructed;
    // Only the rates MP3 in an MP4 may have for an archive: the recorder
    // resamples anything else.
    narrowPadTemplate(klass, "sink",
                      "audio/x-raw, format=(string)S16LE, layout=(string)interleaved, "
                      "rate=(int){ 32000, 44100, 48000 }, channels=(int)1; "
                      "audio/x-raw, format=(string)S16LE, layout=(string)interleaved, "
                      "rate=(int){ 32000, 44100, 48000 }, channels=(int)2, channel-mask=(bitmask)0x3");
}

bool registerSubclass(const char *stockName, const char *typeName, const char *name, GClassInitFunc classInit)
{
    GstElementFactory *factory = gst_element_factory_find(stockName);
    if (!factory) {
        qCWarning(lcRecording) << "GStreamer element" << stockName << "is missing; recordings use the defaults";
        return false;
    }
    auto *loaded = GST_ELEMENT_FACTORY(gst_plugin_feature_load(GST_PLUGIN_FEATURE(factory)));
    gst_object_unref(factory);
    if (!loaded)
        return false;
    const GType parent = gst_element_factory_get_element_type(loaded);
    gst_object_unref(loaded);

    GTypeQuery query;
    g_type_query(parent, &query);
    GTypeInfo info = {};
    info.class_size = guint16(query.class_size);
    info.class_init = classInit;
    info.instance_size = guint16(query.instance_size);
    const GType type = g_type_register_static(parent, typeName, &info, GTypeFlags(0));
    return type != 0 && gst_element_register(nullptr, name, elementRank, type);
}

} // namespace

namespace RecordingElements {

bool install()
{
    static bool installed = false;
    static std::once_flag once;
    std::call_once(once, [] {
        if (!gst_is_initialized() && !gst_init_check(nullptr, nullptr, nullptr))
            return;
        watchLinks();
        const bool muxer = registerSubclass("mp4mux", "OrvixMp4Mux", muxerName, muxerClassInit);
        const bool encoder = registerSubclass("x264enc", "OrvixX264Enc", encoderName, encoderClassInit);
        // Without it the sound is recorded at a varying rate, as before.
        registerSubclass("lamemp3enc", "OrvixLameMp3Enc", RecordingElements::soundEncoderName, soundEncoderClassInit);
        installed = muxer && encoder;
    });
    return installed;
}

int revivedSources()
{
    std::lock_guard<std::mutex> locked(sourcesLock);
    return revivedTotal;
}

int reviveStoppedSources()
{
    std::lock_guard<std::mutex> locked(sourcesLock);
    int revived = 0;
    for (auto it = sources.begin(); it != sources.end();) {
        auto *element = static_cast<GstElement *>(g_weak_ref_get(*it));
        if (!element) {
            g_weak_ref_clear(*it);
            delete *it;
            it = sources.erase(it);
            continue;
        }
        GstState state = GST_STATE_NULL;
        gst_element_get_state(element, &state, nullptr, 0);
        GstPad *pad = gst_element_get_static_pad(element, "src");
        GstTask *task = pad ? GST_PAD_TASK(pad) : nullptr;
        if (state == GST_STATE_PLAYING && task && gst_task_get_state(task) == GST_TASK_PAUSED) {
            qCWarning(lcRecording) << "setting the stopped source" << GST_OBJECT_NAME(element) << "going again";
            gst_element_set_state(element, GST_STATE_READY);
            gst_element_sync_state_with_parent(element);
            ++revived;
            ++revivedTotal;
        }
        if (pad)
            gst_object_unref(pad);
        gst_object_unref(element);
        ++it;
    }
    return revived;
}

int releaseKeptMuxers(qint64 quietMsec)
{
    std::lock_guard<std::mutex> locked(muxersLock);
    int released = 0;
    const gint64 now = g_get_monotonic_time();
    const auto forget = [](std::vector<TrackedMuxer *>::iterator it) {
        g_weak_ref_clear(&(*it)->ref);
        delete *it;
        return muxers.erase(it);
    };
    for (auto it = muxers.begin(); it != muxers.end();) {
        auto *muxer = static_cast<GstElement *>(g_weak_ref_get(&(*it)->ref));
        if (!muxer || muxersFreedByQt) {
            if (muxer)
                gst_object_unref(muxer);
            it = forget(it);
            continue;
        }
        GST_OBJECT_LOCK(muxer);
        const bool out = !GST_OBJECT_PARENT(muxer) && GST_STATE(muxer) == GST_STATE_NULL;
        GST_OBJECT_UNLOCK(muxer);
        if (!out) {
            (*it)->outSince = 0;
        } else if ((*it)->outSince == 0) {
            (*it)->outSince = now;
        } else if (now - (*it)->outSince >= quietMsec * 1000
                   && g_atomic_int_get(&G_OBJECT(muxer)->ref_count) == 2) {
            // Ours from the weak reference, and the one Qt kept: a muxer out
            // of its bin and stopped this long has no holder besides.
            releasingKeptMuxer = true;
            gst_object_unref(muxer);
            gst_object_unref(muxer);
            releasingKeptMuxer = false;
            ++released;
            it = forget(it);
            continue;
        }
        gst_object_unref(muxer);
        ++it;
    }
    if (released)
        qCDebug(lcRecording) << "let go of" << released << "muxers the recorder kept";
    return released;
}

int liveMuxers()
{
    return muxersAlive;
}

void stopFeedingSilence()
{
    SilenceFeeder::stopAll();
}

int silenceBuffersFed()
{
    return SilenceFeeder::buffersFed();
}

} // namespace RecordingElements

#else

namespace RecordingElements {
bool install()
{
    return false;
}
int reviveStoppedSources()
{
    return 0;
}
int revivedSources()
{
    return 0;
}
int releaseKeptMuxers(qint64)
{
    return 0;
}
int liveMuxers()
{
    return 0;
}
void stopFeedingSilence()
{
}
int silenceBuffersFed()
{
    return 0;
}
} // namespace RecordingElements

#endif
