#include "agent/DynamicStatusItem.h"

namespace velmora {

DynamicStatusItem::DynamicStatusItem(QString autosaveName, const QIcon& icon, QObject* parent)
    : QObject(parent), m_autosaveName(std::move(autosaveName)), m_item(icon) {
    m_item.setObjectName(m_autosaveName);
    m_item.setToolTip(m_autosaveName);
}

} // namespace velmora
