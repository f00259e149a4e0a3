// The road of a key press over the fake platform: tap callback, keyboard step, matching with the
// repeat rule, providers in their order, dispatch.
#include "app/ActionProviders.h"
#include "app/AppActionDispatcher.h"
#include "app/BindingsProvider.h"
#include "app/EventTap.h"
#include "app/UserPreferences.h"
#include "core/KeyEvent.h"
#include "platform/fake/FakeDefaults.h"
#include "platform/fake/FakeInputTap.h"

#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::ModifierMask;

namespace {

// A provider answering one chord, counting how often it was asked to resolve.
struct OneChord final : ActionProvider {
    KeyboardShortcut chord;
    QString id;
    int* resolved;
    OneChord(KeyboardShortcut c, QString i, int* r) : chord(c), id(std::move(i)), resolved(r) {}
    std::vector<KeyboardShortcut> chords() const override { return {chord}; }
    std::optional<KeyboardBinding> resolve(const KeyboardShortcut& c) const override {
        ++*resolved;
        return KeyboardBinding{c, action::WindowAreas{{}, *resolved}, true, id};
    }
};

struct Desk {
    FakeDefaults defaults;
    LoggingManager log{[] { return true; }};
    UserPreferences prefs{defaults, log};
    AppActionDispatcher dispatcher{log};
    ActionProviders providers;
    std::vector<QString> fired;
    std::vector<KeyboardBinding> bindingsFired;
    KeyboardShortcutModel model{[this](const KeyboardShortcut& c) { return providers.match(c); },
                                [this](const KeyboardBinding& b) {
                                    fired.push_back(b.id);
                                    bindingsFired.push_back(b);
                                }};
    FakeInputTap tap;
    qint64 now = 1000000;
    EventTap eventTap{tap, model, log, [this] { return now; }};

    Desk() {
        model.setRematcher([this](const KeyboardBinding& b) { return providers.rematch(b); });
        const auto windowManagerOn = [this] {
            return prefs.local.windowManagerEnabled() ? QString() : "off";
        };
        dispatcher.setHandler<action::CenterWindow>([](const auto&) {}, windowManagerOn);
        dispatcher.setHandler<action::OpenWindowSwitcher>([](const auto&) {}, windowManagerOn);
        const auto bindings = [this]() -> const KeyboardBindings& { return prefs.keyboardBindings.value(); };
        using A = KeyboardAppAction;
        providers.add(
            ActionProviders::Slot::windowManagerFocusedWindow,
            std::make_unique<BindingsProvider>(bindings, dispatcher,
                                               std::vector<BindingsProvider::Entry>{
                                                   {A::windowManagerCenterWindow, action::CenterWindow{}}}));
        // The clipboard's actions are bound in the record but no module carries them out here.
        providers.add(ActionProviders::Slot::clipboardHistory,
                      std::make_unique<BindingsProvider>(
                          bindings, dispatcher,
                          std::vector<BindingsProvider::Entry>{
                              {A::clipboardDirectPastePlainText, action::PerformDirectPastePlainText{}}}));
        providers.add(ActionProviders::Slot::switcherAndAutoLayout,
                      std::make_unique<BindingsProvider>(
                          bindings, dispatcher,
                          std::vector<BindingsProvider::Entry>{
                              {A::switchWindow, action::OpenWindowSwitcher{false}},
                              {A::switchWindowPrevious, action::OpenWindowSwitcher{true}}}));
        eventTap.watchdog();
    }
    TapVerdict flags(std::uint64_t f) { return tap.send({TapEventType::FlagsChanged, f, 0}); }
    TapVerdict down(std::uint16_t key, std::uint64_t f) { return tap.send({TapEventType::KeyDown, f, key}); }
    TapVerdict up(std::uint16_t key, std::uint64_t f) { return tap.send({TapEventType::KeyUp, f, key}); }
    // A whole chord as a hand plays it: modifiers, key down, key up, modifiers released.
    TapVerdict press(std::uint16_t key, std::uint64_t f) {
        flags(f);
        const auto verdict = down(key, f);
        up(key, f);
        flags(0);
        return verdict;
    }
    bool grabbed(const KeyboardShortcut& c) const {
        const auto chords = providers.swallowableChords();
        return std::find(chords.begin(), chords.end(), c) != chords.end();
    }
};

} // namespace

TEST(ShortcutMatching, ChordIsTheExactModifiersAndKey) {
    Desk d;
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::swallow);      // Center Window
    EXPECT_EQ(d.press(8, Control | Option | Shift), TapVerdict::pass); // an extra modifier: no match
    EXPECT_EQ(d.press(8, Control), TapVerdict::pass);
    // Option+Shift+Tab is the previous-window binding, not the plain switcher.
    EXPECT_EQ(d.press(48, Option | Shift), TapVerdict::swallow);
    EXPECT_EQ(d.press(48, Option), TapVerdict::swallow);
    EXPECT_EQ(d.fired,
              (std::vector<QString>{"windowManagerCenterWindow", "switchWindowPrevious", "switchWindow"}));
}

TEST(ShortcutMatching, ModelTracksTheHeldChord) {
    Desk d;
    d.flags(Command | Shift);
    EXPECT_TRUE(d.model.command() && d.model.shift() && !d.model.control() && !d.model.alt());
    EXPECT_FALSE(d.model.activeShortcut());
    const int before = d.model.interactionCount();
    d.down(9, Command | Shift);
    EXPECT_EQ(d.model.activeShortcut(), chord(Modifier::Command | Modifier::Shift, 9));
    EXPECT_GT(d.model.interactionCount(), before);
    d.up(9, Command | Shift);
    EXPECT_FALSE(d.model.keyCode());
    EXPECT_FALSE(d.model.activeShortcut());
}

TEST(ShortcutMatching, SameChordAgainAsksOnlyItsProviderAgainUntilEverythingIsReleased) {
    Desk d;
    int resolved = 0, otherResolved = 0;
    const auto left = chord(Modifier::Control | Modifier::Alt, 123);
    d.providers.add(ActionProviders::Slot::zoneShortcuts,
                    std::make_unique<OneChord>(left, "zone", &resolved));
    d.providers.add(ActionProviders::Slot::application,
                    std::make_unique<OneChord>(left, "other", &otherResolved));
    // Holding the modifiers and pressing the key twice: the second press is decided afresh by the
    // provider that answered the first (a zone chord cycles from where the window is now).
    d.flags(Control | Option);
    d.down(123, Control | Option);
    d.up(123, Control | Option);
    d.down(123, Control | Option);
    EXPECT_EQ(resolved, 2);
    EXPECT_EQ(otherResolved, 0);
    ASSERT_EQ(d.bindingsFired.size(), 2u);
    EXPECT_EQ(std::get<action::WindowAreas>(d.bindingsFired[1].action).index, 2);
    d.up(123, Control | Option);
    d.flags(0); // all released: the next press starts afresh
    EXPECT_FALSE(d.model.previousBinding());
    d.press(123, Control | Option);
    EXPECT_EQ(resolved, 3);
    // A press that matches nothing forgets the previous binding.
    d.flags(Control | Option);
    d.down(123, Control | Option);
    d.down(0, Control | Option);
    EXPECT_FALSE(d.model.previousBinding());
}

TEST(ShortcutMatching, ProvidersAreAskedInTheirFixedOrderAndOnlyForChordsTheyList) {
    ActionProviders p;
    int zone = 0, app = 0, first = 0;
    const auto c = chord(Modifier::Control, 1);
    p.add(ActionProviders::Slot::application, std::make_unique<OneChord>(c, "application", &app));
    p.add(ActionProviders::Slot::zoneShortcuts, std::make_unique<OneChord>(c, "zone", &zone));
    p.add(ActionProviders::Slot::windowManagerFocusedWindow,
          std::make_unique<OneChord>(chord(Modifier::Control, 2), "focused", &first));
    ASSERT_TRUE(p.match(c));
    EXPECT_EQ(p.match(c)->id, "zone");
    EXPECT_EQ(first, 0); // it does not list the chord, so it is never asked to resolve it
    EXPECT_EQ(app, 0);
    EXPECT_FALSE(p.match(chord(Modifier::Control, 3)));
}

TEST(ShortcutMatching, UnavailableActionsAndDisabledBindingsAreNeitherMatchedNorGrabbed) {
    Desk d;
    // "Paste plain text directly" is bound, but nothing here carries it out: its chord stays free.
    const auto paste = chord(Modifier::Control, 9);
    EXPECT_FALSE(d.grabbed(paste));
    EXPECT_EQ(d.press(9, Control), TapVerdict::pass);
    EXPECT_FALSE(d.grabbed(bareKey(126))); // panel navigation keys are never global

    const auto centre = chord(Modifier::Control | Modifier::Alt, 8);
    EXPECT_TRUE(d.grabbed(centre));
    d.prefs.local.setWindowManagerEnabled(false); // a switched-off feature frees its chords
    EXPECT_FALSE(d.grabbed(centre));
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::pass);
    EXPECT_EQ(d.dispatcher.unavailableReason(action::CenterWindow{}), "off");
    d.prefs.local.setWindowManagerEnabled(true);

    auto bindings = d.prefs.keyboardBindings.value();
    bindings.windowManagerCenterWindow->disabled = true;
    d.prefs.keyboardBindings.setValue(bindings);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::pass);
    EXPECT_FALSE(d.grabbed(centre));
    EXPECT_TRUE(d.fired.empty());
}

TEST(ShortcutMatching, RecordingSwallowsGlobalChordsWithoutFiringThem) {
    Desk d;
    d.model.setRecording(true);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::swallow);
    EXPECT_EQ(d.press(0, 0), TapVerdict::swallow);
    EXPECT_TRUE(d.fired.empty());
    d.model.setRecording(false);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::swallow);
    EXPECT_EQ(d.fired.size(), 1u);
}

TEST(EventTap, KeyboardCleaningSwallowsAllButTheMouse) {
    Desk d;
    int dragEvents = 0;
    d.eventTap.dragHandler = [&](const TapEvent&) { ++dragEvents; };
    d.eventTap.setKeyboardSilenced(true);
    EXPECT_TRUE(d.tap.keyboardGrabbed);
    for (int type : {TapEventType::KeyDown, TapEventType::KeyUp, TapEventType::FlagsChanged,
                     TapEventType::SystemDefined})
        EXPECT_EQ(d.tap.send({type, Control | Option, 8}), TapVerdict::swallow) << type;
    for (int type : {TapEventType::LeftMouseDown, TapEventType::LeftMouseUp, TapEventType::MouseMoved,
                     TapEventType::LeftMouseDragged})
        EXPECT_EQ(d.tap.send({type, 0, 0}), TapVerdict::pass) << type;
    EXPECT_EQ(dragEvents, 8); // drag snapping still sees every event
    EXPECT_TRUE(d.fired.empty());
    d.eventTap.setKeyboardSilenced(false);
    EXPECT_FALSE(d.tap.keyboardGrabbed);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::swallow);
}

TEST(EventTap, WatchdogRecreatesAfterFifteenQuietSecondsAndAtOnceWhenBroken) {
    Desk d; // the first tick created the tap
    EXPECT_EQ(d.tap.creates, 1);
    d.now += 14900;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 1);
    d.press(0, 0); // an event resets the quiet period
    d.now += 10000;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 1);
    d.now += 5000;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 2);

    // A tap the platform disabled hears nothing, so after 15 s it is replaced.
    d.tap.setState(InputTap::State::disabledByTimeout);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::pass);
    d.now += 15000;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 3);
    EXPECT_EQ(d.tap.state(), InputTap::State::active);

    // Lost (a broken X connection) or never made: the next tick makes it.
    d.tap.setState(InputTap::State::failed);
    d.now += 1000;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 4);
    d.eventTap.invalidate();
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 5);
}

TEST(AppActionDispatcher, RunsAvailableActionsAndSaysWhyOthersCannotRun) {
    LoggingManager log([] { return true; });
    AppActionDispatcher dispatcher(log);
    EXPECT_FALSE(dispatcher.dispatch(action::CenterWindow{}, "windowManagerCenterWindow"));
    ASSERT_EQ(log.entries().size(), 1u);
    EXPECT_EQ(log.entries()[0].description, "centerWindow is not available in this version.");
    EXPECT_EQ(dispatcher.dispatchCount(), 0);

    int handled = 0;
    bool on = true;
    dispatcher.setHandler<action::CenterWindow>([&](const action::CenterWindow&) { ++handled; },
                                                [&] { return on ? QString() : QString("switched off"); });
    EXPECT_TRUE(dispatcher.dispatch(action::CenterWindow{}, "command line"));
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(dispatcher.lastAction(), "centerWindow");
    EXPECT_EQ(dispatcher.lastSource(), "command line");
    on = false;
    EXPECT_FALSE(dispatcher.dispatch(action::CenterWindow{}, "command line"));
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(dispatcher.dispatchCount(), 1);
    EXPECT_TRUE(dispatcher.isAvailable(action::Noop{}));
}

TEST(AppAction, NamesRoundTripAndCarryDefaultArguments) {
    for (const auto& name : allActionNames()) {
        const auto a = actionFromName(name);
        ASSERT_TRUE(a) << name.toStdString();
        EXPECT_EQ(actionName(*a), name);
    }
    EXPECT_EQ(actionFromName("openWindowSwitcher"), AppAction(action::OpenWindowSwitcher{false}));
    EXPECT_FALSE(actionFromName("CenterWindow"));
}
