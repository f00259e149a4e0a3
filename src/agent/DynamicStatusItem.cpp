#include "agent/DynamicStatusItem.h"

#include <algorithm>
#include <numeric>

namespace velmora {

namespace {

constexpr int kPlaceAgainMs = 300;
constexpr int kPlaceTries = 10;

} // namespace

DynamicStatusItem::DynamicStatusItem(QString autosaveName, const QIcon& icon, QObject* parent)
    : QObject(parent), m_autosaveName(std::move(autosaveName)), m_item(icon) {
    m_item.setObjectName(m_autosaveName);
    m_item.setToolTip(m_autosaveName);
    follow(m_item, 0);
    m_placeAgain.setSingleShot(true);
    m_placeAgain.setInterval(kPlaceAgainMs);
    connect(&m_placeAgain, &QTimer::timeout, this, &DynamicStatusItem::place);
}

DynamicStatusItem::~DynamicStatusItem() = default;

void DynamicStatusItem::follow(QSystemTrayIcon& trayIcon, int index) {
    connect(&trayIcon, &QSystemTrayIcon::activated, this,
            [this, index](QSystemTrayIcon::ActivationReason reason) {
                const auto at = std::find(m_order.begin(), m_order.end(), index);
                if (at != m_order.end())
                    emit activated(int(at - m_order.begin()), reason);
            });
}

void DynamicStatusItem::setSlots(const std::vector<StatusSlot>& icons) {
    const int wanted = int(icons.size());
    while (int(m_more.size()) + 1 < wanted) {
        auto more = std::make_unique<QSystemTrayIcon>();
        more->setObjectName(QString("%1:%2").arg(m_autosaveName).arg(m_more.size() + 1));
        follow(*more, int(m_more.size()) + 1);
        m_more.push_back(std::move(more));
    }
    // Shown front to back, hidden back to front, so that a tray that keeps the docking order keeps
    // the slots' order too.
    for (int i = m_shown; i < wanted; ++i) {
        icon(i).setIcon(icons[std::size_t(i)].icon);
        icon(i).show();
    }
    for (int i = m_shown - 1; i >= wanted; --i)
        icon(i).hide();
    m_shown = wanted;
    // Icons no longer shown are given back, but the first: it is the item itself.
    if (int(m_more.size()) + 1 > std::max(wanted, 1))
        m_more.resize(std::size_t(std::max(wanted, 1) - 1));
    m_slots = icons;
    m_placeTries = 0;
    m_changed = true;
    place();
}

// Trays differ in where they dock a new icon (a right-aligned panel often puts it on the left), so
// the slots are given to the icons in the order the tray shows them, left to right (top to bottom in
// a vertical tray). Docking takes a moment and an icon has a place before it is docked, so the order
// is looked at again a few times after every change.
void DynamicStatusItem::place() {
    std::vector<int> order(static_cast<std::size_t>(m_shown));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
        const QRect ga = icon(a).geometry(), gb = icon(b).geometry();
        return ga.x() != gb.x() ? ga.x() < gb.x() : ga.y() < gb.y();
    });
    if (m_shown > 1 && ++m_placeTries < kPlaceTries)
        m_placeAgain.start();
    if (order == m_order && !m_changed)
        return;
    m_order = order;
    m_changed = false;
    for (int k = 0; k < m_shown; ++k) {
        QSystemTrayIcon& shown = icon(m_order[std::size_t(k)]);
        shown.setIcon(m_slots[std::size_t(k)].icon);
        shown.setToolTip(m_slots[std::size_t(k)].toolTip);
    }
}

} // namespace velmora
