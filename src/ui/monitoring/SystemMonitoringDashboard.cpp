#include "ui/monitoring/SystemMonitoringDashboard.h"

#include "core/SystemMonitoringModel.h"
#include "monitoring/MBSMWidgetText.h"
#include "ui/HintLabel.h"
#include "ui/monitoring/HistoryChart.h"
#include "ui/monitoring/ProcessTreeModel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QTreeView>
#include <QVBoxLayout>

namespace velmora {

namespace {

constexpr ResourceType kResources[] = {ResourceType::cpu, ResourceType::memory, ResourceType::network};

QString usageText(const ResourceUsage& usage, bool network) {
    return QString("CPU %1%, memory %2, network %3")
        .arg(QString::number(usage.usedCPUs * 100.0, 'f', 1), byteCountText(usage.usedMemoryBytes),
             network ? byteCountText(usage.totalNetworkBytes()) : QString("unavailable"));
}

} // namespace

SystemMonitoringDashboard::SystemMonitoringDashboard(SystemMonitoringModel& model,
                                                     std::function<bool()> hasNetworkCounters, Kill kill,
                                                     QWidget* parent)
    : QWidget(parent), m_model(model), m_hasNetworkCounters(std::move(hasNetworkCounters)),
      m_kill(std::move(kill)),
      m_confirm([this](const QString& name, qint64 pid) { return askWithMessageBox(this, name, pid); }) {
    setWindowTitle(kTitle);
    setObjectName("SystemMonitoringDashboard");
    resize(860, 640);

    auto* layout = new QVBoxLayout(this);
    m_pages = new QStackedWidget();
    auto* collecting = new QLabel("Collecting the first sample…");
    collecting->setObjectName("collecting");
    collecting->setAlignment(Qt::AlignCenter);
    m_pages->addWidget(collecting);

    auto* content = new QWidget();
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(makeCharts());
    column->addWidget(makeTree(), 1);
    m_pages->addWidget(content);
    layout->addWidget(m_pages, 1);

    connect(&m_model, &SystemMonitoringModel::snapshotsChanged, this, [this] {
        if (isVisible())
            refresh();
    });
    connect(&m_model, &SystemMonitoringModel::resourceChanged, this,
            &SystemMonitoringDashboard::followResource);
    followResource();
    refresh();
}

SystemMonitoringDashboard::~SystemMonitoringDashboard() = default;

QWidget* SystemMonitoringDashboard::makeCharts() {
    auto* box = new QWidget();
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 6);
    row->setSpacing(14);
    const auto capacity = SystemMonitoringModel::kMaxSnapshots;
    m_charts[0] = new HistoryChart("CPU", QColor(0x3d, 0x8b, 0xe0), capacity);
    m_charts[1] = new HistoryChart("Memory", QColor(0x3f, 0xb0, 0x6a), capacity);
    m_charts[2] = new HistoryChart("Network", QColor(0xe8, 0x8a, 0x2a), capacity);
    for (HistoryChart* chart : m_charts)
        row->addWidget(chart, 1);
    return box;
}

QWidget* SystemMonitoringDashboard::makeTree() {
    auto* box = new QWidget();
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);

    auto* top = new QHBoxLayout();
    top->addWidget(new QLabel("<b>Processes</b>"));
    top->addStretch(1);
    top->addWidget(new QLabel("Sort by"));
    m_resource = new QComboBox();
    m_resource->setObjectName("resource");
    for (ResourceType resource : kResources)
        m_resource->addItem(resourceTitle(resource), resourceTypeName(resource));
    connect(m_resource, &QComboBox::activated, this,
            [this](int index) { m_model.setResource(kResources[index]); });
    top->addWidget(m_resource);
    column->addLayout(top);

    m_treeModel = new ProcessTreeModel(this);
    m_tree = new QTreeView();
    m_tree->setObjectName("processes");
    m_tree->setModel(m_treeModel);
    m_tree->setUniformRowHeights(true);
    m_tree->setAlternatingRowColors(true);
    m_tree->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    QHeaderView* header = m_tree->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(ProcessTreeModel::Name, QHeaderView::Stretch);
    for (int c = ProcessTreeModel::Pid; c < ProcessTreeModel::ColumnCount; ++c) {
        header->setSectionResizeMode(c, QHeaderView::Fixed);
        header->resizeSection(c, c == ProcessTreeModel::Pid ? 70 : 100);
    }
    connect(m_tree->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &SystemMonitoringDashboard::updateEndButton);
    connect(m_tree, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (!m_end->isEnabled())
            return;
        QMenu menu;
        menu.addAction("End Process…", this, &SystemMonitoringDashboard::endSelectedProcess);
        menu.exec(m_tree->viewport()->mapToGlobal(at));
    });
    column->addWidget(m_tree, 1);

    m_totals = new QLabel();
    m_totals->setObjectName("totals");
    m_totals->setTextFormat(Qt::RichText);
    column->addWidget(m_totals);

    auto* bottom = new QHBoxLayout();
    m_networkNote = hintLabel(QString());
    m_networkNote->setObjectName("networkNote");
    bottom->addWidget(m_networkNote, 1);
    m_outcome = new QLabel();
    m_outcome->setObjectName("outcome");
    bottom->addWidget(m_outcome);
    m_end = new QPushButton("End Process…");
    m_end->setObjectName("endProcess");
    m_end->setEnabled(false);
    connect(m_end, &QPushButton::clicked, this, &SystemMonitoringDashboard::endSelectedProcess);
    bottom->addWidget(m_end);
    column->addLayout(bottom);
    return box;
}

void SystemMonitoringDashboard::open() {
    refresh();
    show();
    raise();
    activateWindow();
}

void SystemMonitoringDashboard::showEvent(QShowEvent* event) {
    refresh();
    QWidget::showEvent(event);
}

void SystemMonitoringDashboard::refresh() {
    const SystemSnapshot* newest = m_model.newest();
    m_pages->setCurrentIndex(newest ? 1 : 0);
    m_treeModel->setNetworkCountersAvailable(m_hasNetworkCounters());
    // A view moves the selection to a neighbour when the selected row goes; here that would put
    // another process under the End button without the user choosing it.
    const QModelIndexList before = m_tree->selectionModel()->selectedRows();
    const qint64 selectedPid = before.isEmpty() ? -1 : m_treeModel->pidAt(before.front());
    m_treeModel->setSnapshot(newest);
    const QModelIndexList after = m_tree->selectionModel()->selectedRows();
    if (selectedPid >= 0 && (after.isEmpty() || m_treeModel->pidAt(after.front()) != selectedPid))
        m_tree->selectionModel()->clear();
    refreshCharts();
    refreshTotals();
    updateEndButton();
}

void SystemMonitoringDashboard::refreshCharts() {
    std::vector<double> cpu, memory, network;
    for (const SystemSnapshot& s : m_model.snapshots()) {
        cpu.push_back(cpuPercent(s));
        memory.push_back(memoryPercent(s));
        network.push_back(double(networkBytes(s)));
    }
    const SystemSnapshot* newest = m_model.newest();
    const double busiest = network.empty() ? 0 : *std::max_element(network.begin(), network.end());
    // The network's scale follows its busiest interval, at least 10 kB so that idle noise stays low.
    const double top = std::max(busiest, 10e3);
    m_charts[0]->setValues(cpu, 100, widgetText(ResourceType::cpu, newest), "100%");
    m_charts[1]->setValues(memory, 100, widgetText(ResourceType::memory, newest), "100%");
    if (m_hasNetworkCounters())
        m_charts[2]->setValues(network, top, widgetText(ResourceType::network, newest) + " / 5 s",
                               byteCountText(qint64(top)));
    else
        m_charts[2]->setValues({}, 1, "unavailable", QString());
}

void SystemMonitoringDashboard::refreshTotals() {
    const bool network = m_hasNetworkCounters();
    m_totals->setText(QString("<b>Applications</b>: %1 &nbsp;&nbsp; <b>System</b>: %2")
                          .arg(usageText(m_model.appsResourceUsage(), network),
                               usageText(m_model.systemResourceUsage(), network)));
    m_networkNote->setText(
        network ? "Network: bytes moved over TCP in the last 5 seconds; UDP (QUIC) traffic is not counted "
                  "without root."
                : "Network: unavailable, this kernel gives no per-socket counters; UDP (QUIC) traffic is not "
                  "counted without root either.");
}

void SystemMonitoringDashboard::followResource() {
    const int index = int(m_model.resource());
    if (m_resource->currentIndex() != index)
        m_resource->setCurrentIndex(index);
    m_treeModel->setResource(m_model.resource());
}

void SystemMonitoringDashboard::updateEndButton() {
    const QModelIndex current = m_tree->selectionModel()->currentIndex();
    const bool selected = m_tree->selectionModel()->hasSelection() && current.isValid();
    m_end->setEnabled(selected && m_treeModel->pidAt(current) > 0);
}

void SystemMonitoringDashboard::endSelectedProcess() {
    const QModelIndexList rows = m_tree->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return;
    const qint64 pid = m_treeModel->pidAt(rows.front());
    const QString name = m_treeModel->nameAt(rows.front());
    if (pid <= 0)
        return;
    const EndChoice choice = m_confirm(name, pid);
    if (choice == EndChoice::cancel)
        return;
    const bool force = choice == EndChoice::forceEnd;
    m_outcome->setText(QString("Ending %1…").arg(name));
    QPointer<QLabel> outcome = m_outcome;
    m_kill(pid, force, [outcome, name, pid](bool ended, const QString& message) {
        if (!outcome)
            return;
        // The process leaves the tree with the next sample; until then the line says what happened.
        outcome->setText(ended ? QString("%1 (%2) was ended.").arg(name).arg(pid)
                               : QString("%1 (%2) could not be ended: %3").arg(name).arg(pid).arg(message));
    });
}

QString SystemMonitoringDashboard::outcome() const {
    return m_outcome->text();
}

bool SystemMonitoringDashboard::showsCollecting() const {
    return m_pages->currentIndex() == 0;
}

SystemMonitoringDashboard::EndChoice
SystemMonitoringDashboard::askWithMessageBox(QWidget* parent, const QString& name, qint64 pid) {
    QMessageBox box(parent);
    box.setWindowTitle("End Process");
    box.setIcon(QMessageBox::Warning);
    box.setText(QString("End “%1” (%2)?").arg(name.toHtmlEscaped()).arg(pid));
    box.setInformativeText("End Process asks it to quit. Force End stops it at once; what it has not saved "
                           "is lost.");
    auto* end = box.addButton("End Process", QMessageBox::AcceptRole);
    auto* force = box.addButton("Force End", QMessageBox::DestructiveRole);
    auto* cancel = box.addButton("Cancel", QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == end)
        return EndChoice::end;
    if (box.clickedButton() == force)
        return EndChoice::forceEnd;
    return EndChoice::cancel;
}

} // namespace velmora
