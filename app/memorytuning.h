// How the C library's allocator serves a program that records for hours.
#pragma once

namespace MemoryTuning {
// Called first thing in main(): large blocks go back to the system when
// freed, and the heaps are few.
void apply();
}
