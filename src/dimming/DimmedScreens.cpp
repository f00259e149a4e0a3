#include "dimming/DimmedScreens.h"

#include <QStringList>
#include <charconv>
#include <cmath>

namespace velmora {

namespace {

// Window coordinates and sizes on X11 are 16-bit.
constexpr double kLargestSide = 32767;

} // namespace

bool qualifiesForDimming(const Rect& frame) {
    if (!(frame.height > 0) || !(frame.width > 0))
        return false;
    const double ratio = frame.width / frame.height;
    return ratio < 1.0 || ratio >= 16.0 / 9.0;
}

QString decimalText(double value) {
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    if (error != std::errc())
        return QString::number(value);
    QString text = QString::fromLatin1(buffer, end - buffer);
    if (std::isfinite(value) && !text.contains('.') && !text.contains('e'))
        text += ".0";
    return text;
}

QString dimmingScreenKey(const Rect& frame) {
    return QStringList{decimalText(frame.x), decimalText(frame.y), decimalText(frame.width),
                       decimalText(frame.height)}
        .join(':');
}

std::optional<QString> unusableFrameReason(const Rect& frame) {
    for (const double v : {frame.x, frame.y, frame.width, frame.height})
        if (!std::isfinite(v))
            return QString("its frame is not a finite rectangle");
    if (frame.width < 1 || frame.height < 1)
        return QString("it has no area");
    if (frame.width > kLargestSide || frame.height > kLargestSide || std::abs(frame.x) > kLargestSide ||
        std::abs(frame.y) > kLargestSide)
        return QString("it is larger than an X11 window can be");
    return std::nullopt;
}

} // namespace velmora
