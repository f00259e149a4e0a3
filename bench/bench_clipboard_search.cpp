// How the clipboard history's search index behaves at its largest: a hundred thousand entries of
// about two hundred characters. Building the base index, the first typed character (a scan of every
// text), each further character (proportional to the surviving positions), captures and trims of
// the oldest entry while a search is shown, and the memory held.
#include "clipboard/ClipboardHistoryIndex.h"
#include "clipboard/ClipboardHistorySearch.h"
#include "clipboard/ClipboardSearchableText.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <limits>
#include <random>

using namespace velmora;
using ItemInfo = ClipboardHistoryIndex::ItemInfo;

namespace {

constexpr int kEntries = 100'000;

// Words of varied length and frequency: a few common real ones and many made of syllables.
std::vector<QString> vocabulary(std::mt19937& random) {
    std::vector<QString> words{"the",    "and",      "meeting", "invoice", "password", "function", "release",
                               "return", "const",    "string",  "build",   "deploy",   "server",   "error",
                               "Monday", "Schedule", "café",    "naïve",   "résumé",   "Zürich",   "total"};
    std::vector<QString> syllables;
    for (const QChar consonant : QStringLiteral("bcdfghjklmnprstvwxz")) {
        for (const QChar vowel : QStringLiteral("aeiouy"))
            syllables.push_back(QString(consonant) + vowel);
    }
    while (words.size() < 5000) {
        QString word;
        const int count = 1 + static_cast<int>(random() % 4);
        for (int i = 0; i < count; ++i)
            word += syllables[random() % syllables.size()];
        words.push_back(word);
    }
    return words;
}

SimpleClipboardItem syntheticItem(std::mt19937& random, const std::vector<QString>& words) {
    SimpleClipboardItem item;
    QString text;
    while (text.size() < 150) {
        // Common words far more often than rare ones, as in real text.
        const auto rank = static_cast<std::size_t>(std::pow(random() % 1000 / 1000.0, 3) * words.size());
        QString word = words[std::min(rank, words.size() - 1)];
        if (random() % 8 == 0)
            word[0] = word[0].toUpper();
        text += word + (random() % 12 == 0 ? QStringLiteral(". ") : QStringLiteral(" "));
    }
    if (random() % 100 == 0) // one entry in a hundred splits into characters the slow way
        text += random() % 2 ? QStringLiteral("e\u0301t\u00e9 ") : QStringLiteral("\U0001F44D\U0001F3FD ok ");
    item.plainText = text;
    if (random() % 10 == 0)
        item.url = QStringLiteral("https://example.org/") + words[random() % words.size()];
    item.sourceWindowTitle = words[random() % 200] + QStringLiteral(" - Editor");
    item.sourceAppName = QStringLiteral("App ") + QString::number(random() % 40);
    return item;
}

std::vector<ItemInfo> makeItems() {
    std::mt19937 random(42);
    const auto words = vocabulary(random);
    std::vector<ItemInfo> items;
    items.reserve(kEntries);
    for (int i = 0; i < kEntries; ++i) {
        const SimpleClipboardItem item = syntheticItem(random, words);
        items.push_back({item.id, searchableText(item)});
    }
    return items;
}

const std::vector<ItemInfo>& items() {
    static const std::vector<ItemInfo> all = makeItems();
    return all;
}

const ClipboardHistoryIndex& baseIndex() {
    static const ClipboardHistoryIndex index = ClipboardHistoryIndex::base(items());
    return index;
}

std::size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd; // small blocks and the large ones malloc maps on its own
}

double milliseconds(std::chrono::steady_clock::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

double percentile(std::vector<double> values, double p) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1,
                           static_cast<std::size_t>(p * static_cast<double>(values.size())))];
}

const std::vector<QString> kQueries{"e", "meeting", "schedule", "password", "kalo", "the build", "café"};

} // namespace

static void BuildBase(benchmark::State& state) {
    const auto& all = items();
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<ItemInfo> copy = all;
        state.ResumeTiming();
        benchmark::DoNotOptimize(ClipboardHistoryIndex::base(std::move(copy)));
    }
}
BENCHMARK(BuildBase)->Unit(benchmark::kMillisecond);

// The heap the base index holds, made from texts of its own so that they are counted too.
static void BaseMemory(benchmark::State& state) {
    for (auto _ : state) {
        const std::size_t before = heapInUse();
        std::vector<ItemInfo> fresh = makeItems();
        const std::size_t texts = heapInUse() - before;
        const auto index = ClipboardHistoryIndex::base(std::move(fresh));
        fresh = {};
        const std::size_t total = heapInUse() - before;
        std::size_t units = 0;
        for (const ItemInfo& item : items())
            units += static_cast<std::size_t>(item.searchableText.size());
        state.counters["entries"] = static_cast<double>(index.size());
        state.counters["avg_chars"] = static_cast<double>(units) / kEntries;
        state.counters["items_MB"] = static_cast<double>(texts) / 1e6;
        state.counters["index_MB"] = static_cast<double>(total) / 1e6;
        state.counters["per_entry_B"] = static_cast<double>(total) / kEntries;
    }
}
BENCHMARK(BaseMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

// The first character typed into an empty search field. Second argument 0: no lists of an earlier
// search to reuse (they are let go when the field is emptied), so the index is written into fresh
// memory; 1: reusing them.
static void RefineFirstCharacter(benchmark::State& state) {
    const QString query = kQueries[static_cast<std::size_t>(state.range(0))].left(1);
    ClipboardHistoryIndex base = baseIndex();
    std::size_t found = 0;
    std::size_t bytes = 0;
    std::vector<double> times;
    for (auto _ : state) {
        if (state.range(1) == 0)
            base.releaseSpareLists();
        const std::size_t before = heapInUse();
        const auto start = std::chrono::steady_clock::now();
        const auto index = base.refined(query);
        times.push_back(milliseconds(std::chrono::steady_clock::now() - start));
        bytes = heapInUse() - before;
        found = index.size();
    }
    state.SetLabel(query.toStdString());
    state.counters["found"] = static_cast<double>(found);
    state.counters["index_MB"] = static_cast<double>(bytes) / 1e6;
    state.counters["p50_ms"] = percentile(times, 0.5);
    state.counters["p99_ms"] = percentile(times, 0.99);
}
BENCHMARK(RefineFirstCharacter)->ArgsProduct({{0, 1, 2, 3, 4}, {0, 1}})->Unit(benchmark::kMillisecond);

// Typing a whole query one character at a time, as the search field does: each further character
// refines the previous index. Between the first and the second the agent gathers the first
// character's positions in idle slices; that work is timed apart (gather_ms). Reports the p99 and
// worst of the further steps.
static void TypeQuery(benchmark::State& state) {
    const QString query = kQueries[static_cast<std::size_t>(state.range(0))];
    ClipboardHistoryIndex base = baseIndex();
    std::vector<double> first;
    std::vector<double> further;
    std::vector<double> gathering;
    std::size_t found = 0;
    for (auto _ : state) {
        base.releaseSpareLists(); // the field was empty before the first character
        auto start = std::chrono::steady_clock::now();
        ClipboardHistoryIndex index = base.refined(query.left(1));
        first.push_back(milliseconds(std::chrono::steady_clock::now() - start));
        start = std::chrono::steady_clock::now();
        index.gatherPositions(std::numeric_limits<std::size_t>::max());
        gathering.push_back(milliseconds(std::chrono::steady_clock::now() - start));
        for (qsizetype k = 2; k <= query.size(); ++k) {
            start = std::chrono::steady_clock::now();
            index = index.refined(query.left(k));
            further.push_back(milliseconds(std::chrono::steady_clock::now() - start));
        }
        found = index.size();
    }
    state.SetLabel(query.toStdString());
    state.counters["found"] = static_cast<double>(found);
    state.counters["first_ms"] = percentile(first, 0.5);
    state.counters["gather_ms"] = percentile(gathering, 0.5);
    state.counters["further_p50_ms"] = percentile(further, 0.5);
    state.counters["further_p99_ms"] = percentile(further, 0.99);
    state.counters["further_max_ms"] = percentile(further, 1.0);
}
BENCHMARK(TypeQuery)->DenseRange(1, static_cast<int>(kQueries.size()) - 1)->Unit(benchmark::kMillisecond);

// The window asks membership row by row: the first look-up after a refine builds the id table.
static void FirstMembershipLookup(benchmark::State& state) {
    const auto& base = baseIndex();
    const QUuid id = items()[kEntries / 2].id;
    for (auto _ : state) {
        state.PauseTiming();
        const auto index = base.refined(QStringLiteral("e"));
        state.ResumeTiming();
        benchmark::DoNotOptimize(index.contains(id));
    }
}
BENCHMARK(FirstMembershipLookup)->Unit(benchmark::kMillisecond);

// A capture and a deletion while a search is shown: both indexes follow.
static void CaptureAndDeleteWhileFiltering(benchmark::State& state) {
    ClipboardHistorySearch search(items());
    search.setText(QStringLiteral("mee"));
    SimpleClipboardItem captured;
    captured.plainText = QStringLiteral("notes from the meeting on Monday");
    const ItemInfo item{captured.id, searchableText(captured)};
    for (auto _ : state) {
        search.insertNewest(item);
        search.remove(item.id);
    }
    state.counters["found"] = static_cast<double>(search.matchingIds().size());
}
BENCHMARK(CaptureAndDeleteWhileFiltering)->Unit(benchmark::kMillisecond);

// A full history shown filtered while captures arrive: each capture is inserted and, the history
// being full, its oldest entry trimmed, in the base and the search index alike. Reports the time
// of each capture with its trim.
static void CaptureAndTrimWhileFiltering(benchmark::State& state) {
    std::vector<ItemInfo> history = items();
    ClipboardHistorySearch search(history);
    const QString query = kQueries[static_cast<std::size_t>(state.range(0))].left(3);
    search.setText(query.left(1));
    search.setText(query);
    std::deque<QUuid> oldestFirst;
    for (auto it = history.rbegin(); it != history.rend(); ++it)
        oldestFirst.push_back(it->id);
    std::mt19937 random(7);
    const auto words = vocabulary(random);
    std::vector<ItemInfo> captures;
    for (int i = 0; i < 4096; ++i) {
        SimpleClipboardItem item = syntheticItem(random, words);
        if (i % 4 == 0) // some captures match the search
            item.plainText = item.plainText.value_or(QString()) + QStringLiteral(" ") + query;
        captures.push_back({item.id, searchableText(item)});
    }
    std::vector<double> times;
    std::size_t next = 0;
    for (auto _ : state) {
        ItemInfo capture = captures[next++ % captures.size()];
        capture.id = QUuid::createUuid();
        const QUuid id = capture.id;
        const auto start = std::chrono::steady_clock::now();
        search.insertNewest(std::move(capture));
        search.remove(oldestFirst.front());
        times.push_back(milliseconds(std::chrono::steady_clock::now() - start) * 1000);
        oldestFirst.pop_front();
        oldestFirst.push_back(id);
    }
    state.SetLabel(query.toStdString());
    state.counters["found"] = static_cast<double>(search.matchingIds().size());
    state.counters["p50_us"] = percentile(times, 0.5);
    state.counters["p99_us"] = percentile(times, 0.99);
    state.counters["max_us"] = percentile(times, 1.0);
}
BENCHMARK(CaptureAndTrimWhileFiltering)->Arg(0)->Arg(1)->Iterations(200000)->Unit(benchmark::kMicrosecond);
