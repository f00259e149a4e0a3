#include "core/PreferenceChecks.h"

#include "core/ShortcutUse.h"
#include "core/ZoneNumber.h"

#include <QImage>
#include <QSet>
#include <QUrl>
#include <cmath>

namespace velmora {

namespace {

std::optional<QString> zoneProblem(const WindowArea& zone) {
    const QString name = QString("zone “%1”").arg(zone.name);
    if (zone.name.trimmed().isEmpty())
        return QString("a zone has no name");
    for (const auto& [field, text] : {std::pair{"x", zone.x}, std::pair{"y", zone.y}}) {
        if (!parseZonePosition(text))
            return QString(
                       "%1: %2 \"%3\" must be a position from 0 up to (not including) 1, written like 0.5, "
                       "50% or 1/2")
                .arg(name, field, text);
    }
    for (const auto& [field, text] : {std::pair{"w", zone.w}, std::pair{"h", zone.h}}) {
        if (!parseZoneSizeOrPoints(text))
            return QString("%1: %2 \"%3\" must be a size above 0 and up to 1 (or a size in points above 1), "
                           "written like 0.5, 50% or 1/2")
                .arg(name, field, text);
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> problemWith(const WindowManagerPreferences& r, const KeyboardBindings& bindings) {
    if (!std::isfinite(r.spacing) || r.spacing < 0 || r.spacing > PreferenceLimits::kMaxSpacing)
        return QString("spacing must be a number from 0 to %1").arg(PreferenceLimits::kMaxSpacing);
    QSet<QUuid> ids;
    for (const auto& zone : r.areas) {
        if (ids.contains(zone.id))
            return QString("two zones have the same id %1; each zone needs its own")
                .arg(zone.id.toString(QUuid::WithoutBraces).toUpper());
        ids.insert(zone.id);
        if (const auto problem = zoneProblem(zone))
            return problem;
    }
    return shortcutsProblem(bindings, r.areas);
}

std::optional<QString> problemWith(const KeyboardBindings& record,
                                   const WindowManagerPreferences& windowManager) {
    return shortcutsProblem(record, windowManager.areas);
}

std::optional<QString> problemWith(const ClipboardPreferences& r) {
    if (r.retention < PreferenceLimits::kMinRetention || r.retention > PreferenceLimits::kMaxRetention)
        return QString("retention must be a whole number of items from %1 to %2")
            .arg(PreferenceLimits::kMinRetention)
            .arg(PreferenceLimits::kMaxRetention);
    for (const auto& text : r.blacklistedAppURLs) {
        const QUrl url(text, QUrl::StrictMode);
        if (!url.isValid() || !url.isLocalFile())
            return QString(
                       "blacklistedAppURLs: \"%1\" is not a file URL (like file:///usr/share/applications/"
                       "app.desktop)")
                .arg(text);
    }
    return std::nullopt;
}

std::optional<QString> problemWith(const ThemePreferences& r) {
    if (!std::isfinite(r.windowSwitcherWidth) ||
        r.windowSwitcherWidth < PreferenceLimits::kMinSwitcherWidth ||
        r.windowSwitcherWidth > PreferenceLimits::kMaxSwitcherWidth)
        return QString("windowSwitcherWidth must be a number of points from %1 to %2")
            .arg(PreferenceLimits::kMinSwitcherWidth)
            .arg(PreferenceLimits::kMaxSwitcherWidth);
    return std::nullopt;
}

std::optional<QString> problemWithIcon(const std::optional<QByteArray>& image) {
    if (!image || image->isEmpty())
        return std::nullopt;
    if (QImage::fromData(*image).isNull())
        return QString("the icon is not an image that can be read (PNG, JPEG, SVG ...)");
    return std::nullopt;
}

} // namespace velmora
