// GStreamer's streaming threads, under Qt's capture session.
#pragma once

namespace StreamingThreads {

// Qt 6.4 turns a snapshot's frame into a picture on the streaming thread
// that carries it, and keeps an OpenGL context for that thread until the
// thread ends. GStreamer takes its threads from GLib's shared pool, which
// ends spare ones whenever a pipeline stops. One that ends after the
// window system's connection is closed, as the program quits, tears its
// context down without a display and crashes. So spare threads are kept,
// asleep, for the next pipeline: never more than were once busy together.
// Call before the first camera starts; later calls change nothing.
void keepSpareThreads();

} // namespace StreamingThreads
