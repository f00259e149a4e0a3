#pragma once

#include "app/AppContext.h"
#include "app/Module.h"
#include "core/SystemMonitoringModel.h"

#include <QObject>
#include <functional>
#include <memory>

class QTimer;

namespace velmora {

class SystemSampler;
class ProcessKiller;

// The whole machine at a glance, for the drop-down panel's gauges: each a fraction in [0, 1].
struct SystemOverview {
    float cpuLoad = 0;
    float memoryInUse = 0;
    float storageInUse = 0;
};

// The system monitor: a snapshot of every process every five seconds, grouped by application, kept
// in the model for the tray gauges and the dashboard, and the `velmora monitor` commands.
class SystemMonitoringModule final : public QObject, public Module {
    Q_OBJECT
public:
    static constexpr int kIntervalMs = 5000;

    explicit SystemMonitoringModule(AppContext& context);
    ~SystemMonitoringModule() override;

    QString name() const override { return "systemMonitoring"; }
    void registerWith(ModuleRegistry& registry) override;
    void start() override;
    void stop() override;

    SystemMonitoringModel& model() { return m_model; }
    SystemOverview overview() const { return m_overview; }
    // False where the kernel gives no per-socket counters: network columns are then unavailable.
    bool hasNetworkCounters() const { return m_hasNetworkCounters; }
    // Sends SIGTERM, or SIGKILL when forced, through /bin/kill; done(true) when kill exited with 0.
    void killProcess(qint64 pid, bool force, std::function<void(bool killed, const QString& line)> done = {});
    // Takes one snapshot now, besides the timer's (the command line, tests).
    void sampleNow();

signals:
    void overviewChanged();

private:
    void tick();
    void finished(std::optional<SystemSnapshot> snapshot, SystemOverview overview);
    ControlReply snapshotCommand();
    ControlReply topCommand(const QStringList& arguments);
    ControlReply killCommand(const QStringList& arguments);
    Json status() const;

    AppContext& m_context;
    SystemMonitoringModel m_model;
    SystemOverview m_overview;
    bool m_hasNetworkCounters = false;
    std::unique_ptr<SystemSampler> m_sampler;
    std::unique_ptr<ProcessKiller> m_killer;
    QTimer* m_timer = nullptr;
};

} // namespace velmora
