#pragma once

#include "clipboard/ClipboardIndexEntryStore.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace velmora {

// The chunks of entries one search index keeps alive, each with how many of the index's entries
// lie in it: a chunk is let go with the last of them.
class HeldEntryChunks {
public:
    using Chunk = ClipboardIndexEntryStore::Chunk;

    // One more listed entry in chunk `serial`; `chunk()` gives the chunk when it is not held yet,
    // so that holding an entry of a chunk already held costs no reference count.
    template <typename ChunkSource> void hold(std::uint32_t serial, ChunkSource&& chunk) {
        if (serial >= m_first && serial - m_first < m_held.size()) {
            Held& held = m_held[serial - m_first];
            if (held.chunk) {
                ++held.live;
                return;
            }
        }
        holdNew(serial, chunk());
    }
    // One listed entry fewer in chunk `serial`, which must be held.
    void release(std::uint32_t serial);
    // Chunk `serial`, which must be held.
    const std::shared_ptr<const Chunk>& at(std::uint32_t serial) const {
        return m_held[serial - m_first].chunk;
    }
    // Entry `number`, whose chunk must be held.
    const ClipboardIndexEntry& entry(std::uint32_t number) const {
        return at(ClipboardIndexEntryStore::chunkOf(number))
            ->entries[number % ClipboardIndexEntryStore::kEntriesPerChunk];
    }
    std::size_t count() const;
    void clear();

private:
    struct Held {
        std::shared_ptr<const Chunk> chunk; // null in a gap between chunks held
        std::uint32_t live = 0;
    };

    void holdNew(std::uint32_t serial, std::shared_ptr<const Chunk> chunk);

    // By serial, from m_first on. A vector, not a deque: finding a chunk is then no division, and
    // the few hundred chunks move only when the oldest goes.
    std::vector<Held> m_held;
    std::uint32_t m_first = 0;
};

} // namespace velmora
