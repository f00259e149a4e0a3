#include "dimming/DimmingLog.h"

Q_LOGGING_CATEGORY(lcDimming, "velmora.dimming", QtInfoMsg)
