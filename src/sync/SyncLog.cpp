#include "sync/SyncLog.h"

Q_LOGGING_CATEGORY(lcSync, "velmora.sync", QtInfoMsg)
