#include "app/ActionProviders.h"

#include "app/UserPreferences.h"
#include "core/KeyboardAppAction.h"

#include <algorithm>

namespace velmora {

namespace {

using Kind = AppAction::Kind;

AppAction act(Kind kind, bool previous = false) {
    AppAction a;
    a.kind = kind;
    a.previous = previous;
    return a;
}

struct GlobalAction {
    KeyboardAppAction id;
    ActionProviders::Slot slot;
    AppAction action;
};

// The bindings that work anywhere on the desktop. The others (arrows, Return, single letters) are
// navigation keys of the panels and are read by those panels while they have the focus.
const std::vector<GlobalAction>& globalActions() {
    using S = ActionProviders::Slot;
    using A = KeyboardAppAction;
    static const std::vector<GlobalAction> actions{
        {A::windowManagerCenterWindow, S::windowManagerFocusedWindow, act(Kind::centerWindow)},
        {A::makeWindow16By9, S::windowManagerFocusedWindow, act(Kind::makeWindow16By9)},
        {A::moveWindowToScreen, S::windowManagerScreens, act(Kind::moveWindowToScreen)},
        {A::matchSnappedWindowFrame, S::windowManagerScreens, act(Kind::matchSnappedWindowFrame)},
        {A::toggleMonitorDimming, S::monitorDimming, act(Kind::toggleMonitorDimming)},
        {A::switchWindow, S::switcherAndAutoLayout, act(Kind::openWindowSwitcher, false)},
        {A::switchWindowPrevious, S::switcherAndAutoLayout, act(Kind::openWindowSwitcher, true)},
        {A::proposeAutoLayout, S::switcherAndAutoLayout, act(Kind::proposeAutoLayout)},
        {A::clipboardOpenWindow, S::clipboardHistory, act(Kind::openClipboardHistory)},
        {A::clipboardDirectPastePlainText, S::clipboardHistory, act(Kind::performDirectPastePlainText)},
        {A::openSystemMonitoringDashboard, S::application, act(Kind::openSystemMonitoringDashboard)},
    };
    return actions;
}

bool slotEnabled(ActionProviders::Slot slot, UserPreferences& prefs) {
    using S = ActionProviders::Slot;
    switch (slot) {
    case S::windowManagerFocusedWindow:
    case S::zoneShortcuts:
    case S::windowManagerScreens:
        return prefs.local.windowManagerEnabled();
    case S::switcherAndAutoLayout:
        return prefs.local.windowManagerEnabled();
    case S::clipboardHistory:
        return prefs.local.clipboardHistoryEnabled();
    default:
        return true;
    }
}

// "Enable window switcher" switches its two chords off (they are left to other programs then).
bool actionEnabled(KeyboardAppAction id, UserPreferences& prefs) {
    if (id == KeyboardAppAction::switchWindow || id == KeyboardAppAction::switchWindowPrevious)
        return prefs.windowManager.value().enableWindowSwitcher;
    if (id == KeyboardAppAction::proposeAutoLayout)
        return prefs.windowManager.value().enableAutoLayout;
    return true;
}

} // namespace

void ActionProviders::set(Slot slot, Provider provider) {
    auto it =
        std::find_if(m_providers.begin(), m_providers.end(), [slot](auto& p) { return p.first == slot; });
    if (it != m_providers.end())
        it->second = std::move(provider);
    else
        m_providers.emplace_back(slot, std::move(provider));
    std::stable_sort(m_providers.begin(), m_providers.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
}

std::optional<KeyboardBinding> ActionProviders::match(const KeyboardShortcut& chord) const {
    for (const auto& [slot, provider] : m_providers)
        if (auto binding = provider(chord))
            return binding;
    return std::nullopt;
}

std::vector<KeyboardShortcut> ActionProviders::swallowableChords() const {
    std::vector<KeyboardShortcut> chords;
    for (const auto& source : m_chordSources)
        for (const auto& c : source())
            if (!c.disabled && c.hasModifier() && std::find(chords.begin(), chords.end(), c) == chords.end())
                chords.push_back(c);
    return chords;
}

ActionProviders ActionProviders::forPreferences(UserPreferences& prefs) {
    ActionProviders providers;
    for (Slot slot : {Slot::windowManagerFocusedWindow, Slot::windowManagerScreens, Slot::monitorDimming,
                      Slot::switcherAndAutoLayout, Slot::clipboardHistory, Slot::application}) {
        providers.set(slot, [slot, &prefs](const KeyboardShortcut& chord) -> std::optional<KeyboardBinding> {
            if (!slotEnabled(slot, prefs))
                return std::nullopt;
            const auto& bindings = prefs.keyboardBindings.value();
            for (const auto& g : globalActions()) {
                if (g.slot != slot)
                    continue;
                if (!actionEnabled(g.id, prefs))
                    continue;
                const auto& bound = bindings.shortcut(g.id);
                if (bound && bound->matches(chord))
                    return KeyboardBinding{*bound, g.action, true, rawName(g.id)};
            }
            return std::nullopt;
        });
    }
    providers.addChordSource([&prefs] {
        std::vector<KeyboardShortcut> chords;
        for (const auto& g : globalActions())
            if (slotEnabled(g.slot, prefs) && actionEnabled(g.id, prefs))
                if (const auto& bound = prefs.keyboardBindings.value().shortcut(g.id))
                    chords.push_back(*bound);
        return chords;
    });
    return providers;
}

} // namespace velmora
