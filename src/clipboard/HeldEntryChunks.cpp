#include "clipboard/HeldEntryChunks.h"

#include <algorithm>

namespace velmora {

void HeldEntryChunks::holdNew(std::uint32_t serial, std::shared_ptr<const Chunk> chunk) {
    if (m_held.empty()) {
        m_first = serial;
        m_held.emplace_back();
    } else if (serial < m_first) {
        m_held.insert(m_held.begin(), m_first - serial, Held{});
        m_first = serial;
    } else if (serial - m_first >= m_held.size()) {
        m_held.resize(serial - m_first + 1);
    }
    m_held[serial - m_first] = Held{std::move(chunk), 1};
}

void HeldEntryChunks::release(std::uint32_t serial) {
    Held& held = m_held[serial - m_first];
    if (--held.live == 0)
        held.chunk.reset();
    const auto firstHeld =
        std::find_if(m_held.begin(), m_held.end(), [](const Held& held) { return held.chunk != nullptr; });
    m_first += static_cast<std::uint32_t>(firstHeld - m_held.begin());
    m_held.erase(m_held.begin(), firstHeld);
    while (!m_held.empty() && !m_held.back().chunk)
        m_held.pop_back();
    if (m_held.empty())
        m_first = 0;
}

std::size_t HeldEntryChunks::count() const {
    return static_cast<std::size_t>(
        std::count_if(m_held.begin(), m_held.end(), [](const Held& held) { return held.chunk != nullptr; }));
}

void HeldEntryChunks::clear() {
    m_held.clear();
    m_first = 0;
}

} // namespace velmora
