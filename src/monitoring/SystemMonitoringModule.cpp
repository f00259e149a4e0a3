#include "monitoring/SystemMonitoringModule.h"

#include "app/ModuleRegistry.h"
#include "monitoring/MonitoringLog.h"
#include "monitoring/ProcessKiller.h"
#include "monitoring/SystemSampler.h"
#include "platform/Platform.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QtConcurrent>

namespace velmora {

namespace {

constexpr int kFirstSnapshotWaitMs = 4000;
constexpr int kDefaultTopLimit = 10;

double resourceValue(const ProcessSnapshot& process, ResourceType resource) {
    switch (resource) {
    case ResourceType::cpu:
        return process.resourceUsage.usedCPUs;
    case ResourceType::memory:
        return double(process.resourceUsage.usedMemoryBytes);
    case ResourceType::network:
        return double(process.resourceUsage.totalNetworkBytes());
    }
    return 0;
}

Json topRow(const ProcessSnapshot& process, const QString& group) {
    Json row = Json::object();
    row["pid"] = process.pid;
    row["name"] = process.name;
    row["group"] = group;
    row["usedCPUs"] = process.resourceUsage.usedCPUs;
    row["usedMemoryBytes"] = process.resourceUsage.usedMemoryBytes;
    row["uploadedBytes"] = process.resourceUsage.uploadedBytes;
    row["downloadedBytes"] = process.resourceUsage.downloadedBytes;
    return row;
}

} // namespace

SystemMonitoringModule::SystemMonitoringModule(AppContext& context) : m_context(context) {
    m_worker.setMaxThreadCount(1);
    m_worker.setExpiryTimeout(-1);
    if (context.platform.systemProbes)
        m_sampler = std::make_unique<SystemSampler>(*context.platform.systemProbes);
    if (context.platform.commands)
        m_killer = std::make_unique<ProcessKiller>(*context.platform.commands);
}

SystemMonitoringModule::~SystemMonitoringModule() {
    m_worker.waitForDone();
}

void SystemMonitoringModule::registerWith(ModuleRegistry& registry) {
    registry.addCommand(
        {"monitor", "snapshot | top [--by cpu|memory|network] [--limit N] | kill PID [--force]",
         "the system monitor: the newest snapshot, the busiest processes, end a process", 1, 5, nullptr,
         [this](const QStringList& arguments, std::function<void(ControlReply)> reply) {
             const QString what = arguments.value(0);
             if (what == "snapshot" && arguments.size() == 1)
                 snapshotCommand(std::move(reply));
             else if (what == "top")
                 reply(topCommand(arguments.mid(1)));
             else if (what == "kill")
                 killCommand(arguments.mid(1), std::move(reply));
             else
                 reply(ControlReply::failure(
                     "monitor takes snapshot, top [--by cpu|memory|network] [--limit N] or "
                     "kill PID [--force]"));
         }});
    registry.addStatus("systemMonitoring", [this] { return status(); });
}

void SystemMonitoringModule::start() {
    if (!m_sampler) {
        qCWarning(lcMonitoring) << "The system monitor is off: this system offers no process counters.";
        return;
    }
    m_timer = new QTimer(this);
    m_timer->setTimerType(Qt::PreciseTimer);
    m_timer->setInterval(kIntervalMs);
    connect(m_timer, &QTimer::timeout, this, &SystemMonitoringModule::tick);
    m_timer->start();
    tick();
}

void SystemMonitoringModule::stop() {
    if (m_timer)
        m_timer->stop();
    m_worker.waitForDone();
}

void SystemMonitoringModule::sampleNow() {
    // Asked while a sample runs, the answer must see the machine as it is now: one more follows.
    if (m_sampling)
        m_sampleAgain = true;
    else
        tick();
}

// The running applications are read here, on the main thread, where the window model lives; the
// processes and counters on the worker.
void SystemMonitoringModule::tick() {
    if (!m_sampler)
        return;
    if (m_sampling) {
        // A sample that takes longer than the interval is not doubled: the next tick takes the next one.
        if (m_skippedTicks++ == 0)
            qCWarning(lcMonitoring) << "A system sample took longer than" << kIntervalMs
                                    << "ms; skipping a tick";
        return;
    }
    m_sampling = true;
    RunningApplicationMap applications;
    if (m_context.platform.workspace)
        applications = runningApplicationMap(m_context.platform.workspace->runningApplications());
    const qint64 nowMs = m_context.nowMs();
    QPointer<SystemMonitoringModule> self(this);
    SystemSampler* sampler = m_sampler.get();
    m_worker.start([self, sampler, applications = std::move(applications), nowMs] {
        QElapsedTimer took;
        took.start();
        SystemSample sample = sampler->generate(applications, nowMs);
        const qint64 tookMs = took.elapsed();
        QMetaObject::invokeMethod(
            self.data(),
            [self, sample = std::move(sample), tookMs] {
                if (self)
                    self->finished(sample, tookMs);
            },
            Qt::QueuedConnection);
    });
}

void SystemMonitoringModule::finished(const SystemSample& sample, qint64 tookMs) {
    m_sampling = false;
    m_lastSampleMs = tookMs;
    m_hasNetworkCounters = sample.networkAvailable;
    m_overview = sample.overview;
    emit overviewChanged();
    if (sample.snapshot)
        m_model.append(*sample.snapshot);
    if (std::exchange(m_sampleAgain, false))
        tick();
}

void SystemMonitoringModule::killProcess(qint64 pid, bool force,
                                         std::function<void(bool, const QString&)> done) {
    if (!m_killer) {
        const QString line = QString("Error killing process %1: no way to run programs here").arg(pid);
        qCWarning(lcMonitoring).noquote() << line;
        if (done)
            done(false, line);
        return;
    }
    m_killer->kill(pid, force, std::move(done));
}

// The newest snapshot; right after start, the first one is waited for.
void SystemMonitoringModule::snapshotCommand(std::function<void(ControlReply)> reply) {
    if (const SystemSnapshot* newest = m_model.newest()) {
        reply(ControlReply::success(*newest));
        return;
    }
    if (!m_sampler) {
        reply(ControlReply::failure("the system monitor is off: this system offers no process counters"));
        return;
    }
    auto answered = std::make_shared<bool>(false);
    auto once = [answered, reply](ControlReply r) {
        if (!std::exchange(*answered, true))
            reply(std::move(r));
    };
    auto* context = new QObject(this);
    connect(&m_model, &SystemMonitoringModel::snapshotsChanged, context, [this, once, context] {
        once(ControlReply::success(*m_model.newest()));
        context->deleteLater();
    });
    QTimer::singleShot(kFirstSnapshotWaitMs, context, [once, context] {
        once(ControlReply::failure("no snapshot yet: the first sample did not finish (see the log)"));
        context->deleteLater();
    });
}

ControlReply SystemMonitoringModule::topCommand(const QStringList& arguments) {
    ResourceType by = ResourceType::cpu;
    int limit = kDefaultTopLimit;
    for (qsizetype i = 0; i < arguments.size(); i += 2) {
        const QString value = arguments.value(i + 1);
        bool ok = true;
        if (arguments[i] == "--by" && resourceTypeFromName(value))
            by = *resourceTypeFromName(value);
        else if (arguments[i] == "--limit" && (limit = value.toInt(&ok), ok && limit > 0))
            continue;
        else
            return ControlReply::failure("usage: velmora monitor top [--by cpu|memory|network] [--limit N]");
    }
    const SystemSnapshot* newest = m_model.newest();
    if (!newest)
        return ControlReply::failure("no snapshot yet; the first comes within five seconds of start");
    std::vector<std::pair<const ProcessSnapshot*, QString>> processes;
    for (const ProcessGroup& group : newest->processGroups) {
        if (group.parent)
            processes.emplace_back(&*group.parent, group.name);
        for (const ProcessSnapshot& child : group.children)
            processes.emplace_back(&child, group.name);
    }
    std::stable_sort(processes.begin(), processes.end(), [by](const auto& a, const auto& b) {
        return resourceValue(*a.first, by) > resourceValue(*b.first, by);
    });
    Json rows = Json::array();
    for (std::size_t i = 0; i < processes.size() && i < std::size_t(limit); ++i)
        rows.push_back(topRow(*processes[i].first, processes[i].second));
    return ControlReply::success(rows);
}

void SystemMonitoringModule::killCommand(const QStringList& arguments,
                                         std::function<void(ControlReply)> reply) {
    bool ok = false;
    const qint64 pid = arguments.value(0).toLongLong(&ok);
    const bool force = arguments.value(1) == "--force";
    if (!ok || pid <= 0 || arguments.size() > 2 || (arguments.size() == 2 && !force)) {
        reply(ControlReply::failure("usage: velmora monitor kill PID [--force]"));
        return;
    }
    killProcess(pid, force, [reply, pid, force](bool killed, const QString& line) {
        if (!killed) {
            reply(ControlReply::failure(line));
            return;
        }
        reply(ControlReply::success(
            {{"pid", pid}, {"signal", force ? 9 : 15}, {"result", line.toStdString()}}));
    });
}

Json SystemMonitoringModule::status() const {
    Json s = Json::object();
    s["sampling"] = m_sampler != nullptr;
    s["snapshots"] = m_model.snapshots().size();
    s["networkCounters"] = m_hasNetworkCounters;
    s["lastSampleMs"] = m_lastSampleMs;
    s["cpuLoad"] = m_overview.cpuLoad;
    s["memoryInUse"] = m_overview.memoryInUse;
    s["storageInUse"] = m_overview.storageInUse;
    return s;
}

} // namespace velmora
