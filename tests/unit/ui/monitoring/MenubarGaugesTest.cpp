// The tray gauges of the whole agent over the fake platform: one icon per configured gauge, in
// order, following the preferences and every new snapshot; a click opens the dashboard.
#include "../../agent/FakeAgent.h"
#include "MonitoringSnapshots.h"
#include "agent/MenubarPopover.h"
#include "monitoring/SystemMonitoringModule.h"
#include "ui/monitoring/MBSMWidgetView.h"
#include "ui/monitoring/MenubarSystemMonitoringView.h"
#include "ui/monitoring/SystemMonitoringScreens.h"

#include <QImage>
#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::testing;

namespace {

struct GaugeAgent : FakeAgent {
    DynamicStatusItem& item() { return *app.menubarPopover()->systemMonitoringItem(); }
    SystemMonitoringModel& model() { return app.module<SystemMonitoringModule>()->model(); }
    void setGauges(std::vector<ResourceType> resources) {
        ThemePreferences theme = app.preferences()->theme.value();
        theme.mbsm.widgets.clear();
        for (ResourceType r : resources)
            theme.mbsm.widgets.push_back({QUuid::createUuid(), r});
        ASSERT_TRUE(app.preferences()->theme.setValue(theme));
    }
    QStringList firstLines() {
        QStringList lines;
        for (int i = 0; i < item().slotCount(); ++i)
            lines << item().slot(i).toolTip().section('\n', 0, 0);
        return lines;
    }
};

} // namespace

TEST(MenubarGauges, OneTrayIconPerGaugeInOrderFollowingPreferencesAndSnapshots) {
    GaugeAgent agent;
    EXPECT_EQ(agent.item().slotCount(), 0); // none configured: no icon
    EXPECT_FALSE(agent.item().statusItem().isVisible());

    agent.setGauges({ResourceType::cpu, ResourceType::network, ResourceType::memory});
    ASSERT_EQ(agent.item().slotCount(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(agent.item().slot(i).isVisible());
    agent.model().append(snapshotOf({application(process(5, "Editor", 2.0, 4'000'000'000, 1'500'000))}));
    EXPECT_EQ(agent.firstLines(),
              QStringList({"CPU: 50% of all cores", "Network: 1.5 MB in the last 5 seconds", "Memory: 50%"}));

    agent.setGauges({ResourceType::memory, ResourceType::cpu});
    ASSERT_EQ(agent.item().slotCount(), 2);
    EXPECT_EQ(agent.firstLines(), QStringList({"Memory: 50%", "CPU: 50% of all cores"}));

    agent.setGauges({});
    EXPECT_EQ(agent.item().slotCount(), 0);
    EXPECT_FALSE(agent.item().statusItem().isVisible());
    const auto status = agent.commands.handle({"status"});
    EXPECT_FALSE(status.result["monitoringItem"]["visible"].get<bool>());
}

TEST(MenubarGauges, ClickingAGaugeOpensTheDashboard) {
    GaugeAgent agent;
    agent.setGauges({ResourceType::cpu, ResourceType::memory});
    auto* screens = agent.app.module<SystemMonitoringScreens>();
    ASSERT_TRUE(screens);
    EXPECT_FALSE(screens->dashboardIsOpen());
    emit agent.item().slot(1).activated(QSystemTrayIcon::Trigger);
    EXPECT_TRUE(screens->dashboardIsOpen());
    EXPECT_EQ(agent.app.dispatcher().lastAction(), "openSystemMonitoringDashboard");
}

TEST(MBSMWidgetView, DrawsLabelAndValueOnA22PixelSquareAt1xAnd2x) {
    const SystemSnapshot s = snapshotOf({application(process(5, "Editor", 1.0, 0))});
    const MBSMWidgetView view({QUuid::createUuid(), ResourceType::cpu}, &s, true);
    EXPECT_EQ(view.text(), "25%");
    EXPECT_EQ(view.label(), "CPU");
    const QIcon icon = view.icon();
    EXPECT_EQ(icon.availableSizes().size(), 2);
    const QImage big = view.pixmap(22, 2.0).toImage();
    EXPECT_EQ(big.size(), QSize(44, 44));
    // Light text on a dark panel: some pixels are nearly white, and the corners stay clear.
    int light = 0;
    for (int y = 0; y < big.height(); ++y)
        for (int x = 0; x < big.width(); ++x)
            if (qAlpha(big.pixel(x, y)) > 200 && qGray(big.pixel(x, y)) > 200)
                ++light;
    EXPECT_GT(light, 40);
    EXPECT_EQ(qAlpha(big.pixel(0, 0)), 0);
    const MBSMWidgetView waiting({QUuid::createUuid(), ResourceType::network}, nullptr, false);
    EXPECT_EQ(waiting.compactText(), "–");
    EXPECT_TRUE(waiting.toolTip().startsWith("Network: collecting the first sample"));
}
