#include "core/MainThread.h"

#include <QCoreApplication>
#include <QThread>
#include <QtGlobal>

namespace velmora {

bool isMainThread() {
    auto* app = QCoreApplication::instance();
    return !app || QThread::currentThread() == app->thread();
}

void assertMainThread(const char* where) {
    if (!isMainThread())
        qCritical("%s: called off the main thread (unexpected executor)", where);
    Q_ASSERT(isMainThread());
}

} // namespace velmora
