#include "ui/BriefMessage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>

namespace velmora {

namespace {

// Above the bottom edge by a fifth of the screen, where such messages usually appear.
constexpr double kFromBottom = 0.2;

} // namespace

BriefMessage::BriefMessage()
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::X11BypassWindowManagerHint |
                           Qt::WindowTransparentForInput),
      m_label(new QLabel) {
    setObjectName("BriefMessage");
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_StyledBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setStyleSheet("#BriefMessage { background: #2b2d35; border: 1px solid #4a4d5a; border-radius: 6px; }"
                  "#BriefMessage QLabel { color: #f2f2f2; font-size: 12pt; }");
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(18, 10, 18, 10);
    row->addWidget(m_label);
    m_hide.setSingleShot(true);
    connect(&m_hide, &QTimer::timeout, this, &QWidget::hide);
}

void BriefMessage::showOn(QScreen* screen, const QString& text) {
    m_label->setText(text);
    adjustSize();
    const QRect area = screen->availableGeometry();
    move(area.x() + (area.width() - width()) / 2,
         area.y() + int(area.height() * (1 - kFromBottom)) - height() / 2);
    show();
    raise();
    m_hide.start(kShownMs);
}

QString BriefMessage::text() const {
    return m_label->text();
}

} // namespace velmora
