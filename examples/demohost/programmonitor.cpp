#include "programmonitor.h"

#include "windowtext.h"

#include <vexainputsourcewidget/inputsourcedragpayload.h>

#include <zq/mediacore/iframe.h>
#include <zq/mediacore/imeta.h>

#include <QDragEnterEvent>
#include <QImage>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QVBoxLayout>

#include <atomic>
#include <cstring>
#include <mutex>
#include <optional>

namespace demohost {

namespace {

using vexa::inputsource::InputSourceDragPayload;

// Shared with every offerFrame() in progress, so that a call which began before the monitor's
// destruction still finds its lock and sees the monitor gone instead of touching freed memory.
struct Picture
{
    std::mutex lock;
    QImage image;
    bool alive = true;
    // One repaint request on its way at a time: 25 frames a second would otherwise queue
    // requests the GUI thread only coalesces again.
    std::atomic<bool> repaintPending{false};
    std::atomic<uint64_t> programId{0};
    std::atomic<uint64_t> shownFrames{0};
};

constexpr int margin = 16;

} // namespace

struct ProgramMonitor::Impl
{
    explicit Impl(ProgramMonitor* owner)
        : q(owner)
    {}

    void showCaption();

    ProgramMonitor* const q;
    std::shared_ptr<Picture> const picture = std::make_shared<Picture>();
    QLabel* caption = nullptr;
    QString programName;
    DropRecord lastDrop;
    bool dropHovering = false;
};

void ProgramMonitor::Impl::showCaption()
{
    caption->setText(programName.isEmpty() ? windowText("ProgramHint")
                                           : windowText("ProgramCaption").arg(programName));
    // A screen reader hears what is on air with the monitor's name.
    q->setAccessibleDescription(caption->text());
}

ProgramMonitor::ProgramMonitor(QWidget* parent)
    : QFrame(parent)
    , d(std::make_unique<Impl>(this))
{
    setObjectName(QStringLiteral("programMonitor"));
    setAcceptDrops(true);
    // Reachable with Tab, so that the keyboard's way to put a source on program has a place
    // to show what it did.
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(320, 200);
    setFrameShape(QFrame::NoFrame);

    d->caption = new QLabel(this);
    d->caption->setObjectName(QStringLiteral("programCaption"));
    d->caption->setAlignment(Qt::AlignCenter);
    d->caption->setWordWrap(true);
    d->caption->setStyleSheet(QStringLiteral("color: #e8e8e8; font-size: 15px;"));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addStretch(1);
    layout->addWidget(d->caption);
    retranslate();
}

ProgramMonitor::~ProgramMonitor()
{
    // A frame thread inside offerFrame() finishes its copy first; later calls are refused.
    const std::lock_guard<std::mutex> guard(d->picture->lock);
    d->picture->alive = false;
}

void ProgramMonitor::setProgram(uint64_t id, const QString& name)
{
    if (id == 0) {
        clearProgram();
        return;
    }
    const bool changed = d->picture->programId.load() != id;
    {
        const std::lock_guard<std::mutex> guard(d->picture->lock);
        if (changed) {
            // The previous source's last picture must not stand for the new one.
            d->picture->image = QImage();
            d->picture->shownFrames = 0;
        }
        d->picture->programId = id;
    }
    d->programName = name;
    d->showCaption();
    update();
    if (changed) {
        Q_EMIT programChanged(id);
    }
}

void ProgramMonitor::clearProgram()
{
    const bool had = d->picture->programId.load() != 0;
    {
        const std::lock_guard<std::mutex> guard(d->picture->lock);
        d->picture->programId = 0;
        d->picture->image = QImage();
        d->picture->shownFrames = 0;
    }
    d->programName.clear();
    d->showCaption();
    update();
    if (had) {
        Q_EMIT programChanged(0);
    }
}

void ProgramMonitor::renameSource(uint64_t id, const QString& name)
{
    if (id == 0 || id != d->picture->programId.load()) {
        return;
    }
    d->programName = name;
    d->showCaption();
}

uint64_t ProgramMonitor::programId() const
{
    return d->picture->programId.load();
}

QString ProgramMonitor::programName() const
{
    return d->programName;
}

void ProgramMonitor::offerFrame(uint64_t id, const zq::mediacore::IFrame* frame)
{
    // Taken first: from here on the call needs the monitor's memory only while it is alive.
    const std::shared_ptr<Picture> picture = d->picture;
    if (frame == nullptr || id == 0 || id != picture->programId.load()) {
        return;
    }
    const auto buffer = frame->getBuffer();
    const int width = frame->getWidth();
    const int height = frame->getHeight();
    if (!buffer || buffer->data() == nullptr || width <= 0 || height <= 0) {
        return;
    }
    const std::lock_guard<std::mutex> guard(picture->lock);
    // The program may have changed while this frame was on its way.
    if (!picture->alive || id != picture->programId.load()) {
        return;
    }
    if (picture->image.width() != width || picture->image.height() != height) {
        picture->image = QImage(width, height, QImage::Format_RGBA8888);
    }
    const int lineBytes = width * 4;
    for (int line = 0; line < height; ++line) {
        std::memcpy(picture->image.scanLine(line), buffer->data() + line * buffer->stride(),
                    static_cast<std::size_t>(lineBytes));
    }
    ++picture->shownFrames;
    if (!picture->repaintPending.exchange(true)) {
        // Under the lock with the monitor alive, so it is safe to name as the context; Qt
        // drops the request should the monitor go before the GUI thread gets to it.
        QMetaObject::invokeMethod(
            this,
            [this, picture] {
                picture->repaintPending = false;
                update();
            },
            Qt::QueuedConnection);
    }
}

uint64_t ProgramMonitor::shownFrames() const
{
    return d->picture->shownFrames.load();
}

ProgramMonitor::DropRecord ProgramMonitor::lastDrop() const
{
    return d->lastDrop;
}

void ProgramMonitor::retranslate()
{
    setAccessibleName(windowText("ProgramMonitor"));
    setToolTip(windowText("ProgramHint"));
    d->showCaption();
}

void ProgramMonitor::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData() == nullptr || !InputSourceDragPayload::isPayload(*event->mimeData())) {
        event->ignore();
        return;
    }
    // The tile offers a move; the source stays in the panel, the monitor only shows it.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    d->dropHovering = true;
    update();
}

void ProgramMonitor::dragMoveEvent(QDragMoveEvent* event)
{
    if (event->mimeData() == nullptr || !InputSourceDragPayload::isPayload(*event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void ProgramMonitor::dragLeaveEvent(QDragLeaveEvent* event)
{
    d->dropHovering = false;
    update();
    QFrame::dragLeaveEvent(event);
}

void ProgramMonitor::dropEvent(QDropEvent* event)
{
    d->dropHovering = false;
    update();
    const QMimeData* const data = event->mimeData();
    const std::optional<uint64_t> id = data == nullptr || !InputSourceDragPayload::isPayload(*data)
                                           ? std::nullopt
                                           : InputSourceDragPayload::sourceId(*data);
    if (!id || *id == 0) {
        event->ignore();
        return;
    }
    DropRecord record;
    record.id = *id;
    record.native = InputSourceDragPayload::isNative(*data);
    record.damaged = InputSourceDragPayload::isDamaged(*data);
    record.formats = data->formats();
    // The description is the dragging tile's, valid while the drag lasts, which it still does.
    if (const zq::mediacore::IMeta* const meta = InputSourceDragPayload::meta(*data)) {
        record.name = QString::fromStdString(meta->getName());
    }
    d->lastDrop = record;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    setProgram(record.id, record.name.isEmpty() ? QString::number(record.id) : record.name);
    Q_EMIT sourceDropped(record.id);
}

void ProgramMonitor::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x10, 0x11, 0x14));

    const int captionSpace = d->caption->height() + margin;
    const QRect area = rect().adjusted(margin, margin, -margin, -margin - captionSpace);
    QSize screen(16, 9);
    screen.scale(area.size(), Qt::KeepAspectRatio);
    const QRect target(area.center() - QPoint(screen.width() / 2, screen.height() / 2), screen);
    painter.fillRect(target, Qt::black);
    {
        const std::lock_guard<std::mutex> guard(d->picture->lock);
        if (!d->picture->image.isNull()) {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(target, d->picture->image);
        }
    }
    // On air: red; a tile hovering: the theme's highlight; idle: a quiet frame.
    QColor edge(0x3a, 0x3d, 0x44);
    if (d->dropHovering) {
        edge = QColor(0x2f, 0x8f, 0xff);
    } else if (programId() != 0) {
        edge = QColor(0xe0, 0x30, 0x30);
    }
    painter.setPen(QPen(edge, d->dropHovering || hasFocus() ? 4 : 2));
    painter.drawRect(target.adjusted(-2, -2, 1, 1));
}

} // namespace demohost
