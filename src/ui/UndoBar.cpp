#include "ui/UndoBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <utility>

namespace velmora {

UndoBar::UndoBar(QWidget* parent)
    : QFrame(parent), m_text(new QLabel), m_undoButton(new QPushButton(QStringLiteral("Undo"))) {
    setObjectName(QStringLiteral("undoBar"));
    m_undoButton->setObjectName(QStringLiteral("undo"));
    m_text->setWordWrap(true);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 2, 0, 2);
    row->addWidget(m_text, 1);
    row->addWidget(m_undoButton);
    connect(m_undoButton, &QPushButton::clicked, this, [this] {
        auto undo = std::exchange(m_undo, nullptr);
        hide();
        if (undo)
            undo();
    });
    hide();
}

void UndoBar::offer(const QString& text, std::function<void()> undo) {
    m_text->setText(text);
    m_undo = std::move(undo);
    show();
}

void UndoBar::dismiss() {
    m_undo = nullptr;
    hide();
}

} // namespace velmora
