// The auto-layout proposal over the fake desktop (one 1440 x 900 screen, a 25-point panel on top, so
// the usable rectangle is 0,25 1440 x 875), and the reading of a window's tabs.
#include "windowmanager/AutoLayout.h"
#include "platform/fake/FakePlatform.h"
#include "windowmanager/WindowManagerActions.h"
#include "windowmanager/WindowTabs.h"
#include "windowmanager/WindowsCache.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

struct Desk {
    FakePlatform fake;
    WindowManagerPreferences prefs;
    WindowManagerModel model;
    WindowsCache cache{*fake.platform.windowServer, 1, [] { return qint64(0); }};
    WindowManagerActions actions{cache, *fake.platform.accessibility, *fake.platform.screens,
                                 [this] { return prefs; }, &model};
    AutoLayout autoLayout{cache,
                          *fake.platform.accessibility,
                          *fake.platform.screens,
                          actions,
                          model,
                          [this]() -> const WindowManagerPreferences& { return prefs; }};

    Desk() { prefs.spacing = 0; }
    // The first window added is the focused one (front window of the frontmost program).
    quint32 window(Rect frame, quint64 space = 0) {
        const quint32 id = quint32(fake.desktop.windows.size() + 1);
        fake.desktop.add(
            {id, qint32(100 + id), QString("app%1").arg(id), QString("w%1").arg(id), frame, {}, 0, space});
        if (id == 1)
            fake.desktop.frontmostPid = 101;
        return id;
    }
    Rect frameOf(quint32 id) { return fake.desktop.find(id)->frame; }
};

const Rect leftHalf{0, 25, 720, 875};

} // namespace

TEST(AutoLayout, FillsTheSpaceBesideAHalfWithTheChosenWindowAndFocusesIt) {
    Desk d;
    const auto snapped = d.window(leftHalf);
    const auto other = d.window({300, 300, 400, 300});
    d.window({50, 50, 400, 300}, 7); // on another desktop
    d.fake.desktop.spaces = {0};

    ASSERT_TRUE(d.autoLayout.propose());
    const auto& proposal = *d.model.autoLayoutProposal();
    EXPECT_EQ(proposal.snappedWindow.id, snapped);
    EXPECT_EQ(proposal.targetFrames, (std::vector<Rect>{{720, 25, 720, 875}}));
    EXPECT_EQ(proposal.maximizedWindowFrame, (Rect{0, 25, 1440, 875}));
    EXPECT_EQ(d.model.mode(), WindowManagerMode::FillSpace);
    const auto candidates = d.autoLayout.candidates();
    ASSERT_EQ(candidates.size(), 1u);
    EXPECT_EQ(candidates[0].id, other);

    ASSERT_TRUE(d.autoLayout.fill(other));
    EXPECT_EQ(d.frameOf(other), (Rect{720, 25, 720, 875}));
    EXPECT_EQ(d.frameOf(snapped), leftHalf);
    EXPECT_TRUE(d.fake.desktop.calls.contains(QString("focus %1 activate").arg(other)));
    EXPECT_FALSE(d.model.autoLayoutProposal());
    EXPECT_EQ(d.model.mode(), WindowManagerMode::DraggingAndKeyboard);
}

TEST(AutoLayout, NoProposalWithoutFreeSpaceOrAnotherWindowAndAnEarlierOneEnds) {
    Desk d;
    const auto focused = d.window(leftHalf);
    // Alone on the desktop: nothing to fill the space with.
    EXPECT_FALSE(d.autoLayout.propose());
    EXPECT_FALSE(d.model.autoLayoutProposal());
    EXPECT_EQ(d.model.mode(), WindowManagerMode::DraggingAndKeyboard);

    d.window({300, 300, 400, 300});
    ASSERT_TRUE(d.autoLayout.propose());
    for (const Rect frame : {Rect{0, 25, 1440, 875}, Rect{0, 25, 720, 437.5}, Rect{200, 200, 500, 400}}) {
        d.fake.desktop.find(focused)->frame = frame; // maximised, a quarter, floating
        EXPECT_FALSE(d.autoLayout.propose()) << frame.x << "," << frame.y << " " << frame.width;
        EXPECT_FALSE(d.model.autoLayoutProposal());
        EXPECT_EQ(d.model.mode(), WindowManagerMode::DraggingAndKeyboard);
    }
}

TEST(AutoLayout, AWindowGoneBeforeItIsChosenLeavesTheProposalForAnotherChoice) {
    Desk d;
    d.window(leftHalf);
    const auto gone = d.window({300, 300, 400, 300});
    ASSERT_TRUE(d.autoLayout.propose());
    d.fake.desktop.windows.pop_back();
    EXPECT_FALSE(d.autoLayout.fill(gone));
    EXPECT_TRUE(d.model.autoLayoutProposal());
}

TEST(AutoLayout, AKeyboardOnlyModeComesBackAfterTheProposal) {
    Desk d;
    d.model.setMode(WindowManagerMode::KeyboardOnly);
    d.window(leftHalf);
    d.window({300, 300, 400, 300});
    ASSERT_TRUE(d.autoLayout.propose());
    EXPECT_EQ(d.model.mode(), WindowManagerMode::FillSpace);
    d.autoLayout.end();
    EXPECT_EQ(d.model.mode(), WindowManagerMode::KeyboardOnly);
}

TEST(WindowTabs, TitledByTitleElseDescriptionTrimmedAndBlankOnesDropped) {
    FakeAccessibleElements elements;
    elements.elements[{4, "page tab"}] = {{"app", "/1", QString(" Inbox \n"), std::nullopt},
                                          {"app", "/2", QString("  "), QString("\tDrafts\n")},
                                          {"app", "/3", std::nullopt, QString(" ")},
                                          {"app", "/4", QString(), std::nullopt}};
    const auto tabs = WindowTabs::read(elements, {4, 1, {}, false, 0, QString("Mail"), QString("Mail")});
    ASSERT_EQ(tabs.size(), 2u);
    EXPECT_EQ(tabs[0].title, "Inbox");
    EXPECT_EQ(tabs[0].axUIElement.path, "/1");
    EXPECT_EQ(tabs[1].title, "Drafts");
}

TEST(WindowTabs, AProgramWithARowOfItsOwnIsAskedOnlyWithIt) {
    FakeAccessibleElements elements;
    elements.elements[{4, "page tab"}] = {{"app", "/1", QString("Home"), std::nullopt}};
    EXPECT_TRUE(WindowTabs::read(elements, {4, 1, {}, false, 0, QString("x"), QString("Safari")}).empty());
    EXPECT_EQ(elements.queries, (std::vector<QString>{"AXRadioButton"}));
    EXPECT_EQ(WindowTabs::read(elements, {4, 1, {}, false, 0, QString("x"), QString("Files")}).size(), 1u);
}

TEST(WindowTabs, AnswersOnTheMainThreadAndNothingWithoutAnAccessibilityTree) {
    auto elements = std::make_shared<FakeAccessibleElements>();
    elements->elements[{4, "page tab"}] = {{"app", "/1", QString("Home"), std::nullopt}};
    WindowTabs reader(elements);
    std::vector<TabInfo> got;
    bool answered = false;
    reader.request({4, 1, {}, false, 0, QString("x"), QString("Files")},
                   [&](quint32 window, std::vector<TabInfo> tabs) {
                       EXPECT_EQ(window, 4u);
                       EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                       got = std::move(tabs);
                       answered = true;
                   });
    for (int i = 0; i < 200 && !answered; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    }
    ASSERT_TRUE(answered);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].title, "Home");

    WindowTabs none(nullptr);
    bool empty = false;
    none.request({4, 1, {}, false, 0, {}, {}},
                 [&](quint32, std::vector<TabInfo> tabs) { empty = tabs.empty(); });
    EXPECT_TRUE(empty);
}
