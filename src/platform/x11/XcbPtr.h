#pragma once

#include <cstdlib>
#include <memory>

namespace velmora {

// xcb replies are malloc'ed and must be freed by the caller.
struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
template <class T> using XcbPtr = std::unique_ptr<T, FreeDeleter>;

} // namespace velmora
