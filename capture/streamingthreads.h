// GStreamer's streaming threads, under Qt's capture session.
#pragma once

namespace StreamingThreads {

// Qt 6.4 turns a snapshot's frame into a picture on the streaming thread
// that carries it, and keeps an OpenGL context for that thread until the
// thread ends. GStreamer takes its threads from GLib's shared pool, which
// ends spare ones when a pipeline stops and after 15 s idle. While the
// program runs that frees the context; but one that ends after the window
// system's connection is closed, as the program quits, tears its context
// down without a display and crashes. So once the last pipeline is about
// to stop, spare threads are kept, asleep, until the process ends. Not
// sooner: kept threads keep their contexts, some 7 MB each.
void keepSpareThreadsFromNowOn();

} // namespace StreamingThreads
