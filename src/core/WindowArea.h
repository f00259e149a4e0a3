#pragma once

#include "core/JsonCodec.h"
#include "core/KeyboardShortcut.h"

#include <QString>
#include <QUuid>

#include <optional>

namespace velmora {

// A window zone: a rectangle in unit coordinates of a screen's usable area (y = 0 at the top). The four
// numbers stay the text the user typed in the zone editor and are parsed each time the zone is used, so
// that "1/3" keeps meaning a third rather than a rounded decimal.
struct WindowArea {
    QUuid id;
    QString name;
    QString x;
    QString y;
    QString w;
    QString h;
    // The screen kinds the zone is offered on, by the aspect ratio of the screen's usable area.
    bool availableOnMacbookScreen = false;
    bool availableOnWideScreen = false;
    bool availableOnUltrawideScreen = false;
    bool availableOnSuperUltrawideScreen = false;
    bool availableOnVerticalScreen = false;
    // Several zones may share a shortcut; pressing it again cycles through them.
    std::optional<KeyboardShortcut> keyboardShortcut;

    bool operator==(const WindowArea&) const = default;
};

void to_json(Json& j, const WindowArea& a);
void from_json(const Json& j, WindowArea& a);

} // namespace velmora
