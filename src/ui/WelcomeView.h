#pragma once

#include <QWidget>
#include <functional>

namespace velmora {

// The first-run welcome: what the agent does and where to find it.
class WelcomeView : public QWidget {
    Q_OBJECT
public:
    explicit WelcomeView(std::function<void()> onGetStarted, QWidget* parent = nullptr);
};

} // namespace velmora
