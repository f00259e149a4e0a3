#pragma once

#include "clipboard/ClipboardIndexEntry.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace velmora {

// Where a family of search indexes (a base index and every index refined or copied from it) keeps
// its entries. Entries are written into chunks and never moved or changed afterwards, so indexes
// point at them directly and share them without copying; each index keeps alive the chunks that
// hold its entries (HeldEntryChunks), and a chunk goes once no index lists an entry of it.
//
// Adding writes into the newest chunk, which the whole family shares: a family is for use from
// one thread at a time.
class ClipboardIndexEntryStore {
public:
    // Entries are numbered chunk serial * kEntriesPerChunk + place in the chunk. Small enough
    // that a few entries kept long (while those around them are deleted) hold little else alive,
    // large enough that an index holds few chunks.
    static constexpr std::uint32_t kEntriesPerChunk = 128;

    struct Chunk {
        std::vector<ClipboardIndexEntry> entries; // capacity fixed when made, so entries never move
    };
    struct Placed {
        const ClipboardIndexEntry* entry;
        std::uint32_t number; // a later entry never has a lower one
    };
    static std::uint32_t chunkOf(std::uint32_t number) { return number / kEntriesPerChunk; }

    Placed add(ClipboardIndexEntry entry);
    // The chunk the last add wrote into.
    std::shared_ptr<const Chunk> newestChunk() const { return m_newest; }

private:
    std::shared_ptr<Chunk> m_newest;
    std::uint32_t m_newestSerial = 0;
};

} // namespace velmora
