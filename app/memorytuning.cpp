// Keeps the memory of freed video frames mapped for the next frame.
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
#endif
}
} // namespace MemoryTuning
