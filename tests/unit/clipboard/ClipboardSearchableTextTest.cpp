#include "clipboard/ClipboardSearchableText.h"

#include <gtest/gtest.h>

using namespace velmora;

TEST(ClipboardSearchableText, JoinsTheFieldsInOrderWithOneSpaceEach) {
    SimpleClipboardItem item;
    item.plainText = QStringLiteral("Hello");
    item.url = QStringLiteral("https://Example.org/A");
    item.fileURL = QStringLiteral("file:///tmp/Notes.txt");
    item.sourceWindowTitle = QStringLiteral("Inbox");
    item.sourceAppName = QStringLiteral("Mail");
    item.sourceBundleId = QStringLiteral("org.example.mail");
    EXPECT_EQ(searchableText(item),
              QStringLiteral("hello https://example.org/a file:///tmp/notes.txt inbox mail"));
}

TEST(ClipboardSearchableText, KeepsTheSeparatorsOfAbsentParts) {
    SimpleClipboardItem nothing;
    EXPECT_EQ(searchableText(nothing), QStringLiteral("    "));

    SimpleClipboardItem titled;
    titled.sourceWindowTitle = QStringLiteral("Term");
    titled.sourceBundleId = QStringLiteral("org.example.Terminal"); // no name: the bundle id stands in
    EXPECT_EQ(searchableText(titled), QStringLiteral("   term org.example.terminal"));

    SimpleClipboardItem text;
    text.plainText = QStringLiteral("x");
    EXPECT_EQ(searchableText(text), QStringLiteral("x    "));
}

TEST(ClipboardSearchableText, LowerCasingMayLengthenTheText) {
    SimpleClipboardItem item;
    item.plainText = QStringLiteral("\u0130stanbul ÉTÉ"); // capital I with dot lower-cases to i + U+0307
    EXPECT_EQ(searchableText(item), QStringLiteral("i\u0307stanbul été    "));
}
