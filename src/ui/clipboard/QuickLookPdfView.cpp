#include "ui/clipboard/QuickLookPdfView.h"

#include "clipboard/ClipboardLog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPdfDocument>
#include <QPdfPageNavigator>
#include <QPdfView>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

namespace {

// Page sizes are in points; the screen shows 96 pixels per inch at scale 1.
constexpr double kPixelsPerPoint = 96.0 / 72.0;
constexpr int kPageBarHeight = 40;

QPushButton* pageButton(const QString& text, const QString& name) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace

QuickLookPdfView::QuickLookPdfView(const QString& path, QWidget* parent)
    : QWidget(parent), m_document(new QPdfDocument(this)), m_view(new QPdfView),
      m_previous(pageButton("\u2039", "previousPage")), m_next(pageButton("\u203a", "nextPage")),
      m_page(new QLabel) {
    setObjectName("quickLookPdf");
    m_page->setObjectName("pageLabel");
    m_previous->setToolTip("Previous page");
    m_next->setToolTip("Next page");
    if (const QPdfDocument::Error error = m_document->load(path); error != QPdfDocument::Error::None)
        qCWarning(lcClipboard).noquote()
            << "The preview cannot open the PDF" << path << ": error" << int(error);
    else if (m_document->pageCount() == 0)
        qCWarning(lcClipboard).noquote() << "The PDF" << path << "has no pages to preview";

    m_view->setObjectName("pdfView");
    m_view->setFocusPolicy(Qt::NoFocus);
    m_view->setPageMode(QPdfView::PageMode::SinglePage);
    m_view->setZoomMode(QPdfView::ZoomMode::FitInView);
    m_view->setDocument(m_document);
    connect(m_view->pageNavigator(), &QPdfPageNavigator::currentPageChanged, this,
            &QuickLookPdfView::updatePageBar);
    connect(m_previous, &QPushButton::clicked, this, [this] { showPage(currentPage() - 1); });
    connect(m_next, &QPushButton::clicked, this, [this] { showPage(currentPage() + 1); });

    auto* bar = new QHBoxLayout;
    bar->addStretch(1);
    bar->addWidget(m_previous);
    bar->addWidget(m_page);
    bar->addWidget(m_next);
    bar->addStretch(1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 4);
    column->addWidget(m_view, 1);
    column->addLayout(bar);
    updatePageBar();
}

bool QuickLookPdfView::isLoaded() const {
    return m_document->status() == QPdfDocument::Status::Ready && m_document->pageCount() > 0;
}

int QuickLookPdfView::pageCount() const {
    return m_document->pageCount();
}

int QuickLookPdfView::currentPage() const {
    return m_view->pageNavigator()->currentPage();
}

void QuickLookPdfView::showPage(int page) {
    if (page < 0 || page >= pageCount())
        return;
    QPdfPageNavigator* navigator = m_view->pageNavigator();
    navigator->jump(page, QPointF(), navigator->currentZoom());
}

QSize QuickLookPdfView::preferredSize() const {
    if (!isLoaded())
        return {};
    const QSizeF page = m_document->pagePointSize(0) * kPixelsPerPoint;
    return {qRound(page.width()), qRound(page.height()) + kPageBarHeight};
}

void QuickLookPdfView::updatePageBar() {
    const int count = pageCount();
    const int page = currentPage();
    m_page->setText(QString("Page %1 of %2").arg(count == 0 ? 0 : page + 1).arg(count));
    m_previous->setEnabled(page > 0);
    m_next->setEnabled(page + 1 < count);
}

} // namespace velmora
