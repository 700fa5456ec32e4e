// SPDX-License-Identifier: MIT
#include "diplaywind.h"
#include "queuedhandoff.h"

#include <vexainputsourcewidget/testing/framefactory.h>

#include <zq/mediacore/iframe.h>
#include <zq/mediacore/iframebuffer.h>
#include <zq/mediacore/rgbaframe.h>

#include <QtTest>

#include <QColor>
#include <QDeadlineTimer>
#include <QImage>
#include <QPalette>
#include <QSet>
#include <QWidget>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <future>
#include <limits>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using vexa::inputsource::DiplayWind;
using vexa::inputsource::QueuedHandoff;
using vexa::testing::FrameFactory;
using zq::mediacore::IFrame;
using zq::mediacore::IFrameBuffer;
using zq::mediacore::RgbaFrame;

namespace {

constexpr auto patience = std::chrono::seconds(10);
const QColor backdrop(12, 34, 56);
const QColor red(255, 0, 0);
const QColor green(0, 255, 0);
const QColor blue(0, 0, 255);
const QColor white(255, 255, 255);

// Pixel memory that reports whatever stride it is told, over bytes that may be far fewer than
// the stride and the frame's size claim: any read beyond them is an out-of-bounds read that the
// address sanitizer reports.
class LyingBuffer : public IFrameBuffer
{
public:
    LyingBuffer(std::size_t bytes, int stride)
        : m_bytes(bytes, 0xAB)
        , m_stride(stride)
    {}

    const uint8_t* data() const override { return m_bytes.empty() ? nullptr : m_bytes.data(); }
    int stride() const override { return m_stride; }

private:
    const std::vector<uint8_t> m_bytes;
    const int m_stride;
};

// A frame of any claimed size over any buffer, or over none.
class LyingFrame : public IFrame
{
public:
    LyingFrame(int width, int height, std::shared_ptr<IFrameBuffer> buffer)
        : m_width(width)
        , m_height(height)
        , m_buffer(std::move(buffer))
    {}

    int getWidth() const override { return m_width; }
    int getHeight() const override { return m_height; }
    double getFrameRate() const override { return 25.0; }
    std::shared_ptr<IFrameBuffer> getBuffer() const override { return m_buffer; }

private:
    const int m_width;
    const int m_height;
    const std::shared_ptr<IFrameBuffer> m_buffer;
};

// Holds back the thread that passes it until the test opens it, and tells the test when that
// thread has arrived.
class Gate
{
public:
    void pass()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_arrived = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_open; });
    }

    bool waitForArrival()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, patience, [this] { return m_arrived; });
    }

    void open()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_arrived = false;
    bool m_open = false;
};

// A real frame whose buffer or height, as chosen, is handed out only once the gate opens, so
// that the test can hold a frame thread at a known point inside updateFrame().
class GatedFrame : public IFrame
{
public:
    enum class Held
    {
        Buffer, // before the surface has looked at its own state
        Height, // while the surface copies the frame
    };

    GatedFrame(const RgbaFrame& frame, Gate& gate, Held held)
        : m_frame(frame)
        , m_gate(gate)
        , m_held(held)
    {}

    int getWidth() const override { return m_frame.getWidth(); }
    int getHeight() const override
    {
        if (m_held == Held::Height) {
            m_gate.pass();
        }
        return m_frame.getHeight();
    }
    double getFrameRate() const override { return m_frame.getFrameRate(); }
    std::shared_ptr<IFrameBuffer> getBuffer() const override
    {
        if (m_held == Held::Buffer) {
            m_gate.pass();
        }
        return m_frame.getBuffer();
    }

private:
    const RgbaFrame& m_frame;
    Gate& m_gate;
    const Held m_held;
};

// Counts the events of one type that reach a widget.
class EventCounter : public QObject
{
public:
    EventCounter(QObject* watched, QEvent::Type type)
        : m_type(type)
    {
        watched->installEventFilter(this);
    }

    int count() const { return m_count; }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == m_type) {
            ++m_count;
        }
        return false;
    }

private:
    const QEvent::Type m_type;
    int m_count = 0;
};

// A window of one solid colour with the surface inside it, at the tile's thumbnail size, so
// that a grab of the window shows what the surface lets through.
struct Stage
{
    Stage()
        : surface(new DiplayWind(&window))
    {
        QPalette palette = window.palette();
        palette.setColor(QPalette::Window, backdrop);
        window.setPalette(palette);
        window.setAutoFillBackground(true);
        window.resize(200, 120);
        surface->setGeometry(area);
        window.show();
    }

    QImage grab() { return window.grab().toImage().convertToFormat(QImage::Format_RGB32); }

    // The colour at a point given in the surface's own coordinates.
    QColor at(const QImage& shot, int x, int y) const
    {
        return QColor(shot.pixel(area.topLeft() + QPoint(x, y)));
    }

    bool surfaceShowsOnly(const QColor& colour)
    {
        const QImage shot = grab();
        for (int y = 0; y < area.height(); ++y) {
            for (int x = 0; x < area.width(); ++x) {
                if (at(shot, x, y) != colour) {
                    qWarning() << "at" << x << y << at(shot, x, y) << "instead of" << colour;
                    return false;
                }
            }
        }
        return true;
    }

    const QRect area{16, 16, 168, 88};
    QWidget window;
    DiplayWind* const surface;
};

std::unique_ptr<RgbaFrame> solid(const QColor& colour, int width = 4, int height = 4)
{
    return FrameFactory::solid(width, height, static_cast<uint8_t>(colour.red()),
                               static_cast<uint8_t>(colour.green()),
                               static_cast<uint8_t>(colour.blue()));
}

} // namespace

class TestDiplayWind : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsNothingBeforeTheFirstFrame();
    void nullFrameIsRefusedAndTheLastPictureStays();
    void frameWithoutPixelsIsRefusedAndTheLastPictureStays_data();
    void frameWithoutPixelsIsRefusedAndTheLastPictureStays();
    void impossibleGeometryIsRefusedAndTheLastPictureStays_data();
    void impossibleGeometryIsRefusedAndTheLastPictureStays();
    void largestSideIsAccepted();
    void newSizeReplacesThePictureStretchedOverTheWidget();
    void sameSizeShowsTheNewPixels();
    void linePaddingIsNotShown();
    void frameFromAnotherThreadGetsRepainted();
    void repaintRequestsDoNotPileUp();
    void pendingRepaintOfADestroyedSurfaceIsDropped();
    void callInProgressWhenTheSurfaceIsDestroyedIsRefused();
    void copyInProgressHoldsDestructionBack();
    void framesFromSeveralThreadsWithChangingSizes();
};

void TestDiplayWind::paintsNothingBeforeTheFirstFrame()
{
    Stage stage;
    QVERIFY(QTest::qWaitForWindowExposed(&stage.window));

    QVERIFY(stage.surfaceShowsOnly(backdrop));

    // The same check sees a picture once there is one, so the backdrop above was not luck.
    QCOMPARE(stage.surface->updateFrame(solid(green).get()), 0);
    QVERIFY(stage.surfaceShowsOnly(green));
}

void TestDiplayWind::nullFrameIsRefusedAndTheLastPictureStays()
{
    Stage stage;
    QCOMPARE(stage.surface->updateFrame(solid(green).get()), 0);

    QCOMPARE(stage.surface->updateFrame(nullptr), -1);

    QVERIFY(stage.surfaceShowsOnly(green));
}

void TestDiplayWind::frameWithoutPixelsIsRefusedAndTheLastPictureStays_data()
{
    QTest::addColumn<bool>("bufferGiven");
    QTest::newRow("no buffer") << false;
    QTest::newRow("buffer without memory") << true;
}

void TestDiplayWind::frameWithoutPixelsIsRefusedAndTheLastPictureStays()
{
    QFETCH(bool, bufferGiven);
    Stage stage;
    QCOMPARE(stage.surface->updateFrame(solid(green).get()), 0);

    const LyingFrame frame(4, 1, bufferGiven ? std::make_shared<LyingBuffer>(0, 16) : nullptr);
    QCOMPARE(stage.surface->updateFrame(&frame), -1);

    QVERIFY(stage.surfaceShowsOnly(green));
}

void TestDiplayWind::impossibleGeometryIsRefusedAndTheLastPictureStays_data()
{
    constexpr int most = std::numeric_limits<int>::max();
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("stride");
    QTest::newRow("zero width") << 0 << 1 << 16;
    QTest::newRow("zero height") << 4 << 0 << 16;
    QTest::newRow("negative width") << -4 << 1 << 16;
    QTest::newRow("negative height") << 4 << -1 << 16;
    QTest::newRow("stride short of the pixels") << 4 << 1 << 15;
    QTest::newRow("zero stride") << 4 << 1 << 0;
    QTest::newRow("negative stride") << 4 << 1 << -16;
    // 4 x 2^30 is 0 in 32 bits, which any stride would seem to cover.
    QTest::newRow("pixel bytes wrap 32 bits") << (1 << 30) << 1 << 16;
    // 16 x 2^28 is 0 in 32 bits: a byte count of nothing for a quarter of a billion lines.
    QTest::newRow("frame bytes wrap 32 bits") << 4 << (1 << 28) << 16;
    QTest::newRow("side above the cap") << 16385 << 1 << 16385 * 4;
    QTest::newRow("bytes above the cap") << 16384 << 16384 << (1 << 20);
    QTest::newRow("everything at its largest") << most << most << most;
}

void TestDiplayWind::impossibleGeometryIsRefusedAndTheLastPictureStays()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, stride);
    Stage stage;
    QCOMPARE(stage.surface->updateFrame(solid(green).get()), 0);

    // 16 bytes: the copy of any of the claimed sizes would run past them.
    const LyingFrame frame(width, height, std::make_shared<LyingBuffer>(16, stride));
    QCOMPARE(stage.surface->updateFrame(&frame), -1);

    QVERIFY(stage.surfaceShowsOnly(green));
}

void TestDiplayWind::largestSideIsAccepted()
{
    Stage stage;
    const auto frame = solid(blue, 16384, 1);

    QCOMPARE(stage.surface->updateFrame(frame.get()), 0);

    QVERIFY(stage.surfaceShowsOnly(blue));
}

void TestDiplayWind::newSizeReplacesThePictureStretchedOverTheWidget()
{
    Stage stage;
    QCOMPARE(stage.surface->updateFrame(solid(green).get()), 0);
    RgbaFrame halves(2, 1);
    halves.setPixel(0, 0, 255, 0, 0);
    halves.setPixel(1, 0, 0, 0, 255);

    QCOMPARE(stage.surface->updateFrame(&halves), 0);

    const QImage shot = stage.grab();
    const int right = stage.area.width() - 1;
    const int bottom = stage.area.height() - 1;
    for (const int y : {0, bottom / 2, bottom}) {
        for (const int x : {0, right / 4, right / 2 - 1}) {
            QCOMPARE(stage.at(shot, x, y), red);
        }
        for (const int x : {right / 2 + 2, right * 3 / 4, right}) {
            QCOMPARE(stage.at(shot, x, y), blue);
        }
        // Stretched exactly over the widget: not a pixel beyond it on either side.
        QCOMPARE(stage.at(shot, -1, y), backdrop);
        QCOMPARE(stage.at(shot, right + 1, y), backdrop);
    }
}

void TestDiplayWind::sameSizeShowsTheNewPixels()
{
    Stage stage;
    QCOMPARE(stage.surface->updateFrame(solid(green).get()), 0);

    QCOMPARE(stage.surface->updateFrame(solid(red).get()), 0);

    QVERIFY(stage.surfaceShowsOnly(red));
}

void TestDiplayWind::linePaddingIsNotShown()
{
    Stage stage;
    // Two pixels per line and 16 bytes from line to line: half of every line is padding, here
    // white, which must not show.
    RgbaFrame padded(2, 2, 0.0, 16);
    for (int y = 0; y < 2; ++y) {
        std::fill(padded.line(y), padded.line(y) + padded.stride(), uint8_t(255));
    }
    padded.setPixel(0, 0, 255, 0, 0);
    padded.setPixel(1, 0, 0, 0, 255);
    padded.setPixel(0, 1, 0, 0, 255);
    padded.setPixel(1, 1, 255, 0, 0);

    QCOMPARE(stage.surface->updateFrame(&padded), 0);

    const QImage shot = stage.grab();
    const int right = stage.area.width() - 1;
    const int bottom = stage.area.height() - 1;
    QCOMPARE(stage.at(shot, 2, 2), red);
    QCOMPARE(stage.at(shot, right - 2, 2), blue);
    QCOMPARE(stage.at(shot, 2, bottom - 2), blue);
    QCOMPARE(stage.at(shot, right - 2, bottom - 2), red);
    for (int y = 0; y <= bottom; y += 4) {
        for (int x = 0; x <= right; x += 4) {
            QVERIFY2(stage.at(shot, x, y) != white, "line padding is on screen");
        }
    }
}

void TestDiplayWind::frameFromAnotherThreadGetsRepainted()
{
    Stage stage;
    QVERIFY(QTest::qWaitForWindowExposed(&stage.window));
    const EventCounter paints(stage.surface, QEvent::Paint);
    const auto redFrame = solid(red);
    const auto blueFrame = solid(blue);

    int before = paints.count();
    QCOMPARE(
        std::async(std::launch::async, [&] { return stage.surface->updateFrame(redFrame.get()); })
            .get(),
        0);
    QTRY_VERIFY(paints.count() > before);
    QVERIFY(stage.surfaceShowsOnly(red));

    // A second frame must ask again: the first request, once served, no longer blocks others.
    before = paints.count();
    QCOMPARE(
        std::async(std::launch::async, [&] { return stage.surface->updateFrame(blueFrame.get()); })
            .get(),
        0);
    QTRY_VERIFY(paints.count() > before);
    QVERIFY(stage.surfaceShowsOnly(blue));
}

void TestDiplayWind::repaintRequestsDoNotPileUp()
{
    DiplayWind surface;
    const EventCounter requests(&surface, QueuedHandoff::eventType());
    const auto frame = solid(green);

    const int taken = std::async(std::launch::async, [&] {
                          int count = 0;
                          for (int i = 0; i < 100; ++i) {
                              count += surface.updateFrame(frame.get()) == 0 ? 1 : 0;
                          }
                          return count;
                      }).get();
    QCOMPARE(taken, 100);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(requests.count(), 1);

    // Served, the request makes room for the next frame's.
    QCOMPARE(surface.updateFrame(frame.get()), 0);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(requests.count(), 2);
}

void TestDiplayWind::pendingRepaintOfADestroyedSurfaceIsDropped()
{
    auto* surface = new DiplayWind;
    QCOMPARE(surface->updateFrame(solid(green).get()), 0);

    delete surface;

    // The request names the destroyed surface; delivering it would touch freed memory.
    QCoreApplication::sendPostedEvents();
}

// A frame thread cannot call into a surface whose memory is gone; that ordering belongs to the
// caller (the box stops handing a tile frames before deleting it). What the surface promises is
// narrower and is what is checked here: a call that has already begun when destruction begins
// is refused and touches nothing freed. The frame holds that call inside updateFrame() until
// the surface has been deleted entirely.
void TestDiplayWind::callInProgressWhenTheSurfaceIsDestroyedIsRefused()
{
    auto* surface = new DiplayWind;
    QCOMPARE(surface->updateFrame(solid(green).get()), 0);
    const auto picture = solid(red);
    Gate gate;
    const GatedFrame frame(*picture, gate, GatedFrame::Held::Buffer);

    auto result =
        std::async(std::launch::async, [surface, &frame] { return surface->updateFrame(&frame); });
    QVERIFY(gate.waitForArrival());
    delete surface;
    gate.open();

    QCOMPARE(result.get(), -1);
    QCoreApplication::sendPostedEvents();
}

// The frame is held while the surface copies it; the surface is deleted meanwhile. The gate is
// opened from a third thread once deletion is under way, so that the destructor usually arrives
// while the copy is held: it must wait for the copy, which keeps the frame it had accepted.
// Should the copy finish first, the outcome is the same; what the sanitizers watch is that the
// buffer is never freed under the copy.
void TestDiplayWind::copyInProgressHoldsDestructionBack()
{
    auto* surface = new DiplayWind;
    const auto picture = solid(red, 64, 64);
    Gate gate;
    const GatedFrame frame(*picture, gate, GatedFrame::Held::Height);

    auto result =
        std::async(std::launch::async, [surface, &frame] { return surface->updateFrame(&frame); });
    QVERIFY(gate.waitForArrival());
    std::promise<void> deleting;
    std::thread opener([&gate, started = deleting.get_future()] {
        started.wait();
        gate.open();
    });
    deleting.set_value();
    delete surface;
    opener.join();

    QCOMPARE(result.get(), 0);
    QCoreApplication::sendPostedEvents();
}

void TestDiplayWind::framesFromSeveralThreadsWithChangingSizes()
{
    using Feed = std::array<std::unique_ptr<RgbaFrame>, 2>;
    const std::array<QColor, 4> colours = {red, green, blue, QColor(255, 255, 0)};
    std::vector<Feed> feeds;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const QColor& colour = colours[i];
        // Large enough that a copy takes a while, so that copies and paints overlap. One packed
        // frame and one of another size with white line padding, so that a picture painted with
        // the wrong geometry shows white.
        const int side = 90 + 30 * static_cast<int>(i);
        auto padded = std::make_unique<RgbaFrame>(side * 2, side, 0.0, side * 12);
        for (int y = 0; y < padded->getHeight(); ++y) {
            std::fill(padded->line(y), padded->line(y) + padded->stride(), uint8_t(255));
        }
        padded->fill(static_cast<uint8_t>(colour.red()), static_cast<uint8_t>(colour.green()),
                     static_cast<uint8_t>(colour.blue()));
        feeds.push_back({solid(colour, side * 16 / 9, side), std::move(padded)});
    }
    QSet<QRgb> allowed;
    for (const QColor& colour : colours) {
        allowed.insert(colour.rgb());
    }

    Stage stage;
    QVERIFY(QTest::qWaitForWindowExposed(&stage.window));
    // The threads keep sending until the GUI thread has painted and checked enough pictures
    // and they have sent enough frames, so that painting and copying overlap whichever side
    // starts late.
    constexpr int checks = 100;
    constexpr int enoughFrames = 400;
    std::atomic<bool> stop{false};
    std::atomic<int> sent{0};
    std::atomic<int> taken{0};
    std::vector<std::thread> threads;
    for (const Feed& feed : feeds) {
        threads.emplace_back([&stage, &feed, &stop, &sent, &taken] {
            for (std::size_t i = 0; !stop; ++i) {
                ++sent;
                if (stage.surface->updateFrame(feed[i % feed.size()].get()) == 0) {
                    ++taken;
                }
            }
        });
    }
    bool whole = true;
    const QDeadlineTimer deadline(patience);
    for (int check = 0; whole && (check < checks || sent < enoughFrames) && !deadline.hasExpired();
         ++check) {
        // Each picture is one whole frame of one colour, never a mix, never a line's padding;
        // the backdrop only while no frame has been taken yet.
        const bool framesTaken = taken > 0;
        const QImage shot = stage.grab().copy(stage.area);
        const QRgb first = shot.pixel(0, 0);
        whole = allowed.contains(first) || (!framesTaken && first == backdrop.rgb());
        for (int y = 0; y < shot.height() && whole; ++y) {
            for (int x = 0; x < shot.width() && whole; ++x) {
                whole = shot.pixel(x, y) == first;
            }
        }
        QCoreApplication::processEvents();
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }

    QVERIFY(whole);
    QVERIFY(sent >= enoughFrames);
    QCOMPARE(taken.load(), sent.load());
}

QTEST_MAIN(TestDiplayWind)
#include "tst_diplaywind.moc"
