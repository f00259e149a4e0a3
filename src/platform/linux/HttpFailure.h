#pragma once

#include <QString>

class QNetworkReply;

namespace velmora {

// Why an HTTP exchange failed, in plain words: a time-out, a redirect loop, TLS, nobody listening,
// or the server's status ("the server answered 500 Internal Server Error").
QString httpFailureText(const QNetworkReply& reply, bool timedOut, int timeoutMs, int maxRedirects);

} // namespace velmora
