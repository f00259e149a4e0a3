// Snapping by dragging real windows with the mouse under Openbox on a 1440 x 900 screen: XTest presses
// on the title bar and moves, as a hand on a mouse would; the frames are read back from the window
// manager, the preview from the agent.
#include "AgentUnderTest.h"
#include "TestWindow.h"

#include <QThread>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

struct DragDesktop : ::testing::Test {
    VirtualDesktop desktop{{1440, 900, false}};
    AgentUnderTest agent{desktop};
    std::unique_ptr<TestWindow> window;

    void SetUp() override {
        ASSERT_TRUE(desktop.writeWelcomedSettings());
        ASSERT_TRUE(agent.start());
        window = std::make_unique<TestWindow>(desktop, "drag");
        ASSERT_TRUE(window->waitUntilMapped());
        window->activate();
        ASSERT_TRUE(waitUntil([&] { return frame().has_value(); }));
        ASSERT_TRUE(waitUntil([&] { return agent.status()["tap"].value("state", "") == "active"; }));
    }
    std::optional<Json> frame() const {
        const auto windows = agent.json({"windows"});
        if (windows)
            for (const auto& w : *windows)
                if (w["title"] == "drag")
                    return w["frame"];
        return std::nullopt;
    }
    Json preview() const { return agent.status()["switcher"]["preview"]; }
    // Within two pixels in every number.
    static bool near(const Json& frame, const char* expected) {
        const Json want = Json::parse(expected);
        if (!frame.is_array() || frame.size() != want.size())
            return false;
        for (std::size_t i = 0; i < want.size(); ++i)
            if (std::abs(frame[i].get<double>() - want[i].get<double>()) > 2)
                return false;
        return true;
    }
    void xdotool(const QStringList& args) const { desktop.run("xdotool", args); }
    // Moves the pointer there in small steps with the button held, as a hand would.
    void moveTo(int x, int y, int steps = 12) const {
        const auto from = desktop.run("xdotool", {"getmouselocation", "--shell"}).out;
        const int x0 = from.section("X=", 1).section('\n', 0, 0).toInt();
        const int y0 = from.section("Y=", 1).section('\n', 0, 0).toInt();
        for (int i = 1; i <= steps; ++i) {
            xdotool({"mousemove", QString::number(x0 + (x - x0) * i / steps),
                     QString::number(y0 + (y - y0) * i / steps)});
            QThread::msleep(15);
        }
    }
    void pressOnTitleBar() const {
        const Json f = *frame();
        xdotool({"mousemove", QString::number(f[0].get<int>() + 120), QString::number(f[1].get<int>() + 8)});
        QThread::msleep(100);
        xdotool({"mousedown", "1"});
        QThread::msleep(100);
    }
    ::testing::AssertionResult settlesAt(const char* expected) const {
        const auto want = Json::parse(expected);
        std::optional<Json> got;
        if (waitUntil([&] { return (got = frame()) && *got == want; }, 3000))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "frame " << (got ? got->dump() : "none") << ", expected " << want.dump();
    }
};

} // namespace

TEST_F(DragDesktop, DraggingToTheLeftEdgeShowsThePreviewAndPlacesTheLeftHalf) {
    pressOnTitleBar();
    moveTo(600, 400);
    moveTo(2, 450);
    ASSERT_TRUE(waitUntil([&] { return preview()["visible"].get<bool>(); }, 2000))
        << preview().dump() << agent.status()["windowManager"].dump() << agent.output().toStdString();
    // spacing 0.5: gap 7.65 at the edges, as the shortcut places it (the preview covers whole pixels).
    EXPECT_TRUE(near(preview()["frame"], "[7.65, 7.65, 708.5, 884.7]")) << preview().dump();
    xdotool({"mouseup", "1"});
    EXPECT_TRUE(settlesAt("[7, 7, 708, 884]"));
    EXPECT_FALSE(preview()["visible"].get<bool>());
}

TEST_F(DragDesktop, ACornerGivesAQuarterAndLeavingTheEdgesPlacesNothing) {
    pressOnTitleBar();
    moveTo(900, 300);
    moveTo(1437, 3);
    ASSERT_TRUE(waitUntil([&] { return preview()["visible"].get<bool>(); }, 2000));
    EXPECT_TRUE(near(preview()["frame"], "[723.8, 7.65, 708.5, 438.5]")) << preview().dump();
    moveTo(700, 450);
    EXPECT_TRUE(waitUntil([&] { return !preview()["visible"].get<bool>(); }, 2000));
    xdotool({"mouseup", "1"});
    QThread::msleep(400);
    // Left where the hand put it, at its own size.
    const Json after = *frame();
    EXPECT_EQ(after[2], 402);
    EXPECT_EQ(after[3], 325);
    EXPECT_GT(after[0].get<int>(), 400);
}

TEST_F(DragDesktop, AResizeDragSnapsNothing) {
    const Json f = *frame();
    // Openbox resizes from the frame's bottom-right corner handle.
    const int right = f[0].get<int>() + f[2].get<int>() - 2, bottom = f[1].get<int>() + f[3].get<int>() - 2;
    xdotool({"mousemove", QString::number(right), QString::number(bottom)});
    QThread::msleep(100);
    xdotool({"mousedown", "1"});
    moveTo(right + 100, bottom + 60);
    moveTo(1437, 890);
    EXPECT_FALSE(preview()["visible"].get<bool>());
    EXPECT_EQ(agent.status()["windowManager"]["dragState"], "resizeManipulation");
    xdotool({"mouseup", "1"});
    QThread::msleep(300);
    const Json after = *frame();
    EXPECT_NE(after[2], f[2]); // resized, not snapped
    EXPECT_NE(after, Json::parse("[723, 453, 708, 438]"));
}

TEST_F(DragDesktop, ThePreviewIsTranslucentWithACompositorAndAnOutlineWithout) {
    pressOnTitleBar();
    moveTo(2, 450);
    ASSERT_TRUE(waitUntil([&] { return preview()["visible"].get<bool>(); }, 2000));
    EXPECT_FALSE(preview()["translucent"].get<bool>());
    // The inside of the zone is not covered: the desktop below shows through the outline.
    xdotool({"mouseup", "1"});
    EXPECT_TRUE(settlesAt("[7, 7, 708, 884]"));

    desktop.startCompositor();
    window->activate();
    QThread::msleep(200);
    pressOnTitleBar();
    moveTo(1437, 450);
    ASSERT_TRUE(waitUntil([&] { return preview()["visible"].get<bool>(); }, 2000));
    EXPECT_TRUE(preview()["translucent"].get<bool>());
    xdotool({"mouseup", "1"});
    EXPECT_TRUE(settlesAt("[723, 7, 708, 884]"));
}
