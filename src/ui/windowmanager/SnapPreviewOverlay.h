#pragma once

#include "core/Rect.h"

#include <QWidget>
#include <functional>

namespace velmora {

class WindowManagerModel;

// Where a dragged window will land: a rounded rectangle over the zone, in a window that is never
// managed, never focused and lets every click through to what is below. With a compositor it is a
// translucent fill; without one transparent pixels would show black, so only an outline is drawn
// (the window is shaped to it).
class SnapPreviewOverlay : public QWidget {
    Q_OBJECT
public:
    // isCompositing is asked each time the preview appears, so a compositor started meanwhile counts.
    SnapPreviewOverlay(WindowManagerModel& model, std::function<bool()> isCompositing);

    bool isTranslucent() const { return m_translucent; }
    // The frame shown, top-left space; empty while hidden.
    Rect shownFrame() const;
    // A window of ours that sits over the preview (the auto-layout panel in the space it proposes):
    // the preview leaves that part of the screen out, since an overlay cannot be stacked below one
    // managed window and above the others. Screen coordinates; empty for none.
    void setCutout(const QRect& cutout);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr double kCornerRadius = 10;
    static constexpr int kOutlineWidth = 4;

    void follow();
    void present(const Rect& frame);
    void applyMask();

    WindowManagerModel& m_model;
    std::function<bool()> m_isCompositing;
    bool m_translucent = false;
    QRect m_cutout;
};

} // namespace velmora
