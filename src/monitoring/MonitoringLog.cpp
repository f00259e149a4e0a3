#include "monitoring/MonitoringLog.h"

Q_LOGGING_CATEGORY(lcMonitoring, "velmora.monitoring", QtInfoMsg)
