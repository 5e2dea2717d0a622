// Background threads (the storage browser's, the archive's sender) below
// the window, the live view and the recorder.
#pragma once

// Lowers the calling thread. Qt's thread priorities do nothing under
// Linux's normal scheduler, so there the thread's own nice value is raised.
void lowerCurrentThread();
