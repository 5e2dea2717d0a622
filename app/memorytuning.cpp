// How the C library's allocator serves a program that records for hours.
#include "memorytuning.h"

// Before the test below: the C library's own header says whether it is glibc.
#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace MemoryTuning {
void apply()
{
#if defined(__GLIBC__)
    // Blocks of a megabyte or more get mappings of their own, given back to
    // the system when freed. From the heap, the buffers of the encoders that
    // every file of a recording brings fragmented it: a soak that split every
    // second grew by 8 MB a minute with the memory in use flat. The live
    // view keeps its pictures' memory itself (see FrameRenderer), so no
    // frame pays for fresh pages. A fixed threshold also ends glibc's own
    // raising of it after each large free.
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
    // Every file of a split recording brings new encoder threads, and glibc
    // gives busy threads heaps of their own (up to eight a core), each
    // keeping freed memory for itself. Two are enough for this program.
    mallopt(M_ARENA_MAX, 2);
#endif
}
} // namespace MemoryTuning
