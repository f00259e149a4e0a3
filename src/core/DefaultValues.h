#pragma once

#include "core/WindowArea.h"

#include <vector>

namespace velmora {

// The zones a new user starts with, in order, each with a fresh id.
std::vector<WindowArea> factoryZones();

// The zone editor's "Choose a Template" list: the factory zones followed by the thirds, fresh ids.
std::vector<WindowArea> zoneTemplates();

} // namespace velmora
