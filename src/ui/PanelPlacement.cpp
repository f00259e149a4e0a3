#include "ui/PanelPlacement.h"

#include "platform/Screens.h"
#include "windowmanager/LowLevelHelpers.h"

#include <QPalette>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace velmora::PanelPlacement {

std::optional<Rect> mainUsableArea(const Screens& screens) {
    const auto main = screens.mainScreen();
    if (!main)
        return std::nullopt;
    const auto primary = primaryScreen(screens.screens());
    return usableRect(*main, primary ? primary->frame.height : main->frame.height);
}

Rect centredIn(const Rect& area, double width, double height) {
    width = std::min(width, area.width);
    height = std::min(height, area.height);
    return {std::round(area.x + (area.width - width) / 2), std::round(area.y + (area.height - height) / 2),
            width, height};
}

void keepSelectionColourWhenInactive(QWidget& list) {
    QPalette palette = list.palette();
    palette.setColor(QPalette::Inactive, QPalette::Highlight,
                     palette.color(QPalette::Active, QPalette::Highlight));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText,
                     palette.color(QPalette::Active, QPalette::HighlightedText));
    list.setPalette(palette);
}

} // namespace velmora::PanelPlacement
