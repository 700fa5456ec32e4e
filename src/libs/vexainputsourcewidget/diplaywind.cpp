// SPDX-License-Identifier: MIT
#include "diplaywind.h"

#include "queuedhandoff.h"

#include <zq/mediacore/iframebuffer.h>

#include <QImage>
#include <QPainter>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>

namespace vexa::inputsource {

namespace {

constexpr int bytesPerPixel = 4;

// A preview is a thumbnail; no real source is larger than 16384 x 16384. The cap keeps a frame
// that lies about its size from making the surface allocate gigabytes, and keeps every byte
// count far below what size_t and QImage can hold.
constexpr int64_t maxSide = 16384;
constexpr int64_t maxBytes = maxSide * maxSide * bytesPerPixel;
static_assert(static_cast<uint64_t>(maxBytes) <= std::numeric_limits<std::size_t>::max());

struct Geometry
{
    int width = 0;
    int height = 0;
    int stride = 0;

    bool operator==(const Geometry& other) const
    {
        return width == other.width && height == other.height && stride == other.stride;
    }
    bool operator!=(const Geometry& other) const { return !(*this == other); }

    // In 64 bits, so that a lying frame cannot wrap a product into a small, plausible value.
    bool isAcceptable() const
    {
        return width > 0 && height > 0 && width <= maxSide && height <= maxSide &&
               static_cast<int64_t>(stride) >= static_cast<int64_t>(width) * bytesPerPixel &&
               static_cast<int64_t>(height) * stride <= maxBytes;
    }

    std::size_t byteCount() const
    {
        return static_cast<std::size_t>(height) * static_cast<std::size_t>(stride);
    }
};

// Shared between the widget and every updateFrame() call in progress, so that a call which
// began before the widget's destruction still finds its lock and its alive flag after the
// widget's memory is gone; such a call is then refused instead of touching freed memory.
struct Picture
{
    std::mutex lock;
    std::unique_ptr<uint8_t[]> pixels;
    // A header over `pixels`, never a copy: nothing may call a non-const member on it, or it
    // would detach into a private copy that frames no longer reach.
    QImage image;
    Geometry geometry;
    bool alive = true;
    // At most one repaint request travels to the GUI thread at a time: at high frame rates the
    // event queue would otherwise fill with requests, each one allocated, that the GUI thread
    // would only coalesce again.
    std::atomic<bool> repaintPending{false};
};

} // namespace

struct DiplayWind::Impl
{
    explicit Impl(DiplayWind* surface)
        : q(surface)
    {}

    // Called under the picture's lock with the picture alive: the destructor cannot have passed
    // its first line then, so the surface is safe to name as the request's context. Qt drops the
    // request if the surface is destroyed before the GUI thread gets to it.
    void requestRepaint()
    {
        if (picture->repaintPending.exchange(true)) {
            return;
        }
        QueuedHandoff::post(q, [this] {
            // Cleared before update(), so that a frame copied after this point asks again.
            picture->repaintPending = false;
            q->update();
        });
    }

    DiplayWind* const q;
    const std::shared_ptr<Picture> picture = std::make_shared<Picture>();
};

DiplayWind::DiplayWind(QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(this))
{
    // Frame threads ask for repaints.
    QueuedHandoff::watch(this);
}

DiplayWind::~DiplayWind()
{
    Picture& picture = *d->picture;
    const std::lock_guard<std::mutex> guard(picture.lock);
    picture.alive = false;
    picture.image = QImage();
    picture.pixels.reset();
}

int DiplayWind::updateFrame(const zq::mediacore::IFrame* frame)
{
    // Taken before anything else: from here on this call no longer needs the widget's memory
    // unless the picture is still alive under its lock.
    const std::shared_ptr<Picture> picture = d->picture;

    if (frame == nullptr) {
        return -1;
    }
    const std::shared_ptr<zq::mediacore::IFrameBuffer> buffer = frame->getBuffer();
    if (!buffer || buffer->data() == nullptr) {
        return -1;
    }

    const std::lock_guard<std::mutex> guard(picture->lock);
    if (!picture->alive) {
        return -1;
    }

    const Geometry geometry{frame->getWidth(), frame->getHeight(), buffer->stride()};
    if (!geometry.isAcceptable()) {
        return -1;
    }
    if (geometry != picture->geometry) {
        // The new buffer is made before the old one is let go, so that a failed allocation
        // leaves the last picture in place like any other refusal.
        std::unique_ptr<uint8_t[]> pixels(new (std::nothrow) uint8_t[geometry.byteCount()]);
        if (!pixels) {
            return -1;
        }
        QImage image(pixels.get(), geometry.width, geometry.height, geometry.stride,
                     QImage::Format_RGBA8888);
        if (image.isNull()) {
            return -1;
        }
        picture->image = std::move(image);
        picture->pixels = std::move(pixels);
        picture->geometry = geometry;
    }
    std::memcpy(picture->pixels.get(), buffer->data(), geometry.byteCount());
    d->requestRepaint();
    return 0;
}

void DiplayWind::paintEvent(QPaintEvent* /*event*/)
{
    Picture& picture = *d->picture;
    const std::lock_guard<std::mutex> guard(picture.lock);
    if (picture.image.isNull()) {
        return;
    }
    QPainter painter(this);
    painter.drawImage(QRect(0, 0, width(), height()), picture.image);
}

} // namespace vexa::inputsource
