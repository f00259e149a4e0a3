#include "platform/x11/ClipboardTargets.h"

#include <gtest/gtest.h>

using namespace velmora;
namespace T = PasteboardType;

namespace {

const QByteArray* find(const std::vector<std::pair<QString, QByteArray>>& offer, const QString& target) {
    for (const auto& [t, d] : offer)
        if (t == target)
            return &d;
    return nullptr;
}

} // namespace

TEST(ClipboardTargets, ReadsEachKindOnceInOrderAndOnlyTheFirstRenderingOfAPicture) {
    const QStringList offered = {"TARGETS",    "TIMESTAMP", "image/bmp",   "image/tiff", "image/png",
                                 "image/jpeg", "STRING",    "UTF8_STRING", "text/html",  "SAVE_TARGETS"};
    EXPECT_EQ(ClipboardTargets::wanted(offered), QStringList({"UTF8_STRING", "text/html", "image/png"}));
    EXPECT_EQ(ClipboardTargets::wanted({"image/tiff", "image/bmp"}), QStringList({"image/tiff"}));
    EXPECT_TRUE(ClipboardTargets::wanted({"TARGETS", "MULTIPLE"}).isEmpty());
}

TEST(ClipboardTargets, LegacyTextIsLatin1AndAConcealedHintMarksTheItem) {
    const auto latin = ClipboardTargets::itemsFrom({{"STRING", QByteArray("caf\xe9")}}, {"STRING"});
    ASSERT_EQ(latin.size(), 1u);
    EXPECT_EQ(QString::fromUtf8(*latin[0].data(T::string)), QString::fromUtf8("café"));

    const auto secret =
        ClipboardTargets::itemsFrom({{"UTF8_STRING", "hunter2"}, {"x-kde-passwordManagerHint", "secret"}},
                                    {"UTF8_STRING", "x-kde-passwordManagerHint"});
    ASSERT_EQ(secret.size(), 1u);
    EXPECT_TRUE(secret[0].data(T::concealed));
    const auto notSecret =
        ClipboardTargets::itemsFrom({{"UTF8_STRING", "x"}, {"x-kde-passwordManagerHint", "nothing"}},
                                    {"UTF8_STRING", "x-kde-passwordManagerHint"});
    EXPECT_FALSE(notSecret[0].data(T::concealed));
}

TEST(ClipboardTargets, AUriListGivesOneItemPerFileAndKeepsTheFirstWebAddress) {
    const QByteArray list =
        "# copied by a file manager\r\nfile:///home/u/a%20b.txt\r\nhttps://example.org/x\r\n"
        "file:///home/u/c.png\r\nnot a uri at all\r\nsmb://server/share\r\n";
    const auto items = ClipboardTargets::itemsFrom({{"text/uri-list", list}, {"UTF8_STRING", "a b.txt"}},
                                                   {"text/uri-list", "UTF8_STRING"});
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(*items[0].data(T::fileURL), "file:///home/u/a%20b.txt");
    EXPECT_EQ(*items[0].data(T::url), "https://example.org/x");
    EXPECT_EQ(*items[0].data(T::string), "a b.txt");
    EXPECT_EQ(*items[1].data(T::fileURL), "file:///home/u/c.png");
    EXPECT_FALSE(items[1].data(T::string));
}

TEST(ClipboardTargets, AHugeUriListIsCut) {
    QByteArray list;
    for (int i = 0; i < 5000; ++i)
        list += "file:///tmp/f" + QByteArray::number(i) + "\n";
    EXPECT_EQ(ClipboardTargets::itemsFrom({{"text/uri-list", list}}, {"text/uri-list"}).size(), 1000u);
}

TEST(ClipboardTargets, AnOwnerOffersTextUnderEveryTextNameAndFilesAsAList) {
    PasteboardItem text;
    text.add(T::string, "héllo");
    text.add(T::html, "<i>héllo</i>");
    const auto offer = ClipboardTargets::offer({text});
    ASSERT_TRUE(find(offer, "UTF8_STRING"));
    EXPECT_EQ(*find(offer, "UTF8_STRING"), "héllo");
    EXPECT_EQ(*find(offer, "STRING"), QString::fromUtf8("héllo").toLatin1());
    EXPECT_TRUE(find(offer, "text/html"));

    PasteboardItem a, b;
    a.add(T::fileURL, "file:///tmp/a");
    b.add(T::fileURL, "file:///tmp/b");
    const auto files = ClipboardTargets::offer({a, b});
    EXPECT_EQ(*find(files, "text/uri-list"), "file:///tmp/a\r\nfile:///tmp/b\r\n");
    EXPECT_EQ(*find(files, "x-special/gnome-copied-files"), "copy\nfile:///tmp/a\nfile:///tmp/b");
}
