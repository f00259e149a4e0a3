#pragma once

#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace velmora {

class AppModelContainer;
class UserPreferences;
class Workspace;

// The Clipboard History page: the history switch, how many items to keep, whether a copy outlives the
// application that made it, the applications whose copies are ignored, and clearing the history.
class ClipboardHistoryPreferencesPage : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "Clipboard History";

    ClipboardHistoryPreferencesPage(UserPreferences& preferences, Workspace& workspace,
                                    AppModelContainer* store, QWidget* parent = nullptr);

    // The question before clearing; replaced in tests.
    std::function<bool()> confirmClear;

private:
    void showValues();
    void showIgnored();
    void setRetention(int items);
    void addIgnored();
    void removeIgnored();
    void clearHistory();

    UserPreferences& m_preferences;
    Workspace& m_workspace;
    AppModelContainer* m_store;
    QCheckBox* m_enabled = nullptr;
    QSpinBox* m_retention = nullptr;
    QCheckBox* m_keepCopies = nullptr;
    QListWidget* m_ignored = nullptr;
    QPushButton* m_remove = nullptr;
    QPushButton* m_clear = nullptr;
    QLabel* m_cleared = nullptr;
};

} // namespace velmora
