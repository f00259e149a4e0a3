#pragma once

#include "core/Rect.h"

#include <optional>

class QWidget;

namespace velmora {

class Screens;

// Where the keyboard panels (the window switcher, the clipboard history) appear and how their lists
// look while the search field has the keyboard.
namespace PanelPlacement {

// The usable part of the main screen (top-left space); absent without a screen.
std::optional<Rect> mainUsableArea(const Screens& screens);
// A panel of this size (each side bounded by the area) in the middle of the area, on whole pixels.
Rect centredIn(const Rect& area, double width, double height);
// The list's selection keeps its colour while the panel's search field has the keyboard.
void keepSelectionColourWhenInactive(QWidget& list);

} // namespace PanelPlacement

} // namespace velmora
