#pragma once

#include <QtGlobal>
#include <functional>

namespace velmora {

struct Platform;
class UserPreferences;
class LoggingManager;
class KeyboardShortcutModel;
class EventTap;
class AppActionDispatcher;
class StandardWindowController;

// The shared objects the agent creates once and hands to every module.
struct AppContext {
    Platform& platform;
    UserPreferences& preferences;
    LoggingManager& log;
    KeyboardShortcutModel& shortcuts;
    EventTap& eventTap;
    AppActionDispatcher& dispatcher;
    std::function<qint64()> nowMs; // wall-clock milliseconds since 1970
    // A short message on the screen the user works on, for an action that had nothing to act on.
    std::function<void(const QString&)> brief;
};

} // namespace velmora
