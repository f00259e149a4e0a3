#include "windowmanager/WindowManagerLog.h"

Q_LOGGING_CATEGORY(lcWindowManager, "velmora.windowmanager", QtInfoMsg)
