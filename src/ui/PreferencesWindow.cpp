#include "ui/PreferencesWindow.h"

#include "ui/AppIcon.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace velmora {

PreferencesWindow::PreferencesWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowTitle("Velmora Preferences");
    setWindowIcon(appIcon());
    resize(820, 560);
    auto* layout = new QHBoxLayout(this);
    m_list = new QListWidget();
    m_list->setFixedWidth(170);
    m_pages = new QStackedWidget();
    m_problem = new QLabel();
    m_problem->setObjectName("problem");
    m_problem->setWordWrap(true);
    m_problem->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_problem->setStyleSheet("#problem { background: #fbe3e1; color: #7a1b14; border: 1px solid #e6a39c; "
                             "border-radius: 4px; padding: 6px; }");
    m_problem->hide();
    m_problemTimer.setSingleShot(true);
    connect(&m_problemTimer, &QTimer::timeout, m_problem, &QWidget::hide);
    auto* right = new QVBoxLayout();
    right->addWidget(m_pages, 1);
    right->addWidget(m_problem);
    layout->addWidget(m_list);
    layout->addLayout(right, 1);
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

void PreferencesWindow::showProblem(const QString& reason) {
    m_problem->setText(QString("Your change was not saved: %1").arg(reason));
    m_problem->show();
    m_problemTimer.start(kProblemShownMs);
}

QStringList PreferencesWindow::pageTitles() const {
    QStringList titles;
    for (int i = 0; i < m_list->count(); ++i)
        titles << m_list->item(i)->text();
    return titles;
}

} // namespace velmora
