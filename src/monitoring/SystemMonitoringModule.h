#pragma once

#include "app/AppContext.h"
#include "app/Module.h"
#include "core/SystemMonitoringModel.h"
#include "monitoring/SystemOverview.h"

#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>

class QTimer;

namespace velmora {

class SystemSampler;
struct SystemSample;
class ProcessKiller;

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
    void finished(const SystemSample& sample, qint64 tookMs);
    void snapshotCommand(std::function<void(ControlReply)> reply);
    ControlReply topCommand(const QStringList& arguments);
    void killCommand(const QStringList& arguments, std::function<void(ControlReply)> reply);
    Json status() const;

    AppContext& m_context;
    SystemMonitoringModel m_model;
    SystemOverview m_overview;
    bool m_hasNetworkCounters = false;
    std::unique_ptr<SystemSampler> m_sampler;
    std::unique_ptr<ProcessKiller> m_killer;
    QTimer* m_timer = nullptr;
    // One sample at a time, off the main thread: the sampler keeps the previous counters.
    QThreadPool m_worker;
    bool m_sampling = false;
    bool m_sampleAgain = false;
    qint64 m_lastSampleMs = -1;
    int m_skippedTicks = 0;
};

} // namespace velmora
