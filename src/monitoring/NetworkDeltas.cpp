#include "monitoring/NetworkDeltas.h"

#include <QStringList>
#include <algorithm>

namespace velmora {

namespace {

qint64 countOrZero(const QString& field) {
    bool ok = false;
    const qint64 value = field.trimmed().toLongLong(&ok);
    return ok ? value : 0;
}

// now - before, 0 when the counter went back (or the difference does not fit: a corrupt count).
qint64 growth(qint64 now, qint64 before) {
    qint64 difference = 0;
    if (__builtin_sub_overflow(now, before, &difference))
        return 0;
    return std::max<qint64>(0, difference);
}

} // namespace

std::map<qint64, NetworkTotals> parseNettopTotals(const QString& output) {
    std::map<qint64, NetworkTotals> totals;
    const QStringList lines = output.split('\n');
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QStringList fields = lines[i].split(',');
        if (fields.size() < 3)
            continue;
        // "name.with.dots.77": the pid is the last piece, whatever the name holds.
        const QStringList pieces = fields[0].split('.', Qt::SkipEmptyParts);
        if (pieces.size() < 2)
            continue;
        bool ok = false;
        const qint64 pid = pieces.last().toLongLong(&ok);
        if (!ok)
            continue;
        totals[pid] = {countOrZero(fields[1]), countOrZero(fields[2])};
    }
    return totals;
}

std::map<qint64, NetworkDelta> NetworkDeltas::update(const std::map<qint64, NetworkTotals>& totals) {
    std::map<qint64, NetworkDelta> deltas;
    for (const auto& [pid, now] : totals) {
        const auto before = m_previous.find(pid);
        if (before == m_previous.end()) {
            deltas[pid] = {};
            continue;
        }
        deltas[pid] = {growth(now.bytesIn, before->second.bytesIn),
                       growth(now.bytesOut, before->second.bytesOut)};
    }
    m_previous = totals;
    return deltas;
}

} // namespace velmora
