#pragma once

#include "platform/DesktopOpener.h"

#include <vector>

namespace velmora {

// Records what it was asked to open or reveal.
class FakeDesktopOpener final : public DesktopOpener {
public:
    std::vector<QUrl> opened;
    std::vector<QList<QUrl>> revealed;
    bool refuse = false;

    bool openURL(const QUrl& url) override {
        opened.push_back(url);
        return !refuse;
    }
    bool revealFiles(const QList<QUrl>& files) override {
        revealed.push_back(files);
        return !refuse;
    }
};

} // namespace velmora
