#pragma once

#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace velmora {

// An allocator whose resize leaves new elements default-initialised (for plain types: not
// written), so that a list sized to an upper bound and then filled in one pass is not zeroed
// first. The search index narrows millions of positions that way.
template <typename T> class DefaultInitAllocator : public std::allocator<T> {
public:
    template <typename U> struct rebind { using other = DefaultInitAllocator<U>; };

    DefaultInitAllocator() = default;
    template <typename U> DefaultInitAllocator(const DefaultInitAllocator<U>&) noexcept {}

    template <typename U> void construct(U* at) noexcept(std::is_nothrow_default_constructible_v<U>) {
        ::new (static_cast<void*>(at)) U;
    }
    template <typename U, typename... Args> void construct(U* at, Args&&... args) {
        ::new (static_cast<void*>(at)) U(std::forward<Args>(args)...);
    }
};

} // namespace velmora
