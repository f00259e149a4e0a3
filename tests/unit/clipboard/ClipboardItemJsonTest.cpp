#include "clipboard/ClipboardItemJson.h"

#include <gtest/gtest.h>

using namespace velmora;

TEST(ClipboardItemJson, ListsTheSmallFieldsInRecordOrderWithNulls) {
    SimpleClipboardItem item;
    item.id = QUuid::fromString(QStringLiteral("{3f2504e0-4f89-11d3-9a0c-0305e82c3301}"));
    item.timestamp = 1700000000123;
    item.sourceAppName = QStringLiteral("Editor");
    item.plainText = QStringLiteral("hello");
    item.html = QByteArray("<b>hello</b>");
    item.sourceIconData = QByteArray("icon");
    item.thumbnailData = QByteArray("thumb");
    item.color = QByteArray("c");
    item.pngBytes = 12;
    item.width = 3;
    item.payload = SimpleClipboardPayload{};

    const Json j = listingJson(item);
    std::vector<std::string> keys;
    for (const auto& entry : j.items())
        keys.push_back(entry.key());
    EXPECT_EQ(keys, (std::vector<std::string>{"id",
                                              "timestamp",
                                              "sourceBundleId",
                                              "sourceBundleURL",
                                              "sourceAppName",
                                              "sourceWindowTitle",
                                              "isUniversalClipboard",
                                              "plainText",
                                              "url",
                                              "fileURL",
                                              "fileBytes",
                                              "fileContentsBytes",
                                              "pngBytes",
                                              "jpegBytes",
                                              "tiffBytes",
                                              "pdfBytes",
                                              "soundBytes",
                                              "width",
                                              "height",
                                              "thumbnailIsIcon"}));
    EXPECT_EQ(j["id"], "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
    EXPECT_EQ(j["timestamp"], 1700000000123);
    EXPECT_TRUE(j["sourceBundleId"].is_null());
    EXPECT_EQ(j["sourceAppName"], "Editor");
    EXPECT_EQ(j["plainText"], "hello");
    EXPECT_EQ(j["isUniversalClipboard"], false);
    EXPECT_EQ(j["pngBytes"], 12);
    EXPECT_TRUE(j["url"].is_null());

    item.plainText.reset();
    EXPECT_TRUE(listingJson(item)["plainText"].is_null());
}

TEST(ClipboardItemJson, CutsThePlainTextToTwoHundredCharacters) {
    SimpleClipboardItem item;
    item.plainText = QString(250, u'a');
    EXPECT_EQ(listingJson(item)["plainText"].get<std::string>().size(), 200u);

    item.plainText = QString(200, u'b');
    EXPECT_EQ(listingJson(item)["plainText"].get<std::string>(), std::string(200, 'b'));

    // A character outside the basic plane counts once and is not split.
    const QString smile = QStringLiteral("🙂");
    item.plainText = QString(199, u'c') + smile + smile;
    EXPECT_EQ(QString::fromStdString(listingJson(item)["plainText"].get<std::string>()),
              QString(199, u'c') + smile);
    EXPECT_EQ(leadingCharacters(smile + smile, 1), smile);
    EXPECT_EQ(leadingCharacters(QString(), 5), QString());
}
