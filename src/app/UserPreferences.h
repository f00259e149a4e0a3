#pragma once

#include "app/CKValueObservable.h"
#include "app/LocalUserPreferences.h"
#include "core/BasicPreferences.h"
#include "core/ClipboardPreferences.h"
#include "core/KeyboardBindings.h"
#include "core/ThemePreferences.h"
#include "core/WindowManagerPreferences.h"

#include <memory>
#include <vector>

namespace velmora {

// The shared preference values: the synchronised records and the machine-local entries. Created once
// at start-up and handed to everyone who reads a setting.
class UserPreferences : public QObject {
    Q_OBJECT
public:
    UserPreferences(Defaults& defaults, LoggingManager& log, QObject* parent = nullptr);

    CKValueObservable<BasicPreferences> basic;
    CKValueObservable<WindowManagerPreferences> windowManager;
    CKValueObservable<ClipboardPreferences> clipboard;
    CKValueObservable<KeyboardBindings> keyboardBindings;
    CKValueObservable<ThemePreferences> theme;
    CKValueObservable<std::optional<QByteArray>> menubarMainIcon;
    LocalUserPreferences local;

    // Every synchronised value, in the order above; a record by its defaults key, or null.
    std::vector<CKValueObservableBase*> records();
    CKValueObservableBase* record(const QString& key);

signals:
    // A change, from wherever it was made, could not be stored; the previous value stays in force.
    void writeFailed(const QString& reason);
};

} // namespace velmora
