#pragma once

#include <QWidget>

namespace velmora {

// One key cap: a rounded key with its label, filled with the highlight colour while the key is held.
// A disabled cap is drawn greyed.
class KeyRenderer : public QWidget {
    Q_OBJECT
public:
    explicit KeyRenderer(QString label = {}, QWidget* parent = nullptr);

    const QString& label() const { return m_label; }
    void setLabel(const QString& label);
    bool highlight() const { return m_highlight; }
    void setHighlight(bool highlight);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_label;
    bool m_highlight = false;
};

} // namespace velmora
