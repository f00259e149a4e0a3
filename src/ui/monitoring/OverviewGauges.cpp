#include "ui/monitoring/OverviewGauges.h"

#include "monitoring/SystemMonitoringModule.h"

#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>

#include <cmath>

namespace velmora {

namespace {

// A fraction outside [0, 1] or not a number reads as the nearest end, never as garbage.
int percentOf(float fraction) {
    if (!std::isfinite(fraction))
        return 0;
    return int(std::lround(std::clamp(double(fraction), 0.0, 1.0) * 100.0));
}

} // namespace

OverviewGauges::OverviewGauges(std::function<SystemOverview()> read, QWidget* parent)
    : QWidget(parent), m_read(std::move(read)) {
    setObjectName("OverviewGauges");
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(10, 2, 4, 6);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(4);
    const char* titles[] = {"CPU load", "Memory", "Storage"};
    for (int i = 0; i < 3; ++i) {
        grid->addWidget(new QLabel(titles[i]), i, 0);
        m_bars[i] = new QProgressBar();
        m_bars[i]->setRange(0, 100);
        m_bars[i]->setTextVisible(false);
        m_bars[i]->setFixedHeight(8);
        // The panel is narrow; the bars take what the labels leave.
        m_bars[i]->setMinimumWidth(40);
        m_bars[i]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        m_bars[i]->setAccessibleName(titles[i]);
        grid->addWidget(m_bars[i], i, 1);
        m_values[i] = new QLabel();
        m_values[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_values[i]->setMinimumWidth(fontMetrics().horizontalAdvance("100%") + 2);
        grid->addWidget(m_values[i], i, 2);
    }
    grid->setColumnStretch(1, 1);
    refresh();
}

void OverviewGauges::refresh() {
    const SystemOverview overview = m_read();
    const float fractions[] = {overview.cpuLoad, overview.memoryInUse, overview.storageInUse};
    for (int i = 0; i < 3; ++i) {
        const int percent = percentOf(fractions[i]);
        m_bars[i]->setValue(percent);
        m_values[i]->setText(QString::number(percent) + "%");
    }
}

int OverviewGauges::percent(int gauge) const {
    return m_bars[gauge]->value();
}

} // namespace velmora
