#pragma once

#include "core/MenubarSystemMonitoringPreferences.h"
#include "core/SystemSnapshot.h"

#include <QString>

namespace velmora {

// What a gauge reads before the first sample has arrived.
inline const QString kNoSampleText = QStringLiteral("–");

// The machine's CPU in use as a whole percentage (all cores = 100), truncated toward zero.
// Values outside 0..100 (a sampler fault) are clamped and logged once.
int cpuPercent(const SystemSnapshot& snapshot);
// Memory in use as a whole percentage of physical memory, truncated; clamped like cpuPercent().
int memoryPercent(const SystemSnapshot& snapshot);
// Bytes sent and received by everyone during the last sampling interval (not a rate).
qint64 networkBytes(const SystemSnapshot& snapshot);

// A byte amount in decimal units, kB to TB, never in bytes, like a file size: kB without decimals,
// MB with one, GB and TB with two, trailing zeros dropped ("1.5 MB", "2 GB"). 0 reads "0 kB"; any
// amount from 1 to 999 bytes reads "1 kB", so that some traffic never looks like none. Negative
// amounts count as 0.
QString byteCountText(qint64 bytes);
// The same in at most four characters for a 22-pixel tray icon: "0k", "12k", "1.5M", "15M", "2.1G".
QString compactByteCountText(qint64 bytes);

// The gauge's text for the newest snapshot (none yet: kNoSampleText): "31%" for CPU and memory, a
// byte amount for the network.
QString widgetText(ResourceType resource, const SystemSnapshot* newest);
// The same, short enough to draw in a tray icon.
QString compactWidgetText(ResourceType resource, const SystemSnapshot* newest);
// The gauge's label: "CPU", "MEM", "NET".
QString widgetLabel(ResourceType resource);
// The resource's name in sentences and lists: "CPU", "Memory", "Network".
QString resourceTitle(ResourceType resource);

} // namespace velmora
