#pragma once

#include <QWidget>
#include <functional>

class QAbstractButton;
class QVBoxLayout;

namespace velmora {

// The content of the drop-down panel: a header and a column of actions that each area adds to.
class DropDownPanelView : public QWidget {
    Q_OBJECT
public:
    explicit DropDownPanelView(QWidget* parent = nullptr);

    void addAction(const QString& title, std::function<void()> action);
    // A switch that shows its state; the caller keeps it in step with the model.
    QAbstractButton* addToggle(const QString& title, bool checked, std::function<void(bool)> onToggled);
    void addStretch();

private:
    QVBoxLayout* m_actions;
};

} // namespace velmora
