#pragma once

namespace velmora {

// Hands memory the program has freed back to the system, so that a burst of work (reading the whole
// clipboard history once) does not stay in the agent's footprint for the rest of its life.
void releaseFreedMemory();

} // namespace velmora
