#pragma once

namespace hugeheap {

// Restarts the process (same pid, same arguments) with glibc's allocator told to back its heap
// with transparent huge pages, unless that was decided already, the C library or the kernel
// cannot, or TPALLET_HUGE_HEAP=0 says no. Returns only when nothing is to be done (or the
// restart failed). Call first thing in main(): glibc reads this setting only when a process starts.
void restartWithHugePages(char *argv[]);

// Whether this process runs with the huge-page heap.
bool active();

} // namespace hugeheap
