#include "platform/x11/X11Clipboard.h"

#include "platform/x11/X11Log.h"
#include "platform/x11/X11SelectionWorker.h"

#include <QMetaObject>

namespace velmora {

X11Clipboard::X11Clipboard(X11Connection connection) {
    m_worker = std::make_unique<X11SelectionWorker>(
        std::move(connection),
        X11SelectionWorker::Callbacks{
            [this](std::vector<PasteboardItem> items) {
                QMetaObject::invokeMethod(
                    this, [this, items = std::move(items)]() mutable { contentArrived(std::move(items)); },
                    Qt::QueuedConnection);
            },
            [this] {
                QMetaObject::invokeMethod(
                    this, [this] { ownerLeft(); }, Qt::QueuedConnection);
            }});
}

// The worker is joined first, so no callback reaches a half-destroyed object.
X11Clipboard::~X11Clipboard() {
    m_worker.reset();
}

void X11Clipboard::contentArrived(std::vector<PasteboardItem> items) {
    m_items = std::move(items);
    ++m_changeCount;
    emit changed();
}

bool X11Clipboard::write(const std::vector<PasteboardItem>& items) {
    m_items = items;
    ++m_changeCount;
    m_lastWrite = m_worker->own(items);
    emit changed();
    return true;
}

bool X11Clipboard::isWritePending() const {
    return m_worker->ownsDone() < m_lastWrite;
}

void X11Clipboard::ownerLeft() {
    if (!m_keepAlive || !contentToKeep)
        return;
    auto items = contentToKeep();
    if (items.empty())
        return;
    qCInfo(lcX11) << "The clipboard's owner went away; Velmora keeps its newest entry on the clipboard.";
    // Not counted as a change: the content is the one already recorded.
    m_items = items;
    m_worker->own(std::move(items));
}

} // namespace velmora
