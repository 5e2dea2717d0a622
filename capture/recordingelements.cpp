// GStreamer elements of our own under Qt's recorder.
#include "recordingelements.h"

#include "app/orvixlogging.h"

#ifdef ORVIX_HAVE_GSTREAMER

#include <mutex>

#include <gst/gst.h>

namespace {

// Above the stock elements' primary rank, so that encodebin prefers ours.
constexpr int elementRank = GST_RANK_PRIMARY + 100;

GObjectClass *muxerParentClass = nullptr;
GObjectClass *encoderParentClass = nullptr;

void muxerConstructed(GObject *object)
{
    if (muxerParentClass->constructed)
        muxerParentClass->constructed(object);
    // Plain fragments, each playable as soon as it is on disk. The mode that
    // rewrites the file into an unfragmented one at the end writes MP3 sound
    // that no player can open after a crash.
    g_object_set(object, "fragment-duration", guint(RecordingElements::fragmentMilliseconds), nullptr);
    gst_util_set_object_arg(object, "fragment-mode", "dash-or-mss");
}

void muxerClassInit(gpointer klass, gpointer)
{
    muxerParentClass = G_OBJECT_CLASS(g_type_class_peek_parent(klass));
    G_OBJECT_CLASS(klass)->constructed = muxerConstructed;

    // Only 4:2:0 profiles on the video input: the encoder then agrees on
    // High 4:2:0 instead of following the camera's 4:2:2.
    auto *elementClass = GST_ELEMENT_CLASS(klass);
    GstPadTemplate *stock = gst_element_class_get_pad_template(elementClass, "video_%u");
    if (!stock)
        return;
    GstCaps *caps = gst_caps_from_string(
            "video/x-h264, stream-format=(string)avc, alignment=(string)au, "
            "profile=(string){ constrained-baseline, baseline, main, high }, "
            "width=(int)[ 16, MAX ], height=(int)[ 16, MAX ]");
    GstPadTemplate *only420 = gst_pad_template_new_with_gtype(
            "video_%u", GST_PAD_SINK, GST_PAD_REQUEST, caps, GST_PAD_TEMPLATE_GTYPE(stock));
    gst_caps_unref(caps);
    // Replaces the template of the same name.
    gst_element_class_add_pad_template(elementClass, only420);
}

void encoderConstructed(GObject *object)
{
    if (encoderParentClass->constructed)
        encoderParentClass->constructed(object);
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
        const bool muxer = registerSubclass("mp4mux", "OrvixMp4Mux", muxerName, muxerClassInit);
        const bool encoder = registerSubclass("x264enc", "OrvixX264Enc", encoderName, encoderClassInit);
        installed = muxer && encoder;
    });
    return installed;
}

} // namespace RecordingElements

#else

namespace RecordingElements {
bool install()
{
    return false;
}
} // namespace RecordingElements

#endif
