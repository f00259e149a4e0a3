#include "clipboard/ClipboardHistoryIndex.h"

#include <QTextBoundaryFinder>

#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace velmora;
using ItemInfo = ClipboardHistoryIndex::ItemInfo;

namespace {

ItemInfo item(const QString& lowerCasedText) {
    return {QUuid::createUuid(), lowerCasedText};
}

// The index's answer for `query`, newest first, as positions in `items`.
std::vector<std::size_t> found(const std::vector<ItemInfo>& items, const ClipboardHistoryIndex& index) {
    std::vector<std::size_t> result;
    for (const QUuid& id : index.ids()) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (items[i].id == id)
                result.push_back(i);
        }
    }
    return result;
}

std::vector<std::size_t> found(const std::vector<ItemInfo>& items, const QString& query) {
    return found(items, ClipboardHistoryIndex::base(items).refined(query));
}

std::vector<int> positionsIn(const ClipboardHistoryIndex& index, const QUuid& id) {
    const auto positions = index.positions(id);
    return {positions.begin(), positions.end()};
}

std::vector<QString> graphemes(const QString& text) {
    std::vector<QString> result;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end > 0; end = finder.toNextBoundary()) {
        result.push_back(text.mid(start, end - start));
        start = end;
    }
    return result;
}

// The rule the index must give, by brute force over the characters.
bool containsByCharacters(const QString& text, const QString& query) {
    const auto haystack = graphemes(text);
    const auto needle = graphemes(query);
    return std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end()) != haystack.end();
}

} // namespace

TEST(ClipboardHistoryIndex, BaseKeepsTheHistoryOrderAndNoQuery) {
    const std::vector<ItemInfo> items{item("newest"), item("middle"), item("oldest")};
    const auto index = ClipboardHistoryIndex::base(items);
    EXPECT_EQ(index.ids(), (std::vector<QUuid>{items[0].id, items[1].id, items[2].id}));
    EXPECT_EQ(index.query(), QString());
    EXPECT_EQ(index.prefixLength(), 0);
    EXPECT_TRUE(index.contains(items[1].id));
    EXPECT_FALSE(index.contains(QUuid::createUuid()));
    EXPECT_TRUE(index.positions(items[2].id).empty());
    EXPECT_EQ(index.entry(items[2].id)->searchableText(), QStringLiteral("oldest"));

    // A repeated id is an error of the caller: the first one stays.
    auto repeated = items;
    repeated.push_back({items[0].id, QStringLiteral("again")});
    const auto deduplicated = ClipboardHistoryIndex::base(repeated);
    EXPECT_EQ(deduplicated.size(), 3u);
    EXPECT_EQ(deduplicated.entry(items[0].id)->searchableText(), QStringLiteral("newest"));
}

TEST(ClipboardHistoryIndex, RefiningKeepsTheEntriesThatContainTheQueryWithTheirPositions) {
    const std::vector<ItemInfo> items{item("abcabc"), item("xyz"), item("e\u0301bc"), item("ab")};
    const auto base = ClipboardHistoryIndex::base(items);
    auto b = base.refined("b");
    EXPECT_EQ(found(items, b), (std::vector<std::size_t>{0, 2, 3}));
    EXPECT_EQ(b.query(), QStringLiteral("b"));
    // A first character lists its entries at once; their positions are gathered a slice at a time.
    EXPECT_EQ(b.prefixLength(), 0);
    EXPECT_TRUE(positionsIn(b, items[0].id).empty());
    EXPECT_EQ(found(items, b.refined("bc")), (std::vector<std::size_t>{0, 2})) << "not gathered yet";
    EXPECT_FALSE(b.gatherPositions(2));
    EXPECT_TRUE(b.gatherPositions(1));
    EXPECT_EQ(b.prefixLength(), 1);
    EXPECT_EQ(positionsIn(b, items[0].id), (std::vector<int>{1, 4}));
    auto longer = ClipboardHistoryIndex::base({item("abcabcabcabcab")}).refined("b");
    longer.gatherPositions(1);
    EXPECT_EQ(positionsIn(longer, longer.ids().front()), (std::vector<int>{1, 4, 7, 10, 13}))
        << "past the sixteen units read at once";

    const auto bc = b.refined("bc");
    EXPECT_EQ(found(items, bc), (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(bc.prefixLength(), 2);
    EXPECT_EQ(positionsIn(bc, items[0].id), (std::vector<int>{1, 4}));
    EXPECT_EQ(positionsIn(bc, items[2].id), (std::vector<int>{1})); // characters, not UTF-16 units

    // Several characters at once, and the same query again, give the same as one at a time.
    EXPECT_EQ(found(items, base.refined("bca")), (std::vector<std::size_t>{0}));
    EXPECT_EQ(found(items, bc.refined("bc")), found(items, bc));
    EXPECT_TRUE(base.refined("q").isEmpty());

    // Past the units kept beside each position, the next ones can be read ahead of the keystroke.
    const std::vector<ItemInfo> words{item("abcdefgh"), item("abcdexyz")};
    auto abcde = ClipboardHistoryIndex::base(words).refined("abcde");
    EXPECT_FALSE(abcde.prepareNextWindow(1));
    EXPECT_TRUE(abcde.prepareNextWindow(1));
    EXPECT_TRUE(abcde.prepareNextWindow(1)) << "nothing left until the next character";
    EXPECT_EQ(found(words, abcde.refined("abcdef")), (std::vector<std::size_t>{0}));
    EXPECT_EQ(found(words, abcde.refined("abcdexyz")), (std::vector<std::size_t>{1}));
}

TEST(ClipboardHistoryIndex, AnIndexLetGoGivesItsListsToARefineThatKeepsEveryPosition) {
    const std::vector<ItemInfo> items{item("weather report"), item("the weather"), item("west")};
    const auto base = ClipboardHistoryIndex::base(items);
    auto wea = base.refined("wea");
    const int* lists = wea.positions(items[0].id).data();
    auto weath = std::move(wea).refined("weath");
    EXPECT_EQ(weath.positions(items[0].id).data(), lists) << "every \"wea\" goes on as \"weath\"";
    EXPECT_EQ(found(items, weath), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(weath.query(), QStringLiteral("weath"));
    // Its captures and deletions are its own from there on.
    EXPECT_TRUE(weath.insertNewest(item("weathering")));
    EXPECT_TRUE(weath.remove(items[1].id));
    EXPECT_EQ(weath.size(), 2u);
    // Where a deleted entry's positions are left, or a unit past a text's end could match, it is
    // narrowed as usual.
    auto weather = std::move(weath).refined("weather");
    EXPECT_EQ(weather.size(), 2u);
    const std::vector<ItemInfo> ended{item("xwea"), item(QString::fromUtf16(u"xwea\0", 5))};
    auto xwea = ClipboardHistoryIndex::base(ended).refined("xwea");
    EXPECT_EQ(found(ended, std::move(xwea).refined(QString::fromUtf16(u"xwea\0", 5))),
              (std::vector<std::size_t>{1}));
}

TEST(ClipboardHistoryIndex, RefusesAQueryThatDoesNotExtendItsOwn) {
    const std::vector<ItemInfo> items{item("ab"), item("ac"), item("e\u0301")};
    const auto a = ClipboardHistoryIndex::base(items).refined("a");
    EXPECT_TRUE(a.canBeRefinedTo("ab"));
    EXPECT_FALSE(a.canBeRefinedTo("c"));
    EXPECT_FALSE(a.canBeRefinedTo(""));

    const auto unchanged = a.refined("c");
    EXPECT_EQ(unchanged.query(), QStringLiteral("a"));
    EXPECT_EQ(unchanged.size(), 2u);

    // "e" then a combining accent is one other character: the "e" index cannot answer for it.
    const auto e = ClipboardHistoryIndex::base(items).refined("e");
    EXPECT_TRUE(e.isEmpty());
    EXPECT_FALSE(e.canBeRefinedTo("e\u0301"));
}

TEST(ClipboardHistoryIndex, MatchesWholeCharactersOnly) {
    const QString thumbsUp = QStringLiteral("\U0001F44D");
    const QString toned = thumbsUp + QStringLiteral("\U0001F3FD");
    const QString woman = QStringLiteral("\U0001F469");
    const QString coder = woman + QStringLiteral("\u200D\U0001F4BB");
    const std::vector<ItemInfo> items{item("cafe\u0301 noir"), item("caf\u00e9 noir"),
                                      item("cafe noir"),       item("ok " + toned),
                                      item("ok " + thumbsUp),  item(coder + " at work")};

    EXPECT_EQ(found(items, "caf"), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(found(items, "cafe"), (std::vector<std::size_t>{2}));
    EXPECT_EQ(found(items, "e"), (std::vector<std::size_t>{2}));
    EXPECT_EQ(found(items, "cafe\u0301"), (std::vector<std::size_t>{0})); // no normalisation either
    EXPECT_EQ(found(items, "\u0301"), (std::vector<std::size_t>{}));
    EXPECT_EQ(found(items, thumbsUp), (std::vector<std::size_t>{4}));
    EXPECT_EQ(found(items, toned), (std::vector<std::size_t>{3}));
    EXPECT_EQ(found(items, "ok " + toned), (std::vector<std::size_t>{3}));
    EXPECT_EQ(found(items, woman), (std::vector<std::size_t>{}));
    EXPECT_EQ(found(items, coder + " at"), (std::vector<std::size_t>{5}));

    // Two flags side by side: the indicators across their border are no flag.
    const std::vector<ItemInfo> flags{item(QStringLiteral("\U0001F1EB\U0001F1F7\U0001F1E9\U0001F1EA"))};
    EXPECT_EQ(found(flags, QStringLiteral("\U0001F1F7\U0001F1E9")), (std::vector<std::size_t>{}));
    EXPECT_EQ(found(flags, QStringLiteral("\U0001F1E9\U0001F1EA")), (std::vector<std::size_t>{0}));
}

TEST(ClipboardHistoryIndex, FindsRightToLeftTextInLogicalOrder) {
    const std::vector<ItemInfo> items{item("שלום עולם"), item("עולם"),
                                      item("\u0643\u064E\u062A\u064E\u0628\u064E")};
    const auto world = ClipboardHistoryIndex::base(items).refined("עולם");
    EXPECT_EQ(found(items, world), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(positionsIn(world, items[0].id), (std::vector<int>{5}));
    // Arabic with vowel marks: each letter with its mark is one character.
    EXPECT_EQ(found(items, "\u062A\u064E"), (std::vector<std::size_t>{2}));
    EXPECT_EQ(found(items, "\u062A"), (std::vector<std::size_t>{}));
}

TEST(ClipboardHistoryIndex, HandlesAVeryLongQuery) {
    QString text;
    for (int i = 0; i < 1000; ++i)
        text += QChar(u'a' + i % 26);
    const std::vector<ItemInfo> items{item(text), item(text.left(999)), item(text + "!")};
    const auto whole = ClipboardHistoryIndex::base(items).refined(text);
    EXPECT_EQ(found(items, whole), (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(whole.prefixLength(), 1000);
    EXPECT_EQ(found(items, whole.refined(text + "!")), (std::vector<std::size_t>{2}));
    EXPECT_TRUE(whole.refined(text + "?").isEmpty());
}

TEST(ClipboardHistoryIndex, FollowsCapturesAndDeletions) {
    std::vector<ItemInfo> items{item("apple"), item("banana")};
    auto base = ClipboardHistoryIndex::base(items);
    auto an = base.refined("an");

    const ItemInfo mango = item("mango");
    const ItemInfo kiwi = item("kiwi");
    EXPECT_TRUE(base.insertNewest(mango));
    EXPECT_TRUE(an.insertNewest(mango));
    EXPECT_TRUE(an.insertNewest(kiwi)); // not containing the query: simply not listed
    EXPECT_EQ(base.ids(), (std::vector<QUuid>{mango.id, items[0].id, items[1].id}));
    EXPECT_EQ(an.ids(), (std::vector<QUuid>{mango.id, items[1].id}));
    EXPECT_EQ(positionsIn(an, mango.id), (std::vector<int>{1}));
    EXPECT_EQ(an.refined("ana").ids(), (std::vector<QUuid>{items[1].id}));
    EXPECT_FALSE(base.insertNewest({mango.id, QStringLiteral("other")}));
    EXPECT_TRUE(an.remove(mango.id)); // the newest: look-ups of the others stay right
    EXPECT_FALSE(an.contains(mango.id));
    EXPECT_EQ(positionsIn(an, items[1].id), (std::vector<int>{1, 3}));
    EXPECT_TRUE(an.insertNewest(mango));

    EXPECT_TRUE(an.remove(items[1].id));
    EXPECT_FALSE(an.remove(items[0].id)); // never listed
    EXPECT_EQ(an.ids(), (std::vector<QUuid>{mango.id}));
    EXPECT_TRUE(base.remove(items[1].id));
    EXPECT_FALSE(base.contains(items[1].id));
    EXPECT_TRUE(base.contains(mango.id)); // look-ups stay right after positions shift

    base.clear();
    EXPECT_TRUE(base.isEmpty());
    EXPECT_FALSE(base.contains(mango.id));
    EXPECT_TRUE(base.insertNewest(mango));
    EXPECT_EQ(base.ids(), (std::vector<QUuid>{mango.id}));
}

// Random texts mixing plain letters, combining marks, emoji pieces and line breaks, typed query by
// query, must give exactly the entries a brute-force character comparison gives.
TEST(ClipboardHistoryIndex, AgreesWithABruteForceCharacterSearch) {
    // Dashes and the euro sign are kept as the bytes of C1 controls, which must not find them.
    const std::vector<QString> pieces{"a",          "b",      "e",      " ",      "\u0301",
                                      "\r",         "\n",     "\u05E9", "\u200D", "\U0001F469",
                                      "\U0001F3FD", "\u00E9", "\u2014", "\u0097", "\u20AC"};
    std::mt19937 random(7);
    const auto randomText = [&](int length) {
        QString text;
        for (int i = 0; i < length; ++i)
            text += pieces[random() % pieces.size()];
        return text;
    };
    std::vector<ItemInfo> items;
    for (int i = 0; i < 300; ++i)
        items.push_back(item(randomText(1 + static_cast<int>(random() % 12))));
    const auto base = ClipboardHistoryIndex::base(items);

    for (int round = 0; round < 200; ++round) {
        const QString query = randomText(1 + static_cast<int>(random() % 4));
        ClipboardHistoryIndex index = base;
        for (qsizetype typed = 1; typed <= query.size(); ++typed) {
            const QString prefix = query.left(typed);
            index = index.canBeRefinedTo(prefix) ? index.refined(prefix) : base.refined(prefix);
            std::vector<QUuid> expected;
            for (const ItemInfo& candidate : items) {
                if (containsByCharacters(candidate.searchableText, prefix))
                    expected.push_back(candidate.id);
            }
            ASSERT_EQ(index.ids(), expected) << "query " << prefix.toStdString();
        }
    }
}

namespace {

// Where the query's characters begin in the text, by brute force over the characters.
std::vector<int> positionsByCharacters(const QString& text, const QString& query) {
    const auto haystack = graphemes(text);
    const auto needle = graphemes(query);
    std::vector<int> result;
    for (std::size_t at = 0; at + needle.size() <= haystack.size(); ++at) {
        if (std::equal(needle.begin(), needle.end(), haystack.begin() + static_cast<std::ptrdiff_t>(at)))
            result.push_back(static_cast<int>(at));
    }
    return result;
}

// Checks the index against the history (oldest first) by brute force: entries and positions (those
// still to be gathered, of a copy gathered now).
void expectAgreesWithHistory(const ClipboardHistoryIndex& checked, const std::vector<ItemInfo>& oldestFirst) {
    ClipboardHistoryIndex index = checked;
    if (index.positionsPending()) {
        EXPECT_EQ(index.prefixLength(), 0);
        EXPECT_TRUE(index.gatherPositions(std::numeric_limits<std::size_t>::max()));
    }
    std::vector<QUuid> expected;
    for (auto it = oldestFirst.rbegin(); it != oldestFirst.rend(); ++it) {
        if (index.query().isEmpty() || containsByCharacters(it->searchableText, index.query()))
            expected.push_back(it->id);
    }
    ASSERT_EQ(index.ids(), expected) << "query " << index.query().toStdString();
    EXPECT_EQ(index.size(), expected.size());
    for (const ItemInfo& item : oldestFirst) {
        if (index.query().isEmpty() || !index.contains(item.id))
            continue;
        EXPECT_EQ(positionsIn(index, item.id), positionsByCharacters(item.searchableText, index.query()))
            << "query " << index.query().toStdString() << " in " << item.searchableText.toStdString();
        EXPECT_EQ(index.entry(item.id)->searchableText(), item.searchableText);
    }
}

} // namespace

// Long queries over a small alphabet, typed a character at a time and a few at once: past the
// units kept beside each position the texts are read again, on texts of single units and of
// several.
TEST(ClipboardHistoryIndex, AgreesWithABruteForceSearchForLongQueries) {
    const std::vector<QString> pieces{"a", "b", "a", "b", " ", "\u00E9", "e\u0301", "\U0001F469"};
    std::mt19937 random(11);
    const auto randomText = [&](int length, bool plain) {
        QString text;
        for (int i = 0; i < length; ++i)
            text += pieces[random() % (plain ? 5 : pieces.size())];
        return text;
    };
    std::vector<ItemInfo> items;
    for (int i = 0; i < 200; ++i)
        items.push_back(item(randomText(5 + static_cast<int>(random() % 40), i % 4 != 0)));
    const auto base = ClipboardHistoryIndex::base(items);
    const std::vector<ItemInfo> oldestFirst(items.rbegin(), items.rend());

    for (int round = 0; round < 60; ++round) {
        const QString query = randomText(2 + static_cast<int>(random() % 10), round % 3 != 0);
        ClipboardHistoryIndex index = base;
        for (qsizetype typed = 1; typed <= query.size(); typed += 1 + static_cast<qsizetype>(random() % 3)) {
            const QString prefix = query.left(typed);
            // Half the rounds let the index go, as the window does, so that its lists may be reused.
            index = !index.canBeRefinedTo(prefix) ? base.refined(prefix)
                    : round % 2 == 0              ? std::move(index).refined(prefix)
                                                  : index.refined(prefix);
            expectAgreesWithHistory(index, oldestFirst);
            if (index.isEmpty())
                break;
            // Idle time before the next keystroke: none, some or enough to read the next units.
            index.gatherPositions(random() % 64);
            index.prepareNextWindow(random() % 64);
        }
    }
}

// Captures, trims of the oldest and deletions anywhere, many more than the history holds, in a
// base index and in refined ones kept meanwhile: each keeps agreeing with the history it was told
// of, also across compactions and with the entries other indexes dropped.
TEST(ClipboardHistoryIndex, FollowsALongRunOfCapturesAndDeletions) {
    const std::vector<QString> words{"ab", "ba", "aab", "b ", "\u00E9", "e\u0301a", "abba"};
    std::mt19937 random(5);
    const auto randomText = [&] {
        QString text;
        const int count = 1 + static_cast<int>(random() % 6);
        for (int i = 0; i < count; ++i)
            text += words[random() % words.size()];
        return text;
    };
    std::vector<ItemInfo> oldestFirst;
    for (int i = 0; i < 300; ++i)
        oldestFirst.push_back(item(randomText()));
    auto base = ClipboardHistoryIndex::base({oldestFirst.rbegin(), oldestFirst.rend()});
    auto ab = base.refined("ab");
    auto abbaab = ab.refined("abbaab"); // past the units kept beside positions
    auto accented = base.refined("e\u0301a");
    auto a = base.refined("a");         // its positions gathered a few entries a step, as history changes
    auto abbab = base.refined("abbab"); // the units past those kept read a few positions a step
    std::vector<ClipboardHistoryIndex*> indexes{&base, &ab, &abbaab, &accented, &a, &abbab};

    for (int step = 0; step < 3000; ++step) {
        if (step % 500 == 250) {
            a = base.refined("a");
            abbab = base.refined("abbab");
        }
        a.gatherPositions(3);
        abbab.prepareNextWindow(2);
        const auto choice = random() % 10;
        if (choice < 5 || oldestFirst.size() < 50) {
            const ItemInfo captured = item(randomText());
            for (ClipboardHistoryIndex* index : indexes)
                EXPECT_TRUE(index->insertNewest(captured));
            oldestFirst.push_back(captured);
        }
        if (choice < 8 && !oldestFirst.empty()) { // trimming the oldest
            const QUuid oldest = oldestFirst.front().id;
            oldestFirst.erase(oldestFirst.begin());
            for (ClipboardHistoryIndex* index : indexes)
                index->remove(oldest);
        } else if (!oldestFirst.empty()) { // a deletion anywhere
            const auto at = static_cast<std::ptrdiff_t>(random() % oldestFirst.size());
            const QUuid deleted = oldestFirst[static_cast<std::size_t>(at)].id;
            oldestFirst.erase(oldestFirst.begin() + at);
            for (ClipboardHistoryIndex* index : indexes)
                index->remove(deleted);
        }
        if (step % 500 == 0) {
            for (ClipboardHistoryIndex* index : indexes)
                expectAgreesWithHistory(*index, oldestFirst);
            // A fresh refine of the changed base agrees too, and so does the next character after
            // a preparation half done.
            expectAgreesWithHistory(base.refined("ba"), oldestFirst);
            expectAgreesWithHistory(abbab.refined("abbab "), oldestFirst);
        }
    }
    for (ClipboardHistoryIndex* index : indexes)
        expectAgreesWithHistory(*index, oldestFirst);
}

TEST(ClipboardHistoryIndex, KeepsAnEntryAnotherIndexDeleted) {
    std::vector<ItemInfo> items;
    for (int i = 0; i < 300; ++i) // a few chunks of entries
        items.push_back(item(QStringLiteral("entry %1").arg(i)));
    auto base = ClipboardHistoryIndex::base(items);
    const auto entry7 = base.refined("entry 7");
    for (const ItemInfo& each : items)
        base.remove(each.id);
    EXPECT_TRUE(base.isEmpty());
    EXPECT_EQ(entry7.size(), 11u); // 7, 70-79
    EXPECT_EQ(entry7.entry(items[7].id)->searchableText(), QStringLiteral("entry 7"));
    EXPECT_EQ(entry7.refined("entry 79").ids(), (std::vector<QUuid>{items[79].id}));
}
