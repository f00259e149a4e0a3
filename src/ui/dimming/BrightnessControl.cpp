#include "ui/dimming/BrightnessControl.h"

#include "dimming/DimmingModule.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>
#include <cmath>

namespace velmora {

namespace {

// The slider counts steps of 0.05: 2 (0.1) to 20 (1.0).
int stepsOf(double factor) {
    return int(std::lround(factor / MonitorDimmingModel::kSliderStep));
}

} // namespace

BrightnessControl::BrightnessControl(DimmingModule& dimming, QWidget* parent)
    : QWidget(parent), m_dimming(dimming), m_slider(new QSlider(Qt::Horizontal)), m_value(new QLabel),
      m_explanation(new QLabel(DimmingModule::noCompositorExplanation())) {
    setObjectName("dimmingControl");
    m_slider->setObjectName("dimmingSlider");
    m_slider->setRange(stepsOf(MonitorDimmingModel::kMinimumBrightnessFactor), stepsOf(1.0));
    m_slider->setSingleStep(1);
    m_slider->setPageStep(2);
    m_slider->setAccessibleName("External Monitor Brightness");
    m_explanation->setObjectName("dimmingExplanation");
    m_explanation->setWordWrap(true);
    m_value->setMinimumWidth(m_value->fontMetrics().horizontalAdvance("100 %"));
    m_value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel("External Monitor Brightness"));
    auto* row = new QHBoxLayout;
    row->addWidget(m_slider, 1);
    row->addWidget(m_value);
    layout->addLayout(row);
    layout->addWidget(m_explanation);

    connect(m_slider, &QSlider::valueChanged, this, [this](int steps) {
        m_dimming.model().setBrightnessFactor(steps * MonitorDimmingModel::kSliderStep);
    });
    connect(&dimming.model(), &MonitorDimmingModel::brightnessFactorChanged, this,
            &BrightnessControl::showFactor);
    connect(&dimming, &DimmingModule::compositingChanged, this, &BrightnessControl::showCompositing);
    showFactor(dimming.model().brightnessFactor());
    showCompositing(dimming.isCompositing());
}

void BrightnessControl::showFactor(double factor) {
    // A factor between two steps (from the command line) is shown at the nearest step, unchanged.
    const QSignalBlocker quiet(m_slider);
    m_slider->setValue(stepsOf(factor));
    m_value->setText(QString("%1 %").arg(std::lround(factor * 100)));
}

void BrightnessControl::showCompositing(bool compositing) {
    m_explanation->setVisible(!compositing);
}

} // namespace velmora
