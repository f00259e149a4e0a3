#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
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
    // A change could not be stored: says why under the page for a while. The page itself already
    // shows the value still in force.
    void showProblem(const QString& reason);
    QLabel* problem() const { return m_problem; }

private:
    QListWidget* m_list;
    QStackedWidget* m_pages;
    QLabel* m_problem;
    QTimer m_problemTimer;
    static constexpr int kProblemShownMs = 12000;
};

} // namespace velmora
