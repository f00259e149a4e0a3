#include "ui/PreferencesWindow.h"

#include "ui/AppIcon.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QStackedWidget>

namespace velmora {

PreferencesWindow::PreferencesWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowTitle("Velmora Preferences");
    setWindowIcon(appIcon());
    resize(820, 560);
    auto* layout = new QHBoxLayout(this);
    m_list = new QListWidget();
    m_list->setFixedWidth(170);
    m_pages = new QStackedWidget();
    layout->addWidget(m_list);
    layout->addWidget(m_pages, 1);
    connect(m_list, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
}

void PreferencesWindow::addPage(const QString& title, QWidget* page) {
    m_list->addItem(title);
    m_pages->addWidget(page);
    if (m_list->count() == 1)
        m_list->setCurrentRow(0);
}

void PreferencesWindow::showPage(const QString& title) {
    const auto items = m_list->findItems(title, Qt::MatchExactly);
    if (!items.isEmpty())
        m_list->setCurrentItem(items.front());
}

QStringList PreferencesWindow::pageTitles() const {
    QStringList titles;
    for (int i = 0; i < m_list->count(); ++i)
        titles << m_list->item(i)->text();
    return titles;
}

} // namespace velmora
