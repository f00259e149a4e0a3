#include "clipboard/ClipboardHighlight.h"

#include <gtest/gtest.h>

using namespace velmora;
using Ranges = std::vector<std::pair<int, int>>;

TEST(ClipboardHighlight, MarksEveryOccurrenceWhateverTheCase) {
    EXPECT_EQ(highlightRanges("Make make MAKE", "mAKe"), (Ranges{{0, 4}, {5, 4}, {10, 4}}));
    EXPECT_EQ(highlightRanges("abab", "ab"), (Ranges{{0, 2}, {2, 2}}));
    EXPECT_EQ(highlightRanges("aaa b aa", "aa"), (Ranges{{0, 3}, {6, 2}})); // overlaps merged
    EXPECT_EQ(highlightRanges("abc", "abcd"), Ranges{});
    EXPECT_EQ(highlightRanges("abc", ""), Ranges{});
    EXPECT_EQ(highlightRanges("", "a"), Ranges{});
}

TEST(ClipboardHighlight, RangesAreInTheShownTextsUnitsAndWholeCharacters) {
    // U+0130 lower-cases to two units; the range still covers the one unit shown.
    EXPECT_EQ(highlightRanges("\u0130stanbul \u0130stanbul", "i\u0307st"), (Ranges{{0, 3}, {9, 3}}));
    // "e" does not match the "e" of e + combining acute, and a match there covers both units.
    EXPECT_EQ(highlightRanges("cafe\u0301 cafe", "e"), (Ranges{{9, 1}}));
    EXPECT_EQ(highlightRanges("CAFE\u0301 cafe", "caf"), (Ranges{{0, 3}, {6, 3}}));
    EXPECT_EQ(highlightRanges("CAFE\u0301!", "e\u0301"), (Ranges{{3, 2}}));
    const QString toned = QStringLiteral("\U0001F44D\U0001F3FD");
    EXPECT_EQ(highlightRanges("ok " + toned + " ok", toned + " OK"), (Ranges{{3, 7}}));
    EXPECT_EQ(highlightRanges("ok " + toned, QStringLiteral("\U0001F44D")), Ranges{});
    EXPECT_EQ(highlightRanges("שלום עולם", "עולם"), (Ranges{{5, 4}}));
}
