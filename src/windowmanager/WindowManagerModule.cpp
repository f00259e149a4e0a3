#include "windowmanager/WindowManagerModule.h"

#include "app/BindingsProvider.h"
#include "app/EventTap.h"
#include "app/ModuleRegistry.h"
#include "app/UserPreferences.h"
#include "platform/Platform.h"
#include "windowmanager/ZoneShortcutProvider.h"

#include <QCoreApplication>

namespace velmora {

namespace {

Json optionalText(const std::optional<QString>& s) {
    return s ? Json(*s) : Json(nullptr);
}

const char* stateName(WindowManagerState state) {
    switch (state) {
    case WindowManagerState::Idle:
        return "idle";
    case WindowManagerState::CheckingManipulation:
        return "checkingManipulation";
    case WindowManagerState::Dragging:
        return "dragging";
    case WindowManagerState::MoveManipulation:
        return "moveManipulation";
    case WindowManagerState::ResizeManipulation:
        return "resizeManipulation";
    }
    return "idle";
}

} // namespace

WindowManagerModule::WindowManagerModule(AppContext& context)
    : m_context(context),
      m_cache(*context.platform.windowServer, qint32(QCoreApplication::applicationPid()), context.nowMs),
      m_actions(
          m_cache, *context.platform.accessibility, *context.platform.screens,
          [&prefs = context.preferences] { return prefs.windowManager.value(); }, &m_model),
      m_drag(
          m_cache, *context.platform.accessibility, *context.platform.screens, m_actions, m_model,
          [&prefs = context.preferences]() -> const WindowManagerPreferences& {
              return prefs.windowManager.value();
          },
          [this] {
              return unavailableReason().isEmpty() &&
                     m_model.mode() == WindowManagerMode::DraggingAndKeyboard;
          },
          context.nowMs),
      m_autoLayout(m_cache, *context.platform.accessibility, *context.platform.screens, m_actions, m_model,
                   [&prefs = context.preferences]() -> const WindowManagerPreferences& {
                       return prefs.windowManager.value();
                   }),
      m_tabs(context.platform.accessibleElements) {
    m_actions.onNothingToDo = [this](const QString& why) {
        if (m_context.brief)
            m_context.brief(why);
    };
}

QString WindowManagerModule::unavailableReason() const {
    if (!m_context.preferences.local.windowManagerEnabled())
        return "the window manager is switched off (Preferences, Window Manager)";
    return {};
}

void WindowManagerModule::registerWith(ModuleRegistry& registry) {
    auto& actions = registry.actions();
    const auto availability = [this] { return unavailableReason(); };
    actions.setHandler<action::WindowAreas>(
        [this](const action::WindowAreas& a) {
            m_actions.applyZone({a.candidates, a.index});
        },
        availability);
    actions.setHandler<action::CenterWindow>([this](const auto&) { m_actions.centerWindow(); }, availability);
    actions.setHandler<action::MakeWindow16By9>([this](const auto&) { m_actions.makeWindow16By9(); },
                                                availability);
    actions.setHandler<action::MoveWindowToScreen>([this](const auto&) { m_actions.moveWindowToScreen(); },
                                                   availability);
    actions.setHandler<action::MatchSnappedWindowFrame>(
        [this](const auto&) { m_actions.matchSnappedWindowFrame(); }, availability);

    auto& prefs = m_context.preferences;
    const auto bindings = [&prefs]() -> const KeyboardBindings& { return prefs.keyboardBindings.value(); };
    using A = KeyboardAppAction;
    using Slot = ActionProviders::Slot;
    registry.addProvider(
        Slot::windowManagerFocusedWindow,
        std::make_unique<BindingsProvider>(
            bindings, actions,
            std::vector<BindingsProvider::Entry>{{A::windowManagerCenterWindow, action::CenterWindow{}},
                                                 {A::makeWindow16By9, action::MakeWindow16By9{}}}));
    registry.addProvider(Slot::zoneShortcuts, std::make_unique<ZoneShortcutProvider>(
                                                  m_actions, [this] { return unavailableReason().isEmpty(); },
                                                  [&prefs]() -> const WindowManagerPreferences& {
                                                      return prefs.windowManager.value();
                                                  }));
    registry.addProvider(Slot::windowManagerScreens,
                         std::make_unique<BindingsProvider>(
                             bindings, actions,
                             std::vector<BindingsProvider::Entry>{
                                 {A::moveWindowToScreen, action::MoveWindowToScreen{}},
                                 {A::matchSnappedWindowFrame, action::MatchSnappedWindowFrame{}}}));

    registry.addShortcutRows({A::windowManagerCenterWindow, A::makeWindow16By9, A::moveWindowToScreen,
                              A::matchSnappedWindowFrame});
    registry.addCommand({"windows", "", "the windows the window manager acts on, front to back", 0, 0,
                         [this](const QStringList&) { return windowsCommand(); }});
    registry.addStatus("windowManager", [this] { return status(); });
}

void WindowManagerModule::start() {
    m_cache.start();
    m_context.eventTap.dragHandler = [this](const TapEvent& event) { m_drag.handle(event); };
    // Mouse snapping can be switched off; the keyboard's actions stay.
    const auto followMode = [this] {
        m_model.setMode(m_context.preferences.local.mouseSnappingEnabled()
                            ? WindowManagerMode::DraggingAndKeyboard
                            : WindowManagerMode::KeyboardOnly);
    };
    followMode();
    QObject::connect(&m_context.preferences.local, &LocalUserPreferences::changed, &m_model,
                     [followMode](const QString& key) {
                         if (key == "WindowManagerMouseSnapping")
                             followMode();
                     });
}

ControlReply WindowManagerModule::windowsCommand() const {
    Json list = Json::array();
    for (const auto& w : m_cache.listWindows())
        list.push_back({{"id", w.id},
                        {"pid", w.pid},
                        {"app", optionalText(w.appName)},
                        {"title", optionalText(w.title)},
                        {"frame", {w.frame.x, w.frame.y, w.frame.width, w.frame.height}},
                        {"space", w.spaceId},
                        {"focused", w.isFocused}});
    return ControlReply::success(list);
}

Json WindowManagerModule::status() const {
    const auto focused = m_cache.focusedWindow();
    const auto& target = m_model.snapTarget();
    const Rect preview = target ? target->frame : Rect{};
    return {
        {"enabled", unavailableReason().isEmpty()},
        {"windows", m_cache.windows().size()},
        {"focused", focused ? Json(focused->id) : Json(nullptr)},
        {"dragState", stateName(m_drag.state())},
        {"snapTarget", target ? Json{preview.x, preview.y, preview.width, preview.height} : Json(nullptr)}};
}

} // namespace velmora
