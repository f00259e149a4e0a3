#pragma once

#include "core/Rect.h"
#include "core/WindowArea.h"
#include "windowmanager/AutoLayoutProposal.h"

#include <QObject>
#include <QString>
#include <optional>

namespace velmora {

// How windows are put in place:
// - DraggingAndKeyboard: the shortcuts act and a window dragged over a zone's anchor snaps there.
// - KeyboardOnly: mouse snapping is switched off on this machine; only the shortcuts act.
// - FillSpace: the auto-layout panel is open; a drag snaps nothing until it closes, when the mode
//   returns to the one it interrupted.
enum class WindowManagerMode { DraggingAndKeyboard, FillSpace, KeyboardOnly };

// The zone the pointer is over, or that a shortcut just chose, with the frame it resolves to on the
// window's screen (top-left space).
struct SnapTarget {
    WindowArea area;
    Rect frame;

    bool operator==(const SnapTarget&) const = default;
};

// The window manager's state that its on-screen pieces draw: the snap preview, the auto-layout panel,
// the switcher's search. One instance, made by the app and handed to whoever reads it.
class WindowManagerModel : public QObject {
    Q_OBJECT
public:
    explicit WindowManagerModel(QObject* parent = nullptr);

    WindowManagerMode mode() const { return m_mode; }
    void setMode(WindowManagerMode mode);

    const std::optional<SnapTarget>& snapTarget() const { return m_snapTarget; }
    void setSnapTarget(std::optional<SnapTarget> target);
    // Whether a window is being dragged over the zones: only then is the snap target previewed (a
    // shortcut's snap sets the target too, with nothing to show).
    bool isDragging() const { return m_dragging; }
    void setDragging(bool dragging);

    // The usable rectangle in which the preview is drawn.
    const Rect& screenFrame() const { return m_screenFrame; }
    void setScreenFrame(const Rect& frame);

    // Set while the auto-layout panel proposes windows for the space beside a snapped one.
    const std::optional<AutoLayoutProposal>& autoLayoutProposal() const { return m_autoLayoutProposal; }
    void setAutoLayoutProposal(std::optional<AutoLayoutProposal> proposal);

    const QString& searchQuery() const { return m_searchQuery; }
    void setSearchQuery(const QString& query);

signals:
    // Any of the fields above changed; views redraw from the getters.
    void changed();

private:
    template <class T> void assign(T& field, T value);

    WindowManagerMode m_mode = WindowManagerMode::DraggingAndKeyboard;
    std::optional<SnapTarget> m_snapTarget;
    bool m_dragging = false;
    Rect m_screenFrame;
    std::optional<AutoLayoutProposal> m_autoLayoutProposal;
    QString m_searchQuery;
};

} // namespace velmora
