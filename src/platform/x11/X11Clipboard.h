#pragma once

#include "platform/Pasteboard.h"
#include "platform/x11/X11Connection.h"

#include <memory>

namespace velmora {

class X11SelectionWorker;

// The CLIPBOARD selection as the pasteboard. The worker reads every new owner's content off the main
// thread; a change is counted here, on the main thread, once its content has arrived.
class X11Clipboard final : public Pasteboard {
    Q_OBJECT
public:
    // Takes a private connection for the worker.
    explicit X11Clipboard(X11Connection connection);
    ~X11Clipboard() override;

    qint64 changeCount() const override { return m_changeCount; }
    std::vector<PasteboardItem> items() const override { return m_items; }
    bool write(const std::vector<PasteboardItem>& items) override;
    void setKeepsContentAlive(bool on) override { m_keepAlive = on; }
    bool isWritePending() const override;

private:
    void contentArrived(std::vector<PasteboardItem> items);
    void ownerLeft();

    std::unique_ptr<X11SelectionWorker> m_worker;
    qint64 m_changeCount = 0;
    std::vector<PasteboardItem> m_items;
    bool m_keepAlive = true;
    std::uint64_t m_lastWrite = 0; // its number in the worker's line
};

} // namespace velmora
