#include "windowmanager/WindowManagerModel.h"

#include "core/MainThread.h"

#include <utility>

namespace velmora {

WindowManagerModel::WindowManagerModel(QObject* parent) : QObject(parent) {}

// The drag code sets the same target on every pointer move; only a real change is worth a redraw.
template <class T> void WindowManagerModel::assign(T& field, T value) {
    assertMainThread("WindowManagerModel");
    if (field == value)
        return;
    field = std::move(value);
    emit changed();
}

void WindowManagerModel::setMode(WindowManagerMode mode) {
    assign(m_mode, mode);
}

void WindowManagerModel::setSnapTarget(std::optional<SnapTarget> target) {
    assign(m_snapTarget, std::move(target));
}

void WindowManagerModel::setDragging(bool dragging) {
    assign(m_dragging, dragging);
}

void WindowManagerModel::setScreenFrame(const Rect& frame) {
    assign(m_screenFrame, frame);
}

void WindowManagerModel::setAutoLayoutProposal(std::optional<AutoLayoutProposal> proposal) {
    assign(m_autoLayoutProposal, std::move(proposal));
}

void WindowManagerModel::setSearchQuery(const QString& query) {
    assign(m_searchQuery, query);
}

} // namespace velmora
