#pragma once

#include "platform/LoginItem.h"

#include <QCoreApplication>

namespace velmora {

// Launch at login as an XDG autostart entry in the user's config folder, the one place every
// freedesktop session (GNOME, KDE, Xfce, LXQt, Openbox with its autostart ...) looks at login.
class XdgAutostart final : public LoginItem {
public:
    // The entry starts `program`, the running binary unless a test names another.
    explicit XdgAutostart(QString program = QCoreApplication::applicationFilePath());

    bool setEnabled(bool enabled) override;
    bool isEnabled() const override;
    QString lastError() const override { return m_error; }

    // $XDG_CONFIG_HOME/autostart/velmora.desktop, looked up on each use so that the environment decides.
    static QString entryPath();
    // The entry's text for `program`, quoted as the desktop entry format wants it.
    static QByteArray entryText(const QString& program);

private:
    bool write();
    bool remove();
    bool fail(const QString& what, const QString& reason);

    QString m_program;
    QString m_error;
};

} // namespace velmora
