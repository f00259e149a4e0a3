#pragma once

#include "core/JsonCodec.h"

namespace velmora {

struct Platform;

// The window and screen models the agent keeps in memory next to a fresh listing from the server,
// and whether they agree: what the desktop tests and support look at after the desktop changed.
Json modelCheck(const Platform& platform);

} // namespace velmora
