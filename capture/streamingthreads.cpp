#include "streamingthreads.h"

#ifdef ORVIX_HAVE_GSTREAMER
#include <glib.h>
#endif

namespace StreamingThreads {

void keepSpareThreadsFromNowOn()
{
#ifdef ORVIX_HAVE_GSTREAMER
    // No cap on spare threads, and no idle time after which one ends.
    g_thread_pool_set_max_unused_threads(-1);
    g_thread_pool_set_max_idle_time(0);
#endif
}

} // namespace StreamingThreads
