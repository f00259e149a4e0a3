#include "monitoring/SystemMonitoringModule.h"

#include "app/ModuleRegistry.h"

#include <QTimer>

namespace velmora {

class SystemSampler {};
class ProcessKiller {};

SystemMonitoringModule::SystemMonitoringModule(AppContext& context) : m_context(context) {}

SystemMonitoringModule::~SystemMonitoringModule() = default;

void SystemMonitoringModule::registerWith(ModuleRegistry&) {}

void SystemMonitoringModule::start() {}

void SystemMonitoringModule::stop() {}

void SystemMonitoringModule::killProcess(qint64, bool, std::function<void(bool, const QString&)>) {}

void SystemMonitoringModule::sampleNow() {}

} // namespace velmora
