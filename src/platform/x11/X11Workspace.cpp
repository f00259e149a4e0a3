#include "platform/x11/X11Workspace.h"

#include "platform/x11/X11EventHub.h"

#include <QIcon>
#include <cstring>

namespace velmora {

namespace {

// More windows than anyone keeps open; past it the cache starts again rather than growing forever.
constexpr qsizetype kMaxCachedIcons = 256;
// _NET_WM_ICON holds every size a program offers; 256 x 256 is the largest worth reading.
constexpr std::uint32_t kMaxIconLongs = 2 + 256 * 256 * 4;

} // namespace

X11Workspace::X11Workspace(X11Connection connection, X11EventHub& hub) : m_x(std::move(connection)) {
    const xcb_atom_t iconAtom = m_x.atom("_NET_WM_ICON");
    connect(&hub, &X11EventHub::windowPropertyChanged, this, [this, iconAtom](xcb_window_t w, xcb_atom_t p) {
        if (p == iconAtom)
            m_icons.remove(w);
    });
}

QImage X11Workspace::applicationIcon(quint32 windowId, const QString& appName, int size) {
    if (const auto it = m_icons.constFind(windowId); it != m_icons.constEnd())
        return *it;
    QImage icon = publishedIcon(windowId, size);
    if (icon.isNull() && !appName.isEmpty()) {
        const QIcon themed = QIcon::fromTheme(appName.toLower());
        if (!themed.isNull())
            icon = themed.pixmap(size, size).toImage();
    }
    if (m_icons.size() >= kMaxCachedIcons)
        m_icons.clear();
    m_icons.insert(windowId, icon);
    return icon;
}

// The property is a list of (width, height, width * height ARGB pixels) entries.
QImage X11Workspace::publishedIcon(quint32 windowId, int size) const {
    if (m_x.hasError())
        return {};
    const auto cookie = xcb_get_property(m_x.connection(), 0, windowId, m_x.atom("_NET_WM_ICON"),
                                         XCB_ATOM_CARDINAL, 0, kMaxIconLongs);
    const auto reply = m_x.reply(cookie);
    if (!reply || reply->format != 32)
        return {};
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    const std::size_t count = std::size_t(xcb_get_property_value_length(reply.get())) / 4;
    const std::uint32_t* best = nullptr;
    std::uint32_t bestWidth = 0, bestHeight = 0;
    for (std::size_t i = 0; i + 2 <= count;) {
        const std::uint32_t w = data[i], h = data[i + 1];
        if (w == 0 || h == 0 || w > 1024 || h > 1024 || std::size_t(w) * h > count - i - 2)
            break; // a malformed entry ends the list
        const bool better =
            !best ||
            (bestWidth < std::uint32_t(size) ? w > bestWidth : w >= std::uint32_t(size) && w < bestWidth);
        if (better) {
            best = data + i + 2;
            bestWidth = w;
            bestHeight = h;
        }
        i += 2 + std::size_t(w) * h;
    }
    if (!best)
        return {};
    QImage image(int(bestWidth), int(bestHeight), QImage::Format_ARGB32);
    for (std::uint32_t y = 0; y < bestHeight; ++y)
        std::memcpy(image.scanLine(int(y)), best + std::size_t(y) * bestWidth, bestWidth * 4);
    if (int(bestWidth) != size || int(bestHeight) != size)
        image = image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return image;
}

std::optional<FrontmostApplication> X11Workspace::frontmostApplication() {
    return std::nullopt;
}

std::vector<ApplicationIdentity> X11Workspace::installedApplications() {
    return {};
}

} // namespace velmora
