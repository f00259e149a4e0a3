#include "ui/clipboard/QuickLookFileCard.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

namespace {

constexpr int kWidth = 380;

QLabel* centredLabel(const QString& text, const QString& name) {
    auto* label = new QLabel(text);
    label->setObjectName(name);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

QuickLookFileCard::QuickLookFileCard(const QImage& icon, const QString& name, const QString& detail,
                                     const QUrl& target, QWidget* parent)
    : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 24, 24, 20);
    column->setSpacing(8);
    if (!icon.isNull()) {
        auto* picture = new QLabel;
        picture->setObjectName("icon");
        picture->setAlignment(Qt::AlignCenter);
        picture->setPixmap(QPixmap::fromImage(icon.scaled(QSize(iconSize, iconSize).boundedTo(icon.size()),
                                                          Qt::KeepAspectRatio, Qt::SmoothTransformation)));
        column->addWidget(picture);
    }
    auto* title = centredLabel(name, "name");
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    column->addWidget(title);
    if (!detail.isEmpty())
        column->addWidget(centredLabel(detail, "detail"));

    auto* open = new QPushButton("Open");
    open->setObjectName("open");
    open->setFocusPolicy(Qt::NoFocus);
    connect(open, &QPushButton::clicked, this, [target] { QDesktopServices::openUrl(target); });
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(open);
    row->addStretch(1);
    column->addSpacing(4);
    column->addLayout(row);
    setFixedWidth(kWidth);
}

} // namespace velmora
