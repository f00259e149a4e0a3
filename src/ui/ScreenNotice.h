#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

namespace velmora {

// A card near the top of one screen that stays above every window and never takes the keyboard's
// focus: it tells of a state the user must not miss and offers the button that ends it.
class ScreenNotice : public QWidget {
    Q_OBJECT
public:
    ScreenNotice(const QString& title, const QString& text, const QString& endTitle,
                 std::function<void()> end);

    // Shows the card on that screen, centred horizontally in its available area.
    void showOn(QScreen* screen);

    QPushButton* endButton() const { return m_end; }

private:
    QPushButton* m_end;
};

} // namespace velmora
