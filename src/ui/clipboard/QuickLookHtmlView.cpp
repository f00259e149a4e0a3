#include "ui/clipboard/QuickLookHtmlView.h"

namespace velmora {

namespace {

bool isEmbedded(const QUrl& name) {
    return name.scheme() == "data";
}

// Every picture and style sheet of the page is asked of its document, which by default reads local
// files (itself and through its view); this one answers only what the page carries in data URLs.
class SealedDocument final : public QTextDocument {
public:
    using QTextDocument::QTextDocument;

protected:
    QVariant loadResource(int type, const QUrl& name) override {
        return isEmbedded(name) ? QTextDocument::loadResource(type, name) : QVariant();
    }
};

} // namespace

QuickLookHtmlView::QuickLookHtmlView(const QString& html, QWidget* parent) : QTextBrowser(parent) {
    setObjectName("quickLookHtml");
    setOpenLinks(false);
    setOpenExternalLinks(false);
    setDocument(new SealedDocument(this));
    setHtml(html);
}

} // namespace velmora
