#include "updates/UpdateInfo.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

const QByteArray kDigest = "9F86D081884C7D659A2FEAA0C55AD015A3BF4F1B2B0B822CD15D6C15B0F00A08";

std::optional<UpdateInfo> decode(const QByteArray& json, QString* error = nullptr) {
    QString ignored;
    return decodeUpdateInfo(json, error ? error : &ignored);
}

} // namespace

TEST(UpdateInfo, AnAbsentNullOrEmptyUrlIsNoUpdate) {
    for (const QByteArray& answer :
         {QByteArray("{}"), QByteArray(R"({"url": null})"), QByteArray(R"({"url": ""})"),
          QByteArray(R"({"url": "", "sha256": "nonsense"})")}) {
        const auto info = decode(answer);
        ASSERT_TRUE(info) << answer.constData();
        EXPECT_FALSE(info->offersUpdate()) << answer.constData();
    }
}

TEST(UpdateInfo, AnOfferCarriesItsAddressDigestAndVersion) {
    const auto info = decode(R"({"url": "https://dl.example.org/velmora%200.2.tar.gz", "sha256": ")" +
                             kDigest + R"(", "version": "0.2.0", "notes": ["ignored"]})");
    ASSERT_TRUE(info);
    EXPECT_TRUE(info->offersUpdate());
    EXPECT_EQ(info->url, "https://dl.example.org/velmora%200.2.tar.gz");
    EXPECT_EQ(info->sha256, kDigest.toLower());
    EXPECT_EQ(info->version, "0.2.0");
    // The version is optional.
    EXPECT_TRUE(decode(R"({"url": "http://127.0.0.1:8000/b.tar.gz", "sha256": ")" + kDigest + "\"}"));
}

TEST(UpdateInfo, WhatIsNotAnAnswerSaysWhy) {
    QString error;
    EXPECT_FALSE(decode("<html>502 Bad Gateway</html>", &error));
    EXPECT_EQ(error, "the answer is not JSON");
    EXPECT_FALSE(decode(R"(["https://x.org/b.tar.gz"])", &error));
    EXPECT_EQ(error, "the answer is not a JSON object");
    EXPECT_FALSE(decode(R"({"url": 5})", &error));
    EXPECT_EQ(error, R"("url" must be text, not 5)");
    EXPECT_FALSE(decode(R"({"url": "build.tar.gz", "sha256": ")" + kDigest + "\"}", &error));
    EXPECT_TRUE(error.contains("not an http or https address")) << error.toStdString();
    EXPECT_FALSE(decode(R"({"url": "file:///etc/passwd", "sha256": ")" + kDigest + "\"}", &error));
    EXPECT_TRUE(error.contains("not an http or https address")) << error.toStdString();
    EXPECT_FALSE(
        decode(R"({"url": "https://x.org/b.tar.gz", "sha256": ")" + kDigest + R"(", "version": 2})", &error));
    EXPECT_EQ(error, R"("version" must be text, not 2)");
}

TEST(UpdateInfo, AnOfferWithoutAUsableDigestIsRefused) {
    QString error;
    EXPECT_FALSE(decode(R"({"url": "https://x.org/b.tar.gz"})", &error));
    EXPECT_EQ(error, R"(the answer offers an update without its "sha256" digest)");
    EXPECT_FALSE(
        decode(R"({"url": "https://x.org/b.tar.gz", "sha256": ")" + kDigest.left(63) + "\"}", &error));
    EXPECT_TRUE(error.contains("is not 64 hexadecimal digits")) << error.toStdString();
    EXPECT_FALSE(
        decode(R"({"url": "https://x.org/b.tar.gz", "sha256": ")" + kDigest.left(63) + "g\"}", &error));
    EXPECT_TRUE(error.contains("is not 64 hexadecimal digits")) << error.toStdString();
    EXPECT_FALSE(decode(R"({"url": "https://x.org/b.tar.gz", "sha256": 12})", &error));
    EXPECT_EQ(error, R"("sha256" must be text, not 12)");
}
