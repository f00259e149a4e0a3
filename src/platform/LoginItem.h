#pragma once

#include <QString>

namespace velmora {

// Whether Velmora starts when the user logs in.
class LoginItem {
public:
    virtual ~LoginItem() = default;
    // Returns the resulting state, so that a switch can show it as it is: the requested state on success,
    // and on failure the state as it was before (still off when turning on failed, still on when turning
    // off failed).
    virtual bool setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;
    // Why the last request failed, in a few words for the user; empty after a success.
    virtual QString lastError() const { return {}; }
};

} // namespace velmora
