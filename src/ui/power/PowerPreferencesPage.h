#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QRadioButton;

namespace velmora {

class PowerManagementModel;

// Preferences → Power: the Prevent Sleep switch and the choice of its mode, each mode with what it
// means. The controls show the model and rest while a change waits for the system.
class PowerPreferencesPage : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "Power";
    static constexpr const char* kSectionTitle = "Prevent Sleep mode";
    static constexpr const char* kTemporaryLabel = "Temporary & safe";
    static constexpr const char* kPersistentLabel = "Persistent & potentially dangerous";
    static const QString kTemporaryDescription;
    static const QString kPersistentDescription;

    explicit PowerPreferencesPage(PowerManagementModel& model, QWidget* parent = nullptr);

private:
    void refresh();

    PowerManagementModel& m_model;
    QCheckBox* m_preventSleep;
    QRadioButton* m_temporary;
    QRadioButton* m_persistent;
    QLabel* m_waiting;
    QLabel* m_problem;
};

} // namespace velmora
