#pragma once

#include <QWidget>

class QLabel;
class QPdfDocument;
class QPdfView;
class QPushButton;

namespace velmora {

// A PDF file one page at a time, with the page count and buttons to the previous and next page.
class QuickLookPdfView final : public QWidget {
    Q_OBJECT
public:
    // Loads the file at once (a local PDF loads quickly; its pages are rendered as they are shown).
    explicit QuickLookPdfView(const QString& path, QWidget* parent = nullptr);

    // Whether the file loaded as a PDF with at least one page; nothing else is meaningful otherwise.
    bool isLoaded() const;
    int pageCount() const;
    int currentPage() const; // from 0
    void showPage(int page);
    // The first page at screen resolution with the page bar, as the window would best be.
    QSize preferredSize() const;

private:
    void updatePageBar();

    QPdfDocument* m_document;
    QPdfView* m_view;
    QPushButton* m_previous;
    QPushButton* m_next;
    QLabel* m_page;
};

} // namespace velmora
