#include "ui/clipboard/ClipboardHistoryPreferencesPage.h"

#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "core/PreferenceChecks.h"
#include "platform/Workspace.h"
#include "ui/ApplicationPicker.h"
#include "ui/HintLabel.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

namespace velmora {

ClipboardHistoryPreferencesPage::ClipboardHistoryPreferencesPage(UserPreferences& preferences,
                                                                 Workspace& workspace,
                                                                 AppModelContainer* store, QWidget* parent)
    : QWidget(parent), m_preferences(preferences), m_workspace(workspace), m_store(store) {
    confirmClear = [this] {
        return QMessageBox::question(this, "Clear all history",
                                     "Are you sure you want to clear all clipboard history?") ==
               QMessageBox::Yes;
    };
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QString("<h3>%1</h3>").arg(kTitle)));

    m_enabled = new QCheckBox("Record clipboard history");
    m_enabled->setObjectName("clipboardHistoryEnabled");
    layout->addWidget(m_enabled);

    auto* retentionRow = new QHBoxLayout();
    retentionRow->addWidget(new QLabel("Number of items to keep in history"));
    m_retention = new QSpinBox();
    m_retention->setObjectName("retention");
    m_retention->setRange(PreferenceLimits::kMinRetention, PreferenceLimits::kMaxRetention);
    m_retention->setKeyboardTracking(false); // stored when typing is done, not at every digit
    retentionRow->addWidget(m_retention);
    retentionRow->addStretch(1);
    layout->addLayout(retentionRow);

    m_keepCopies = new QCheckBox("Keep a copy on the clipboard when the application that made it quits");
    m_keepCopies->setObjectName("keepCopiesOfClosedApps");
    layout->addWidget(m_keepCopies);

    layout->addSpacing(12);
    layout->addWidget(new QLabel("Apps added here will be\nignored by clipboard history."));
    m_ignored = new QListWidget();
    m_ignored->setObjectName("ignoredApps");
    m_ignored->setIconSize(QSize(20, 20));
    m_ignored->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_ignored->setMinimumHeight(110);
    layout->addWidget(m_ignored);
    auto* listButtons = new QHBoxLayout();
    auto* add = new QPushButton("Add Application…");
    m_remove = new QPushButton("Remove");
    listButtons->addWidget(add);
    listButtons->addWidget(m_remove);
    listButtons->addStretch(1);
    layout->addLayout(listButtons);

    layout->addSpacing(12);
    auto* clearRow = new QHBoxLayout();
    m_clear = new QPushButton("Clear all history");
    m_clear->setObjectName("clearHistory");
    clearRow->addWidget(m_clear);
    m_cleared = hintLabel("");
    clearRow->addWidget(m_cleared, 1);
    layout->addLayout(clearRow);
    if (!m_store)
        layout->addWidget(
            hintLabel("The history's store could not be opened, so nothing is recorded in this run. "
                      "The log says why."));
    layout->addStretch(1);

    showValues();
    connect(m_enabled, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_preferences.local.setClipboardHistoryEnabled(on))
            showValues();
    });
    connect(m_keepCopies, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_preferences.local.setClipboardKeepsCopiesOfClosedApps(on))
            showValues();
    });
    connect(m_retention, &QSpinBox::valueChanged, this, &ClipboardHistoryPreferencesPage::setRetention);
    connect(add, &QPushButton::clicked, this, &ClipboardHistoryPreferencesPage::addIgnored);
    connect(m_remove, &QPushButton::clicked, this, &ClipboardHistoryPreferencesPage::removeIgnored);
    connect(m_ignored, &QListWidget::itemSelectionChanged, this,
            [this] { m_remove->setEnabled(!m_ignored->selectedItems().isEmpty()); });
    connect(m_clear, &QPushButton::clicked, this, &ClipboardHistoryPreferencesPage::clearHistory);
    connect(&m_preferences.clipboard, &CKValueObservableBase::valueChanged, this,
            &ClipboardHistoryPreferencesPage::showValues);
    connect(&m_preferences.local, &LocalUserPreferences::changed, this,
            &ClipboardHistoryPreferencesPage::showValues);
}

// Every control shows the value in force, also after a change that could not be stored.
void ClipboardHistoryPreferencesPage::showValues() {
    const QSignalBlocker b1(m_enabled), b2(m_retention), b3(m_keepCopies);
    m_enabled->setChecked(m_preferences.local.clipboardHistoryEnabled());
    m_keepCopies->setChecked(m_preferences.local.clipboardKeepsCopiesOfClosedApps());
    m_retention->setValue(m_preferences.clipboard.value().retention);
    m_clear->setEnabled(m_store != nullptr);
    showIgnored();
}

void ClipboardHistoryPreferencesPage::showIgnored() {
    QHash<QString, ApplicationIdentity> known;
    const auto& urls = m_preferences.clipboard.value().blacklistedAppURLs;
    if (!urls.empty())
        for (auto& app : m_workspace.installedApplications())
            if (app.fileURL)
                known.insert(*app.fileURL, app);
    m_ignored->clear();
    for (const QString& url : urls) {
        auto* row = new QListWidgetItem();
        row->setData(Qt::UserRole, url);
        row->setToolTip(QUrl(url).toLocalFile());
        if (const auto it = known.constFind(url); it != known.constEnd()) {
            row->setText(it->name.value_or(url));
            if (!it->icon.isNull())
                row->setIcon(QIcon(QPixmap::fromImage(it->icon)));
        } else {
            // An entry from another machine, or an application since removed: its file name still says which.
            row->setText(QFileInfo(QUrl(url).path()).completeBaseName());
        }
        m_ignored->addItem(row);
    }
    m_remove->setEnabled(!m_ignored->selectedItems().isEmpty());
}

void ClipboardHistoryPreferencesPage::setRetention(int items) {
    ClipboardPreferences value = m_preferences.clipboard.value();
    value.retention = items;
    if (!m_preferences.clipboard.setValue(value))
        showValues();
}

void ClipboardHistoryPreferencesPage::addIgnored() {
    const QStringList picked = ApplicationPicker::pick(m_workspace, this);
    ClipboardPreferences value = m_preferences.clipboard.value();
    bool added = false;
    for (const QString& url : picked)
        if (std::find(value.blacklistedAppURLs.begin(), value.blacklistedAppURLs.end(), url) ==
            value.blacklistedAppURLs.end()) {
            value.blacklistedAppURLs.push_back(url);
            added = true;
        }
    if (added && !m_preferences.clipboard.setValue(value))
        showValues();
}

void ClipboardHistoryPreferencesPage::removeIgnored() {
    ClipboardPreferences value = m_preferences.clipboard.value();
    for (const auto* row : m_ignored->selectedItems())
        std::erase(value.blacklistedAppURLs, row->data(Qt::UserRole).toString());
    if (!m_preferences.clipboard.setValue(value))
        showValues();
}

void ClipboardHistoryPreferencesPage::clearHistory() {
    if (!m_store || !confirmClear())
        return;
    const bool cleared = m_store->deleteAll();
    m_cleared->setText(cleared ? "The history is empty."
                               : "The history could not be cleared; the log says why.");
    QTimer::singleShot(6000, m_cleared, [label = m_cleared] { label->clear(); });
}

} // namespace velmora
