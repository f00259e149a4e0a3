#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

namespace velmora {

// A short line near the bottom of a screen that goes away by itself: what an action could not do
// ("No window has the focus"). It never takes the focus or a click, so typing goes on undisturbed.
class BriefMessage : public QWidget {
    Q_OBJECT
public:
    static constexpr int kShownMs = 2000;

    BriefMessage();

    void showOn(QScreen* screen, const QString& text);
    QString text() const;

private:
    QLabel* m_label;
    QTimer m_hide;
};

} // namespace velmora
