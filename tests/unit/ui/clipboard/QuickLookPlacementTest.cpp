// Where the preview goes beside the history panel.
#include "ui/clipboard/QuickLookPlacement.h"

#include <gtest/gtest.h>

using namespace velmora;
using QuickLookPlacement::frameBeside;
using QuickLookPlacement::gap;

namespace {

const QRect screen(0, 0, 1920, 1080);

} // namespace

TEST(QuickLookPlacement, GoesRightOfThePanelWhenThereIsRoomElseLeft) {
    const QRect panel(100, 200, 400, 500);
    EXPECT_EQ(frameBeside({600, 400}, panel, screen), QRect(500 + gap, 200, 600, 400));

    const QRect rightPanel(1400, 200, 400, 500);
    EXPECT_EQ(frameBeside({600, 400}, rightPanel, screen), QRect(1400 - gap - 600, 200, 600, 400));
}

TEST(QuickLookPlacement, TakesTheRoomierSideAndStaysOnScreenWhenNeitherFits) {
    // 700 px to the left of the panel, 420 to its right: the preview covers part of the panel only now.
    const QRect panel(700, 0, 800, 600);
    const QRect frame = frameBeside({900, 300}, panel, screen);
    EXPECT_EQ(frame, QRect(0, 0, 900, 300));

    const QRect other(420, 0, 800, 600);
    EXPECT_EQ(frameBeside({900, 300}, other, screen), QRect(1920 - 900, 0, 900, 300));
}

TEST(QuickLookPlacement, AlignsTopsButKeepsTheBottomOnScreen) {
    const QRect panel(100, 900, 300, 150);
    EXPECT_EQ(frameBeside({500, 400}, panel, screen).bottom(), screen.bottom());
    // A screen that does not start at the origin (a second monitor, a panel at the top).
    const QRect second(1920, 30, 1280, 994);
    EXPECT_EQ(frameBeside({400, 300}, QRect(2000, 0, 200, 100), second), QRect(2200 + gap, 30, 400, 300));
}

TEST(QuickLookPlacement, CentresWithoutPanelAndShrinksToTheScreen) {
    EXPECT_EQ(frameBeside({400, 200}, QRect(), screen), QRect(760, 440, 400, 200));
    EXPECT_EQ(frameBeside({3000, 2000}, QRect(10, 10, 100, 100), screen).size(), screen.size());
}
