#pragma once

#include <QString>
#include <QtGlobal>

#include <map>
#include <optional>
#include <vector>

namespace velmora {

// Machine-wide CPU time, in clock ticks, as counted since boot.
struct CpuTicks {
    quint64 busy = 0;
    quint64 total = 0; // busy + idle
};

// One process of the current user, as the kernel tells it.
struct ProcessRow {
    qint64 pid = 0;
    qint64 parentPid = 0;
    // The share of one core the process used since the previous reading of the rows (1.0 = a whole
    // core); a process seen for the first time counts from its start when it started after that
    // reading, else 0.
    double usedCPUs = 0;
    qint64 residentBytes = 0;
    QString command;        // the executable's name (`comm`)
    QString lstart;         // the start time as `ps -o lstart` writes it: "Mon Nov 23 13:40:09 2026"
    QString executablePath; // empty when unreadable
    // The file URL of the program's own installation folder ("file:///opt/google/chrome/"), when it
    // has one; programs in shared folders (/usr/bin) have none.
    std::optional<QString> bundlePath;
    std::optional<QString> scope; // the systemd application scope, when the desktop uses scopes
};

// Bytes a process moved over its TCP sockets since it started, as far as they were seen.
struct NetworkTotals {
    qint64 bytesIn = 0;
    qint64 bytesOut = 0;
};

// The counters the system monitor samples. Called from one worker thread at a time, never from the
// main thread: reading every process can take milliseconds.
class SystemProbes {
public:
    virtual ~SystemProbes() = default;

    virtual qint64 processorCount() = 0;
    virtual qint64 physicalMemoryBytes() = 0;
    // Nothing when the counters cannot be read.
    virtual std::optional<CpuTicks> cpuTicks() = 0;
    // Memory in use as a fraction of physical memory, in [0, 1].
    virtual float memoryInUseFraction() = 0;
    // The used share of the volume that holds the user's documents, in [0, 1]; 0 when unknown.
    virtual float storageInUseFraction() = 0;
    // The current user's processes; nothing when the process table cannot be read at all.
    virtual std::optional<std::vector<ProcessRow>> processRows() = 0;
    // Whether per-process network counters can be read here (socket diagnostics in the kernel).
    virtual bool hasNetworkCounters() = 0;
    // Totals per pid since each process was first seen; nothing when they cannot be read.
    virtual std::optional<std::map<qint64, NetworkTotals>> networkTotals() = 0;
};

} // namespace velmora
