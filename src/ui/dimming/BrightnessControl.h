#pragma once

#include <QWidget>

class QLabel;
class QSlider;

namespace velmora {

class DimmingModule;

// "External Monitor Brightness": a slider over the brightness factor, 0.1 to 1.0 in steps of 0.05,
// kept in step with the model (the shortcut and the command line change it too), and in plain words
// why nothing dims while no compositing manager runs.
class BrightnessControl : public QWidget {
    Q_OBJECT
public:
    explicit BrightnessControl(DimmingModule& dimming, QWidget* parent = nullptr);

    QSlider* slider() const { return m_slider; }
    QLabel* explanation() const { return m_explanation; }

private:
    void showFactor(double factor);
    void showCompositing(bool compositing);

    DimmingModule& m_dimming;
    QSlider* m_slider;
    QLabel* m_value;
    QLabel* m_explanation;
};

} // namespace velmora
