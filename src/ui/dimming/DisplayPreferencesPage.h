#pragma once

#include <QWidget>

namespace velmora {

class BrightnessControl;
class DimmingModule;

// Preferences → Display: the brightness of the external monitors and which monitors count as such.
class DisplayPreferencesPage : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "Display";

    explicit DisplayPreferencesPage(DimmingModule& dimming, QWidget* parent = nullptr);

    BrightnessControl* brightness() const { return m_brightness; }

private:
    BrightnessControl* m_brightness;
};

} // namespace velmora
