#include "platform/x11/X11RequestProbe.h"

namespace velmora {

std::uint64_t X11RequestProbe::mark() const {
    std::uint64_t sum = 0;
    for (auto* c : m_connections)
        sum += xcb_no_operation(c).sequence;
    return sum;
}

} // namespace velmora
