#pragma once

#include "core/MenubarSystemMonitoringPreferences.h"
#include "core/SystemSnapshot.h"

#include <QIcon>
#include <QPixmap>
#include <QString>

namespace velmora {

// One menu-bar gauge drawn as a square tray icon: a short label ("CPU") over the value ("31%"), and
// for CPU and memory a thin bar of the same share along the bottom. The value is the compact form of
// the gauge's text; the full text is in the tooltip.
class MBSMWidgetView {
public:
    static constexpr int kIconSize = 22; // the square an X11 tray gives an icon

    MBSMWidgetView(const MonitoringWidget& widget, const SystemSnapshot* newest, bool darkPanel);

    QString text() const { return m_text; }
    QString compactText() const { return m_compactText; }
    QString label() const;
    QString toolTip() const;
    // One pixmap of size × size logical pixels at that device pixel ratio.
    QPixmap pixmap(int size, qreal devicePixelRatio) const;
    // The icon at 1x and 2x.
    QIcon icon() const;

private:
    MonitoringWidget m_widget;
    QString m_text;
    QString m_compactText;
    // The share the bar shows, in [0, 1]; absent for the network and before the first sample.
    std::optional<double> m_share;
    bool m_darkPanel;
};

} // namespace velmora
