#pragma once

#include <QPointer>
#include <QWidget>

namespace velmora {

// The preview's tool window: one content view at a time, shown beside the history panel without taking
// the keyboard's focus from it (the panel keeps its selection keys). Escape closes it should it ever
// get the focus.
class QuickLookWindow final : public QWidget {
    Q_OBJECT
public:
    QuickLookWindow();

    // Replaces the content view (the window owns it from now on) and the title. preferredSize is the
    // content's size when the view knows better than its size hint (text, documents); may be invalid.
    void setContent(QWidget* view, const QString& title, QSize preferredSize = {});
    // Drops the content view, at the next turn of the event loop.
    void clearContent();
    QWidget* content() const { return m_content; }

    // Sizes the window to its content, at most maxSize, and puts it beside anchor within available.
    void fitBeside(const QRect& anchor, const QRect& available, QSize maxSize);

signals:
    void visibilityChanged(bool visible);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QPointer<QWidget> m_content;
    QSize m_preferredSize;
};

} // namespace velmora
