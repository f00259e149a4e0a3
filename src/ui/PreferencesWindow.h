#pragma once

#include <QWidget>

class QListWidget;
class QStackedWidget;

namespace velmora {

// The preferences: a list of areas on the left, the chosen area's page on the right. Each area adds
// its own page.
class PreferencesWindow : public QWidget {
    Q_OBJECT
public:
    explicit PreferencesWindow(QWidget* parent = nullptr);

    void addPage(const QString& title, QWidget* page);
    void showPage(const QString& title);
    QStringList pageTitles() const;

private:
    QListWidget* m_list;
    QStackedWidget* m_pages;
};

} // namespace velmora
