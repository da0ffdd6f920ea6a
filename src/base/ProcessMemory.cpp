#include "base/ProcessMemory.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace tavi {

#ifdef __GLIBC__

namespace {

/// Bytes. Pictures of a screen are larger, in 4:2:0 too, and kept in pools of their own where they
/// come by the second; what the system gives costs a quarter of a millisecond a megabyte.
constexpr int kLargeBlock = 1 << 20;

} // namespace

void keepLargeBlocksApart() {
    mallopt(M_MMAP_THRESHOLD, kLargeBlock); // which else grows up to 32 MB with what is freed
}

void giveFreeMemoryBack() {
    malloc_trim(0);
}

#else

void keepLargeBlocksApart() {}

void giveFreeMemoryBack() {}

#endif

} // namespace tavi
