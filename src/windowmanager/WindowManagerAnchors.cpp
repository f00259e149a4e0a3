#include "windowmanager/WindowManagerAnchors.h"

#include "core/ZoneNumber.h"
#include "windowmanager/WindowManagerLog.h"
#include "windowmanager/WindowSnapAreas.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace velmora {

namespace {

constexpr float startRadius = 0.15f;

// Room for two doubles in either notation and the separator.
using KeyBuffer = std::array<char, 64>;

char* writeDecimal(char* first, char* last, double value) {
    const double magnitude = std::abs(value);
    const bool fixed = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16) || !std::isfinite(value);
    const auto format = fixed ? std::chars_format::fixed : std::chars_format::scientific;
    char* end = std::to_chars(first, last, value, format).ptr;
    if (std::isfinite(value) && fixed && std::find(first, end, '.') == end && last - end >= 2) {
        *end++ = '.';
        *end++ = '0';
    }
    return end;
}

std::string_view writePair(KeyBuffer& buffer, double a, double b) {
    char* const last = buffer.data() + buffer.size();
    char* end = writeDecimal(buffer.data(), last, a);
    *end++ = ':';
    end = writeDecimal(end, last, b);
    return {buffer.data(), std::size_t(end - buffer.data())};
}

struct Touching {
    bool left, right, top, bottom;
};

Touching touching(const UnitRect& z) {
    return {z.x <= 0.01, z.x + z.w >= 0.99, z.y <= 0.01, z.y + z.h >= 0.99};
}

double distanceToCentre(const UnitRect& r) {
    const double dx = r.x + r.w / 2 - 0.5, dy = r.y + r.h / 2 - 0.5;
    return std::sqrt(dx * dx + dy * dy);
}

void sortAndShrink(std::vector<Anchor>& anchors) {
    if (anchors.size() < 2)
        return;
    std::stable_sort(anchors.begin(), anchors.end(), [](const Anchor& a, const Anchor& b) {
        const double da = distanceToCentre(a.rect), db = distanceToCentre(b.rect);
        if (da != db)
            return da < db;
        return a.rect.w * a.rect.h < b.rect.w * b.rect.h;
    });
    const float n = float(anchors.size());
    for (std::size_t i = 0; i < anchors.size(); ++i)
        anchors[i].radius = startRadius - float(i) * startRadius / n;
}

float distance(float ax, float ay, float bx, float by) {
    const float dx = ax - bx, dy = ay - by;
    return std::sqrt(dx * dx + dy * dy);
}

// An anchor in the middle of an edge stands for a strip along it: only the distance from the edge
// line counts, so the whole strip is reachable along the edge.
float distanceToAnchor(const Anchor& a, float px, float py) {
    const float ax = float(a.point.x), ay = float(a.point.y);
    if (ax == 0.5f || ay == 0.5f)
        return ax == 0.0f || ax == 1.0f ? std::abs(px - ax) : std::abs(py - ay);
    return distance(px, py, ax, ay);
}

} // namespace

std::string decimalText(double value) {
    std::array<char, 32> buffer;
    return {buffer.data(), writeDecimal(buffer.data(), buffer.data() + buffer.size(), value)};
}

std::string pairKey(double a, double b) {
    KeyBuffer buffer;
    return std::string(writePair(buffer, a, b));
}

std::optional<Point> anchorPoint(const UnitRect& z, double width, double height) {
    const auto [left, right, top, bottom] = touching(z);
    const double midX = z.x + z.w / 2, midY = z.y + z.h / 2;
    const int count = int(left) + int(right) + int(top) + int(bottom);
    if (count == 4)
        return width > height ? Point{0.5, 0} : Point{0, 0.5};
    if (count == 3) {
        if (!right)
            return Point{0, 0.5};
        if (!left)
            return Point{1, 0.5};
        if (!bottom)
            return Point{0.5, 0};
        return Point{0.5, 1};
    }
    if (left && right)
        return Point{0, midY};
    if (top && bottom)
        return Point{midX, 0};
    if (count == 2)
        return Point{left ? 0.0 : 1.0, top ? 0.0 : 1.0};
    if (left)
        return Point{0, midY};
    if (right)
        return Point{1, midY};
    if (top)
        return Point{midX, 0};
    if (bottom)
        return Point{midX, 1};
    return std::nullopt;
}

std::optional<Anchor> anchorOfZone(const WindowArea& area, double width, double height) {
    if (!isAvailableOn(area, screenKind(width, height)))
        return std::nullopt;
    const auto rect = parseZone(area);
    if (!rect) {
        qCInfo(lcWindowManager) << "The zone" << area.name
                                << "cannot be reached by dragging: its position or size does not read";
        return std::nullopt;
    }
    const auto point = anchorPoint(*rect, width, height);
    if (!point)
        return std::nullopt;
    return Anchor{*rect, *point, startRadius, area};
}

std::vector<AnchorGroup> anchorGroups(const std::vector<WindowArea>& areas, double width, double height) {
    std::vector<AnchorGroup> groups;
    for (const auto& area : areas) {
        auto anchor = anchorOfZone(area, width, height);
        if (!anchor)
            continue;
        std::string key = pairKey(anchor->point.x, anchor->point.y);
        const auto same =
            std::find_if(groups.begin(), groups.end(), [&key](const AnchorGroup& g) { return g.key == key; });
        if (same != groups.end())
            same->anchors.push_back(std::move(*anchor));
        else
            groups.push_back({std::move(key), anchor->point, {std::move(*anchor)}});
    }
    for (auto& group : groups)
        sortAndShrink(group.anchors);
    return groups;
}

const Anchor* hitTest(const std::vector<AnchorGroup>& groups, Point p) {
    const float px = float(p.x), py = float(p.y);
    const float inner = 0.15f, innerSize = 0.7f;
    if (px >= inner && px < inner + innerSize && py >= inner && py < inner + innerSize)
        return nullptr;

    const AnchorGroup* nearest = nullptr;
    float nearestDistance = 1.0f;
    for (const auto& group : groups) {
        const float d = distance(px, py, float(group.point.x), float(group.point.y));
        if (d < nearestDistance) {
            nearest = &group;
            nearestDistance = d;
        }
    }
    if (!nearest || nearest->anchors.empty())
        return nullptr;

    const Anchor* captured = nullptr;
    float smallest = 1.0f;
    for (const auto& anchor : nearest->anchors)
        if (distanceToAnchor(anchor, px, py) <= anchor.radius && anchor.radius < smallest) {
            captured = &anchor;
            smallest = anchor.radius;
        }
    if (captured)
        return captured;
    return nearestDistance < 0.4f ? &nearest->anchors.front() : nullptr;
}

Point unitPoint(Point pointer, const Rect& usable) {
    return {(pointer.x - usable.minX()) / usable.width, (pointer.y - usable.minY()) / usable.height};
}

SnapTarget snapTargetFor(const Anchor& anchor, const Rect& usable, double gap) {
    return {anchor.area, zoneFrame(anchor.rect, usable, gap)};
}

const CachedAnchorGroups& AnchorsCache::groups(double width, double height,
                                               const WindowManagerPreferences& prefs, qint64 now) {
    static const CachedAnchorGroups none;
    if (!(width > 0) || !(height > 0) || !std::isfinite(width) || !std::isfinite(height)) {
        qCWarning(lcWindowManager) << "No snap anchors for a usable area of" << width << "x" << height;
        return none;
    }
    KeyBuffer buffer;
    const std::string_view key = writePair(buffer, width, height);
    auto entry = m_groupsByScreenSize.find(key);
    if (entry != m_groupsByScreenSize.end() && entry->second.updated == prefs.updated)
        return entry->second;
    CachedAnchorGroups built{now, prefs.updated, anchorGroups(prefs.areas, width, height)};
    if (entry == m_groupsByScreenSize.end())
        entry = m_groupsByScreenSize.emplace(std::string(key), std::move(built)).first;
    else
        entry->second = std::move(built);
    return entry->second;
}

} // namespace velmora
