#pragma once

#include <QString>
#include <functional>

class QAbstractButton;
class QWidget;

namespace velmora {

// The rows of the drop-down panel as a module sees them: it adds its switches and actions.
class PanelRows {
public:
    virtual ~PanelRows() = default;
    virtual void addAction(const QString& title, std::function<void()> action) = 0;
    // A switch that shows its state; the caller keeps it in step with its model.
    virtual QAbstractButton* addToggle(const QString& title, bool checked,
                                       std::function<void(bool)> onToggled) = 0;
    // A view of the module's own (gauges); the panel takes it over.
    virtual void addWidget(QWidget* widget) = 0;
};

} // namespace velmora
