#pragma once

#include <QString>
#include <xkbcommon/xkbcommon.h>

namespace velmora {

// What a key cap says for a keysym: the character it types, in capitals ("A", "1", "/"), or a name
// for the keys that type nothing visible ("←", "Return", "Page Up", "F5"). Empty for a keysym that
// is neither.
QString keyLabel(xkb_keysym_t keysym);

} // namespace velmora
