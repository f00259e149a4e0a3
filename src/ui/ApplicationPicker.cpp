#include "ui/ApplicationPicker.h"

#include "clipboard/ClipboardLog.h"
#include "platform/Workspace.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora {

namespace {

constexpr int kIconSize = 24;
constexpr int kUrlRole = Qt::UserRole;
constexpr int kIdRole = Qt::UserRole + 1;

QListWidgetItem* itemFor(const ApplicationIdentity& application) {
    const QString name = application.name.value_or(application.id.value_or(*application.fileURL));
    QPixmap icon = QPixmap::fromImage(application.icon);
    if (icon.isNull()) {
        icon = QPixmap(kIconSize, kIconSize);
        icon.fill(Qt::transparent); // keeps the names in one column
    }
    auto* item = new QListWidgetItem(QIcon(icon), name);
    item->setData(kUrlRole, *application.fileURL);
    item->setData(kIdRole, application.id.value_or(QString()));
    item->setToolTip(QUrl(*application.fileURL).toLocalFile());
    return item;
}

} // namespace

ApplicationPicker::ApplicationPicker(Workspace& workspace, QWidget* parent)
    : QDialog(parent), m_workspace(workspace) {
    setWindowTitle("Choose Applications");
    auto* layout = new QVBoxLayout(this);

    m_search = new QLineEdit();
    m_search->setObjectName("search");
    m_search->setPlaceholderText("Search");
    m_search->setClearButtonEnabled(true);
    layout->addWidget(m_search);

    m_list = new QListWidget();
    m_list->setObjectName("applications");
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setIconSize(QSize(kIconSize, kIconSize));
    m_list->setUniformItemSizes(true);
    for (const ApplicationIdentity& application : m_workspace.installedApplications())
        if (application.fileURL) // an application without an entry file cannot be named in a list
            m_list->addItem(itemFor(application));
    layout->addWidget(m_list, 1);

    m_problem = new QLabel();
    m_problem->setObjectName("problem");
    m_problem->setWordWrap(true);
    QPalette warning = m_problem->palette();
    warning.setColor(QPalette::WindowText, QColor(0xc0, 0x30, 0x30));
    m_problem->setPalette(warning);
    m_problem->hide();
    layout->addWidget(m_problem);

    auto* buttons = new QDialogButtonBox();
    auto* other = buttons->addButton("Other…", QDialogButtonBox::ActionRole);
    other->setObjectName("other");
    buttons->addButton(QDialogButtonBox::Cancel);
    m_add = buttons->addButton("Add", QDialogButtonBox::AcceptRole);
    m_add->setObjectName("add");
    m_add->setDefault(true);
    m_add->setEnabled(false);
    layout->addWidget(buttons);

    connect(m_search, &QLineEdit::textChanged, this, &ApplicationPicker::filter);
    connect(m_list, &QListWidget::itemSelectionChanged, this,
            [this] { m_add->setEnabled(!m_list->selectedItems().isEmpty()); });
    connect(m_list, &QListWidget::itemActivated, this, &ApplicationPicker::add);
    connect(m_add, &QPushButton::clicked, this, &ApplicationPicker::add);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(other, &QPushButton::clicked, this, &ApplicationPicker::chooseFile);
    resize(380, 460);
}

QStringList ApplicationPicker::pick(Workspace& workspace, QWidget* parent) {
    ApplicationPicker picker(workspace, parent);
    return picker.exec() == QDialog::Accepted ? picker.pickedURLs() : QStringList();
}

// Every word typed must appear in the name or the id, in any order and case.
void ApplicationPicker::filter(const QString& text) {
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* item = m_list->item(row);
        const QString haystack = item->text() + u' ' + item->data(kIdRole).toString();
        const bool shown = std::all_of(words.begin(), words.end(), [&haystack](const QString& word) {
            return haystack.contains(word, Qt::CaseInsensitive);
        });
        item->setHidden(!shown);
    }
}

QStringList ApplicationPicker::selectedURLs() const {
    QStringList urls;
    for (int row = 0; row < m_list->count(); ++row)
        if (m_list->item(row)->isSelected())
            urls << m_list->item(row)->data(kUrlRole).toString();
    return urls;
}

void ApplicationPicker::add() {
    m_picked = selectedURLs();
    if (!m_picked.isEmpty())
        accept();
}

void ApplicationPicker::chooseFile() {
    QList<QUrl> folders;
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation))
        if (QFileInfo(folder).isDir())
            folders << QUrl::fromLocalFile(folder);
    QFileDialog dialog(this, "Choose an Application");
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter("Applications (*.desktop)");
    dialog.setSidebarUrls(folders);
    // The system's folder holds most applications; the user's own comes first in the search order.
    if (!folders.isEmpty())
        dialog.setDirectory(folders.back().toLocalFile());
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        takeFile(dialog.selectedFiles().front());
}

bool ApplicationPicker::takeFile(const QString& path) {
    QString error;
    const auto application = m_workspace.applicationFromFile(path, &error);
    if (!application || !application->fileURL) {
        const QString message = "Failed to import file: " + (error.isEmpty() ? path : error);
        qCWarning(lcClipboard).noquote() << message;
        m_problem->setText(message);
        m_problem->show();
        return false;
    }
    m_picked = selectedURLs();
    if (!m_picked.contains(*application->fileURL))
        m_picked << *application->fileURL;
    accept();
    return true;
}

} // namespace velmora
