#include "TestWindow.h"

#include <QThread>

TestWindow::TestWindow(VirtualDesktop& desktop, const QString& title, const QStringList& extraArgs)
    : m_desktop(desktop), m_title(title) {
    m_process = desktop.start(TESTWIN_BINARY, QStringList{"--title", title} + extraArgs);
}

bool TestWindow::waitUntilMapped() {
    return waitUntil([this] {
        const auto found =
            m_desktop.run("xdotool", {"search", "--onlyvisible", "--name", "^" + m_title + "$"});
        m_windowId = found.out.split('\n').value(0).trimmed();
        return !m_windowId.isEmpty();
    });
}

void TestWindow::activate() const {
    // The window manager may still be handing the focus to a window mapped a moment ago, after this
    // one was activated: activated again until it stays.
    for (int attempt = 0; attempt < 5; ++attempt) {
        m_desktop.run("xdotool", {"windowactivate", "--sync", m_windowId});
        QThread::msleep(50);
        if (m_desktop.run("xdotool", {"getactivewindow"}).out.trimmed() == m_windowId)
            return;
    }
}

QString TestWindow::output() {
    if (m_process->state() == QProcess::Running)
        m_process->waitForReadyRead(100);
    m_output += QString::fromUtf8(m_process->readAllStandardOutput());
    return m_output;
}

int TestWindow::countLines(const QString& prefix) {
    int n = 0;
    for (const auto& line : output().split('\n'))
        if (line.startsWith(prefix))
            ++n;
    return n;
}
