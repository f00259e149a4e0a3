#include "dimming/DimmingOverlayRegistry.h"
#include "FakeDimmingOverlay.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

ScreenInfo screen(QString id, Rect frame) {
    return {std::move(id), frame, frame, 1};
}

struct Registry {
    MonitorDimmingModel model;
    FakeDimmingOverlay::Log log;
    DimmingOverlayRegistry registry{model, FakeDimmingOverlay::factory(log)};

    std::vector<QString> keys() const {
        std::vector<QString> result;
        for (const auto& [key, overlay] : registry.overlays())
            result.push_back(key);
        return result;
    }
};

} // namespace

TEST(DimmingOverlayRegistry, OnlyQualifyingScreensGetAnOverlayOnce) {
    Registry r;
    // A 16:10 laptop panel as primary, a 16:9 monitor to its right, a portrait one above it.
    const std::vector<ScreenInfo> screens{screen("laptop", {0, 0, 1728, 1117}),
                                          screen("wide", {1728, 0, 1920, 1080}),
                                          screen("portrait", {1728, 1080, 1080, 1920})};
    const auto keys = r.registry.updateOverlays(screens);
    EXPECT_EQ(keys, (std::set<QString>{"1728.0:0.0:1920.0:1080.0", "1728.0:1080.0:1080.0:1920.0"}));
    EXPECT_EQ(r.keys(), std::vector<QString>(keys.begin(), keys.end()));
    ASSERT_EQ(r.log.made, 2);
    // Windows are placed from the top left: the 1117-high primary's top is y = 0.
    EXPECT_EQ(r.log.frames[0], (Rect{1728, 37, 1920, 1080}));
    EXPECT_EQ(r.log.frames[1], (Rect{1728, -1883, 1080, 1920}));

    // Updating again keeps the overlays it has.
    EXPECT_EQ(r.registry.updateOverlays(screens), keys);
    EXPECT_EQ(r.log.made, 2);
}

TEST(DimmingOverlayRegistry, AMovedScreenGetsANewOverlayAndTheOldStaysUntilRemoved) {
    Registry r;
    r.registry.updateOverlays({screen("main", {0, 0, 1920, 1080}), screen("side", {1920, 0, 1920, 1080})});
    const auto moved = r.registry.updateOverlays(
        {screen("main", {0, 0, 1920, 1080}), screen("side", {0, 1080, 1920, 1080})});
    EXPECT_EQ(r.log.made, 3);
    EXPECT_EQ(r.keys(), (std::vector<QString>{"0.0:0.0:1920.0:1080.0", "0.0:1080.0:1920.0:1080.0",
                                              "1920.0:0.0:1920.0:1080.0"}));
    r.registry.removeOverlaysExcept(moved);
    EXPECT_EQ(r.keys(), (std::vector<QString>{"0.0:0.0:1920.0:1080.0", "0.0:1080.0:1920.0:1080.0"}));
    EXPECT_EQ(r.log.dismissed, 1);
    r.registry.removeOverlaysExcept({});
    EXPECT_TRUE(r.keys().empty());
    EXPECT_EQ(r.log.dismissed, 3);
}

TEST(DimmingOverlayRegistry, ScreensNoWindowCanCoverAreSkipped) {
    Registry r;
    const auto keys =
        r.registry.updateOverlays({screen("main", {0, 0, 1920, 1080}), screen("zero", {1920, 0, 0, 0}),
                                   screen("huge", {0, 0, 60000, 1080})});
    EXPECT_EQ(keys, (std::set<QString>{"0.0:0.0:1920.0:1080.0"}));
    EXPECT_EQ(r.log.made, 1);
    EXPECT_TRUE(r.registry.updateOverlays({}).empty());
}

TEST(DimmingOverlayRegistry, OnlyShownOverlaysAreBroughtToFront) {
    Registry r;
    r.registry.updateOverlays({screen("a", {0, 0, 1920, 1080}), screen("b", {1920, 0, 1920, 1080})});
    r.registry.bringAllToFront();
    EXPECT_EQ(r.log.broughtToFront, 0); // factor 1.0: nothing drawn
    r.model.setBrightnessFactor(0.5);
    r.registry.bringAllToFront();
    EXPECT_EQ(r.log.broughtToFront, 2);
}
