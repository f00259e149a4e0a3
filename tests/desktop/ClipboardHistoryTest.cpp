// The clipboard history as a user meets it: copies made by real programs (xclip, a Qt client) become
// history entries with the application and window they came from, a copy outlives the program that
// made it, and a killed agent leaves a store that opens whole.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>

#include <csignal>

namespace {

using Json = AgentUnderTest::Json;

// The desktop entry the test client is known by, as an installed application's would be.
void installTestwinEntry(const VirtualDesktop& desktop) {
    QDir().mkpath(desktop.dataDir() + "/applications");
    QFile entry(desktop.dataDir() + "/applications/org.velmora.TestNotes.desktop");
    ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nType=Application\nName=Test Notes\nName[de]=Testnotizen\nExec=testwin\n"
                "Icon=text-x-generic\nStartupWMClass=testwin\n");
}

void skipWelcome(const VirtualDesktop& desktop) {
    ASSERT_TRUE(desktop.writeWelcomedSettings());
}

Json history(const AgentUnderTest& agent, int limit = 50) {
    return agent.json({"clipboard", "list", "--limit", QString::number(limit)}).value_or(Json::array());
}

// Waits until the newest entry satisfies the condition; that entry.
std::optional<Json> newestWhen(const AgentUnderTest& agent,
                               const std::function<bool(const Json&)>& condition) {
    std::optional<Json> found;
    waitUntil([&] {
        const Json list = history(agent, 1);
        if (list.empty() || !condition(list[0]))
            return false;
        found = list[0];
        return true;
    });
    return found;
}

QString idOf(const Json& entry) {
    return QString::fromStdString(entry["id"].get<std::string>());
}

void xclip(const VirtualDesktop& desktop, const QString& type, const QString& file) {
    ASSERT_EQ(desktop.run("xclip", {"-selection", "clipboard", "-t", type, "-i", file}).exitCode, 0);
}

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes) {
    QFile f(dir.filePath(name));
    f.open(QIODevice::WriteOnly);
    f.write(bytes);
    return f.fileName();
}

class ClipboardHistory : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.isReady());
        installTestwinEntry(desktop);
        skipWelcome(desktop);
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(notes.waitUntilMapped());
        notes.activate();
    }

    VirtualDesktop desktop;
    AgentUnderTest agent{desktop};
    TestWindow notes{desktop, "Shopping list.txt"};
    QTemporaryDir files;
};

} // namespace

TEST_F(ClipboardHistory, TextHtmlImageAndFileCopiesAreRecordedWithTheirSource) {
    xclip(desktop, "UTF8_STRING", writeFile(files, "text", "  milk and honey \n"));
    auto text = newestWhen(agent, [](const Json& e) { return e["plainText"] == "milk and honey"; });
    ASSERT_TRUE(text) << history(agent).dump(1);
    EXPECT_EQ((*text)["sourceAppName"], "Test Notes");
    EXPECT_EQ((*text)["sourceBundleId"], "org.velmora.TestNotes");
    EXPECT_EQ((*text)["sourceWindowTitle"], "Shopping list.txt");
    EXPECT_EQ(agent.command({"clipboard", "get", idOf(*text)}).out, "milk and honey");

    const QByteArray html = "<p>Fresh <b>bread</b></p>";
    xclip(desktop, "text/html", writeFile(files, "page.html", html));
    auto page = newestWhen(agent, [](const Json& e) { return e["plainText"].is_null(); });
    ASSERT_TRUE(page) << history(agent).dump(1);
    EXPECT_EQ(agent.command({"clipboard", "get", idOf(*page), "--type", "text/html"}).out.toUtf8(), html);

    QImage picture(1000, 500, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    ASSERT_TRUE(picture.save(files.filePath("picture.png")));
    xclip(desktop, "image/png", files.filePath("picture.png"));
    auto image = newestWhen(agent, [](const Json& e) { return e["pngBytes"].get<qint64>() > 0; });
    ASSERT_TRUE(image) << history(agent).dump(1);
    EXPECT_EQ((*image)["pngBytes"], QFile(files.filePath("picture.png")).size());
    EXPECT_EQ((*image)["width"], 1000);
    EXPECT_EQ((*image)["height"], 500);
    const QString thumbnailPath = files.filePath("thumbnail.png");
    desktop.run("sh", {"-c", "\"$0\" clipboard get \"$1\" --type thumbnail > \"$2\"", VELMORA_BINARY,
                       idOf(*image), thumbnailPath});
    EXPECT_EQ(QImage(thumbnailPath).size(), QSize(160, 80));

    const QString a = writeFile(files, "a report.txt", "twelve bytes");
    const QString b = writeFile(files, "b.csv", "1,2\n");
    const QByteArray list = "file://" + QUrl::toPercentEncoding(a, "/") + "\r\nfile://" +
                            QUrl::toPercentEncoding(b, "/") + "\r\n";
    xclip(desktop, "text/uri-list", writeFile(files, "list", list));
    ASSERT_TRUE(newestWhen(agent, [](const Json& e) { return e["fileURL"].is_string(); }));
    const Json entries = history(agent, 2);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(QUrl(QString::fromStdString(entries[1]["fileURL"])).toLocalFile(), a) << entries.dump(1);
    EXPECT_EQ(entries[1]["fileBytes"], 12);
    EXPECT_EQ(QUrl(QString::fromStdString(entries[0]["fileURL"])).toLocalFile(), b);
}

TEST_F(ClipboardHistory, AConcealedCopyIsNotRecordedAndACopyOutlivesItsProgram) {
    TestWindow secret(desktop, "Vault",
                      {"--copy", "text/plain=" + writeFile(files, "pw", "hunter2"), "--copy",
                       "x-kde-passwordManagerHint=" + writeFile(files, "hint", "secret")});
    ASSERT_TRUE(waitUntil([&] { return secret.output().contains("copied"); }));
    ASSERT_TRUE(waitUntil([&] { return agent.status()["clipboardHistory"]["changeCount"].get<int>() >= 1; }));

    TestWindow copier(desktop, "Copier",
                      {"--copy", "text/plain=" + writeFile(files, "note", "call the bank")});
    ASSERT_TRUE(waitUntil([&] { return copier.output().contains("copied"); }));
    ASSERT_TRUE(newestWhen(agent, [](const Json& e) { return e["plainText"] == "call the bank"; }))
        << history(agent).dump(1) << agent.output().toStdString();
    for (const auto& entry : history(agent))
        EXPECT_NE(entry["plainText"], "hunter2");

    copier.process()->kill();
    copier.process()->waitForFinished();
    EXPECT_TRUE(waitUntil([&] {
        return desktop.run("xclip", {"-selection", "clipboard", "-o"}, 2000).out == "call the bank";
    }));
    EXPECT_EQ(history(agent).size(), 1u) << "keeping the copy alive is not a new copy";
}

TEST(ClipboardHistoryStore, AnAgentKilledInABurstOfCopiesLeavesAStoreThatOpensWhole) {
    VirtualDesktop desktop;
    ASSERT_TRUE(desktop.isReady());
    skipWelcome(desktop);
    // How many copies the agent keeps apart in a burst depends on how busy the machine is; the kill
    // comes once it has stored a good number, while the burst goes on.
    std::size_t stored = 0;
    {
        AgentUnderTest agent(desktop);
        ASSERT_TRUE(agent.start());
        ASSERT_EQ(agent
                      .command({"prefs", "set", "ClipboardPreferences",
                                R"({"retention":5000,"blacklistedAppURLs":[]})"})
                      .exitCode,
                  0);
        TestWindow burst(desktop, "Burst", {"--copy-burst", "1000", "--burst-gap-ms", "1"});
        ASSERT_TRUE(waitUntil([&] { return (stored = history(agent, 300).size()) >= 50; }, 45000));
        kill(pid_t(agent.process()->processId()), SIGKILL);
        agent.process()->waitForFinished();
    }
    AgentUnderTest again(desktop);
    ASSERT_TRUE(again.start());
    const Json entries = history(again, 2000);
    ASSERT_GE(entries.size(), stored) << "entries stored before the kill are gone";
    // Every entry's text file is there; asking each of a spread of them is enough to show it.
    for (std::size_t i = 0; i < entries.size(); i += entries.size() / 10) {
        const auto text = again.command({"clipboard", "get", idOf(entries[i])});
        ASSERT_EQ(text.exitCode, 0) << entries[i].dump();
        EXPECT_TRUE(text.out.startsWith("burst ")) << text.out.toStdString();
    }
    EXPECT_EQ(again.quit(), 0);
}

TEST_F(ClipboardHistory, AnOwnerThatNeverAnswersCostsNothingButItsCopy) {
    TestWindow silent(desktop, "Silent", {"--hold-clipboard-silently"});
    ASSERT_TRUE(waitUntil([&] { return silent.output().contains("holding"); }));
    // While the reader waits for an answer that never comes, the agent serves its shortcuts and
    // commands as ever.
    notes.activate();
    desktop.run("xdotool", {"key", "ctrl+shift+v"});
    ASSERT_TRUE(waitUntil([&] { return agent.status()["clipboardWindow"]["open"].get<bool>(); }));
    desktop.run("xdotool", {"key", "Escape"});
    EXPECT_TRUE(history(agent).empty());
    // The next copy by a program that answers is recorded.
    xclip(desktop, "UTF8_STRING", writeFile(files, "after", "after the silent one"));
    ASSERT_TRUE(newestWhen(agent, [](const Json& e) { return e["plainText"] == "after the silent one"; }))
        << history(agent).dump(1);
    EXPECT_EQ(history(agent).size(), 1u);
}

TEST_F(ClipboardHistory, AFiftyMegabyteImageArrivesInPiecesWhileTheAgentKeepsAnswering) {
    // Noise does not compress: about 53 MB of PNG, far more than one X request carries.
    QImage noise(4200, 4200, QImage::Format_RGB32);
    auto* bits = reinterpret_cast<quint32*>(noise.bits());
    quint32 state = 12345;
    for (qsizetype i = 0; i < noise.sizeInBytes() / 4; ++i) {
        state = state * 1664525u + 1013904223u;
        bits[i] = state;
    }
    const QString path = files.filePath("noise.png");
    ASSERT_TRUE(noise.save(path, "PNG", 100)); // stored, not compressed: quick to write
    const qint64 size = QFile(path).size();
    ASSERT_GT(size, 40'000'000);
    xclip(desktop, "image/png", path);
    // Commands are answered while the picture is read, decoded and written.
    EXPECT_EQ(agent.command({"status"}).exitCode, 0);
    auto image = newestWhen(agent, [](const Json& e) { return e["pngBytes"].get<qint64>() > 0; });
    ASSERT_TRUE(image) << history(agent).dump(1);
    EXPECT_EQ((*image)["pngBytes"], size);
    EXPECT_EQ((*image)["width"], 4200);
    const QString copy = files.filePath("back.png");
    // 50 MB through the agent's socket and a pipe: on a busy machine that takes more than seconds.
    desktop.run(
        "sh",
        {"-c", "\"$0\" clipboard get \"$1\" --type image/png > \"$2\"", VELMORA_BINARY, idOf(*image), copy},
        60000);
    EXPECT_EQ(QFile(copy).size(), size);
}
