#pragma once

#include <QRect>
#include <QSize>

namespace velmora {

// Where the preview window goes: beside the history panel, never over it while the screen has room.
namespace QuickLookPlacement {

// Space left between the panel and the preview.
inline constexpr int gap = 8;

// The frame of a window of that size beside anchor within available: to the right of the anchor when
// it fits there, else to its left, else on the side with more room (overlapping the anchor only then).
// Top edges are aligned and the frame is kept inside available. Centred in available when the anchor
// is empty. A size larger than available is shrunk to it.
QRect frameBeside(QSize size, const QRect& anchor, const QRect& available);

} // namespace QuickLookPlacement

} // namespace velmora
