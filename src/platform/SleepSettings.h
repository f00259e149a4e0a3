#pragma once

#include <QString>

#include <functional>

namespace velmora {

// The system-wide setting that keeps the computer from sleeping at all, lid closed included. It
// outlives this program; changing it needs an administrator's consent, which the user may refuse.
class SleepSettings {
public:
    virtual ~SleepSettings() = default;
    // Whether sleep is disabled system-wide now; false when that cannot be read. done comes back on
    // the main thread.
    virtual void isSleepDisabled(std::function<void(bool disabled)> done) = 0;
    // Disables sleep, or allows it again. done(error) on the main thread once the change is over (the
    // administrator prompt answered); an empty error means the change was made.
    virtual void setSleepDisabled(bool disabled, std::function<void(const QString& error)> done) = 0;
};

} // namespace velmora
