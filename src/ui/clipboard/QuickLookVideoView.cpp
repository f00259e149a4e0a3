#include "ui/clipboard/QuickLookVideoView.h"

#include "clipboard/ClipboardLog.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include <QtConcurrent/QtConcurrentRun>
#include <algorithm>

namespace velmora {

namespace {

// Room kept under the frame for the size and the button.
constexpr int kCaptionHeight = 56;

QLabel* centred(QLabel* label, const QString& name) {
    label->setObjectName(name);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

QString sizeText(QSize size) {
    return QString("%1 \u00d7 %2").arg(size.width()).arg(size.height());
}

} // namespace

QuickLookVideoView::QuickLookVideoView(const QString& path, FileThumbnails& thumbnails, QThreadPool& pool,
                                       QSize maxSize, QWidget* parent)
    : QWidget(parent), m_path(path), m_maxSize(maxSize), m_loading(new QLabel("Loading\u2026")) {
    setObjectName("quickLookVideo");
    m_loading->setObjectName("loading");
    m_loading->setAlignment(Qt::AlignCenter);
    m_loading->setMinimumSize(320, 180);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_loading);
    connect(&m_watcher, &QFutureWatcherBase::finished, this, [this] { present(m_watcher.result()); });
    FileThumbnails* source = &thumbnails;
    m_watcher.setFuture(
        QtConcurrent::run(&pool, [source, path] { return source->contentThumbnail(path, frameTarget); }));
}

void QuickLookVideoView::present(const std::optional<FileThumbnail>& thumbnail) {
    m_loading->hide();
    // Built whole and shown at once: children added one by one to a visible view would only be shown
    // at the next turn of the event loop, after the window had been sized to the view without them.
    auto* result = new QWidget;
    auto* column = new QVBoxLayout(result);
    column->setContentsMargins(0, 0, 0, 0);
    if (!thumbnail || thumbnail->image.isNull()) {
        qCWarning(lcClipboard).noquote() << "The preview has no frame of the video" << m_path;
        column->addWidget(centred(new QLabel("This video cannot be shown."), "message"));
    } else {
        const QSize room(m_maxSize.width(), std::max(1, m_maxSize.height() - kCaptionHeight));
        QImage frame = thumbnail->image;
        if (frame.width() > room.width() || frame.height() > room.height())
            frame = frame.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        auto* picture = centred(new QLabel, "frame");
        picture->setPixmap(QPixmap::fromImage(frame));
        column->addWidget(picture, 1);
        const QSize natural =
            thumbnail->naturalSize.isValid() ? thumbnail->naturalSize : thumbnail->image.size();
        column->addWidget(centred(new QLabel(sizeText(natural)), "naturalSize"));
    }
    auto* open = new QPushButton("Open");
    open->setObjectName("open");
    open->setFocusPolicy(Qt::NoFocus);
    connect(open, &QPushButton::clicked, this,
            [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(m_path)); });
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(open);
    row->addStretch(1);
    column->addLayout(row);
    layout()->addWidget(result);
    result->show();
    emit finished();
}

} // namespace velmora
