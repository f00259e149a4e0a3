// The system monitor's screens on a real tray: the gauges chosen in the preferences appear as tray
// icons of their own, in order, and go again; clicking one opens the dashboard.
#include "AgentUnderTest.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

using Json = AgentUnderTest::Json;

// How many client windows the tray host has docked (each tray icon is one).
int dockedIcons(const VirtualDesktop& desktop) {
    const auto tree = desktop.run("xwininfo", {"-name", "panel", "-tree"});
    if (tree.exitCode != 0)
        return -1;
    // The tray wraps every docked client in a socket window of its own, a direct child of the panel;
    // the client is the socket's only child, named after the program.
    return int(tree.out.count(QRegularExpression(R"(\n\s+0x[0-9a-f]+ "Velmora": \("velmora" "Velmora"\))")));
}

QString themeWith(const QStringList& resources) {
    Json widgets = Json::array();
    int n = 0;
    for (const QString& r : resources)
        widgets.push_back({{"id", QString("00000000-0000-4000-8000-00000000000%1").arg(++n).toStdString()},
                           {"resource", r.toStdString()}});
    const Json theme = {
        {"clipboardUseCompactView", false}, {"windowSwitcherWidth", 400.0}, {"mbsm", {{"widgets", widgets}}}};
    return QString::fromStdString(theme.dump());
}

// The first line of each gauge's tooltip, left to right as the tray shows them.
QStringList gaugesLeftToRight(const AgentUnderTest& agent) {
    auto icons = agent.status()["monitoringItem"].value("icons", Json::array());
    std::vector<std::pair<int, QString>> placed;
    for (const Json& icon : icons)
        placed.emplace_back(icon["geometry"][0].get<int>(),
                            QString::fromStdString(icon["toolTip"].get<std::string>()).section(':', 0, 0));
    std::sort(placed.begin(), placed.end());
    QStringList names;
    for (const auto& [x, name] : placed)
        names << name;
    return names;
}

class MonitoringScreens : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(desktop.isReady());
        ASSERT_TRUE(desktop.writeWelcomedSettings());
        ASSERT_TRUE(agent.start());
        ASSERT_TRUE(agent.waitForStatusIcon());
    }
    bool setGauges(const QStringList& resources) {
        return agent.json({"prefs", "set", "ThemePreferences", themeWith(resources)}).has_value();
    }

    VirtualDesktop desktop;
    AgentUnderTest agent{desktop};
};

} // namespace

TEST_F(MonitoringScreens, EachGaugeIsATrayIconOfItsOwnThatComesAndGoesWithThePreferences) {
    EXPECT_TRUE(waitUntil([&] { return dockedIcons(desktop) == 1; })); // the main icon only
    EXPECT_FALSE(agent.status()["monitoringItem"]["visible"].get<bool>());

    ASSERT_TRUE(setGauges({"cpu", "memory", "network"}));
    EXPECT_TRUE(waitUntil([&] { return dockedIcons(desktop) == 4; })) << dockedIcons(desktop);
    EXPECT_TRUE(waitUntil([&] {
        return gaugesLeftToRight(agent) == QStringList({"CPU", "Memory", "Network"});
    })) << gaugesLeftToRight(agent).join(",").toStdString();

    ASSERT_TRUE(setGauges({"network", "cpu"}));
    EXPECT_TRUE(waitUntil([&] { return dockedIcons(desktop) == 3; })) << dockedIcons(desktop);
    EXPECT_TRUE(waitUntil([&] {
        return gaugesLeftToRight(agent) == QStringList({"Network", "CPU"});
    })) << gaugesLeftToRight(agent).join(",").toStdString();

    ASSERT_TRUE(setGauges({}));
    EXPECT_TRUE(waitUntil([&] { return dockedIcons(desktop) == 1; })) << dockedIcons(desktop);
    EXPECT_FALSE(agent.status()["monitoringItem"]["visible"].get<bool>());
}

TEST_F(MonitoringScreens, ClickingAGaugeOpensTheDashboardWindow) {
    ASSERT_TRUE(setGauges({"memory"}));
    Json icon;
    ASSERT_TRUE(waitUntil([&] {
        const auto icons = agent.status()["monitoringItem"].value("icons", Json::array());
        if (icons.size() != 1 || icons[0]["geometry"][2].get<int>() == 0)
            return false;
        icon = icons[0];
        return icons[0]["geometry"][1].get<int>() < 24; // docked in the tray at the top
    }));
    const auto& g = icon["geometry"];
    desktop.run("xdotool", {"mousemove", QString::number(g[0].get<int>() + g[2].get<int>() / 2),
                            QString::number(g[1].get<int>() + g[3].get<int>() / 2), "click", "1"});
    EXPECT_TRUE(
        waitUntil([&] { return agent.status()["monitoringScreens"]["dashboard"].value("open", false); }));
    EXPECT_TRUE(waitUntil([&] {
        return desktop.run("xdotool", {"search", "--onlyvisible", "--name", "^System Monitor$"}).exitCode ==
               0;
    }));
}
