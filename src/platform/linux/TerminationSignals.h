#pragma once

#include <QObject>

class QSocketNotifier;

namespace velmora {

// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the main thread (through a self-pipe, since a
// signal handler may do almost nothing), so that the agent leaves through its ordinary quit path.
class TerminationSignals : public QObject {
    Q_OBJECT
public:
    explicit TerminationSignals(QObject* parent = nullptr);

signals:
    void terminationRequested();

private:
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace velmora
