#pragma once

#include "platform/UpdateChannel.h"

#include <QNetworkAccessManager>
#include <QObject>

namespace velmora {

// The update server over HTTP(S) with QtNetwork, and the hand-over to velmora-updater, which is
// installed beside the velmora executable.
//
// An installation the updater may replace is a folder of its own, PREFIX/bin/velmora, marked by the
// file PREFIX/share/velmora/self-updating (a tarball install into /opt/velmora has it; packages and
// installs into shared prefixes such as /usr or ~/.local do not, so no update removes anything else).
class NetworkUpdateChannel final : public QObject, public UpdateChannel {
    Q_OBJECT
public:
    static constexpr auto kMarker = "share/velmora/self-updating";
    static constexpr auto kUpdaterName = "velmora-updater";

    // executablePath: the running velmora; logFile: where the updater also writes its lines.
    NetworkUpdateChannel(QString executablePath, QString logFile, QObject* parent = nullptr);

    void get(const UpdateRequest& request, std::function<void(UpdateResponse)> done) override;
    std::optional<QString> installationFolder() const override;
    bool handOver(const UpdateHandOver& handOver, QString* error) override;

private:
    QNetworkAccessManager m_network;
    QString m_executable;
    QString m_logFile;
};

} // namespace velmora
