#pragma once

#include <QString>
#include <functional>

class QAbstractButton;

namespace velmora {

// The rows of the drop-down panel as a module sees them: it adds its switches and actions.
class PanelRows {
public:
    virtual ~PanelRows() = default;
    virtual void addAction(const QString& title, std::function<void()> action) = 0;
    // A switch that shows its state; the caller keeps it in step with its model.
    virtual QAbstractButton* addToggle(const QString& title, bool checked,
                                       std::function<void(bool)> onToggled) = 0;
};

} // namespace velmora
