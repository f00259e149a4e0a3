#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QProgressBar;

namespace velmora {

struct SystemOverview;

// The machine at a glance for the drop-down panel: CPU load, memory and storage in use, each a
// labelled bar with its percentage.
class OverviewGauges : public QWidget {
    Q_OBJECT
public:
    explicit OverviewGauges(std::function<SystemOverview()> read, QWidget* parent = nullptr);

    // Reads the overview again (the monitor announces each new one).
    void refresh();
    // The bar's value in percent: 0 CPU, 1 memory, 2 storage.
    int percent(int gauge) const;

private:
    std::function<SystemOverview()> m_read;
    QProgressBar* m_bars[3] = {};
    QLabel* m_values[3] = {};
};

} // namespace velmora
