#include "dimming/MonitorDimmingModel.h"

#include <algorithm>
#include <cmath>

namespace velmora {

bool MonitorDimmingModel::isValidFactor(double factor) {
    return std::isfinite(factor) && factor >= kMinimumBrightnessFactor && factor <= 1.0;
}

double MonitorDimmingModel::overlayOpacity(double factor) {
    if (!std::isfinite(factor))
        return 0;
    return 1.0 - std::clamp(factor, kMinimumBrightnessFactor, 1.0);
}

bool MonitorDimmingModel::setBrightnessFactor(double factor) {
    if (!isValidFactor(factor))
        return false;
    if (factor != m_brightnessFactor) {
        m_brightnessFactor = factor;
        emit brightnessFactorChanged(factor);
    }
    return true;
}

void MonitorDimmingModel::toggle() {
    if (m_brightnessFactor < 1.0) {
        m_previousBrightnessFactor = m_brightnessFactor;
        setBrightnessFactor(1.0);
    } else {
        setBrightnessFactor(m_previousBrightnessFactor);
    }
}

} // namespace velmora
