#pragma once

#include "platform/SystemProbes.h"

#include <mutex>

namespace velmora {

// A machine as a test sets it: every answer is a field. Guarded, since the sampler asks from a
// worker thread while the test changes the machine.
class FakeSystemProbes final : public SystemProbes {
public:
    struct Machine {
        qint64 processors = 8;
        qint64 physicalMemory = 16LL << 30;
        std::optional<CpuTicks> ticks = CpuTicks{};
        float memoryFraction = 0.5f;
        float storageFraction = 0.25f;
        std::optional<std::vector<ProcessRow>> rows = std::vector<ProcessRow>{};
        bool networkCounters = true;
        std::optional<std::map<qint64, NetworkTotals>> network = std::map<qint64, NetworkTotals>{};
    };

    void set(Machine machine) {
        std::lock_guard lock(m_mutex);
        m_machine = std::move(machine);
    }
    template <class F> void change(F&& f) {
        std::lock_guard lock(m_mutex);
        f(m_machine);
    }

    qint64 processorCount() override { return read().processors; }
    qint64 physicalMemoryBytes() override { return read().physicalMemory; }
    std::optional<CpuTicks> cpuTicks() override { return read().ticks; }
    float memoryInUseFraction() override { return read().memoryFraction; }
    float storageInUseFraction() override { return read().storageFraction; }
    std::optional<std::vector<ProcessRow>> processRows() override { return read().rows; }
    bool hasNetworkCounters() override { return read().networkCounters; }
    std::optional<std::map<qint64, NetworkTotals>> networkTotals() override { return read().network; }

private:
    Machine read() {
        std::lock_guard lock(m_mutex);
        return m_machine;
    }
    std::mutex m_mutex;
    Machine m_machine;
};

} // namespace velmora
