#include "ui/dimming/DisplayPreferencesPage.h"

#include "ui/HintLabel.h"
#include "ui/dimming/BrightnessControl.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

DisplayPreferencesPage::DisplayPreferencesPage(DimmingModule& dimming, QWidget* parent)
    : QWidget(parent), m_brightness(new BrightnessControl(dimming)) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QString("<h3>%1</h3>").arg(kTitle)));
    layout->addWidget(m_brightness);
    layout->addWidget(hintLabel("Darkens external monitors below their lowest brightness, in software: "
                                "a dark layer lies over each such monitor and lets every click through."));
    layout->addWidget(hintLabel("Monitors of 16:9 or wider and portrait monitors are dimmed; 16:10 and "
                                "squarer ones, like most built-in laptop panels, are not."));
    layout->addWidget(hintLabel("The Toggle monitor dimming shortcut (Keyboard Shortcuts) switches "
                                "dimming off and back to this level."));
    layout->addStretch(1);
}

} // namespace velmora
