// The clipboard history window as a user works with it: opened by its chord over another program,
// moved through with the keys, searched by typing, entries pasted back into the program that was in
// front (as it was, or as plain text), previewed and deleted; terminals get their own paste chord.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

void skipWelcome(const VirtualDesktop& desktop) {
    ASSERT_TRUE(desktop.writeWelcomedSettings());
}

Json window(const AgentUnderTest& agent) {
    return agent.status().value("clipboardWindow", Json::object());
}

int entries(const AgentUnderTest& agent) {
    return int(agent.json({"clipboard", "list", "--limit", "100"}).value_or(Json::array()).size());
}

QString pasted(const QString& text) {
    return QString::fromLatin1(text.toUtf8().toBase64());
}

class ClipboardHistoryWindow : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.isReady());
        skipWelcome(desktop);
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(editor.waitUntilMapped());
        editor.activate();
    }

    // Three copies, the newest last, each by its own program, as a user makes them.
    void copyThree() {
        for (const char* text : {"first line", "second line", "third line"}) {
            const int before = entries(agent);
            copy(text);
            ASSERT_TRUE(waitUntil([&] { return entries(agent) == before + 1; })) << text;
        }
    }
    void copy(const char* text) {
        QFile f(files.filePath("copy"));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(text);
        f.close();
        ASSERT_EQ(desktop.run("xclip", {"-selection", "clipboard", "-i", f.fileName()}).exitCode, 0);
    }
    void key(const QString& chord) { desktop.run("xdotool", {"key", chord}); }
    bool waitForWindow(const std::function<bool(const Json&)>& condition) {
        return waitUntil([&] { return condition(window(agent)); });
    }
    void openHistory() {
        key("ctrl+shift+v");
        ASSERT_TRUE(waitForWindow([](const Json& w) { return w.value("open", false); }))
            << window(agent).dump(1);
    }

    VirtualDesktop desktop;
    AgentUnderTest agent{desktop};
    TestWindow editor{desktop, "Editor"};
    QTemporaryDir files;
};

} // namespace

TEST_F(ClipboardHistoryWindow, TheChordOpensItNewestFirstAndPlainPasteReachesTheEditorOnceWithoutANewEntry) {
    copyThree();
    openHistory();
    Json w = window(agent);
    ASSERT_EQ(w["rowCount"], 3);
    EXPECT_EQ(w["rows"][0]["plainText"], "third line");
    EXPECT_EQ(w["selected"], 0);

    key("Down");
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["selected"] == 1; })) << window(agent).dump(1);
    key("p");
    ASSERT_TRUE(waitUntil([&] { return editor.countLines("pasted ") > 0; })) << editor.output().toStdString();
    EXPECT_FALSE(window(agent)["open"].get<bool>());
    EXPECT_EQ(editor.countLines("pasted ctrl+v " + pasted("second line")), 1)
        << editor.output().toStdString();
    // Pasting is no copy of the user's: the history keeps its three entries.
    QThread::msleep(700);
    EXPECT_EQ(entries(agent), 3);
    EXPECT_EQ(editor.countLines("pasted "), 1);
}

TEST_F(ClipboardHistoryWindow, TypingSearchesAndDeletingFromTheResultsLeavesTheRest) {
    copyThree();
    openHistory();
    desktop.run("xdotool", {"type", "SEC"});
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["search"] == "SEC" && w["rowCount"] == 1; }))
        << window(agent).dump(1);
    EXPECT_EQ(window(agent)["rows"][0]["plainText"], "second line");

    desktop.run("xdotool", {"type", "Z"});
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["rowCount"] == 0; })) << window(agent).dump(1);
    key("BackSpace");
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["rowCount"] == 1; })) << window(agent).dump(1);

    key("Tab"); // from the search field to the list, where the plain keys act
    key("BackSpace");
    ASSERT_TRUE(waitUntil([&] { return entries(agent) == 2; }));
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["rowCount"] == 0; })) << window(agent).dump(1);
    key("Escape"); // clears the search first
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["search"] == "" && w["rowCount"] == 2; }))
        << window(agent).dump(1);
    key("Escape");
    ASSERT_TRUE(waitForWindow([](const Json& w) { return !w["open"].get<bool>(); }));
}

// The panel is kept between openings: opened again it is as new, and while closed it is in front of
// nothing, even where the window manager has no other window to name.
TEST_F(ClipboardHistoryWindow, OpenedAgainItIsAsNewAndClosedItIsTheSourceOfNoCopy) {
    copyThree();
    openHistory();
    desktop.run("xdotool", {"type", "third"});
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["rowCount"] == 1; })) << window(agent).dump(1);
    key("Escape");
    key("Escape");
    ASSERT_TRUE(waitForWindow([](const Json& w) { return !w["open"].get<bool>(); }));
    copy("fourth line");
    ASSERT_TRUE(waitUntil([&] { return entries(agent) == 4; }));
    openHistory();
    Json w = window(agent);
    EXPECT_EQ(w["search"], "");
    EXPECT_EQ(w["rowCount"], 4);
    EXPECT_EQ(w["selected"], 0);
    EXPECT_EQ(w["rows"][0]["plainText"], "fourth line");

    editor.process()->kill();
    editor.process()->waitForFinished(5000);
    key("Escape");
    ASSERT_TRUE(waitForWindow([](const Json& w) { return !w["open"].get<bool>(); }));
    copy("copied with nothing in front");
    QThread::msleep(700);
    for (const auto& entry : agent.json({"clipboard", "list", "--limit", "100"}).value_or(Json::array()))
        EXPECT_NE(entry["sourceAppName"], "Velmora") << entry.dump();
}

TEST_F(ClipboardHistoryWindow, SpaceOpensThePreviewAndPressedAgainClosesIt) {
    copyThree();
    openHistory();
    key("space");
    ASSERT_TRUE(waitForWindow([](const Json& w) { return w["previewOpen"].get<bool>(); }))
        << window(agent).dump(1);
    EXPECT_TRUE(window(agent)["open"].get<bool>());
    key("space");
    ASSERT_TRUE(waitForWindow([](const Json& w) { return !w["previewOpen"].get<bool>(); }));
    EXPECT_TRUE(window(agent)["open"].get<bool>());
}

TEST_F(ClipboardHistoryWindow, ATerminalGetsCtrlShiftVAndTheDirectPasteTakesTheNewestText) {
    copyThree();
    TestWindow terminal(desktop, "Terminal", {"--wm-class", "xterm,XTerm"});
    ASSERT_TRUE(terminal.waitUntilMapped());
    terminal.activate();
    const Json oldest = agent.json({"clipboard", "list", "--limit", "3"}).value()[2];
    const QString id = QString::fromStdString(oldest["id"].get<std::string>());
    const auto reply = agent.command({"clipboard", "paste", id, "--plain"});
    ASSERT_EQ(reply.exitCode, 0) << reply.err.toStdString();
    ASSERT_TRUE(waitUntil([&] { return terminal.countLines("pasted ") > 0; }))
        << terminal.output().toStdString();
    EXPECT_EQ(terminal.countLines("pasted ctrl+shift+v " + pasted("first line")), 1)
        << terminal.output().toStdString();
    // The typed chord is not taken for the history window's own shortcut.
    EXPECT_FALSE(window(agent)["open"].get<bool>());

    editor.activate();
    key("super+v");
    ASSERT_TRUE(waitUntil([&] { return editor.countLines("pasted ") > 0; }))
        << editor.output().toStdString() << agent.output().toStdString();
    EXPECT_EQ(editor.countLines("pasted ctrl+v " + pasted("third line")), 1) << editor.output().toStdString();
    EXPECT_EQ(entries(agent), 3);
}
