#pragma once

#include <QIcon>

namespace velmora {

// The program's icon, drawn in code so that it is crisp at every tray size and needs no image plugin.
QIcon appIcon();

} // namespace velmora
