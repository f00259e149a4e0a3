#include "ui/ScreenNotice.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace velmora {

namespace {

constexpr int kWidth = 520;
constexpr int kTopMargin = 60;

} // namespace

ScreenNotice::ScreenNotice(const QString& title, const QString& text, const QString& endTitle,
                           std::function<void()> end)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::X11BypassWindowManagerHint),
      m_end(new QPushButton(endTitle)) {
    setObjectName("ScreenNotice");
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet("#ScreenNotice { background: #2b2d35; border: 1px solid #4a4d5a; border-radius: 6px; }"
                  "#ScreenNotice QLabel { color: #f2f2f2; }"
                  "#ScreenNotice QPushButton { background: #f05a3c; color: white; border: none; "
                  "border-radius: 6px; padding: 8px 16px; font-weight: bold; }"
                  "#ScreenNotice QPushButton:hover { background: #ff6f50; }");
    auto* heading = new QLabel(
        QString("<span style='font-size: 15pt; font-weight: 600'>%1</span>").arg(title.toHtmlEscaped()));
    heading->setObjectName("title");
    auto* body = new QLabel(text);
    body->setWordWrap(true);
    m_end->setObjectName("end");
    m_end->setCursor(Qt::PointingHandCursor);
    m_end->setFocusPolicy(Qt::NoFocus);
    connect(m_end, &QPushButton::clicked, this, [end = std::move(end)] {
        if (end)
            end();
    });

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(22, 18, 22, 18);
    column->setSpacing(8);
    column->addWidget(heading);
    column->addWidget(body);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(m_end);
    column->addSpacing(4);
    column->addLayout(row);
    setFixedWidth(kWidth);
}

void ScreenNotice::showOn(QScreen* screen) {
    adjustSize();
    const QRect area = screen->availableGeometry();
    move(area.x() + (area.width() - width()) / 2, area.y() + kTopMargin);
    show();
    raise();
}

} // namespace velmora
