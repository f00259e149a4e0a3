#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;

namespace velmora {

class LoginItem;
class UserPreferences;

class GeneralPreferencesPage : public QWidget {
    Q_OBJECT
public:
    // syncSection: shown between the switches and About when this build synchronises settings.
    GeneralPreferencesPage(UserPreferences& preferences, LoginItem& loginItem, QWidget* syncSection = nullptr,
                           QWidget* parent = nullptr);

protected:
    // The autostart entry can change behind our back (the session's own settings, a file manager).
    void showEvent(QShowEvent* event) override;

private:
    void requestLaunchAtLogin(bool on);
    void showLaunchAtLogin(bool on);

    UserPreferences& m_preferences;
    LoginItem& m_loginItem;
    QCheckBox* m_launchAtLogin;
    QLabel* m_launchProblem;
};

} // namespace velmora
