#include "syntheticpreview.h"

#include <vexainputsourcewidget/testing/framefactory.h>

#include <QImage>
#include <QPainter>
#include <QTimer>

namespace demohost {

struct SyntheticPreview::Impl
{
    Impl(int width, int height, int hue)
        : frame(width, height, 25.0)
        , hue(hue)
    {}

    zq::mediacore::RgbaFrame frame;
    int hue = 0;
    uint64_t sequence = 0;
    QTimer timer;
};

SyntheticPreview::SyntheticPreview(int width, int height, int hue, QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(width, height, hue))
{
    setObjectName(QStringLiteral("syntheticPreview"));
    vexa::testing::FrameFactory::drawPattern(d->frame, d->sequence, d->hue);
    connect(&d->timer, &QTimer::timeout, this, [this] {
        vexa::testing::FrameFactory::drawPattern(d->frame, ++d->sequence, d->hue);
        update();
    });
    d->timer.start(40);
}

SyntheticPreview::~SyntheticPreview() = default;

QSize SyntheticPreview::sizeHint() const
{
    return {d->frame.getWidth(), d->frame.getHeight()};
}

void SyntheticPreview::paintEvent(QPaintEvent*)
{
    const auto buffer = d->frame.getBuffer();
    const QImage image(buffer->data(), d->frame.getWidth(), d->frame.getHeight(), buffer->stride(),
                       QImage::Format_RGBA8888);
    QPainter painter(this);
    painter.drawImage(rect(), image);
}

} // namespace demohost
