/* A GStreamer device provider of virtual cameras for Orvix's tests.
 *
 * The cameras are described by the file named in ORVIX_VIRTUAL_CAMERAS, one
 * line per camera:
 *
 *     description|caps[|id[|pattern]]
 *
 * for example "Orvix Full HD Camera|video/x-raw,format=YUY2,width=1920,
 * height=1080,framerate=30/1; video/x-raw,...". Each caps structure becomes
 * one camera format. Without an id the camera is named "virtual:<description>#<n>"
 * (n counts equal descriptions), so that two identical cameras stay apart.
 * The file is read again every 200 ms while the provider runs: lines that
 * appear plug a camera in, lines that go pull it out. Each camera delivers a
 * live, moving test picture; the pattern "clock" gives one that carries the
 * time each frame was made, for the latency bench.
 */
#define PACKAGE "orvix-test-support"
#include <gst/gst.h>
#include <string.h>

#define POLL_INTERVAL_US (200 * 1000)

/* ---- the device ---- */

typedef struct {
    GstDevice parent;
    gchar *id;
    gchar *line;
    gchar *pattern;
} OrvixVirtualDevice;

typedef struct {
    GstDeviceClass parent_class;
} OrvixVirtualDeviceClass;

GType orvix_virtual_device_get_type(void);
G_DEFINE_TYPE(OrvixVirtualDevice, orvix_virtual_device, GST_TYPE_DEVICE)

/* The "clock" pattern: each frame carries the monotonic time, in
 * microseconds modulo 2^32, at which it left the camera, as 64 blocks of
 * black and white that survive scaling: the 32 bits in the upper two rows,
 * their complements below, so that a picture half drawn over the last one
 * does not read as a time. See orvix_clock_read() in the latency bench. */
#define CLOCK_BLOCK 64
#define CLOCK_COLUMNS 16

/* Where a frame's luma lies, for the formats the cameras offer. */
typedef struct {
    int width, height, stride, step, offset;
} Luma;

static gboolean luma_of(GstPad *pad, Luma *luma)
{
    GstCaps *caps = gst_pad_get_current_caps(pad);
    if (!caps)
        return FALSE;
    const GstStructure *structure = gst_caps_get_structure(caps, 0);
    const gchar *format = gst_structure_get_string(structure, "format");
    gboolean known = format && gst_structure_get_int(structure, "width", &luma->width)
            && gst_structure_get_int(structure, "height", &luma->height);
    if (known && (!strcmp(format, "YUY2") || !strcmp(format, "UYVY"))) {
        luma->stride = GST_ROUND_UP_4(luma->width * 2);
        luma->step = 2;
        luma->offset = !strcmp(format, "UYVY");
    } else if (known && (!strcmp(format, "I420") || !strcmp(format, "NV12") || !strcmp(format, "YV12"))) {
        luma->stride = GST_ROUND_UP_4(luma->width);
        luma->step = 1;
        luma->offset = 0;
    } else {
        known = FALSE;
    }
    gst_caps_unref(caps);
    return known;
}

static void stamp_block(guint8 *data, const Luma *luma, int column, int row, gboolean white)
{
    const int x0 = CLOCK_BLOCK * (1 + column), y0 = CLOCK_BLOCK * (1 + row);
    if (x0 + CLOCK_BLOCK > luma->width || y0 + CLOCK_BLOCK > luma->height)
        return;
    for (int y = y0; y < y0 + CLOCK_BLOCK; ++y) {
        guint8 *pixel = data + (gsize)y * luma->stride + (gsize)x0 * luma->step + luma->offset;
        for (int x = 0; x < CLOCK_BLOCK; ++x, pixel += luma->step)
            *pixel = white ? 235 : 16;
    }
}

static GstPadProbeReturn stamp_time(GstPad *pad, GstPadProbeInfo *info, gpointer data)
{
    (void)data;
    Luma luma;
    if (!luma_of(pad, &luma))
        return GST_PAD_PROBE_OK;
    GstBuffer *buffer = gst_buffer_make_writable(GST_PAD_PROBE_INFO_BUFFER(info));
    GST_PAD_PROBE_INFO_DATA(info) = buffer;
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_WRITE))
        return GST_PAD_PROBE_OK;
    if (map.size >= (gsize)luma.stride * luma.height) {
        const guint32 now = (guint32)g_get_monotonic_time();
        for (int bit = 0; bit < 32; ++bit) {
            const gboolean set = (now >> bit) & 1;
            stamp_block(map.data, &luma, bit % CLOCK_COLUMNS, bit / CLOCK_COLUMNS, set);
            stamp_block(map.data, &luma, bit % CLOCK_COLUMNS, 2 + bit / CLOCK_COLUMNS, !set);
        }
    }
    gst_buffer_unmap(buffer, &map);
    return GST_PAD_PROBE_OK;
}

static GstElement *orvix_virtual_device_create_element(GstDevice *device, const gchar *name)
{
    OrvixVirtualDevice *self = (OrvixVirtualDevice *)device;
    GstElement *source = gst_element_factory_make("videotestsrc", name);
    if (!source)
        return NULL;
    g_object_set(source, "is-live", TRUE, NULL);
    if (!strcmp(self->pattern, "clock")) {
        gst_util_set_object_arg(G_OBJECT(source), "pattern", "black");
        GstPad *pad = gst_element_get_static_pad(source, "src");
        gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, stamp_time, NULL, NULL);
        gst_object_unref(pad);
        return source;
    }
    gst_util_set_object_arg(G_OBJECT(source), "pattern", self->pattern);
    /* A moving picture, so that a frozen view can be told from a live one. */
    g_object_set(source, "horizontal-speed", 3, NULL);
    return source;
}

static void orvix_virtual_device_finalize(GObject *object)
{
    OrvixVirtualDevice *self = (OrvixVirtualDevice *)object;
    g_free(self->id);
    g_free(self->line);
    g_free(self->pattern);
    G_OBJECT_CLASS(orvix_virtual_device_parent_class)->finalize(object);
}

static void orvix_virtual_device_class_init(OrvixVirtualDeviceClass *klass)
{
    GST_DEVICE_CLASS(klass)->create_element = orvix_virtual_device_create_element;
    G_OBJECT_CLASS(klass)->finalize = orvix_virtual_device_finalize;
}

static void orvix_virtual_device_init(OrvixVirtualDevice *self)
{
    (void)self;
}

/* ---- the provider ---- */

typedef struct {
    GstDeviceProvider parent;
    GThread *thread;
    gint stopping;
    GMutex lock;
    GList *devices; /* OrvixVirtualDevice*, owned references */
} OrvixVirtualCameraProvider;

typedef struct {
    GstDeviceProviderClass parent_class;
} OrvixVirtualCameraProviderClass;

GType orvix_virtual_camera_provider_get_type(void);
G_DEFINE_TYPE(OrvixVirtualCameraProvider, orvix_virtual_camera_provider, GST_TYPE_DEVICE_PROVIDER)

/* One parsed line; the device is made from it when it is new. */
typedef struct {
    gchar *id;
    gchar *description;
    gchar *caps;
    gchar *pattern;
    gchar *line;
} CameraLine;

static void camera_line_free(gpointer data)
{
    CameraLine *entry = data;
    g_free(entry->id);
    g_free(entry->description);
    g_free(entry->caps);
    g_free(entry->pattern);
    g_free(entry->line);
    g_free(entry);
}

static GList *read_camera_lines(void)
{
    const gchar *path = g_getenv("ORVIX_VIRTUAL_CAMERAS");
    gchar *contents = NULL;
    if (!path || !g_file_get_contents(path, &contents, NULL, NULL))
        return NULL;

    GHashTable *occurrences = g_hash_table_new_full(g_str_hash, g_str_equal, g_free, NULL);
    GList *entries = NULL;
    gchar **lines = g_strsplit(contents, "\n", -1);
    for (gchar **line = lines; *line; ++line) {
        gchar *text = g_strstrip(g_strdup(*line));
        if (!*text || text[0] == '#') {
            g_free(text);
            continue;
        }
        gchar **fields = g_strsplit(text, "|", 4);
        if (!fields[0] || !fields[1]) {
            g_strfreev(fields);
            g_free(text);
            continue;
        }
        CameraLine *entry = g_new0(CameraLine, 1);
        entry->description = g_strdup(g_strstrip(fields[0]));
        entry->caps = g_strdup(g_strstrip(fields[1]));
        if (fields[2] && *g_strstrip(fields[2])) {
            entry->id = g_strdup(fields[2]);
        } else {
            guint seen = GPOINTER_TO_UINT(g_hash_table_lookup(occurrences, entry->description)) + 1;
            g_hash_table_replace(occurrences, g_strdup(entry->description), GUINT_TO_POINTER(seen));
            entry->id = g_strdup_printf("virtual:%s#%u", entry->description, seen);
        }
        entry->pattern = g_strdup(fields[2] && fields[3] && *g_strstrip(fields[3]) ? fields[3] : "smpte");
        entry->line = g_strdup_printf("%s|%s|%s|%s", entry->description, entry->caps, entry->id, entry->pattern);
        entries = g_list_append(entries, entry);
        g_strfreev(fields);
        g_free(text);
    }
    g_strfreev(lines);
    g_hash_table_destroy(occurrences);
    g_free(contents);
    return entries;
}

static OrvixVirtualDevice *make_device(const CameraLine *entry)
{
    GstCaps *caps = gst_caps_from_string(entry->caps);
    if (!caps) {
        g_warning("orvix virtual camera: cannot parse caps of %s", entry->description);
        return NULL;
    }
    GstStructure *properties = gst_structure_new("orvix-virtual-camera",
                                                 "device.path", G_TYPE_STRING, entry->id,
                                                 "device.api", G_TYPE_STRING, "orvix-virtual", NULL);
    OrvixVirtualDevice *device = g_object_new(orvix_virtual_device_get_type(),
                                              "display-name", entry->description,
                                              "device-class", "Video/Source",
                                              "caps", caps,
                                              "properties", properties, NULL);
    device->id = g_strdup(entry->id);
    device->line = g_strdup(entry->line);
    device->pattern = g_strdup(entry->pattern);
    gst_caps_unref(caps);
    gst_structure_free(properties);
    return device;
}

static gboolean has_line(GList *devices, const gchar *line)
{
    for (GList *it = devices; it; it = it->next) {
        if (!strcmp(((OrvixVirtualDevice *)it->data)->line, line))
            return TRUE;
    }
    return FALSE;
}

/* What gst_device_provider_device_add() does, without posting the message.
 * Qt 6.4 both lists a started monitor's devices and handles the device-added
 * messages posted while it starts, so announcing the start-up cameras would
 * list each of them twice. */
static void add_silently(GstDeviceProvider *provider, GstDevice *device)
{
    GST_OBJECT_LOCK(provider);
    if (!gst_object_set_parent(GST_OBJECT(device), GST_OBJECT(provider))) {
        GST_OBJECT_UNLOCK(provider);
        return;
    }
    provider->devices = g_list_prepend(provider->devices, gst_object_ref(device));
    GST_OBJECT_UNLOCK(provider);
    gst_object_unref(device);
}

typedef enum { QUIETLY, ANNOUNCED, AT_START } Announcement;

/* Brings the provider's devices in line with the control file. */
static void synchronise(OrvixVirtualCameraProvider *self, Announcement announce)
{
    GList *entries = read_camera_lines();

    g_mutex_lock(&self->lock);
    GList *gone = NULL;
    for (GList *it = self->devices; it;) {
        GList *next = it->next;
        gboolean kept = FALSE;
        for (GList *e = entries; e; e = e->next) {
            if (!strcmp(((CameraLine *)e->data)->line, ((OrvixVirtualDevice *)it->data)->line))
                kept = TRUE;
        }
        if (!kept) {
            gone = g_list_append(gone, it->data);
            self->devices = g_list_delete_link(self->devices, it);
        }
        it = next;
    }
    GList *added = NULL;
    for (GList *e = entries; e; e = e->next) {
        const CameraLine *entry = e->data;
        if (has_line(self->devices, entry->line))
            continue;
        OrvixVirtualDevice *device = make_device(entry);
        if (!device)
            continue;
        gst_object_ref_sink(device);
        self->devices = g_list_append(self->devices, device);
        added = g_list_append(added, gst_object_ref(device));
    }
    g_mutex_unlock(&self->lock);

    for (GList *it = gone; it; it = it->next) {
        if (announce == ANNOUNCED)
            gst_device_provider_device_remove(GST_DEVICE_PROVIDER(self), GST_DEVICE(it->data));
        gst_object_unref(it->data);
    }
    for (GList *it = added; it; it = it->next) {
        if (announce == ANNOUNCED)
            gst_device_provider_device_add(GST_DEVICE_PROVIDER(self), GST_DEVICE(it->data));
        else if (announce == AT_START)
            add_silently(GST_DEVICE_PROVIDER(self), GST_DEVICE(it->data));
        gst_object_unref(it->data);
    }
    g_list_free(gone);
    g_list_free(added);
    g_list_free_full(entries, camera_line_free);
}

static gpointer watch_control_file(gpointer data)
{
    OrvixVirtualCameraProvider *self = data;
    while (!g_atomic_int_get(&self->stopping)) {
        g_usleep(POLL_INTERVAL_US);
        synchronise(self, ANNOUNCED);
    }
    return NULL;
}

static GList *orvix_virtual_camera_provider_probe(GstDeviceProvider *provider)
{
    OrvixVirtualCameraProvider *self = (OrvixVirtualCameraProvider *)provider;
    synchronise(self, QUIETLY);
    g_mutex_lock(&self->lock);
    GList *result = NULL;
    for (GList *it = self->devices; it; it = it->next)
        result = g_list_append(result, gst_object_ref(it->data));
    g_mutex_unlock(&self->lock);
    return result;
}

static gboolean orvix_virtual_camera_provider_start(GstDeviceProvider *provider)
{
    OrvixVirtualCameraProvider *self = (OrvixVirtualCameraProvider *)provider;
    synchronise(self, AT_START);
    g_atomic_int_set(&self->stopping, 0);
    self->thread = g_thread_new("orvix-virtual-cameras", watch_control_file, self);
    return TRUE;
}

static void orvix_virtual_camera_provider_stop(GstDeviceProvider *provider)
{
    OrvixVirtualCameraProvider *self = (OrvixVirtualCameraProvider *)provider;
    g_atomic_int_set(&self->stopping, 1);
    if (self->thread) {
        g_thread_join(self->thread);
        self->thread = NULL;
    }
}

static void orvix_virtual_camera_provider_finalize(GObject *object)
{
    OrvixVirtualCameraProvider *self = (OrvixVirtualCameraProvider *)object;
    g_list_free_full(self->devices, gst_object_unref);
    g_mutex_clear(&self->lock);
    G_OBJECT_CLASS(orvix_virtual_camera_provider_parent_class)->finalize(object);
}

static void orvix_virtual_camera_provider_class_init(OrvixVirtualCameraProviderClass *klass)
{
    GstDeviceProviderClass *provider_class = GST_DEVICE_PROVIDER_CLASS(klass);
    provider_class->probe = orvix_virtual_camera_provider_probe;
    provider_class->start = orvix_virtual_camera_provider_start;
    provider_class->stop = orvix_virtual_camera_provider_stop;
    G_OBJECT_CLASS(klass)->finalize = orvix_virtual_camera_provider_finalize;
    gst_device_provider_class_set_static_metadata(provider_class, "Orvix virtual cameras", "Video/Source",
                                                  "Test cameras described by a control file",
                                                  "Orvix developers");
}

static void orvix_virtual_camera_provider_init(OrvixVirtualCameraProvider *self)
{
    g_mutex_init(&self->lock);
}

static gboolean plugin_init(GstPlugin *plugin)
{
    return gst_device_provider_register(plugin, "orvixvirtualcameras", GST_RANK_PRIMARY,
                                        orvix_virtual_camera_provider_get_type());
}

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, orvixvirtualcamera,
                  "Virtual cameras for Orvix's tests", plugin_init, "1.0", "Proprietary",
                  "orvix-test-support", "https://kelvane.com")
