// Keeps the memory of freed video frames mapped for the next frame, and
// the number of heaps small.
#include "memorytuning.h"

// Before the test below: the C library's own header says whether it is glibc.
#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace MemoryTuning {
void keepFrameMemory()
{
#if defined(__GLIBC__)
    // Frames up to 32 MB (1080p and a little more) come from the heap, and
    // up to a few of them stay there; a mapping of their own would be given
    // back at every free and faulted in page by page at the next frame,
    // 4 ms a 1080p picture. 32 MB is glibc's largest threshold: above it the
    // call fails and leaves the threshold at 128 KB.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    // Every file of a split recording brings new encoder threads, and each
    // new thread took a heap of its own that was never given back: a soak
    // that split every second grew by 270 MB in two minutes. Two heaps stay
    // flat.
    mallopt(M_ARENA_MAX, 2);
#endif
}
} // namespace MemoryTuning
