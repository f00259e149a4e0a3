#pragma once

#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>
#include <vector>

namespace velmora {

// What one tray icon of an item shows.
struct StatusSlot {
    QIcon icon;
    QString toolTip;
};

// One item in the tray. The autosave name identifies the item to hosts that remember positions.
//
// An item may fill several slots: an X11 tray gives every icon one small square, so a row of gauges
// cannot be one wide icon as in a menu bar; each gauge is an icon of its own, in order.
class DynamicStatusItem : public QObject {
    Q_OBJECT
public:
    DynamicStatusItem(QString autosaveName, const QIcon& icon, QObject* parent = nullptr);
    ~DynamicStatusItem() override;

    // The first (or only) icon.
    QSystemTrayIcon& statusItem() { return m_item; }
    const QString& autosaveName() const { return m_autosaveName; }

    // Shows one icon per slot, in order, and hides the rest; none hides the item. Icons that stay are
    // updated in place, so the tray does not move them.
    void setSlots(const std::vector<StatusSlot>& icons);
    // How many icons are shown.
    int slotCount() const { return m_shown; }
    // The icon that shows slot `index` of the last setSlots(), wherever the tray put it.
    QSystemTrayIcon& slot(int index) { return icon(m_order[std::size_t(index)]); }

signals:
    // An icon was clicked (or otherwise activated): its slot and how.
    void activated(int slot, QSystemTrayIcon::ActivationReason reason);

private:
    QSystemTrayIcon& icon(int index) { return index == 0 ? m_item : *m_more[std::size_t(index - 1)]; }
    void follow(QSystemTrayIcon& icon, int index);
    void place();

    QString m_autosaveName;
    QSystemTrayIcon m_item;
    std::vector<std::unique_ptr<QSystemTrayIcon>> m_more;
    int m_shown = 0;
    std::vector<StatusSlot> m_slots;
    std::vector<int> m_order; // slot -> the icon showing it
    QTimer m_placeAgain;
    int m_placeTries = 0;
    bool m_changed = false; // new icons not yet given to the tray's icons
};

} // namespace velmora
