#include "agent/MenubarPopover.h"

#include "agent/DropDownPanelGeometry.h"
#include "core/MainThread.h"
#include "platform/Screens.h"
#include "ui/AppIcon.h"
#include "ui/monitoring/MenubarSystemMonitoringView.h"

#include <QGuiApplication>
#include <QMenu>
#include <QPalette>

namespace velmora {

namespace {

constexpr int kFirstToneCheckMs = 1500;
constexpr int kToneCheckMs = 60000;

} // namespace

MenubarPopover::MenubarPopover(const Screens& screens, const KeyboardLayout& layout,
                               StandardWindowController::ContentFactory panelContent, QObject* parent)
    : QObject(parent), m_screens(screens),
      m_windowController(layout, QString("Velmora"), StandardWindowPreset::dropDownPanel(),
                         std::move(panelContent), this) {}

void MenubarPopover::setUp(QMenu* contextMenu) {
    assertMainThread("MenubarPopover::setUp");
    m_look.darkPanel = QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
    m_mainStatusItem = std::make_unique<DynamicStatusItem>("Velmora", statusIcon(m_look));
    connect(&m_mainStatusItem->statusItem(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                // Two quick clicks arrive as Trigger then DoubleClick: each click toggles.
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    toggle();
            });
    if (contextMenu)
        m_mainStatusItem->statusItem().setContextMenu(contextMenu);
    m_mainStatusItem->statusItem().show();

    m_systemMonitoringItem = std::make_unique<DynamicStatusItem>("Velmora:SystemMonitoring", appIcon());

    // Soon after the tray embeds the icon, whenever the panel opens, and once a minute: the grab of
    // the icon's few pixels costs X round trips, and an idle agent should hardly wake.
    connect(&m_toneCheck, &QTimer::timeout, this, &MenubarPopover::followPanelTone);
    QTimer::singleShot(kFirstToneCheckMs, this, &MenubarPopover::followPanelTone);
    m_toneCheck.start(kToneCheckMs);
}

void MenubarPopover::showSystemMonitoring(MenubarSystemMonitoringView& view, std::function<void()> onClick) {
    if (!m_systemMonitoringItem)
        return;
    m_gauges = &view;
    view.setDarkPanel(m_look.darkPanel);
    connect(&view, &MenubarSystemMonitoringView::gaugesChanged, this, &MenubarPopover::showGauges);
    connect(m_systemMonitoringItem.get(), &DynamicStatusItem::activated, this,
            [onClick = std::move(onClick)](int, QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    onClick();
            });
    showGauges();
}

void MenubarPopover::showGauges() {
    std::vector<StatusSlot> icons;
    for (const MonitoringGauge& gauge : m_gauges->gauges())
        icons.push_back({gauge.icon, gauge.toolTip});
    m_systemMonitoringItem->setSlots(icons);
}

void MenubarPopover::showState(std::optional<StatusGlyph> state, const QString& tooltip) {
    if (!m_mainStatusItem)
        return;
    m_mainStatusItem->statusItem().setToolTip(tooltip);
    StatusIconLook look = m_look;
    look.state = state;
    applyLook(look);
}

void MenubarPopover::followPanelTone() {
    if (!m_mainStatusItem)
        return;
    if (const auto dark = panelIsDarkAt(m_mainStatusItem->statusItem().geometry())) {
        StatusIconLook look = m_look;
        look.darkPanel = *dark;
        applyLook(look);
    }
}

void MenubarPopover::applyLook(const StatusIconLook& look) {
    if (look == m_look)
        return;
    m_look = look;
    m_mainStatusItem->statusItem().setIcon(statusIcon(m_look));
    if (m_gauges)
        m_gauges->setDarkPanel(m_look.darkPanel);
}

void MenubarPopover::toggle() {
    followPanelTone();
    if (m_windowController.isShown())
        m_windowController.close();
    else
        show();
}

void MenubarPopover::show() {
    assertMainThread("MenubarPopover::show");
    if (!m_mainStatusItem)
        return;
    const QRect iconGeometry = m_mainStatusItem->statusItem().geometry();
    if (iconGeometry.isEmpty())
        return; // not embedded in a tray: there is nothing to drop down from
    const auto screens = m_screens.screens();
    const auto primary = primaryScreen(screens);
    if (!primary)
        return;
    const double H = primary->frame.height;
    const Rect F = Rect::fromQRect(iconGeometry).flipped(H);

    // The current screen is the one holding the icon, so the panel drops down right under it.
    auto screen = screenAt(screens, {F.midX(), F.midY()});
    if (!screen)
        screen = m_screens.mainScreen();
    if (!screen)
        return;
    const Rect frame =
        constrainedToScreen(dropDownPanelFrame(F, screen->visibleFrame, screen->frame), screen->frame);

    m_windowController.show(frame.flipped(H));
}

} // namespace velmora
