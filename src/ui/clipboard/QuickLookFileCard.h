#pragma once

#include <QImage>
#include <QUrl>
#include <QWidget>

namespace velmora {

// What stands for content that has no picture of its own: an icon, a name, a line about it and a
// button that opens it with the desktop's application for it.
class QuickLookFileCard final : public QWidget {
    Q_OBJECT
public:
    // A null icon shows none.
    QuickLookFileCard(const QImage& icon, const QString& name, const QString& detail, const QUrl& target,
                      QWidget* parent = nullptr);

    static constexpr int iconSize = 128;
};

} // namespace velmora
