// The auto-layout panel as a user meets it under Openbox on a 1440 x 900 screen: a window snapped to
// the left half by its shortcut, Super+Alt+Space, a choice in the panel; and the tabs of a GTK window
// read over the accessibility bus of the test's own session bus.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QThread>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

struct AutoLayoutDesktop : ::testing::Test {
    VirtualDesktop desktop{{1440, 900, false}};
    AgentUnderTest agent{desktop};

    void startAgent() {
        ASSERT_TRUE(desktop.writeWelcomedSettings());
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));
    }
    std::optional<Json> frameOf(const QString& title) const {
        if (const auto windows = agent.json({"windows"}))
            for (const auto& w : *windows)
                if (w["title"] == title.toStdString())
                    return w["frame"];
        return std::nullopt;
    }
    bool isFocused(const QString& title) const {
        if (const auto windows = agent.json({"windows"}))
            for (const auto& w : *windows)
                if (w["title"] == title.toStdString())
                    return w["focused"].get<bool>();
        return false;
    }
    // Placement asks for whole pixels: the free space's numbers, truncated.
    bool isAt(const QString& title, const Json& free) const {
        const auto f = frameOf(title);
        if (!f || !free.is_array() || f->size() != 4)
            return false;
        for (std::size_t i = 0; i < 4; ++i)
            if (std::abs((*f)[i].get<double>() - free[i].get<double>()) > 1)
                return false;
        return true;
    }
    Json panel() const { return agent.status()["autoLayout"]; }
    void key(const QString& chord) const { desktop.run("xdotool", {"key", chord}); }
    // Snaps the window to the left half with the factory chord and waits until it is there.
    void snapLeft(const QString& windowId, const QString& title) {
        desktop.run("xdotool", {"windowactivate", "--sync", windowId});
        ASSERT_TRUE(waitUntil([&] { return isFocused(title); }));
        key("super+alt+Left");
        ASSERT_TRUE(waitUntil([&] {
            const auto f = frameOf(title);
            return f && (*f)[0].get<double>() < 20 && (*f)[2].get<double>() < 730;
        }));
    }
    std::vector<std::string> rowTexts() const {
        std::vector<std::string> rows;
        const Json state = panel();
        for (const auto& row : state["rows"])
            rows.push_back(row["text"].get<std::string>());
        return rows;
    }
};

} // namespace

TEST_F(AutoLayoutDesktop, TheChosenWindowFillsTheSpaceBesideALeftHalfAndHasTheFocus) {
    startAgent();
    TestWindow left(desktop, "left"), other(desktop, "other"), third(desktop, "third");
    ASSERT_TRUE(left.waitUntilMapped() && other.waitUntilMapped() && third.waitUntilMapped());
    snapLeft(left.id(), "left");

    key("super+alt+space");
    ASSERT_TRUE(waitUntil([&] { return panel()["open"].get<bool>(); }));
    const Json free = panel()["freeSpace"];
    EXPECT_EQ(rowTexts().size(), 2u) << panel().dump();
    EXPECT_TRUE(agent.status()["switcher"]["preview"]["visible"].get<bool>()); // the space is shown
    // Typing searches; Return places the match.
    desktop.run("xdotool", {"type", "othe"});
    ASSERT_TRUE(waitUntil([&] { return rowTexts().size() == 1; }));
    key("Return");
    ASSERT_TRUE(waitUntil([&] { return !panel()["open"].get<bool>(); }));
    ASSERT_TRUE(waitUntil([&] { return isAt("other", free); }, 3000))
        << frameOf("other")->dump() << " vs " << free.dump();
    EXPECT_TRUE(waitUntil([&] { return isFocused("other"); }));
    EXPECT_FALSE(agent.status()["switcher"]["preview"]["visible"].get<bool>());
}

TEST_F(AutoLayoutDesktop, NothingOpensBesideAFloatingWindowOrWithNoOtherWindow) {
    startAgent();
    TestWindow alone(desktop, "alone");
    ASSERT_TRUE(alone.waitUntilMapped());
    snapLeft(alone.id(), "alone");
    key("super+alt+space");
    QThread::msleep(500);
    EXPECT_FALSE(panel()["open"].get<bool>());

    TestWindow floating(desktop, "floating");
    ASSERT_TRUE(floating.waitUntilMapped());
    floating.activate();
    ASSERT_TRUE(waitUntil([&] { return isFocused("floating"); }));
    key("super+alt+space");
    QThread::msleep(500);
    EXPECT_FALSE(panel()["open"].get<bool>());
    EXPECT_TRUE(agent.isRunning());
}

TEST_F(AutoLayoutDesktop, TabsOfAGtkNotebookAreListedAndTheChosenOneIsSelected) {
    ASSERT_TRUE(desktop.startSessionBus());
    startAgent();
    TestWindow left(desktop, "left");
    ASSERT_TRUE(left.waitUntilMapped());
    QProcess* notebook = desktop.start(NOTEBOOK_CLIENT, {"notebook"});
    QString notebookId;
    ASSERT_TRUE(waitUntil([&] {
        notebookId = desktop.run("xdotool", {"search", "--onlyvisible", "--name", "^notebook$"})
                         .out.section('\n', 0, 0)
                         .trimmed();
        return !notebookId.isEmpty();
    })) << notebook->readAllStandardError().toStdString();
    snapLeft(left.id(), "left");

    key("super+alt+space");
    ASSERT_TRUE(waitUntil([&] { return panel()["open"].get<bool>(); }));
    const Json free = panel()["freeSpace"];
    ASSERT_TRUE(waitUntil([&] {
        const Json state = panel();
        for (const auto& titles : state["tabs"])
            if (titles == Json::parse(R"(["Alpha", "Beta", "Gamma"])"))
                return true;
        return false;
    })) << panel().dump();

    desktop.run("xdotool", {"type", "gam"});
    ASSERT_TRUE(waitUntil([&] { return rowTexts() == std::vector<std::string>{"Gamma"}; })) << panel().dump();
    key("Return");
    ASSERT_TRUE(waitUntil([&] { return isAt("notebook", free); }, 3000));
    ASSERT_TRUE(waitUntil([&] {
        notebook->waitForReadyRead(50);
        return notebook->peek(4096).contains("page Gamma");
    })) << notebook->peek(4096).toStdString();
}
