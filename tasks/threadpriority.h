// Background threads (the storage browser's, the archive's sender) below
// the window, the live view and the recorder.
#pragma once

#include <vector>

// Lowers the calling thread. Qt's thread priorities do nothing under
// Linux's normal scheduler, so there the thread's own nice value is raised.
void lowerCurrentThread();
// Puts the calling thread's disk reads and writes behind everyone else's,
// so that gigabytes copied never hold up a recording's writes. Does nothing
// where that cannot be done.
void lowerCurrentThreadDiskPriority();

// The threads of this process that share the calling thread's name, the
// calling thread left out. Threads started by a library take the name of
// the thread that started them, which makes them findable. Empty where
// threads cannot be listed that way.
std::vector<long> threadsNamedLikeThisOne();
// Raises the nice value of the thread with that id, never lowers it; false
// where that is not possible.
bool lowerThread(long id, int niceValue);
