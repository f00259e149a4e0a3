// Dimming as the whole agent offers it: the command line, the shortcut's action, the status section,
// the panel's slider, over the in-memory desktop (one 1440 x 900 screen, turned here into two).
#include "../agent/FakeAgent.h"
#include "dimming/DimmingModule.h"
#include "ui/dimming/BrightnessControl.h"
#include "ui/dimming/DimmingOverlayWindow.h"

#include <QLabel>
#include <QSlider>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct DimmingAgent : FakeAgent {
    DimmingAgent() {
        fake.screens->all.push_back({"wide", {1440, 0, 1920, 1080}, {1440, 0, 1920, 1080}, 1});
        emit fake.screens->notifier().screensChanged();
    }
    DimmingModule& dimming() { return *app.module<DimmingModule>(); }
    ControlReply ask(const QStringList& args) { return commands.handle(args); }
};

} // namespace

TEST(DimmingCommand, SetToggleAndStatus) {
    DimmingAgent agent;
    auto reply = agent.ask({"dimming", "set", "0.5"});
    ASSERT_TRUE(reply.ok) << reply.error.toStdString();
    EXPECT_EQ(reply.result["factor"], 0.5);
    ASSERT_EQ(reply.result["overlays"].size(), 1u);
    EXPECT_EQ(reply.result["overlays"][0]["key"], "1440.0:0.0:1920.0:1080.0");
    EXPECT_EQ(reply.result["overlays"][0]["geometry"], Json::array({1440, -180, 1920, 1080}));
    EXPECT_TRUE(reply.result["overlays"][0]["shown"].get<bool>());

    reply = agent.ask({"dimming", "toggle"});
    ASSERT_TRUE(reply.ok);
    EXPECT_EQ(reply.result["factor"], 1.0);
    EXPECT_EQ(reply.result["previous"], 0.5);
    EXPECT_FALSE(reply.result["overlays"][0]["shown"].get<bool>());

    // The shortcut's action does the same.
    EXPECT_TRUE(agent.app.dispatcher().dispatch(action::ToggleMonitorDimming{}, "test"));
    EXPECT_EQ(agent.dimming().model().brightnessFactor(), 0.5);

    const auto status = agent.ask({"status"});
    ASSERT_TRUE(status.ok);
    EXPECT_EQ(status.result["dimming"]["factor"], 0.5);
    EXPECT_TRUE(status.result["dimming"]["compositing"].get<bool>());
}

TEST(DimmingCommand, BadFactorsAreRefusedAndChangeNothing) {
    DimmingAgent agent;
    ASSERT_TRUE(agent.ask({"dimming", "set", "0.7"}).ok);
    for (const char* bad : {"0", "0.05", "1.5", "-1", "half", "", "nan", "0,5"}) {
        const auto reply = agent.ask({"dimming", "set", bad});
        EXPECT_FALSE(reply.ok) << bad;
        EXPECT_TRUE(reply.error.contains("from 0.1 to 1.0")) << reply.error.toStdString();
    }
    EXPECT_EQ(agent.dimming().model().brightnessFactor(), 0.7);
    EXPECT_FALSE(agent.ask({"dimming", "brighter"}).ok);
    EXPECT_FALSE(agent.ask({"dimming"}).ok);
    EXPECT_FALSE(agent.ask({"dimming", "status", "now"}).ok);
}

TEST(DimmingCommand, OverlayWindowIsClickThroughAndAsDarkAsAsked) {
    DimmingAgent agent;
    ASSERT_TRUE(agent.ask({"dimming", "set", "0.25"}).ok);
    const auto& overlays = agent.dimming().overlays().overlays();
    ASSERT_EQ(overlays.size(), 1u);
    auto* window = dynamic_cast<DimmingOverlayWindow*>(overlays.begin()->second.get());
    ASSERT_TRUE(window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->brightness(), 0.25);
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowTransparentForInput));
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::X11BypassWindowManagerHint));
    EXPECT_EQ(window->geometry(), QRect(1440, -180, 1920, 1080));
    const QImage image = window->grab().toImage();
    EXPECT_NEAR(image.pixelColor(10, 10).alphaF(), 0.75, 0.01);
    EXPECT_EQ(image.pixelColor(10, 10).black(), 255);
}

TEST(DimmingCommand, PanelSliderAndModelFollowEachOther) {
    DimmingAgent agent;
    BrightnessControl control(agent.dimming());
    EXPECT_EQ(control.slider()->value(), 20); // 1.0 in steps of 0.05
    EXPECT_EQ(control.slider()->minimum(), 2);
    control.slider()->setValue(12);
    EXPECT_DOUBLE_EQ(agent.dimming().model().brightnessFactor(), 0.6);
    ASSERT_TRUE(agent.ask({"dimming", "set", "0.3"}).ok);
    EXPECT_EQ(control.slider()->value(), 6);
    EXPECT_DOUBLE_EQ(agent.dimming().model().brightnessFactor(), 0.3); // showing it changed nothing

    EXPECT_TRUE(control.explanation()->isHidden());
    agent.fake.screens->compositing = false;
    emit agent.fake.screens->notifier().compositingChanged();
    EXPECT_FALSE(control.explanation()->isHidden());
    EXPECT_TRUE(agent.dimming().overlays().overlays().empty());
}
