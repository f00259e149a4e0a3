#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace velmora {

// Keeps the computer awake (no sleep, no idle action, no blank screen) for as long as it is held and
// this program runs. What is held ends with the process, whichever way the process ends.
class SleepInhibitor {
public:
    // An empty error means held; otherwise the reason nothing is held.
    using Done = std::function<void(const QString& error)>;

    virtual ~SleepInhibitor() = default;
    // Asks the system; done comes back on the main thread, at once or later. Holding twice holds once.
    virtual void hold(const QString& reason, Done done) = 0;
    // Gives back whatever is held; at once, without waiting for the system.
    virtual void release() = 0;
    virtual bool isHeld() const = 0;
    // What is held now, one short line per mechanism (for the status).
    virtual QStringList heldMechanisms() const = 0;
};

} // namespace velmora
