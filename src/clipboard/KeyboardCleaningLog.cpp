#include "clipboard/KeyboardCleaningLog.h"

Q_LOGGING_CATEGORY(lcKeyboardCleaning, "velmora.keyboardcleaning", QtInfoMsg)
