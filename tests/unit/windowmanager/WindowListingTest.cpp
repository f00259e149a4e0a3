// Which windows the window manager sees, in which order, and on which screen.
#include "platform/fake/FakePlatform.h"
#include "windowmanager/LowLevelHelpers.h"
#include "windowmanager/WindowsCache.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

FakeDesktop::Window win(quint32 id, qint32 pid, QString app, QString title, Rect frame, quint64 space = 0) {
    return {id, pid, std::move(app), std::move(title), frame, {}, 0, space};
}

std::vector<quint32> ids(const std::vector<WindowInfo>& list) {
    std::vector<quint32> out;
    for (const auto& w : list)
        out.push_back(w.id);
    return out;
}

} // namespace

TEST(ListCGWindows, KeepsNormalWindowsOfOtherProgramsFromOneHundredFiftyPoints) {
    FakePlatform fake;
    auto& d = fake.desktop;
    d.add(win(1, 10, "editor", "a", {0, 0, 149, 400}));   // too narrow
    d.add(win(2, 10, "editor", "b", {0, 0, 150, 150}));   // just enough
    d.add(win(3, 1, "velmora", "own", {0, 0, 500, 500})); // our own panel
    auto dock = win(4, 20, "dock", "d", {0, 0, 1440, 300});
    dock.layer = 1;
    d.add(dock);
    auto unknown = win(5, 30, "term", "t", {0, 0, 400, 400});
    unknown.layer = std::nullopt; // no layer said: kept
    d.add(unknown);
    const auto list = listCGWindows(*fake.platform.windowServer, 1);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].id, 2u);
    EXPECT_EQ(list[1].id, 5u);
}

TEST(ListCGWindows, OnlyTheFrontWindowOfTheFrontmostProgramIsFocused) {
    FakePlatform fake;
    fake.desktop.add(win(1, 30, "term", "back", {0, 0, 400, 400}));
    fake.desktop.add(win(2, 10, "editor", "front", {0, 0, 400, 400}));
    fake.desktop.add(win(3, 10, "editor", "second", {0, 0, 400, 400}));
    fake.desktop.frontmostPid = 10;
    const auto list = listCGWindows(*fake.platform.windowServer, 1);
    EXPECT_FALSE(list[0].isFocused);
    EXPECT_TRUE(list[1].isFocused);
    EXPECT_FALSE(list[2].isFocused);
    fake.desktop.frontmostPid.reset(); // an empty desktop has the focus
    for (const auto& w : listCGWindows(*fake.platform.windowServer, 1))
        EXPECT_FALSE(w.isFocused);
}

TEST(WindowsCache, SwitcherOrderIsMostRecentlyFocusedThenByName) {
    FakePlatform fake;
    qint64 now = 1000;
    WindowsCache cache(*fake.platform.windowServer, 1, [&] { return now; });
    fake.desktop.add(win(1, 10, "b-app", "x", {0, 0, 400, 400}));
    fake.desktop.add(win(2, 20, "a-app", "y", {0, 0, 400, 400}));
    fake.desktop.add(win(3, 30, "c-app", "z", {0, 0, 400, 400}));
    cache.refresh();
    EXPECT_EQ(ids(cache.windows()), (std::vector<quint32>{2, 1, 3})); // never focused: by "app - title"

    fake.desktop.frontmostPid = 30;
    cache.tick(); // window 3 focused 20 s ago
    now += 10000;
    fake.desktop.frontmostPid = 10;
    cache.tick(); // window 1 focused 10 s ago
    now += 10000;
    EXPECT_EQ(ids(cache.windows()), (std::vector<quint32>{1, 3, 2}));
}

TEST(WindowsCache, WindowsOnOtherSpacesAreLeftOutAndVanishedOnesDropped) {
    FakePlatform fake;
    WindowsCache cache(*fake.platform.windowServer, 1, [] { return qint64(0); });
    fake.desktop.spaces = {2};
    fake.desktop.add(win(1, 10, "a", "here", {0, 0, 400, 400}, 2));
    fake.desktop.add(win(2, 10, "a", "elsewhere", {0, 0, 400, 400}, 3));
    fake.desktop.add(win(3, 10, "a", "everywhere", {0, 0, 400, 400}, 0));
    cache.refresh();
    EXPECT_TRUE(cache.windowsByID().contains(1));
    EXPECT_FALSE(cache.windowsByID().contains(2));
    EXPECT_TRUE(cache.windowsByID().contains(3));
    fake.desktop.frontmostPid = 10;
    ASSERT_TRUE(cache.focusedWindow());
    EXPECT_EQ(cache.focusedWindow()->title, "here");
}

TEST(ScreenForWindowFrame, TheTopMiddleDecidesElseTheMainScreen) {
    // Two screens side by side, a 25-point panel on top of the first.
    const std::vector<ScreenInfo> screens{{"left", {0, 0, 1440, 900}, {0, 0, 1440, 875}, 1},
                                          {"right", {1440, 0, 1920, 1080}, {1440, 0, 1920, 1080}, 1}};
    // Reaching well onto the right screen, but the middle of its top edge is on the left one.
    EXPECT_EQ(screenForWindowFrame({800, 100, 1000, 400}, screens, screens[1])->id, "left");
    EXPECT_EQ(screenForWindowFrame({1000, 100, 1000, 400}, screens, screens[0])->id, "right");
    // The top edge is up in the panel: on no usable rectangle, so the main screen.
    EXPECT_EQ(screenForWindowFrame({100, 10, 400, 400}, screens, screens[1])->id, "right");
    EXPECT_EQ(usableRect(screens[0], 900), (Rect{0, 25, 1440, 875}));
}

TEST(EdgesTouching, ComparesEachEdgeWithTheGapWithinTheTolerance) {
    const Rect screen{0, 0, 1440, 900};
    EXPECT_EQ(edgesTouching({7, 7, 708, 884}, screen, 7.65, 2), (Edges{true, false, true, true}));
    EXPECT_EQ(edgesTouching({723, 7, 708, 884}, screen, 7.65, 2), (Edges{false, true, true, true}));
    EXPECT_EQ(edgesTouching({10, 7, 708, 884}, screen, 7.65, 2), (Edges{false, false, true, true}));
}
