#include "ui/WelcomeView.h"

#include "ui/AppIcon.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

WelcomeView::WelcomeView(std::function<void()> onGetStarted, QWidget* parent) : QWidget(parent) {
    setObjectName("WelcomeView");
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet("#WelcomeView { background: palette(window); border: 1px solid palette(mid); }");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 30, 40, 30);

    auto* icon = new QLabel();
    icon->setPixmap(appIcon().pixmap(64, 64));
    icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(icon);

    auto* title = new QLabel("<h2>Welcome to Velmora</h2>");
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);

    auto* text = new QLabel("Velmora lives in your system tray. Click its icon to open the panel.<br><br>"
                            "&bull; Snap windows into zones with keyboard shortcuts; press again to cycle<br>"
                            "&bull; Centre a window, make it 16:9 or send it to the next screen<br>"
                            "&bull; Switch windows with Alt+Tab, searching by name<br>"
                            "&bull; Keep every copy in a clipboard history, with where it came from<br>"
                            "&bull; Clean your keyboard without unplugging it");
    text->setWordWrap(true);
    layout->addWidget(text, 1);

    auto* start = new QPushButton("Get Started");
    start->setDefault(true);
    connect(start, &QPushButton::clicked, this, [onGetStarted] { onGetStarted(); });
    layout->addWidget(start, 0, Qt::AlignCenter);
}

} // namespace velmora
