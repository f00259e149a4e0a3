// The road of a key press over the fake platform: tap callback, keyboard step, matching with the
// repeat rule, providers in their order, dispatch.
#include "app/ActionProviders.h"
#include "app/AppActionDispatcher.h"
#include "app/EventTap.h"
#include "app/UserPreferences.h"
#include "clipboard/KeyboardCleaningModel.h"
#include "core/KeyEvent.h"
#include "platform/fake/FakeDefaults.h"
#include "platform/fake/FakeInputTap.h"

#include <gtest/gtest.h>

using namespace velmora;
using namespace velmora::ModifierMask;

namespace {

struct Desk {
    FakeDefaults defaults;
    LoggingManager log{[] { return true; }};
    UserPreferences prefs{defaults, log};
    ActionProviders providers = ActionProviders::forPreferences(prefs);
    std::vector<QString> fired;
    KeyboardShortcutModel model{[this](const KeyboardShortcut& c) { return providers.match(c); },
                                [this](const KeyboardBinding& b) { fired.push_back(b.id); }};
    KeyboardCleaningModel cleaning;
    FakeInputTap tap;
    double now = 1000;
    EventTap eventTap{tap, model, cleaning, log, [this] { return now; }};

    Desk() { eventTap.watchdog(); }
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

TEST(ShortcutMatching, SameChordAgainRepeatsTheBindingUntilEverythingIsReleased) {
    Desk d;
    int asked = 0;
    d.providers.set(ActionProviders::Slot::zoneShortcuts,
                    [&](const KeyboardShortcut& c) -> std::optional<KeyboardBinding> {
                        ++asked;
                        if (!c.matches(chord(Modifier::Control | Modifier::Alt, 123)))
                            return std::nullopt;
                        AppAction a;
                        a.kind = AppAction::Kind::windowAreas;
                        return KeyboardBinding{c, a, true, "zone:Left Half"};
                    });
    // Holding the modifiers and pressing the key twice: the second press repeats without asking.
    d.flags(Control | Option);
    d.down(123, Control | Option);
    d.up(123, Control | Option);
    d.down(123, Control | Option);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(d.fired.size(), 2u);
    d.up(123, Control | Option);
    d.flags(0); // all released: the next press starts afresh
    EXPECT_FALSE(d.model.previousBinding());
    d.press(123, Control | Option);
    EXPECT_EQ(asked, 2);
    // A press that matches nothing forgets the previous binding.
    d.flags(Control | Option);
    d.down(123, Control | Option);
    d.down(0, Control | Option);
    EXPECT_FALSE(d.model.previousBinding());
}

TEST(ShortcutMatching, ProvidersAreAskedInTheirFixedOrder) {
    Desk d;
    std::vector<int> order;
    auto recorder = [&](int n) {
        return [&order, n](const KeyboardShortcut&) -> std::optional<KeyboardBinding> {
            order.push_back(n);
            return std::nullopt;
        };
    };
    ActionProviders p;
    p.set(ActionProviders::Slot::application, recorder(6));
    p.set(ActionProviders::Slot::zoneShortcuts, recorder(1));
    p.set(ActionProviders::Slot::clipboardHistory, recorder(5));
    p.set(ActionProviders::Slot::windowManagerFocusedWindow, recorder(0));
    p.set(ActionProviders::Slot::monitorDimming, recorder(3));
    EXPECT_FALSE(p.match(chord(Modifier::Control, 1)));
    EXPECT_EQ(order, (std::vector<int>{0, 1, 3, 5, 6}));
}

TEST(ShortcutMatching, DisabledFeaturesAndBindingsDoNotMatchOrGrab) {
    Desk d;
    auto grabbed = [&](const KeyboardShortcut& c) {
        const auto chords = d.providers.swallowableChords();
        return std::find(chords.begin(), chords.end(), c) != chords.end();
    };
    const auto paste = chord(Modifier::Control, 9); // "Paste plain text directly"
    EXPECT_TRUE(grabbed(paste));
    EXPECT_FALSE(grabbed(bareKey(126))); // panel navigation keys are never global
    d.prefs.local.setClipboardHistoryEnabled(false);
    EXPECT_FALSE(grabbed(paste));
    EXPECT_EQ(d.press(9, Control), TapVerdict::pass);

    auto bindings = d.prefs.keyboardBindings.value();
    bindings.windowManagerCenterWindow->disabled = true;
    d.prefs.keyboardBindings.setValue(bindings);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::pass);
    EXPECT_FALSE(grabbed(chord(Modifier::Control | Modifier::Alt, 8)));
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
    d.cleaning.setOn(true);
    EXPECT_TRUE(d.tap.keyboardGrabbed);
    for (int type : {TapEventType::KeyDown, TapEventType::KeyUp, TapEventType::FlagsChanged,
                     TapEventType::SystemDefined})
        EXPECT_EQ(d.tap.send({type, Control | Option, 8}), TapVerdict::swallow) << type;
    for (int type : {TapEventType::LeftMouseDown, TapEventType::LeftMouseUp, TapEventType::MouseMoved,
                     TapEventType::LeftMouseDragged})
        EXPECT_EQ(d.tap.send({type, 0, 0}), TapVerdict::pass) << type;
    EXPECT_EQ(dragEvents, 8); // drag snapping still sees every event
    EXPECT_TRUE(d.fired.empty());
    d.cleaning.setOn(false);
    EXPECT_FALSE(d.tap.keyboardGrabbed);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::swallow);
}

TEST(EventTap, WatchdogRecreatesAfterFifteenQuietSecondsAndAtOnceWhenBroken) {
    Desk d; // the first tick created the tap
    EXPECT_EQ(d.tap.creates, 1);
    d.now += 14.9;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 1);
    d.press(0, 0); // an event resets the quiet period
    d.now += 10;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 1);
    d.now += 5;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 2);

    // A tap the platform disabled hears nothing, so after 15 s it is replaced.
    d.tap.setState(InputTap::State::disabledByTimeout);
    EXPECT_EQ(d.press(8, Control | Option), TapVerdict::pass);
    d.now += 15;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 3);
    EXPECT_EQ(d.tap.state(), InputTap::State::active);

    // Lost (a broken X connection) or never made: the next tick makes it.
    d.tap.setState(InputTap::State::failed);
    d.now += 1;
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 4);
    d.eventTap.invalidate();
    d.eventTap.watchdog();
    EXPECT_EQ(d.tap.creates, 5);
}

TEST(AppActionDispatcher, RunsTheHandlerOrSaysTheActionIsNotAvailable) {
    LoggingManager log([] { return true; });
    AppActionDispatcher dispatcher(log);
    AppAction centre;
    centre.kind = AppAction::Kind::centerWindow;
    dispatcher.dispatch(centre, "windowManagerCenterWindow");
    ASSERT_EQ(log.entries().size(), 1u);
    EXPECT_EQ(log.entries()[0].description, "centerWindow is not available yet in this version.");

    int handled = 0;
    dispatcher.setHandler(AppAction::Kind::centerWindow, [&](const AppAction&) { ++handled; });
    dispatcher.dispatch(centre, "command line");
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(dispatcher.lastAction(), "centerWindow");
    EXPECT_EQ(dispatcher.lastSource(), "command line");
    EXPECT_EQ(dispatcher.dispatchCount(), 2);
    EXPECT_EQ(log.entries().size(), 1u);
}
