// Keeps the memory of freed video frames mapped for the next frame.
#pragma once

namespace MemoryTuning {
// Every live frame becomes a fresh 8 MB image. By default the C library hands
// such blocks back to the system when they are freed, and the next frame pays
// for faulting the same amount in again: several milliseconds a frame.
void keepFrameMemory();
}
