#pragma once

#include <QFrame>
#include <functional>

class QLabel;
class QPushButton;

namespace velmora {

// A line under a list that says what was just removed or replaced, with a button that brings it
// back. Only the last change can be undone; any other edit dismisses the offer.
class UndoBar : public QFrame {
    Q_OBJECT
public:
    explicit UndoBar(QWidget* parent = nullptr);

    void offer(const QString& text, std::function<void()> undo);
    void dismiss();

    QLabel* text() const { return m_text; }
    QPushButton* undoButton() const { return m_undoButton; }

private:
    QLabel* m_text;
    QPushButton* m_undoButton;
    std::function<void()> m_undo;
};

} // namespace velmora
