#include "power/PowerLog.h"

Q_LOGGING_CATEGORY(lcPower, "velmora.power", QtInfoMsg)
