#pragma once

#include "VirtualDesktop.h"

// A tools/testwin window on the virtual desktop: it reports every key and click it receives.
class TestWindow {
public:
    TestWindow(VirtualDesktop& desktop, const QString& title, const QStringList& extraArgs = {});

    // Waits until the window is mapped; its X id.
    bool waitUntilMapped();
    void activate() const;
    // Everything the window reported so far, one line per key or click.
    QString output();
    int countLines(const QString& prefix);
    QProcess* process() const { return m_process; }
    const QString& id() const { return m_windowId; }

private:
    VirtualDesktop& m_desktop;
    QString m_title;
    QProcess* m_process;
    QString m_windowId;
    QString m_output;
};
