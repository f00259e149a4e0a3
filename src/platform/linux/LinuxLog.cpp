#include "platform/linux/LinuxLog.h"

Q_LOGGING_CATEGORY(lcLinux, "velmora.linux", QtInfoMsg)
