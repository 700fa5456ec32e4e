#include "diplaywind.h"

#include "queuedhandoff.h"

#include <zq/mediacore/iframebuffer.h>

#include <QAbstractButton>
#include <QEvent>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QRgb>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <vector>

namespace vexa::inputsource {

namespace {

constexpr int bytesPerPixel = 4;
constexpr int cacheLine = 64;
// How far ahead of the row being sampled its source lines are fetched.
constexpr int prefetchRows = 4;

// A preview is a thumbnail; no real source is larger than 16384 x 16384. The cap keeps a frame
// that lies about its size from making the surface allocate gigabytes, and keeps every byte
// count far below what size_t and QImage can hold.
constexpr int64_t maxSide = 16384;
constexpr int64_t maxBytes = maxSide * maxSide * bytesPerPixel;
static_assert(static_cast<uint64_t>(maxBytes) <= std::numeric_limits<std::size_t>::max());

// One RGBA8888 pixel (bytes red, green, blue, alpha) as a QRgb (0xAARRGGBB).
inline QRgb toArgb(const uint8_t* pixel)
{
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    uint32_t value;
    std::memcpy(&value, pixel, sizeof value);
    // Read as one word the bytes are 0xAABBGGRR: red and blue trade places.
    return (value & 0xff00ff00u) | ((value & 0xffu) << 16) | ((value >> 16) & 0xffu);
#else
    return qRgba(pixel[0], pixel[1], pixel[2], pixel[3]);
#endif
}

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
    // Counts the frames copied, so that painting knows whether its sample is still current.
    uint64_t serial = 0;
    bool alive = true;
    // At most one repaint request travels to the GUI thread at a time: at high frame rates the
    // event queue would otherwise fill with requests, each one allocated, that the GUI thread
    // would only coalesce again.
    std::atomic<bool> repaintPending{false};
};

// Paints the widgets that lie over the surface (the tile's state dot and preview button) as part
// of the surface's own paint, from pictures of them kept until they change. A frame then
// repaints the surface alone: Qt asks the widgets over it to paint as well, and the compositor
// answers for them, since the surface has just drawn them over the new picture. When one of
// them changes, Qt repaints its area, the surface below it included, which draws it anew.
class OverlayCompositor : public QObject
{
public:
    explicit OverlayCompositor(QWidget* surface)
        : surface(surface)
    {}

    void setOverlays(const QList<QWidget*>& widgets)
    {
        for (Overlay& overlay : overlays) {
            if (!overlay.widget.isNull()) {
                overlay.widget->removeEventFilter(this);
            }
        }
        overlays.clear();
        for (QWidget* widget : widgets) {
            overlays.push_back(Overlay{widget, {}, {}});
            widget->installEventFilter(this);
            widget->setAttribute(Qt::WA_NoSystemBackground, active);
        }
    }

    // Draws every overlay that lies on the surface, above whatever `painter` drew so far.
    void paint(QPainter& painter)
    {
        const qreal ratio = surface->devicePixelRatioF();
        for (Overlay& overlay : overlays) {
            QWidget* const widget = overlay.widget.data();
            if (widget == nullptr || !coversPart(widget)) {
                continue;
            }
            const State now = stateOf(*widget);
            if (!(now == overlay.state) || overlay.picture.isNull()) {
                render(overlay, ratio);
                overlay.state = now;
            }
            painter.drawImage(widget->pos() - surface->pos(), overlay.picture);
        }
    }

    // Whether the surface draws the overlays itself now. Qt paints a styled background before
    // the paint event it sends, so the overlays are told to leave their backgrounds out as well.
    void setActive(bool composited)
    {
        if (composited == active) {
            return;
        }
        active = composited;
        for (Overlay& overlay : overlays) {
            if (!overlay.widget.isNull()) {
                overlay.widget->setAttribute(Qt::WA_NoSystemBackground,
                                             composited && coversPart(overlay.widget));
            }
        }
    }

    bool isActive() const { return active; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::Paint:
            // Not while rendering the overlay's own picture; otherwise the surface below has
            // just drawn it in this same pass.
            return active && !rendering && surface->isVisible() &&
                   coversPart(static_cast<QWidget*>(watched));
        case QEvent::StyleChange:
        case QEvent::PaletteChange:
        case QEvent::FontChange:
        case QEvent::EnabledChange:
        case QEvent::DynamicPropertyChange:
        case QEvent::LanguageChange:
        case QEvent::LayoutDirectionChange:
        case QEvent::Resize:
            ++generation;
            break;
        default:
            break;
        }
        return false;
    }

private:
    // What decides an overlay's look, besides its style, which the generation follows.
    struct State
    {
        QString name;
        QString text;
        uint generation = 0;
        int flags = -1;

        bool operator==(const State& other) const
        {
            return flags == other.flags && generation == other.generation && name == other.name &&
                   text == other.text;
        }
    };

    struct Overlay
    {
        QPointer<QWidget> widget;
        QImage picture;
        State state;
    };

    State stateOf(const QWidget& widget) const
    {
        State state;
        state.name = widget.objectName();
        state.generation = generation;
        int flags = (widget.isEnabled() ? 1 : 0) | (widget.underMouse() ? 2 : 0) |
                    (widget.hasFocus() ? 4 : 0);
        if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
            state.text = label->text();
        } else if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
            state.text = button->text();
            flags |= (button->isDown() ? 8 : 0) | (button->isChecked() ? 16 : 0);
        }
        state.flags = flags;
        return state;
    }

    // Only an overlay that lies wholly on the surface can be drawn by it.
    bool coversPart(const QWidget* widget) const
    {
        return !widget->isHidden() && widget->parentWidget() == surface->parentWidget() &&
               surface->geometry().contains(widget->geometry());
    }

    void render(Overlay& overlay, qreal ratio)
    {
        QWidget* const widget = overlay.widget.data();
        overlay.picture = QImage(widget->size() * ratio, QImage::Format_ARGB32_Premultiplied);
        overlay.picture.setDevicePixelRatio(ratio);
        overlay.picture.fill(Qt::transparent);
        rendering = true;
        widget->setAttribute(Qt::WA_NoSystemBackground, false);
        // The overlays have no children; asking for them would have Qt walk the whole window.
        widget->render(&overlay.picture, QPoint(), QRegion(), QWidget::RenderFlags());
        widget->setAttribute(Qt::WA_NoSystemBackground, active && coversPart(widget));
        rendering = false;
    }

    QWidget* const surface;
    std::vector<Overlay> overlays;
    uint generation = 0;
    bool rendering = false;
    bool active = false;
};

} // namespace

struct DiplayWind::Impl
{
    explicit Impl(DiplayWind* surface)
        : q(surface)
        , overlays(surface)
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
            if (!hasPicture) {
                hasPicture = true;
                // From now on every pixel is painted here: Qt need not paint what lies below.
                q->setAttribute(Qt::WA_OpaquePaintEvent);
                Q_EMIT q->pictureShown();
            }
            q->update();
        });
    }

    void resample(const Picture& source, const QSize& device, qreal ratio);

    DiplayWind* const q;
    const std::shared_ptr<Picture> picture = std::make_shared<Picture>();

    // GUI thread only. The picture sampled at the surface's size in device pixels, one source
    // pixel per device pixel, as QPainter picks them when it stretches without smoothing. Qt's
    // own stretching of a non-premultiplied RGBA picture converts every line it reads through
    // its slowest, generic path; sampling here reads only the pixels that are shown and leaves
    // Qt a plain copy.
    bool hasPicture = false;
    QImage sample;
    // The same pixels seen as opaque, which Qt copies without blending.
    QImage opaqueSample;
    bool sampleOpaque = true;
    uint64_t sampledSerial = 0;
    Geometry sampledGeometry;
    // Byte offset in a source line of the pixel that each device column shows.
    std::vector<int> columnOffsets;
    OverlayCompositor overlays;
};

void DiplayWind::Impl::resample(const Picture& source, const QSize& device, qreal ratio)
{
    const Geometry& geometry = source.geometry;
    if (sample.size() != device) {
        sample = QImage(device, QImage::Format_ARGB32_Premultiplied);
        sample.setDevicePixelRatio(ratio);
        columnOffsets.clear();
    }
    const int width = device.width();
    const int height = device.height();
    if (static_cast<int>(columnOffsets.size()) != width || sampledGeometry != geometry) {
        columnOffsets.resize(static_cast<std::size_t>(width));
        for (int x = 0; x < width; ++x) {
            // The source pixel under the centre of the device pixel.
            const int64_t column = (int64_t(2 * x + 1) * geometry.width) / (int64_t(2) * width);
            columnOffsets[static_cast<std::size_t>(x)] = static_cast<int>(column) * bytesPerPixel;
        }
        sampledGeometry = geometry;
    }
    const uint8_t* const pixels = source.pixels.get();
    const int* const offsets = columnOffsets.data();
    const auto sourceLine = [&geometry, height](int y) {
        return (int64_t(2 * y + 1) * geometry.height) / (int64_t(2) * height);
    };
    // The frame thread has just written these lines, so they are in another core's cache or in
    // memory: asking for the lines a few rows ahead lets the fetches overlap instead of each
    // pixel waiting for its own.
    const int64_t firstByte = offsets[0];
    const int64_t lastByte = offsets[width - 1] + bytesPerPixel;
    const auto prefetchRow = [&](int y) {
        if (y >= height) {
            return;
        }
        const uint8_t* const in = pixels + sourceLine(y) * geometry.stride;
        for (int64_t byte = firstByte; byte < lastByte; byte += cacheLine) {
            __builtin_prefetch(in + byte);
        }
    };
    for (int y = 0; y < prefetchRows; ++y) {
        prefetchRow(y);
    }
    unsigned alpha = 0xff;
    for (int y = 0; y < height; ++y) {
        prefetchRow(y + prefetchRows);
        const uint8_t* const in = pixels + sourceLine(y) * geometry.stride;
        auto* const out = reinterpret_cast<QRgb*>(sample.scanLine(y));
        for (int x = 0; x < width; ++x) {
            out[x] = toArgb(in + offsets[x]);
            alpha &= qAlpha(out[x]);
        }
    }
    sampleOpaque = alpha == 0xff;
    if (!sampleOpaque) {
        for (int y = 0; y < height; ++y) {
            auto* const out = reinterpret_cast<QRgb*>(sample.scanLine(y));
            for (int x = 0; x < width; ++x) {
                out[x] = qPremultiply(out[x]);
            }
        }
    }
    opaqueSample =
        QImage(sample.constBits(), width, height, sample.bytesPerLine(), QImage::Format_RGB32);
    opaqueSample.setDevicePixelRatio(ratio);
    sampledSerial = source.serial;
}

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
    ++picture->serial;
    d->requestRepaint();
    return 0;
}

void DiplayWind::setOverlays(const QList<QWidget*>& overlays)
{
    d->overlays.setOverlays(overlays);
}

void DiplayWind::hideEvent(QHideEvent* event)
{
    // Hidden, the surface draws nothing: the overlays paint themselves again.
    d->overlays.setActive(false);
    QWidget::hideEvent(event);
}

bool DiplayWind::hasPicture() const
{
    return d->hasPicture;
}

void DiplayWind::paintEvent(QPaintEvent* /*event*/)
{
    const qreal ratio = devicePixelRatioF();
    const QSize device(qRound(width() * ratio), qRound(height() * ratio));
    if (device.isEmpty()) {
        d->overlays.setActive(false);
        return;
    }
    {
        Picture& picture = *d->picture;
        const std::lock_guard<std::mutex> guard(picture.lock);
        if (picture.image.isNull()) {
            d->overlays.setActive(false);
            return;
        }
        if (picture.serial != d->sampledSerial || d->sample.size() != device) {
            d->resample(picture, device, ratio);
        }
    }
    QPainter painter(this);
    if (d->sampleOpaque) {
        painter.drawImage(QPoint(0, 0), d->opaqueSample);
    } else {
        painter.drawImage(QPoint(0, 0), d->sample);
    }
    // Over a see-through picture the overlays paint themselves, after what lies below.
    d->overlays.setActive(d->sampleOpaque);
    if (d->overlays.isActive()) {
        d->overlays.paint(painter);
    }
    // A picture that lets what lies below show through needs that painted first; the attribute
    // follows the picture, and a picture that just turned see-through is painted once more.
    const bool opaque = d->hasPicture && d->sampleOpaque;
    if (testAttribute(Qt::WA_OpaquePaintEvent) != opaque) {
        setAttribute(Qt::WA_OpaquePaintEvent, opaque);
        if (!opaque) {
            update();
        }
    }
}

} // namespace vexa::inputsource
