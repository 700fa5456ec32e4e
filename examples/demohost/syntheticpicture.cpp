// SPDX-License-Identifier: MIT
#include "syntheticpicture.h"

#include <zq/mediacore/rgbaframe.h>

#include <QColor>
#include <QFont>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

#include <array>
#include <cmath>
#include <cstring>

namespace demohost {

namespace {

constexpr double pi = 3.14159265358979323846;

// The usual 75 % bars, so the strip reads as a test signal at a glance.
constexpr std::array<QRgb, 8> bars = {
    {0xbfbfbf, 0xbfbf00, 0x00bfbf, 0x00bf00, 0xbf00bf, 0xbf0000, 0x0000bf, 0x101010}};

QString timecode(uint64_t sequence)
{
    const uint64_t frames = sequence % SyntheticPicture::framesPerSecond;
    const uint64_t seconds = sequence / SyntheticPicture::framesPerSecond;
    return QStringLiteral("%1:%2:%3:%4")
        .arg(seconds / 3600 % 24, 2, 10, QLatin1Char('0'))
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'))
        .arg(frames, 2, 10, QLatin1Char('0'));
}

void paint(QImage& image, uint64_t sequence, int hue, const QString& name)
{
    const int width = image.width();
    const int height = image.height();
    const int h = ((hue % 360) + 360) % 360;
    // A phase in [0, 1) that wraps every 8 seconds: the motion loops without a visible jump.
    const double phase = static_cast<double>(sequence % (8 * SyntheticPicture::framesPerSecond)) /
                         (8.0 * SyntheticPicture::framesPerSecond);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);

    QLinearGradient background(0, 0, width, height);
    background.setColorAt(0.0, QColor::fromHsv(h, 170, 150));
    background.setColorAt(1.0, QColor::fromHsv((h + 40) % 360, 200, 40));
    painter.fillRect(image.rect(), background);

    const double sweep = 0.5 + 0.5 * std::sin(2 * pi * phase);
    QRadialGradient light(width * (0.15 + 0.7 * sweep), height * 0.35, width * 0.45);
    light.setColorAt(0.0, QColor(255, 255, 255, 70));
    light.setColorAt(1.0, QColor(255, 255, 255, 0));
    painter.fillRect(image.rect(), light);

    const int stripHeight = std::max(2, height / 12);
    const int stripTop = height - stripHeight;
    const double barWidth = static_cast<double>(width) / bars.size();
    for (std::size_t i = 0; i < bars.size(); ++i) {
        painter.fillRect(QRectF(i * barWidth, stripTop, barWidth + 1, stripHeight),
                         QColor(bars[i]));
    }
    const double bandWidth = std::max(2.0, width / 24.0);
    const double bandX = std::fmod(phase * 2.0, 1.0) * (width + bandWidth) - bandWidth;
    painter.fillRect(QRectF(bandX, stripTop, bandWidth, stripHeight), Qt::white);

    // A figure-of-eight that starts at the right edge halfway down, clear of what the tile lays
    // over the corners, so the still picture shows the disc whole.
    const double radius = height * 0.16;
    const double x = radius + (width - 2 * radius) * (0.5 + 0.5 * std::cos(2 * pi * phase));
    const double y = radius + (stripTop - 2 * radius) * (0.5 + 0.5 * std::sin(4 * pi * phase));
    painter.setPen(QPen(QColor(255, 255, 255, 200), std::max(1.0, radius / 8)));
    painter.setBrush(QColor::fromHsv((h + 180) % 360, 120, 235, 150));
    painter.drawEllipse(QPointF(x, y), radius, radius);

    // The tile lays its online dot, preview button and running time over the picture's top
    // corners and bottom centre, so the name sits on the left in the middle and the timecode
    // at the top in the middle.
    QFont font;
    font.setBold(true);
    font.setPixelSize(std::max(6, height / 8));
    painter.setFont(font);
    const int margin = std::max(2, height / 20);
    const QRect nameArea(margin * 2, height / 4, width - 4 * margin, height / 3);
    painter.setPen(QColor(0, 0, 0, 150));
    painter.drawText(nameArea.translated(2, 2), Qt::AlignLeft | Qt::AlignVCenter, name);
    painter.setPen(Qt::white);
    painter.drawText(nameArea, Qt::AlignLeft | Qt::AlignVCenter, name);

    QFont digits(QStringLiteral("monospace"));
    digits.setStyleHint(QFont::TypeWriter);
    digits.setPixelSize(std::max(6, height / 11));
    painter.setFont(digits);
    const QString code = timecode(sequence);
    QRect plate =
        painter.fontMetrics().boundingRect(code).adjusted(-margin, -margin / 2, margin, margin / 2);
    plate.moveTop(margin);
    plate.moveLeft((width - plate.width()) / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 150));
    painter.drawRoundedRect(plate, 3, 3);
    painter.setPen(QColor(235, 238, 242));
    painter.drawText(plate, Qt::AlignCenter, code);
}

} // namespace

void SyntheticPicture::draw(zq::mediacore::RgbaFrame& frame, uint64_t sequence, int hue,
                            const QString& name)
{
    if (frame.getWidth() <= 0 || frame.getHeight() <= 0) {
        return;
    }
    // Painted straight into the frame's buffer: the image does not own or copy the bytes.
    QImage image(frame.line(0), frame.getWidth(), frame.getHeight(), frame.stride(),
                 QImage::Format_RGBA8888);
    paint(image, sequence, hue, name);
}

zq::mediacore::Thumbnail SyntheticPicture::still(int width, int height, int hue,
                                                 const QString& name)
{
    zq::mediacore::Thumbnail thumbnail;
    if (width <= 0 || height <= 0) {
        return thumbnail;
    }
    QImage image(width, height, QImage::Format_RGBA8888);
    paint(image, 0, hue, name);
    thumbnail.width = width;
    thumbnail.height = height;
    thumbnail.rgba.resize(static_cast<std::size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        std::memcpy(thumbnail.rgba.data() + static_cast<std::size_t>(y) * width * 4,
                    image.constScanLine(y), static_cast<std::size_t>(width) * 4);
    }
    return thumbnail;
}

int SyntheticPicture::hueOf(uint64_t id)
{
    // 137 degrees apart: the golden angle, so any run of neighbouring ids spreads round the
    // colour wheel.
    return static_cast<int>((id * 137) % 360);
}

} // namespace demohost
