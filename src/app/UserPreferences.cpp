#include "app/UserPreferences.h"

#include "core/PreferenceChecks.h"

namespace velmora {

namespace {

QByteArray iconToData(const std::optional<QByteArray>& icon) {
    return icon.value_or(QByteArray());
}

// The icon is the one optional value: absent data is a valid "no icon".
std::optional<std::optional<QByteArray>> iconFromData(const std::optional<QByteArray>& data, QString*) {
    if (!data || data->isEmpty())
        return std::optional<QByteArray>();
    return std::optional<QByteArray>(*data);
}

} // namespace

UserPreferences::UserPreferences(Defaults& defaults, LoggingManager& log, QObject* parent)
    : QObject(parent), basic("BasicPreferences", {}, false, encodeRecord<BasicPreferences>,
                             decodeRecord<BasicPreferences>, defaults, log, this),
      windowManager("WindowManagerPreferences", {}, false, encodeRecord<WindowManagerPreferences>,
                    decodeRecord<WindowManagerPreferences>, defaults, log, this),
      clipboard("ClipboardPreferences", {}, false, encodeRecord<ClipboardPreferences>,
                decodeRecord<ClipboardPreferences>, defaults, log, this),
      keyboardBindings("KeyboardBindings", {}, false, encodeRecord<KeyboardBindings>,
                       decodeRecord<KeyboardBindings>, defaults, log, this),
      theme("ThemePreferences", {}, false, encodeRecord<ThemePreferences>, decodeRecord<ThemePreferences>,
            defaults, log, this),
      menubarMainIcon("MenubarMainIcon", std::nullopt, true, iconToData, iconFromData, defaults, log, this),
      local(defaults, this) {
    // Values from outside (the command line) must mean something, not only decode.
    windowManager.setCheck(
        [this](const WindowManagerPreferences& r) { return problemWith(r, keyboardBindings.value()); });
    keyboardBindings.setCheck(
        [this](const KeyboardBindings& r) { return problemWith(r, windowManager.value()); });
    clipboard.setCheck([](const ClipboardPreferences& r) { return problemWith(r); });
    theme.setCheck([](const ThemePreferences& r) { return problemWith(r); });
    menubarMainIcon.setCheck([](const std::optional<QByteArray>& icon) { return problemWithIcon(icon); });
    for (auto* r : records())
        connect(r, &CKValueObservableBase::writeFailed, this, &UserPreferences::writeFailed);
    connect(&local, &LocalUserPreferences::writeFailed, this, &UserPreferences::writeFailed);
}

std::vector<CKValueObservableBase*> UserPreferences::records() {
    return {&basic, &windowManager, &clipboard, &keyboardBindings, &theme, &menubarMainIcon};
}

CKValueObservableBase* UserPreferences::record(const QString& key) {
    for (auto* r : records())
        if (r->key() == key)
            return r;
    return nullptr;
}

} // namespace velmora
