#include "clipboard/ClipboardIndexEntryStore.h"

namespace velmora {

ClipboardIndexEntryStore::Placed ClipboardIndexEntryStore::add(ClipboardIndexEntry entry) {
    if (!m_newest || m_newest->entries.size() == kEntriesPerChunk) {
        if (m_newest)
            ++m_newestSerial;
        m_newest = std::make_shared<Chunk>();
        m_newest->entries.reserve(kEntriesPerChunk);
    }
    m_newest->entries.push_back(std::move(entry));
    const auto place = static_cast<std::uint32_t>(m_newest->entries.size() - 1);
    return Placed{&m_newest->entries.back(), m_newestSerial * kEntriesPerChunk + place};
}

} // namespace velmora
