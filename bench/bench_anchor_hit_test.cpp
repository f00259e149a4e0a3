// The snap hit test runs on every pointer event of a drag: how long one takes over the factory zones,
// with and without finding the screen's cached groups, and how many allocations happen in the timed
// loop (counter "allocs_per_call", meant to be 0).
#include "core/WindowManagerPreferences.h"
#include "windowmanager/WindowManagerAnchors.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <vector>

namespace {
std::atomic<long> allocations{0};

void* counted(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
} // namespace

void* operator new(std::size_t size) {
    return counted(size);
}
void* operator new[](std::size_t size) {
    return counted(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size ? size : 1);
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}

using namespace velmora;

namespace {

// Points all over the screen, most of them in the border band where the groups are searched.
std::vector<Point> scatteredPoints() {
    std::vector<Point> points;
    unsigned seed = 12345;
    const auto next = [&seed] {
        seed = seed * 1103515245u + 12345u;
        return double((seed >> 8) & 0xFFFF) / 65536.0;
    };
    for (int i = 0; i < 1024; ++i)
        points.push_back({next(), i % 4 == 0 ? next() : next() * 0.2 + (i % 2 ? 0.8 : 0)});
    return points;
}

void reportAllocations(benchmark::State& state, long before) {
    state.counters["allocs_per_call"] =
        benchmark::Counter(double(allocations.load() - before) / double(state.iterations()));
}

void HitTest(benchmark::State& state) {
    const auto groups = anchorGroups(WindowManagerPreferences{}.areas, 1440, 875);
    const auto points = scatteredPoints();
    std::size_t i = 0;
    const long before = allocations.load();
    for (auto _ : state) {
        benchmark::DoNotOptimize(hitTest(groups, points[i]));
        i = (i + 1) % points.size();
    }
    reportAllocations(state, before);
}
BENCHMARK(HitTest);

// What one pointer event costs: finding the screen size's groups in the cache, then the hit test.
void CachedLookupAndHitTest(benchmark::State& state) {
    const WindowManagerPreferences prefs;
    AnchorsCache cache;
    cache.groups(1080, 1920, prefs, 1);
    cache.groups(1440, 875, prefs, 1);
    const auto points = scatteredPoints();
    std::size_t i = 0;
    const long before = allocations.load();
    for (auto _ : state) {
        const auto& groups = cache.groups(1440, 875, prefs, 2);
        benchmark::DoNotOptimize(hitTest(groups.anchorGroups, points[i]));
        i = (i + 1) % points.size();
    }
    reportAllocations(state, before);
}
BENCHMARK(CachedLookupAndHitTest);

} // namespace
