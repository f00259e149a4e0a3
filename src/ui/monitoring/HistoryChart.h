#pragma once

#include <QColor>
#include <QWidget>
#include <vector>

namespace velmora {

// A small area chart of one quantity over the kept history, newest on the right, one point per
// sample. The time axis spans the history kept so far, but at least kMinimumSpan samples, so that a
// young history starts as a short line on the right instead of stretching two points across; the
// charts of one window share their history and so stay aligned.
class HistoryChart : public QWidget {
    Q_OBJECT
public:
    static constexpr std::size_t kMinimumSpan = 36; // three minutes at one sample every five seconds

    HistoryChart(QString title, QColor colour, std::size_t capacity, QWidget* parent = nullptr);

    // The values oldest first, the value at the top of the chart, the newest value as text and the
    // top's as text ("100%", "2.4 MB").
    void setValues(std::vector<double> values, double maximum, QString current, QString top);
    const std::vector<double>& values() const { return m_values; }
    const QString& currentText() const { return m_current; }

    QSize sizeHint() const override { return {220, 110}; }
    QSize minimumSizeHint() const override { return {140, 80}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_title;
    QColor m_colour;
    std::size_t m_capacity;
    std::vector<double> m_values;
    double m_maximum = 1;
    QString m_current;
    QString m_top;
};

} // namespace velmora
