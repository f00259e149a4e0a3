#pragma once

#include "core/WindowArea.h"

#include <QColor>
#include <QSizeF>
#include <QWidget>

namespace velmora {

// One zone drawn on a screen of the given proportions: the screen as a frame, the zone as a rounded
// rectangle inside it. A zone whose numbers do not read cannot be placed, so the whole screen is
// hatched in a warning colour instead.
class WindowAreaView : public QWidget {
    Q_OBJECT
public:
    explicit WindowAreaView(QWidget* parent = nullptr);

    // Only the proportions matter; the drawing is scaled to fit the widget.
    QSizeF screenSize() const { return m_screenSize; }
    void setScreenSize(const QSizeF& size);
    const WindowArea& area() const { return m_area; }
    void setArea(const WindowArea& area);
    bool isValid() const { return m_isValid; }
    void setValid(bool valid);
    double cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(double radius);
    double opacity() const { return m_opacity; }
    void setOpacity(double opacity);

    // The colour of anything that cannot be used as it stands, shared with the editor's marks.
    static QColor warningColor();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSizeF m_screenSize{16, 10};
    WindowArea m_area;
    bool m_isValid = true;
    double m_cornerRadius = 4;
    double m_opacity = 1;
};

} // namespace velmora
