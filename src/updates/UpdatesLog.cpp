#include "updates/UpdatesLog.h"

Q_LOGGING_CATEGORY(lcUpdates, "velmora.updates", QtInfoMsg)
