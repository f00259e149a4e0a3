#pragma once

#include <QObject>

namespace velmora {

// What a Screens backend announces, on the main thread. A backend that cannot watch the desktop
// announces nothing; its users then see the state it has at each call.
class ScreensNotifier : public QObject {
    Q_OBJECT
signals:
    // The monitors changed: one per change the server reported that changed what screens() answers,
    // so a burst of reconfigurations gives several, close together.
    void screensChanged();
    // A compositing manager started or went away; isCompositing() says which.
    void compositingChanged();
    // Another program put a window of its own (an override-redirect one: a menu, a full-screen
    // game, a notice) at the top of the stack: windows that must stay in front raise themselves again.
    void windowStackedOnTop();
};

} // namespace velmora
