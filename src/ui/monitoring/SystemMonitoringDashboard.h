#pragma once

#include <QWidget>
#include <functional>

class QComboBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QTreeView;

namespace velmora {

class HistoryChart;
class ProcessTreeModel;
class SystemMonitoringModel;

// The system monitor's window: charts of CPU, memory and network over the kept history, and the
// process groups of the newest snapshot as a tree sorted by the chosen resource, with the totals of
// the applications and the rest of the system. A selected process can be ended, after asking.
class SystemMonitoringDashboard : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "System Monitor";

    enum class EndChoice { end, forceEnd, cancel };
    using Done = std::function<void(bool ended, const QString& message)>;
    using Kill = std::function<void(qint64 pid, bool force, Done done)>;
    using Confirm = std::function<EndChoice(const QString& name, qint64 pid)>;

    SystemMonitoringDashboard(SystemMonitoringModel& model, std::function<bool()> hasNetworkCounters,
                              Kill kill, QWidget* parent = nullptr);
    ~SystemMonitoringDashboard() override;

    void open();
    bool isOpen() const { return isVisible(); }

    // Asks about the selected process and ends it as chosen; nothing when no process is selected.
    void endSelectedProcess();
    // The question before ending a process; a message box unless replaced (tests).
    void setConfirmation(Confirm confirm) { m_confirm = std::move(confirm); }

    QTreeView* tree() const { return m_tree; }
    ProcessTreeModel* treeModel() const { return m_treeModel; }
    QComboBox* resourceSelector() const { return m_resource; }
    QPushButton* endButton() const { return m_end; }
    HistoryChart* chart(int index) const { return m_charts[index]; }
    // The line under the tree after an end was asked for.
    QString outcome() const;
    bool showsCollecting() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeCharts();
    QWidget* makeTree();
    void refresh();
    void refreshCharts();
    void refreshTotals();
    void followResource();
    void updateEndButton();
    static EndChoice askWithMessageBox(QWidget* parent, const QString& name, qint64 pid);

    SystemMonitoringModel& m_model;
    std::function<bool()> m_hasNetworkCounters;
    Kill m_kill;
    Confirm m_confirm;
    QStackedWidget* m_pages = nullptr;
    QComboBox* m_resource = nullptr;
    HistoryChart* m_charts[3] = {};
    QTreeView* m_tree = nullptr;
    ProcessTreeModel* m_treeModel = nullptr;
    QLabel* m_totals = nullptr;
    QLabel* m_networkNote = nullptr;
    QLabel* m_outcome = nullptr;
    QPushButton* m_end = nullptr;
};

} // namespace velmora
