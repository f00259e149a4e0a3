#pragma once

#include <QString>

class QLabel;

namespace velmora {

// A quieter line of text under a control that explains it, wrapped to the page's width.
QLabel* hintLabel(const QString& text);

} // namespace velmora
