#include "windowmanager/WindowSnapAreas.h"

#include "windowmanager/WindowPlacement.h"

#include <algorithm>
#include <cmath>

namespace velmora {

ScreenKind screenKind(double width, double height) {
    const double r = width / height;
    if (r < 1.0)
        return ScreenKind::vertical;
    if (r < 16.0 / 9.0)
        return ScreenKind::laptop;
    if (r < 21.0 / 9.0)
        return ScreenKind::wide;
    if (r < 32.0 / 9.0)
        return ScreenKind::ultrawide;
    return ScreenKind::superUltrawide;
}

bool isAvailableOn(const WindowArea& area, ScreenKind kind) {
    switch (kind) {
    case ScreenKind::vertical:
        return area.availableOnVerticalScreen;
    case ScreenKind::laptop:
        return area.availableOnMacbookScreen;
    case ScreenKind::wide:
        return area.availableOnWideScreen;
    case ScreenKind::ultrawide:
        return area.availableOnUltrawideScreen;
    case ScreenKind::superUltrawide:
        return area.availableOnSuperUltrawideScreen;
    }
    return false;
}

double snapGap(const Rect& usable, double spacing) {
    return std::min(usable.width, usable.height) * spacing * 0.017;
}

std::vector<WindowArea> zonesForChord(const std::vector<WindowArea>& areas, const KeyboardShortcut& chord) {
    std::vector<WindowArea> zones;
    for (const auto& a : areas)
        if (a.keyboardShortcut && a.keyboardShortcut->matches(chord))
            zones.push_back(a);
    return zones;
}

namespace {} // namespace

std::optional<UnitRect> zoneRect(const WindowArea& area) {
    const auto x = parseZonePosition(area.x), y = parseZonePosition(area.y);
    const auto w = parseZoneSizeOrPoints(area.w), h = parseZoneSizeOrPoints(area.h);
    if (!x || !y || !w || !h)
        return std::nullopt;
    return UnitRect{*x, *y, *w, *h};
}

std::optional<ZoneChoice> chooseZone(const std::vector<WindowArea>& zones, const Rect& U,
                                     const std::optional<Rect>& W, double gap) {
    if (U.isEmpty())
        return std::nullopt;
    const ScreenKind kind = screenKind(U.width, U.height);
    ZoneChoice choice;
    for (const auto& zone : zones)
        if (isAvailableOn(zone, kind))
            if (auto rect = zoneRect(zone))
                choice.candidates.push_back(*rect);
    if (choice.candidates.empty())
        return std::nullopt;
    choice.index = cycleIndex(choice.candidates, U, W, gap);
    return choice;
}

int cycleIndex(const std::vector<UnitRect>& candidates, const Rect& U, const std::optional<Rect>& W,
               double gap) {
    if (!W || U.isEmpty())
        return 0;
    const auto unit = [&U](const Rect& r) {
        return UnitRect{(r.minX() - U.minX()) / U.width, (r.minY() - U.minY()) / U.height, r.width / U.width,
                        r.height / U.height};
    };
    const auto near = [](const UnitRect& a, const UnitRect& b) {
        const auto close = [](double p, double q) { return std::abs(p - q) < 0.01; };
        return close(a.x, b.x) && close(a.y, b.y) && close(a.x + a.w, b.x + b.w) &&
               close(a.y + a.h, b.y + b.h);
    };
    const UnitRect current = unit(*W);
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const auto& c = candidates[i];
        if (near(c, current) || near(unit(placementTarget(zoneFrame(c, U, gap), U)), current))
            return int((i + 1) % candidates.size());
    }
    return 0;
}

Rect zoneFrame(const UnitRect& z, const Rect& U, double g) {
    if (z.w > 1 || z.h > 1) {
        // A size in points, centred like the centre action.
        const double width = z.w > 1 ? z.w : z.w * U.width, height = z.h > 1 ? z.h : z.h * U.height;
        return {U.minX() + (U.width - width) / 2, U.minY() + (U.height - height) / 2, width, height};
    }
    const double gx = g / U.width, gy = g / U.height;
    const double x = z.x == 0 ? gx : z.x + 0.5 * gx;
    const double y = z.y == 0 ? gy : z.y + 0.5 * gy;
    const double fx = 1.0 + (z.x == 0 ? 0.5 : 0) + (z.x + z.w == 1 ? 0.5 : 0);
    const double fy = 1.0 + (z.y == 0 ? 0.5 : 0) + (z.y + z.h == 1 ? 0.5 : 0);
    const double w = z.w - gx * fx, h = z.h - gy * fy;
    return {U.minX() + x * U.width, U.minY() + y * U.height, w * U.width, h * U.height};
}

} // namespace velmora
