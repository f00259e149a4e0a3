// The auto-layout panel over the fake desktop: what it lists, its search over windows and tabs, and
// what choosing a row does.
#include "ui/windowmanager/AutoLayoutPanel.h"
#include "app/LoggingManager.h"
#include "app/UserPreferences.h"
#include "platform/fake/FakePlatform.h"
#include "windowmanager/AutoLayout.h"
#include "windowmanager/WindowManagerActions.h"
#include "windowmanager/WindowsCache.h"

#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct Desk {
    FakePlatform fake;
    LoggingManager log{[] { return false; }};
    UserPreferences prefs{*fake.platform.defaults, log};
    WindowManagerPreferences wm;
    WindowManagerModel model;
    WindowsCache cache{*fake.platform.windowServer, 1, [] { return qint64(0); }};
    WindowManagerActions actions{cache, *fake.platform.accessibility, *fake.platform.screens,
                                 [this] { return wm; }, &model};
    AutoLayout autoLayout{cache,
                          *fake.platform.accessibility,
                          *fake.platform.screens,
                          actions,
                          model,
                          [this]() -> const WindowManagerPreferences& { return wm; }};
    WindowTabs tabs{fake.accessibleElements};
    AutoLayoutPanel panel{autoLayout, model, tabs, prefs, *fake.platform.keyboardLayout, fake.workspace};

    Desk() {
        wm.spacing = 0;
        fake.desktop.frontmostPid = 101;
        window("Editor", "notes.txt", {0, 25, 720, 875}); // snapped to the left half, focused
        window("Files", "Home", {300, 300, 400, 300});
        window("Browser", "News", {200, 200, 500, 400});
        fake.accessibleElements->elements[{3, "page tab"}] = {{"b", "/1", QString("Weather"), std::nullopt},
                                                              {"b", "/2", QString("Mail"), std::nullopt}};
    }
    quint32 window(const QString& app, const QString& title, Rect frame) {
        const quint32 id = quint32(fake.desktop.windows.size() + 1);
        fake.desktop.add({id, qint32(100 + id), app, title, frame, {}, 0, 0});
        return id;
    }
    QStringList rows() const {
        QStringList list;
        for (const auto& row : panel.rows())
            list << (row.tab ? "  " + row.tab->title : row.window.appName.value_or(""));
        return list;
    }
    void waitForTabs() {
        for (int i = 0; i < 200 && panel.knownTabs().size() < 2; ++i) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            QThread::msleep(2);
        }
    }
    QLineEdit* search() const { return panel.panel()->findChild<QLineEdit*>("autoLayoutSearch"); }
};

} // namespace

TEST(AutoLayoutPanel, ListsTheOtherWindowsAndTheirTabsOnRequest) {
    Desk d;
    d.panel.propose();
    ASSERT_TRUE(d.panel.isOpen());
    // Most recently used first: the cache saw the Browser last.
    EXPECT_EQ(d.rows(), (QStringList{"Browser", "Files"}));
    d.waitForTabs();
    d.panel.expandTabs(true);
    EXPECT_EQ(d.rows(), (QStringList{"Browser", "  Weather", "  Mail", "Files"}));
    d.panel.step(2);
    d.panel.expandTabs(false); // from a tab: back on its window
    EXPECT_EQ(d.rows(), (QStringList{"Browser", "Files"}));
    EXPECT_EQ(d.panel.selectedIndex(), 0);
}

TEST(AutoLayoutPanel, SearchFindsTabsAndChoosingOnePlacesItsWindowAndSelectsIt) {
    Desk d;
    d.panel.propose();
    d.waitForTabs();
    QTest::keyClicks(d.search(), "mai");
    EXPECT_EQ(d.rows(), (QStringList{"  Mail"}));
    QTest::keyClick(d.search(), Qt::Key_Return);
    EXPECT_FALSE(d.panel.isOpen());
    EXPECT_EQ(d.fake.desktop.find(3)->frame, (Rect{720, 25, 720, 875}));
    for (int i = 0; i < 200 && d.fake.accessibleElements->pressed.empty(); ++i)
        QThread::msleep(2);
    std::lock_guard lock(d.fake.accessibleElements->mutex);
    ASSERT_EQ(d.fake.accessibleElements->pressed.size(), 1u);
    EXPECT_EQ(d.fake.accessibleElements->pressed[0].path, "/2");
}

TEST(AutoLayoutPanel, ArrowsAndReturnChooseAWindowAndEscapeEndsTheProposal) {
    Desk d;
    d.panel.propose();
    QTest::keyClick(d.search(), Qt::Key_Down);
    EXPECT_EQ(d.panel.selectedIndex(), 1);
    QTest::keyClick(d.search(), Qt::Key_Escape);
    EXPECT_FALSE(d.panel.isOpen());
    EXPECT_FALSE(d.model.autoLayoutProposal());

    d.panel.propose();
    QTest::keyClick(d.search(), Qt::Key_Down);
    QTest::keyClick(d.search(), Qt::Key_Return);
    EXPECT_EQ(d.fake.desktop.find(2)->frame, (Rect{720, 25, 720, 875}));
    EXPECT_FALSE(d.model.autoLayoutProposal());
}

TEST(AutoLayoutPanel, NothingToProposeClosesThePanelWithoutAMessage) {
    Desk d;
    d.fake.desktop.find(1)->frame = {0, 25, 1440, 875}; // maximised
    d.panel.propose();
    EXPECT_FALSE(d.panel.isOpen());
}

TEST(AutoLayoutPanel, AProgramWhoseTabsNeverComeLeavesThePanelWorking) {
    Desk d;
    d.fake.accessibleElements->hang(true);
    d.panel.propose();
    ASSERT_TRUE(d.panel.isOpen());
    EXPECT_EQ(d.rows(), (QStringList{"Browser", "Files"}));
    QTest::keyClicks(d.search(), "fil");
    EXPECT_EQ(d.rows(), (QStringList{"Files"}));
    QTest::keyClick(d.search(), Qt::Key_Return);
    EXPECT_EQ(d.fake.desktop.find(2)->frame, (Rect{720, 25, 720, 875}));
    EXPECT_FALSE(d.panel.isOpen());
    d.fake.accessibleElements->hang(false); // the late answers find the panel closed
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_TRUE(d.panel.knownTabs().empty());
}
