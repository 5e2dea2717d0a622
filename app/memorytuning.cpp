// Keeps the memory of freed video frames mapped for the next frame, and
// the number of heaps small.
#include "memorytuning.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace MemoryTuning {
void keepFrameMemory()
{
#if defined(__GLIBC__)
    // Frames up to 4K come from the heap, and up to a few of them stay there.
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    // Every file of a split recording brings new encoder threads, and each
    // new thread took a heap of its own that was never given back: a soak
    // that split every second grew by 270 MB in two minutes. Two heaps stay
    // flat.
    mallopt(M_ARENA_MAX, 2);
#endif
}
} // namespace MemoryTuning
