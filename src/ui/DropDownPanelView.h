#pragma once

#include "app/PanelRows.h"

#include <QWidget>
#include <functional>

class QAbstractButton;
class QVBoxLayout;

namespace velmora {

// The content of the drop-down panel: a header and a column of actions that each area adds to.
class DropDownPanelView : public QWidget, public PanelRows {
    Q_OBJECT
public:
    explicit DropDownPanelView(QWidget* parent = nullptr);

    void addAction(const QString& title, std::function<void()> action) override;
    QAbstractButton* addToggle(const QString& title, bool checked,
                               std::function<void(bool)> onToggled) override;
    void addWidget(QWidget* widget) override;
    void addStretch();

private:
    QVBoxLayout* m_actions;
};

} // namespace velmora
