#pragma once

#include <QWidget>

namespace velmora {

class UserPreferences;

class GeneralPreferencesPage : public QWidget {
    Q_OBJECT
public:
    explicit GeneralPreferencesPage(UserPreferences& preferences, QWidget* parent = nullptr);
};

} // namespace velmora
