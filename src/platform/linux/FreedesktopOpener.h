#pragma once

#include "platform/DesktopOpener.h"

namespace velmora {

// The freedesktop.org way: URLs through the desktop's default handlers (xdg-open), files shown by the
// file manager over the session bus (org.freedesktop.FileManager1.ShowItems) when one offers it,
// else their folder opened.
class FreedesktopOpener final : public DesktopOpener {
public:
    bool openURL(const QUrl& url) override;
    bool revealFiles(const QList<QUrl>& files) override;
};

} // namespace velmora
