#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace velmora {

// Counts the requests the main thread sends on its X connections between two marks: each mark sends
// one no-op request per connection (no reply, no round trip) and reads its sequence number.
class X11RequestProbe {
public:
    void add(xcb_connection_t* connection) { m_connections.push_back(connection); }
    std::uint64_t mark() const;
    // The requests sent between two marks, the marks' own no-ops left out.
    std::uint64_t between(std::uint64_t first, std::uint64_t second) const {
        return second - first - m_connections.size();
    }

private:
    std::vector<xcb_connection_t*> m_connections;
};

} // namespace velmora
