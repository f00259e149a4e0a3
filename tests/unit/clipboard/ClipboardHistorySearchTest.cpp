#include "clipboard/ClipboardHistorySearch.h"

#include "clipboard/ClipboardSearchableText.h"

#include <gtest/gtest.h>

using namespace velmora;
using ItemInfo = ClipboardHistoryIndex::ItemInfo;

namespace {

ItemInfo info(const SimpleClipboardItem& item) {
    return {item.id, searchableText(item)};
}

ItemInfo textItem(const QString& text) {
    SimpleClipboardItem item;
    item.plainText = text;
    return info(item);
}

} // namespace

TEST(ClipboardHistorySearch, ListsEverythingWithoutSearchText) {
    const std::vector<ItemInfo> items{textItem("one"), textItem("two")};
    ClipboardHistorySearch search(items);
    EXPECT_FALSE(search.isFiltering());
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[0].id, items[1].id}));
    EXPECT_TRUE(search.matches(items[1].id));

    search.setText("TW");
    EXPECT_TRUE(search.isFiltering());
    EXPECT_EQ(search.query(), QStringLiteral("tw"));
    EXPECT_FALSE(search.matches(items[0].id));
    search.setText("");
    EXPECT_FALSE(search.isFiltering());
    EXPECT_EQ(search.searchIndex(), nullptr);
    EXPECT_TRUE(search.matches(items[0].id));
}

TEST(ClipboardHistorySearch, FindsWhatTheUserSeesWhateverTheCase) {
    SimpleClipboardItem titleThenApp; // "a b" across the window title and the application name
    titleThenApp.sourceWindowTitle = QStringLiteral("Java");
    titleThenApp.sourceAppName = QStringLiteral("Builder");
    SimpleClipboardItem bundleOnly; // no text at all: found by the bundle id
    bundleOnly.sourceBundleId = QStringLiteral("org.example.Paint");
    SimpleClipboardItem appOnly;
    appOnly.sourceAppName = QStringLiteral("Sketch Pad");
    const std::vector<ItemInfo> items{textItem("make"),      textItem("MAKE"),   textItem("MaKe"),
                                      textItem("unrelated"), info(titleThenApp), info(bundleOnly),
                                      info(appOnly)};
    ClipboardHistorySearch search(items);

    search.setText("MAke");
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[0].id, items[1].id, items[2].id}));
    search.setText("A b");
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[4].id}));
    search.setText("example.paint");
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[5].id}));
    search.setText("sketch");
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[6].id}));
}

TEST(ClipboardHistorySearch, NarrowsWhileTypingAndStartsAgainAfterADeletion) {
    const std::vector<ItemInfo> items{textItem("abc"), textItem("a"), textItem("xab"), textItem("cafe\u0301"),
                                      textItem("cafe")};
    ClipboardHistorySearch search(items);
    ClipboardHistorySearch fresh(items);

    search.setText("a");
    search.setText("ab");
    EXPECT_EQ(search.searchIndex()->query(), QStringLiteral("ab"));
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[0].id, items[2].id}));
    search.setText("a");
    fresh.setText("a");
    EXPECT_EQ(search.matchingIds(), fresh.matchingIds());
    EXPECT_EQ(search.matchingIds().size(), 5u);

    // A typed accent turns the last "e" into another character; the results follow it.
    search.setText("cafe");
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[4].id}));
    search.setText("cafe\u0301");
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{items[3].id}));
}

TEST(ClipboardHistorySearch, KeepsTheResultsRightWhileTheHistoryChanges) {
    const std::vector<ItemInfo> items{textItem("red apple"), textItem("green pear")};
    ClipboardHistorySearch search(items);
    search.setText("app");

    const ItemInfo captured = textItem("apple pie");
    const ItemInfo other = textItem("plum");
    search.insertNewest(captured);
    search.insertNewest(other);
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{captured.id, items[0].id}));
    search.setText("appl"); // narrowing keeps the new capture
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{captured.id, items[0].id}));

    search.remove(items[0].id);
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{captured.id}));
    search.setText("");
    EXPECT_EQ(search.matchingIds(), (std::vector<QUuid>{other.id, captured.id, items[1].id}));

    // Mistakes of the caller change nothing.
    search.insertNewest({other.id, QStringLiteral("duplicate")});
    search.remove(QUuid::createUuid());
    EXPECT_EQ(search.matchingIds().size(), 3u);

    search.setText("p");
    search.clear();
    EXPECT_TRUE(search.isFiltering());
    EXPECT_TRUE(search.matchingIds().empty());
    search.insertNewest(textItem("pp"));
    EXPECT_EQ(search.matchingIds().size(), 1u);
}
