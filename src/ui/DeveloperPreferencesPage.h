#pragma once

#include <QWidget>

namespace velmora {

class LoggingManager;
class UserPreferences;

class DeveloperPreferencesPage : public QWidget {
    Q_OBJECT
public:
    DeveloperPreferencesPage(UserPreferences& preferences, LoggingManager& log, QWidget* parent = nullptr);
};

} // namespace velmora
