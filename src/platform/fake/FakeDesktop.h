#pragma once

#include "platform/Accessibility.h"
#include "platform/WindowServer.h"

#include <QStringList>
#include <algorithm>
#include <vector>

namespace velmora {

// The windows of the in-memory desktop, front to back, with what a window manager would enforce
// (minimum sizes) and a log of every change asked of them.
struct FakeDesktop {
    struct Window {
        quint32 id = 0;
        qint32 pid = 0;
        QString ownerName;
        std::optional<QString> title;
        Rect frame;
        Size minimumSize;
        std::optional<int> layer = 0;
        quint64 spaceId = 0;
    };
    std::vector<Window> windows; // front to back
    std::optional<qint32> frontmostPid;
    std::set<quint64> spaces;
    QStringList calls;

    Window* find(quint32 id) {
        auto it = std::find_if(windows.begin(), windows.end(), [id](const Window& w) { return w.id == id; });
        return it == windows.end() ? nullptr : &*it;
    }
    Window& add(Window w) {
        windows.push_back(std::move(w));
        return windows.back();
    }
};

// Announces nothing by itself: tests call changed() after editing the desktop, as a watching
// backend would.
class FakeWindowServer final : public WindowServer {
public:
    void changed() { emit windowsChanged(); }
    explicit FakeWindowServer(FakeDesktop& d) : m_d(d) {}
    std::vector<ServerWindow> onScreenWindows() const override {
        std::vector<ServerWindow> list;
        for (const auto& w : m_d.windows)
            list.push_back({w.id, w.layer, w.pid, w.frame, w.ownerName, w.spaceId, w.title});
        return list;
    }
    std::optional<qint32> frontmostApplicationPid() const override { return m_d.frontmostPid; }
    std::set<quint64> currentSpaces() const override { return m_d.spaces; }

private:
    FakeDesktop& m_d;
};

class FakeAccessibility final : public Accessibility {
public:
    explicit FakeAccessibility(FakeDesktop& d) : m_d(d) {}
    std::optional<QString> title(quint32 id) const override {
        auto* w = m_d.find(id);
        return w ? w->title : std::nullopt;
    }
    std::optional<Rect> frame(quint32 id) const override {
        auto* w = m_d.find(id);
        return w ? std::optional<Rect>(w->frame) : std::nullopt;
    }
    void setPosition(quint32 id, Point p) override {
        m_d.calls << QString("position %1 %2,%3").arg(id).arg(p.x).arg(p.y);
        if (auto* w = m_d.find(id)) {
            w->frame.x = p.x;
            w->frame.y = p.y;
        }
    }
    void setSize(quint32 id, Size s) override {
        m_d.calls << QString("size %1 %2x%3").arg(id).arg(s.width).arg(s.height);
        if (auto* w = m_d.find(id)) {
            w->frame.width = std::max(s.width, w->minimumSize.width);
            w->frame.height = std::max(s.height, w->minimumSize.height);
        }
    }
    void raise(quint32 id) override { m_d.calls << QString("raise %1").arg(id); }
    void focus(quint32 id, bool activate) override {
        m_d.calls << QString("focus %1%2").arg(id).arg(activate ? " activate" : "");
        if (auto* w = m_d.find(id)) {
            m_d.frontmostPid = w->pid;
            auto it =
                std::find_if(m_d.windows.begin(), m_d.windows.end(), [id](auto& x) { return x.id == id; });
            std::rotate(m_d.windows.begin(), it, it + 1);
        }
    }

private:
    FakeDesktop& m_d;
};

} // namespace velmora
