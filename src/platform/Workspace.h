#pragma once

#include <QImage>
#include <QString>

namespace velmora {

// The applications behind windows, as the desktop presents them.
class Workspace {
public:
    virtual ~Workspace() = default;

    // The icon of the window's application, about size x size pixels: the one the window publishes,
    // else the icon theme's for the application's name; a null image when neither exists.
    virtual QImage applicationIcon(quint32 windowId, const QString& appName, int size) = 0;
};

} // namespace velmora
