#include "app/LoggingManager.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

std::vector<int> linesOf(const LoggingManager& log) {
    std::vector<int> lines;
    for (const auto& e : log.entries())
        lines.push_back(e.line);
    return lines;
}

} // namespace

TEST(LoggingManager, KeepsNothingWhileDeveloperLogsAreOff) {
    LoggingManager log([] { return false; });
    log.append(LogContext::Default, LogLevel::Error, "perfomSync()", 156, "offline");
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(log.exportData(), "[]");
}

TEST(LoggingManager, KeepsTheNewest99InOrder) {
    LoggingManager log([] { return true; });
    for (int i = 1; i <= 150; ++i)
        log.append(LogContext::WindowManager, LogLevel::Info, "f()", i, "entry");
    const auto lines = linesOf(log);
    ASSERT_EQ(lines.size(), 99u);
    EXPECT_EQ(lines.front(), 52);
    EXPECT_EQ(lines.back(), 150);

    // The trim fires on reaching 100, so 99 is the steady size, never 100.
    LoggingManager small([] { return true; });
    for (int i = 1; i <= 99; ++i)
        small.append(LogContext::Default, LogLevel::Info, "f()", i, "");
    EXPECT_EQ(small.entries().size(), 99u);
    EXPECT_EQ(small.entries().front().line, 1);
    small.append(LogContext::Default, LogLevel::Info, "f()", 100, "");
    EXPECT_EQ(small.entries().size(), 99u);
    EXPECT_EQ(small.entries().front().line, 2);
}

TEST(LoggingManager, ExportsEntriesAsAPlainJsonArrayWithCaseObjects) {
    LoggingManager log([] { return true; });
    log.append(LogContext::ClipboardHistory, LogLevel::Error, "perfomSync()", 156, "The network is down");
    const auto text = log.exportData().toStdString();
    EXPECT_EQ(text.find("[{\"context\":{\"ClipboardHistory\":{}},\"level\":{\"Error\":{}},\"timestamp\":"),
              0u)
        << text;
    const auto tail = text.substr(text.find(",\"function\""));
    EXPECT_EQ(tail.find(",\"function\":\"perfomSync()\",\"line\":156,\"version\":\"0.1.0\",\"osVersion\":"),
              0u);
    EXPECT_NE(text.find("\"description\":\"The network is down\"}]"), std::string::npos);

    const auto decoded = decodeJson<std::vector<Log>>(text);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->front(), log.entries().front());
}

TEST(LoggingManager, DecodingAcceptsOnlyTheKnownCaseForms) {
    for (const char* bad :
         {R"({"Warning": {}})", R"("Error")", R"({"Error": 1})", R"({"Error": {}, "Info": {}})"}) {
        std::string error;
        EXPECT_FALSE(decodeJson<LogLevel>(bad, &error)) << bad;
        EXPECT_FALSE(error.empty());
    }
    EXPECT_EQ(decodeJson<LogContext>(R"({"Wallpapers": {}})"), LogContext::Wallpapers);
}

TEST(LoggingManager, FailedExportReportsAndKeepsTheList) {
    LoggingManager log([] { return true; });
    log.append(LogContext::Default, LogLevel::Info, "f()", 1, "kept");
    QString error;
    EXPECT_FALSE(log.exportTo("/nonexistent/dir/logs.json", &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(log.entries().size(), 1u);

    QTemporaryDir dir;
    EXPECT_TRUE(log.exportTo(dir.filePath("logs.json")));
    QFile file(dir.filePath("logs.json"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), log.exportData());
}
