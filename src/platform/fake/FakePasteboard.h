#pragma once

#include "platform/Pasteboard.h"

namespace velmora {

// A clipboard a test fills; every set or write is one change.
class FakePasteboard final : public Pasteboard {
public:
    std::vector<std::vector<PasteboardItem>> written;
    bool keepsContentAlive = true;

    qint64 changeCount() const override { return m_count; }
    std::vector<PasteboardItem> items() const override { return m_items; }
    bool write(const std::vector<PasteboardItem>& items) override {
        written.push_back(items);
        set(items);
        return true;
    }
    void setKeepsContentAlive(bool on) override { keepsContentAlive = on; }

    // Another program copied these items.
    void set(std::vector<PasteboardItem> items) {
        m_items = std::move(items);
        ++m_count;
        emit changed();
    }

private:
    qint64 m_count = 0;
    std::vector<PasteboardItem> m_items;
};

} // namespace velmora
