#pragma once

#include <QList>
#include <QUrl>

namespace velmora {

// Hands files and addresses to the desktop: the default application of a URL, the file manager
// showing files. Both return at once; false when the desktop refused at once.
class DesktopOpener {
public:
    virtual ~DesktopOpener() = default;
    virtual bool openURL(const QUrl& url) = 0;
    // Shows the files selected in the file manager, else opens the folder of the first one.
    virtual bool revealFiles(const QList<QUrl>& files) = 0;
};

} // namespace velmora
