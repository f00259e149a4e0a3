#pragma once

#include <QTextBrowser>

namespace velmora {

// Copied HTML rendered as a page, sealed off: it loads nothing from the network or the disk (a copied
// page must not call home or read local files when looked at) and a click on a link goes nowhere.
// Pictures embedded as data URLs are shown.
class QuickLookHtmlView final : public QTextBrowser {
    Q_OBJECT
public:
    explicit QuickLookHtmlView(const QString& html, QWidget* parent = nullptr);
};

} // namespace velmora
