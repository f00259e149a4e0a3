#pragma once

#include <QObject>

namespace velmora {

// How bright the dimmed monitors are: 1.0 is not dimmed, lower values darken them. One instance,
// owned by the dimming module; the factors live in memory only.
//
// Choices of this system: dimming starts off (1.0) and the first toggle dims to 0.6, a level that is
// clearly darker yet leaves text readable. Factors run from 0.1 to 1.0, in steps of 0.05 on the
// slider: below 0.1 a monitor is nearly black and a user could lose sight of the way back.
class MonitorDimmingModel : public QObject {
    Q_OBJECT
public:
    static constexpr double kInitialBrightnessFactor = 1.0;
    static constexpr double kInitialPreviousBrightnessFactor = 0.6;
    static constexpr double kMinimumBrightnessFactor = 0.1;
    static constexpr double kSliderStep = 0.05;

    double brightnessFactor() const { return m_brightnessFactor; }
    double previousBrightnessFactor() const { return m_previousBrightnessFactor; }

    // False, with nothing changed, for a factor outside 0.1 ... 1.0 (or not a number).
    bool setBrightnessFactor(double factor);
    // Below 1.0: remember the factor and stop dimming; otherwise dim to the remembered factor.
    void toggle();

    static bool isValidFactor(double factor);
    // The opacity of the black layer that makes a monitor look this bright: 1 - factor, with the
    // factor clamped to the range above, so no layer is ever fully opaque.
    static double overlayOpacity(double factor);

signals:
    void brightnessFactorChanged(double factor);

private:
    double m_brightnessFactor = kInitialBrightnessFactor;
    double m_previousBrightnessFactor = kInitialPreviousBrightnessFactor;
};

} // namespace velmora
