#include "core/MemoryRelease.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace velmora {

void releaseFreedMemory() {
#if defined(__GLIBC__)
    // glibc keeps freed blocks in each thread's arena until asked; other allocators return them.
    malloc_trim(0);
#endif
}

} // namespace velmora
