#pragma once

#include "agent/DynamicStatusItem.h"
#include "app/StandardWindowController.h"
#include "ui/StatusIcon.h"

#include <QTimer>

#include <functional>

#include <memory>

class QMenu;

namespace velmora {

class MenubarSystemMonitoringView;
class Screens;

// The two tray icons and the drop-down panel the main icon opens.
class MenubarPopover : public QObject {
    Q_OBJECT
public:
    MenubarPopover(const Screens& screens, const KeyboardLayout& layout,
                   StandardWindowController::ContentFactory panelContent, QObject* parent = nullptr);

    // Creates both icons; the monitoring one stays hidden until it has widgets to show.
    void setUp(QMenu* contextMenu);
    void toggle();
    // The icon for a state the user must see (or none), with the tooltip that names it.
    void showState(std::optional<StatusGlyph> state, const QString& tooltip);
    const StatusIconLook& look() const { return m_look; }
    void show();

    // The monitoring item shows the view's gauges, one icon each, and runs onClick when one is clicked.
    void showSystemMonitoring(MenubarSystemMonitoringView& view, std::function<void()> onClick);

    DynamicStatusItem* mainStatusItem() const { return m_mainStatusItem.get(); }
    DynamicStatusItem* systemMonitoringItem() const { return m_systemMonitoringItem.get(); }
    StandardWindowController& windowController() { return m_windowController; }

private:
    const Screens& m_screens;
    std::unique_ptr<DynamicStatusItem> m_mainStatusItem;
    std::unique_ptr<DynamicStatusItem> m_systemMonitoringItem;
    StandardWindowController m_windowController;
    StatusIconLook m_look;
    MenubarSystemMonitoringView* m_gauges = nullptr;
    // The panel behind the icon is looked at again now and then: themes and trays change.
    QTimer m_toneCheck;

    void followPanelTone();
    void applyLook(const StatusIconLook& look);
    void showGauges();
};

} // namespace velmora
