// How long loading and saving the preference records takes (start-up reads all of them; the zone
// editor and the command line write them whole).
#include "core/KeyboardBindings.h"
#include "core/WindowManagerPreferences.h"

#include <benchmark/benchmark.h>

using namespace velmora;

static void EncodeWindowManagerPreferences(benchmark::State& state) {
    const WindowManagerPreferences prefs;
    for (auto _ : state)
        benchmark::DoNotOptimize(encodeJson(prefs));
}
BENCHMARK(EncodeWindowManagerPreferences);

static void DecodeWindowManagerPreferences(benchmark::State& state) {
    const std::string text = encodeJson(WindowManagerPreferences{});
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeJson<WindowManagerPreferences>(text));
}
BENCHMARK(DecodeWindowManagerPreferences);

static void DecodeKeyboardBindings(benchmark::State& state) {
    const std::string text = encodeJson(KeyboardBindings{});
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeJson<KeyboardBindings>(text));
}
BENCHMARK(DecodeKeyboardBindings);
