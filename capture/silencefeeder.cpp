// Silence for a recording whose microphone has not delivered yet.
#include "silencefeeder.h"

#ifdef ORVIX_HAVE_GSTREAMER

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "app/orvixlogging.h"
#include "capture/recordingelements.h"

namespace {

// A microphone's sound may come in blocks of up to two seconds; only where
// none came for longer than this is there silence to fill in, before the
// muxer stops waiting for it...
constexpr GstClockTime staleAfter = (RecordingElements::lateSoundMilliseconds - 500) * GST_MSECOND;
// ...up to this far behind the clock, leaving room for the microphone's
// next buffer.
constexpr GstClockTime fillBehind = staleAfter - 500 * GST_MSECOND;
constexpr auto tick = std::chrono::milliseconds(100);
// Sound stamped from the clock jitters with the machine's load: a gap or an
// overlap up to this is the stamp's, not the microphone's, and left alone.
constexpr GstClockTime gapTolerance = 100 * GST_MSECOND;

std::atomic<int> fedTotal { 0 };
// Where the newest recording's picture ends, as running time.
std::atomic<GstClockTime> pictureEnd { GST_CLOCK_TIME_NONE };

struct Format
{
    int rate = 0;
    int bytesPerFrame = 0;
    guint8 silence = 0;
};

// The raw formats a microphone delivers. Signed and floating-point samples
// are silent at zero, unsigned bytes at their middle.
bool formatOf(const GstCaps *caps, Format &format)
{
    const GstStructure *structure = gst_caps_get_structure(caps, 0);
    const gchar *name = structure ? gst_structure_get_string(structure, "format") : nullptr;
    int channels = 0;
    if (!name || !gst_structure_has_name(structure, "audio/x-raw")
        || !gst_structure_get_int(structure, "rate", &format.rate)
        || !gst_structure_get_int(structure, "channels", &channels) || format.rate <= 0 || channels <= 0)
        return false;
    static const struct
    {
        const char *prefix;
        int bytes;
        guint8 silence;
    } samples[] = { { "S24_32", 4, 0 }, { "S16", 2, 0 }, { "S24", 3, 0 }, { "S32", 4, 0 }, { "F32", 4, 0 },
                    { "F64", 8, 0 },    { "S8", 1, 0 },  { "U8", 1, 0x80 } };
    for (const auto &sample : samples) {
        if (g_str_has_prefix(name, sample.prefix)) {
            format.bytesPerFrame = sample.bytes * channels;
            format.silence = sample.silence;
            return true;
        }
    }
    return false;
}

GstClockTime runningTime(GstElement *element)
{
    if (GST_STATE(element) != GST_STATE_PLAYING)
        return GST_CLOCK_TIME_NONE;
    GstClock *clock = gst_element_get_clock(element);
    if (!clock)
        return GST_CLOCK_TIME_NONE;
    const GstClockTime now = gst_clock_get_time(clock);
    gst_object_unref(clock);
    const GstClockTime base = gst_element_get_base_time(element);
    return now >= base ? now - base : GST_CLOCK_TIME_NONE;
}

// The pad's time segment, or false.
bool segmentOf(GstPad *pad, GstSegment &segment)
{
    GstEvent *event = gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0);
    if (!event)
        return false;
    const GstSegment *current = nullptr;
    gst_event_parse_segment(event, &current);
    segment = *current;
    gst_event_unref(event);
    return segment.format == GST_FORMAT_TIME;
}

// The nearest pad upstream of `pad`, itself included, that knows the
// sound's format: the branch's own queue and filter learn it only from the
// first data that passes them. Null when none does yet.
GstPad *formatKnownUpstream(GstPad *pad)
{
    pad = GST_PAD(gst_object_ref(pad));
    for (int step = 0; step < 8 && pad && !gst_pad_has_current_caps(pad); ++step) {
        GstElement *element = gst_pad_get_parent_element(pad);
        GstPad *input = element ? gst_element_get_static_pad(element, "sink") : nullptr;
        GstPad *upstream = input ? gst_pad_get_peer(input) : nullptr;
        if (input)
            gst_object_unref(input);
        if (element)
            gst_object_unref(element);
        gst_object_unref(pad);
        pad = upstream;
    }
    if (pad && !gst_pad_has_current_caps(pad)) {
        gst_object_unref(pad);
        pad = nullptr;
    }
    return pad;
}

// `frames` of silence at `position`, marked as following a gap.
GstBuffer *silence(const Format &format, GstClockTime position, guint64 frames)
{
    const gsize size = gsize(frames) * gsize(format.bytesPerFrame);
    GstBuffer *buffer = gst_buffer_new_allocate(nullptr, size, nullptr);
    GstMapInfo map;
    if (gst_buffer_map(buffer, &map, GST_MAP_WRITE)) {
        std::memset(map.data, format.silence, map.size);
        gst_buffer_unmap(buffer, &map);
    }
    GST_BUFFER_PTS(buffer) = position;
    GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale(frames, GST_SECOND, guint64(format.rate));
    GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
    return buffer;
}

// What the feeder and the probe on its pad share; the probe keeps its own
// reference, as it may run once more after the feeder is gone.
struct Shared
{
    // The running time at which the sound that passed the pad ends.
    std::atomic<GstClockTime> soundEnd { GST_CLOCK_TIME_NONE };
    // When the branch was linked: the recording's sound starts there.
    std::atomic<GstClockTime> linked { GST_CLOCK_TIME_NONE };
    std::atomic<bool> stopping { false };
    std::mutex lock;
    std::condition_variable wake;
};

// Keeps the sound that passes `pad` one gapless line from the link on:
// sound that comes after a stretch with none gets silence before it (else
// the encoder would close the gap and put it early, out of step with the
// picture), and sound for a time already filled with silence is dropped.
GstPadProbeReturn soundPassed(GstPad *pad, GstPadProbeInfo *info, gpointer data)
{
    GstBuffer *first = nullptr;
    GstBuffer *last = nullptr;
    const bool single = GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER;
    if (single) {
        first = last = GST_PAD_PROBE_INFO_BUFFER(info);
    } else if (GstBufferList *list = GST_PAD_PROBE_INFO_BUFFER_LIST(info)) {
        const guint length = gst_buffer_list_length(list);
        first = length > 0 ? gst_buffer_list_get(list, 0) : nullptr;
        last = length > 0 ? gst_buffer_list_get(list, length - 1) : nullptr;
    }
    GstSegment segment;
    if (!first || !GST_BUFFER_PTS_IS_VALID(first) || !GST_BUFFER_PTS_IS_VALID(last) || !segmentOf(pad, segment))
        return GST_PAD_PROBE_OK;
    const GstClockTime start = gst_segment_to_running_time(&segment, GST_FORMAT_TIME, GST_BUFFER_PTS(first));
    GstClockTime end = gst_segment_to_running_time(&segment, GST_FORMAT_TIME, GST_BUFFER_PTS(last));
    if (!GST_CLOCK_TIME_IS_VALID(start) || !GST_CLOCK_TIME_IS_VALID(end))
        return GST_PAD_PROBE_OK;
    end += GST_BUFFER_DURATION_IS_VALID(last) ? GST_BUFFER_DURATION(last) : 0;
    Shared &shared = **static_cast<std::shared_ptr<Shared> *>(data);
    GstClockTime known = shared.soundEnd;
    if (!GST_CLOCK_TIME_IS_VALID(known)) {
        known = shared.linked;
        if (GST_CLOCK_TIME_IS_VALID(known))
            qCDebug(lcRecording) << "first sound" << (double(start) - double(known)) / GST_SECOND << "s after the link";
    }
    if (GST_CLOCK_TIME_IS_VALID(known)) {
        if (single && end <= known)
            return GST_PAD_PROBE_DROP;
        // What came before the link, or before sound already there, is cut.
        if (single && start + gapTolerance < known) {
            GstCaps *caps = gst_pad_get_current_caps(pad);
            Format format;
            if (caps && formatOf(caps, format)) {
                const guint64 frames = gst_util_uint64_scale(known - start, guint64(format.rate), GST_SECOND);
                const gsize bytes = gsize(frames) * gsize(format.bytesPerFrame);
                if (bytes < gst_buffer_get_size(first)) {
                    first = gst_buffer_make_writable(first);
                    GST_PAD_PROBE_INFO_DATA(info) = first;
                    gst_buffer_resize(first, gssize(bytes), -1);
                    const GstClockTime cut = gst_util_uint64_scale(frames, GST_SECOND, guint64(format.rate));
                    GST_BUFFER_PTS(first) += cut;
                    if (GST_BUFFER_DURATION_IS_VALID(first))
                        GST_BUFFER_DURATION(first) -= std::min(cut, GST_BUFFER_DURATION(first));
                }
            }
            if (caps)
                gst_caps_unref(caps);
        }
        if (start > known + gapTolerance) {
            GstCaps *caps = gst_pad_get_current_caps(pad);
            Format format;
            if (caps && formatOf(caps, format)) {
                const GstClockTime position = gst_segment_position_from_running_time(&segment, GST_FORMAT_TIME, known);
                const guint64 frames = gst_util_uint64_scale(start - known, guint64(format.rate), GST_SECOND);
                if (GST_CLOCK_TIME_IS_VALID(position) && frames > 0) {
                    ++fedTotal;
                    // Passes this probe first, and ends where this sound starts.
                    gst_pad_push(pad, silence(format, position, frames));
                }
            }
            if (caps)
                gst_caps_unref(caps);
        }
    }
    auto &soundEnd = shared.soundEnd;
    known = soundEnd;
    while ((!GST_CLOCK_TIME_IS_VALID(known) || end > known) && !soundEnd.compare_exchange_weak(known, end)) { }
    return GST_PAD_PROBE_OK;
}

GstPadProbeReturn picturePassed(GstPad *pad, GstPadProbeInfo *info, gpointer)
{
    GstBuffer *buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    GstSegment segment;
    if (!buffer || !GST_BUFFER_PTS_IS_VALID(buffer) || !segmentOf(pad, segment))
        return GST_PAD_PROBE_OK;
    const GstClockTime start = gst_segment_to_running_time(&segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    if (GST_CLOCK_TIME_IS_VALID(start))
        pictureEnd = start + (GST_BUFFER_DURATION_IS_VALID(buffer) ? GST_BUFFER_DURATION(buffer) : 0);
    return GST_PAD_PROBE_OK;
}

// The recording stops: the sound that the microphone still holds back
// cannot reach the file any more, and the picture goes on to the stop.
// Silence from the sound's end to the stop goes in before the end, so that
// the sound ends with the picture.
GstPadProbeReturn soundEnds(GstPad *encoderPad, GstPadProbeInfo *info, gpointer data)
{
    GstEvent *event = GST_PAD_PROBE_INFO_EVENT(info);
    if (!event || GST_EVENT_TYPE(event) != GST_EVENT_EOS)
        return GST_PAD_PROBE_OK;
    const GstClockTime end = (*static_cast<std::shared_ptr<Shared> *>(data))->soundEnd;
    GstElement *element = gst_pad_get_parent_element(encoderPad);
    GstClockTime stop = element ? runningTime(element) : GST_CLOCK_TIME_NONE;
    // The picture stopped a moment before: the sound ends with it.
    const GstClockTime lastPicture = pictureEnd;
    if (GST_CLOCK_TIME_IS_VALID(lastPicture) && GST_CLOCK_TIME_IS_VALID(stop))
        stop = std::min(stop, lastPicture);
    if (element)
        gst_object_unref(element);
    GstSegment segment;
    GstCaps *caps = gst_pad_get_current_caps(encoderPad);
    Format format;
    const bool known = caps && formatOf(caps, format);
    if (caps)
        gst_caps_unref(caps);
    if (!known || !GST_CLOCK_TIME_IS_VALID(end) || !GST_CLOCK_TIME_IS_VALID(stop) || stop <= end + 100 * GST_MSECOND
        || !segmentOf(encoderPad, segment))
        return GST_PAD_PROBE_OK;
    const GstClockTime position = gst_segment_position_from_running_time(&segment, GST_FORMAT_TIME, end);
    const guint64 frames = gst_util_uint64_scale(stop - end, guint64(format.rate), GST_SECOND);
    if (GST_CLOCK_TIME_IS_VALID(position) && frames > 0) {
        ++fedTotal;
        qCDebug(lcRecording) << "the sound ends" << double(stop - end) / GST_SECOND << "s before the stop; silence to it";
        gst_pad_chain(encoderPad, silence(format, position, frames));
    }
    return GST_PAD_PROBE_OK;
}

class Feeder
{
public:
    Feeder(GstPad *source, GstPad *encoderPad)
        : pad(GST_PAD(gst_object_ref(source)))
        , encoderPad(GST_PAD(gst_object_ref(encoderPad)))
    {
        probe = gst_pad_add_probe(pad, GstPadProbeType(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_BUFFER_LIST),
                                  soundPassed, new std::shared_ptr<Shared>(shared),
                                  [](gpointer data) { delete static_cast<std::shared_ptr<Shared> *>(data); });
        endProbe = gst_pad_add_probe(this->encoderPad, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, soundEnds,
                                     new std::shared_ptr<Shared>(shared),
                                     [](gpointer data) { delete static_cast<std::shared_ptr<Shared> *>(data); });
        thread = std::thread([this] { run(); });
    }

    ~Feeder()
    {
        stop();
        thread.join();
        gst_pad_remove_probe(pad, probe);
        gst_pad_remove_probe(encoderPad, endProbe);
        gst_object_unref(pad);
        gst_object_unref(encoderPad);
        if (feedPad)
            gst_object_unref(feedPad);
    }

    void stop()
    {
        std::lock_guard<std::mutex> locked(shared->lock);
        shared->stopping = true;
        shared->wake.notify_all();
    }

    bool finished() const { return done; }

private:
    // Sleeps a tick; false when the feeder is to end.
    bool pause()
    {
        std::unique_lock<std::mutex> locked(shared->lock);
        shared->wake.wait_for(locked, tick, [this] { return shared->stopping.load(); });
        return !shared->stopping && gst_pad_is_linked(encoderPad);
    }

    void run()
    {
        if (GstElement *element = gst_pad_get_parent_element(pad)) {
            // Until the first sound passes, the recording's sound starts at
            // the link.
            GstClockTime linked = runningTime(element);
            shared->linked = linked;
            bool keepGoing = pause();
            while (keepGoing) {
                const GstClockTime now = runningTime(element);
                GstClockTime end = shared->soundEnd;
                if (!GST_CLOCK_TIME_IS_VALID(linked) && GST_CLOCK_TIME_IS_VALID(now))
                    shared->linked = linked = now;
                if (!GST_CLOCK_TIME_IS_VALID(end))
                    end = linked;
                if (GST_CLOCK_TIME_IS_VALID(now) && GST_CLOCK_TIME_IS_VALID(end) && now > end + staleAfter)
                    keepGoing = feed(end, now - fillBehind);
                keepGoing = keepGoing && pause();
            }
            gst_object_unref(element);
        }
        done = true;
    }

    // Pushes silence over [from, to) (running times) into the branch, at the
    // first pad upstream that knows the format; false when nothing more can
    // be fed.
    bool feed(GstClockTime from, GstClockTime to)
    {
        if (!feedPad && !(feedPad = formatKnownUpstream(pad)))
            return true; // nothing has set the branch going yet
        GstCaps *caps = gst_pad_get_current_caps(feedPad);
        Format format;
        const bool known = caps && formatOf(caps, format);
        if (caps)
            gst_caps_unref(caps);
        if (!known) {
            qCWarning(lcRecording) << "the sound's format is not one silence can be made for; none is fed";
            return false;
        }
        // A microphone that has not delivered yet has not begun its segment
        // either: the live source's own, running time as it is, goes first.
        GstSegment segment;
        if (!segmentOf(feedPad, segment)) {
            gst_segment_init(&segment, GST_FORMAT_TIME);
            if (!gst_pad_push_event(feedPad, gst_event_new_segment(&segment)))
                return true;
        }
        const GstClockTime position = gst_segment_position_from_running_time(&segment, GST_FORMAT_TIME, from);
        const guint64 frames = gst_util_uint64_scale(to - from, guint64(format.rate), GST_SECOND);
        if (frames == 0 || !GST_CLOCK_TIME_IS_VALID(position))
            return true;
        const GstFlowReturn result = gst_pad_push(feedPad, silence(format, position, frames));
        if (fedTotal++ == 0 || result != GST_FLOW_OK)
            qCDebug(lcRecording) << "silence fed for a microphone that fell behind:" << gst_flow_get_name(result);
        return result == GST_FLOW_OK;
    }

    // The branch's source pad into the encoder, where the sound is watched.
    GstPad *pad;
    GstPad *encoderPad;
    // Where silence goes in; found at the first need.
    GstPad *feedPad = nullptr;
    gulong probe = 0;
    gulong endProbe = 0;
    std::shared_ptr<Shared> shared = std::make_shared<Shared>();
    std::atomic<bool> done { false };
    std::thread thread;
};

std::mutex feedersLock;
std::vector<std::unique_ptr<Feeder>> feeders;

} // namespace

namespace SilenceFeeder {

void watch(GstPad *source, GstPad *encoderPad)
{
    std::lock_guard<std::mutex> locked(feedersLock);
    // The feeders of earlier files have long ended.
    for (auto it = feeders.begin(); it != feeders.end();)
        it = (*it)->finished() ? feeders.erase(it) : it + 1;
    feeders.push_back(std::make_unique<Feeder>(source, encoderPad));
}

void watchPicture(GstPad *encoderPad)
{
    pictureEnd = GST_CLOCK_TIME_NONE;
    gst_pad_add_probe(encoderPad, GST_PAD_PROBE_TYPE_BUFFER, picturePassed, nullptr, nullptr);
}

void stopAll()
{
    std::vector<std::unique_ptr<Feeder>> ending;
    {
        std::lock_guard<std::mutex> locked(feedersLock);
        ending.swap(feeders);
    }
    for (auto &feeder : ending)
        feeder->stop();
    ending.clear();
}

int buffersFed()
{
    return fedTotal;
}

} // namespace SilenceFeeder

#endif
