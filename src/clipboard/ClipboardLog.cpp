#include "clipboard/ClipboardLog.h"

Q_LOGGING_CATEGORY(lcClipboard, "velmora.clipboard", QtInfoMsg)
