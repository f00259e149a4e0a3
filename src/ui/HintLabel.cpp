#include "ui/HintLabel.h"

#include <QLabel>

namespace velmora {

QLabel* hintLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace velmora
