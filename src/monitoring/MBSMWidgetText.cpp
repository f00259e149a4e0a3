#include "monitoring/MBSMWidgetText.h"

#include "monitoring/MonitoringLog.h"

#include <array>
#include <cmath>
#include <functional>

namespace velmora {

namespace {

// A percentage outside 0..100 means the sampler is wrong, not the gauge: it is shown clamped, and
// said once per resource so a fault that repeats every five seconds does not fill the log.
int clampedPercent(double fraction, ResourceType resource) {
    static std::array<bool, 3> logged{};
    const double percent = fraction * 100.0;
    if (std::isfinite(percent) && percent >= 0.0 && percent <= 100.0)
        return int(std::trunc(percent));
    bool& once = logged[std::size_t(resource)];
    if (!once) {
        once = true;
        qCWarning(lcMonitoring).noquote() << QString("The %1 gauge got %2%; shown clamped to 0..100.")
                                                 .arg(resourceTypeName(resource))
                                                 .arg(percent);
    }
    return std::isfinite(percent) && percent > 100.0 ? 100 : 0;
}

struct ByteUnit {
    double divisor;
    int decimals;
    const char* name;
    const char* shortName;
};
constexpr std::array<ByteUnit, 4> kUnits{
    {{1e3, 0, "kB", "k"}, {1e6, 1, "MB", "M"}, {1e9, 2, "GB", "G"}, {1e12, 2, "TB", "T"}}};

double roundedTo(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    return std::round(value * scale) / scale;
}

QString withoutTrailingZeros(double value, int decimals) {
    QString text = QString::number(value, 'f', decimals);
    if (text.contains('.')) {
        while (text.endsWith('0'))
            text.chop(1);
        if (text.endsWith('.'))
            text.chop(1);
    }
    return text;
}

// The unit and the rounded amount in it; the unit goes up when rounding reaches 1000 of it, so
// 999,999 bytes read 1 MB rather than 1000 kB.
std::pair<const ByteUnit*, double> scaled(qint64 bytes,
                                          const std::function<int(const ByteUnit&, double)>& decimals) {
    std::size_t index = 0;
    while (index + 1 < kUnits.size() && double(bytes) >= kUnits[index + 1].divisor)
        ++index;
    for (;; ++index) {
        const ByteUnit& unit = kUnits[index];
        const double value = double(bytes) / unit.divisor;
        const double rounded = roundedTo(value, decimals(unit, value));
        if (rounded < 1000.0 || index + 1 == kUnits.size())
            return {&unit, std::max(rounded, 1.0)};
    }
}

qint64 nonNegative(qint64 bytes) {
    static bool logged = false;
    if (bytes >= 0)
        return bytes;
    if (!logged) {
        logged = true;
        qCWarning(lcMonitoring).noquote() << QString("A byte amount of %1 was shown as 0.").arg(bytes);
    }
    return 0;
}

} // namespace

int cpuPercent(const SystemSnapshot& snapshot) {
    return clampedPercent(snapshot.totalUsage().usedCPUs / double(snapshot.totalCPUs), ResourceType::cpu);
}

int memoryPercent(const SystemSnapshot& snapshot) {
    return clampedPercent(double(snapshot.totalUsage().usedMemoryBytes) / double(snapshot.totalMemoryBytes),
                          ResourceType::memory);
}

qint64 networkBytes(const SystemSnapshot& snapshot) {
    return snapshot.totalUsage().totalNetworkBytes();
}

QString byteCountText(qint64 bytes) {
    bytes = nonNegative(bytes);
    if (bytes == 0)
        return "0 kB";
    const auto [unit, value] = scaled(bytes, [](const ByteUnit& u, double) { return u.decimals; });
    return withoutTrailingZeros(value, unit->decimals) + " " + unit->name;
}

QString compactByteCountText(qint64 bytes) {
    bytes = nonNegative(bytes);
    if (bytes == 0)
        return "0k";
    // One decimal only where it fits in four characters and says something: 1.5M, not 1.5k.
    const auto decimals = [](const ByteUnit& u, double value) {
        return u.decimals > 0 && value < 9.95 ? 1 : 0;
    };
    const auto [unit, value] = scaled(bytes, decimals);
    return withoutTrailingZeros(value, decimals(*unit, value)) + unit->shortName;
}

QString widgetText(ResourceType resource, const SystemSnapshot* newest) {
    if (!newest)
        return kNoSampleText;
    switch (resource) {
    case ResourceType::cpu:
        return QString::number(cpuPercent(*newest)) + "%";
    case ResourceType::memory:
        return QString::number(memoryPercent(*newest)) + "%";
    case ResourceType::network:
        return byteCountText(networkBytes(*newest));
    }
    return kNoSampleText;
}

QString compactWidgetText(ResourceType resource, const SystemSnapshot* newest) {
    if (newest && resource == ResourceType::network)
        return compactByteCountText(networkBytes(*newest));
    return widgetText(resource, newest);
}

QString widgetLabel(ResourceType resource) {
    switch (resource) {
    case ResourceType::cpu:
        return "CPU";
    case ResourceType::memory:
        return "MEM";
    case ResourceType::network:
        return "NET";
    }
    return {};
}

QString resourceTitle(ResourceType resource) {
    switch (resource) {
    case ResourceType::cpu:
        return "CPU";
    case ResourceType::memory:
        return "Memory";
    case ResourceType::network:
        return "Network";
    }
    return {};
}

} // namespace velmora
