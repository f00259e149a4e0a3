#pragma once

#include "core/MenubarSystemMonitoringPreferences.h"

#include <QWidget>

class QListWidget;
class QToolButton;

namespace velmora {

class UserPreferences;

// The gauges of the monitoring status item, in order: add one (CPU, memory or network, as often as
// wanted), remove, move up and down, and reset to none. Every change writes the appearance record as
// a whole, so it is stored and synchronised like any preference; the list always shows the value in
// force, also after a change from elsewhere or one that could not be stored.
class MenubarSystemMonitoringPreferencesForm : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "Menubar system monitoring widgets";

    explicit MenubarSystemMonitoringPreferencesForm(UserPreferences& preferences, QWidget* parent = nullptr);

    void add(ResourceType resource);
    void removeSelected();
    // Moves the selected gauge by one place, up (-1) or down (+1); it stays selected.
    void moveSelected(int delta);
    void reset();

    QListWidget* list() const { return m_list; }
    QToolButton* addButton() const { return m_add; }
    QToolButton* removeButton() const { return m_remove; }
    QToolButton* upButton() const { return m_up; }
    QToolButton* downButton() const { return m_down; }
    QToolButton* resetButton() const { return m_reset; }

private:
    void refresh();
    void updateButtons();
    bool write(std::vector<MonitoringWidget> widgets);

    UserPreferences& m_preferences;
    QListWidget* m_list = nullptr;
    QToolButton* m_add = nullptr;
    QToolButton* m_remove = nullptr;
    QToolButton* m_up = nullptr;
    QToolButton* m_down = nullptr;
    QToolButton* m_reset = nullptr;
};

} // namespace velmora
