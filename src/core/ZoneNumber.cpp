#include "core/ZoneNumber.h"

#include <QRegularExpression>
#include <cmath>

namespace velmora {

namespace {

// Plain decimal notation only: no spaces inside, no locale separators, no "inf" or "nan", so that
// what the editor accepts is what the user can see.
std::optional<double> parseDecimal(const QString& text) {
    static const QRegularExpression decimal(QStringLiteral(R"(\A[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?\z)"));
    if (!decimal.match(text).hasMatch())
        return std::nullopt;
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

bool inRange(double value, bool allowZero, bool allowOne) {
    const bool aboveZero = value > 0 || (value == 0 && allowZero);
    const bool belowOne = value < 1 || (value == 1 && allowOne);
    return aboveZero && belowOne;
}

} // namespace

std::optional<double> parseZoneNumber(const QString& text, bool allowZero, bool allowOne, double fallback) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return fallback;

    // Each reading below replaces the one before when it applies; they cannot both succeed, as a
    // decimal holds neither "%" nor "/".
    std::optional<double> value = parseDecimal(trimmed);
    if (trimmed.endsWith(QLatin1Char('%'))) {
        if (const auto percent = parseDecimal(trimmed.chopped(1)))
            value = *percent / 100;
    }
    if (trimmed.contains(QLatin1Char('/'))) {
        const QStringList pieces = trimmed.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        if (pieces.size() == 2) {
            const auto numerator = parseDecimal(pieces[0]);
            const auto denominator = parseDecimal(pieces[1]);
            // A zero denominator gives an infinity (or NaN for 0/0), which the range test refuses.
            if (numerator && denominator)
                value = *numerator / *denominator;
        } else if (pieces.size() == 1) {
            // "/2" or "2/" is taken as the lone number, not as a fraction with a missing part.
            if (const auto single = parseDecimal(pieces[0]))
                value = single;
        }
    }

    if (!value || !inRange(*value, allowZero, allowOne))
        return std::nullopt;
    // "-0" reads as 0; keep the sign out of later arithmetic.
    return *value == 0 ? 0.0 : *value;
}

std::optional<double> parseZonePosition(const QString& text) {
    return parseZoneNumber(text, true, false, 0);
}

std::optional<double> parseZoneSize(const QString& text) {
    return parseZoneNumber(text, false, true, 1);
}

std::optional<UnitRect> parseZone(const WindowArea& area) {
    const auto x = parseZonePosition(area.x);
    const auto y = parseZonePosition(area.y);
    const auto w = parseZoneSize(area.w);
    const auto h = parseZoneSize(area.h);
    if (!x || !y || !w || !h)
        return std::nullopt;
    return UnitRect{*x, *y, *w, *h};
}

std::optional<double> parseZoneSizeOrPoints(const QString& text) {
    if (auto unit = parseZoneSize(text))
        return unit;
    bool ok = false;
    const double points = text.trimmed().toDouble(&ok);
    if (ok && std::isfinite(points) && points > 1)
        return points;
    return std::nullopt;
}

} // namespace velmora
