#include "ui/DropDownPanelView.h"

#include "ui/AppIcon.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

DropDownPanelView::DropDownPanelView(QWidget* parent) : QWidget(parent) {
    setObjectName("DropDownPanel");
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet("#DropDownPanel { background: palette(window); border: 1px solid palette(mid); }"
                  "QPushButton { text-align: left; padding: 6px 10px; border: none; border-radius: 6px; }"
                  "QPushButton:hover, QPushButton:focus { background: palette(highlight);"
                  " color: palette(highlighted-text); }");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);

    auto* header = new QHBoxLayout();
    auto* icon = new QLabel();
    icon->setPixmap(appIcon().pixmap(28, 28));
    auto* title = new QLabel("<b>Velmora</b>");
    header->addWidget(icon);
    header->addWidget(title, 1);
    layout->addLayout(header);
    layout->addSpacing(8);

    m_actions = new QVBoxLayout();
    m_actions->setSpacing(2);
    layout->addLayout(m_actions);
    layout->addStretch(1);
}

void DropDownPanelView::addAction(const QString& title, std::function<void()> action) {
    auto* button = new QPushButton(title);
    button->setFlat(true);
    connect(button, &QPushButton::clicked, this, [action] { action(); });
    m_actions->addWidget(button);
}

QAbstractButton* DropDownPanelView::addToggle(const QString& title, bool checked,
                                              std::function<void(bool)> onToggled) {
    auto* toggle = new QCheckBox(title);
    toggle->setChecked(checked);
    connect(toggle, &QCheckBox::toggled, this, [onToggled](bool on) { onToggled(on); });
    m_actions->addWidget(toggle);
    return toggle;
}

void DropDownPanelView::addWidget(QWidget* widget) {
    m_actions->addWidget(widget);
}

void DropDownPanelView::addStretch() {
    m_actions->addStretch(1);
}

} // namespace velmora
