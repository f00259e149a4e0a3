#pragma once

namespace velmora {

// Every entry point of the models runs on the main thread; a call from elsewhere is a programming
// error that is reported (not silently tolerated) so it is found early.
bool isMainThread();
void assertMainThread(const char* where);

} // namespace velmora
