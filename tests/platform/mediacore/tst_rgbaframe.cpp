// SPDX-License-Identifier: MIT
#include <zq/mediacore/rgbaframe.h>

#include <QtTest>

#include <atomic>
#include <climits>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

using zq::mediacore::IFrame;
using zq::mediacore::IFrameBuffer;
using zq::mediacore::RgbaFrame;

namespace {

std::vector<uint8_t> bytesOf(const RgbaFrame& frame)
{
    const auto buffer = frame.getBuffer();
    const auto size =
        static_cast<std::size_t>(frame.getHeight()) * static_cast<std::size_t>(buffer->stride());
    if (size == 0) {
        return {};
    }
    return std::vector<uint8_t>(buffer->data(), buffer->data() + size);
}

std::size_t offsetOf(const RgbaFrame& frame, int x, int y)
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(frame.stride()) +
           static_cast<std::size_t>(x) * 4;
}

} // namespace

class TestRgbaFrame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsItsGeometry();
    void answersThroughTheInterface();
    void defaultsTheStrideToFourBytesPerPixel();
    void keepsALargerStride();
    void raisesASmallerStride_data();
    void raisesASmallerStride();
    void startsBlackAndTransparent();
    void fillsEveryPixel();
    void fillLeavesLinePaddingAlone();
    void setsOnePixel();
    void setPixelDefaultsToOpaque();
    void ignoresPixelsOutsideTheFrame_data();
    void ignoresPixelsOutsideTheFrame();
    void givesLinesInsideTheFrameOnly();
    void alwaysHandsOutTheSameBuffer();
    void bufferOutlivesTheFrame();
    void changesItsFrameRate();
    void frameRateCanBeReadWhileItIsSet();
    void treatsNegativeSizesAsZero();
    void zeroHeightOwnsNoMemory();
    void zeroWidthOwnsOnlyItsPadding();
    void refusesALineTooLongForAnInt();
};

void TestRgbaFrame::reportsItsGeometry()
{
    const RgbaFrame frame(640, 360, 29.97);

    QCOMPARE(frame.getWidth(), 640);
    QCOMPARE(frame.getHeight(), 360);
    QCOMPARE(frame.getFrameRate(), 29.97);
}

void TestRgbaFrame::answersThroughTheInterface()
{
    const RgbaFrame concrete(8, 4, 50.0);
    const IFrame& frame = concrete;

    QCOMPARE(frame.getWidth(), 8);
    QCOMPARE(frame.getHeight(), 4);
    QCOMPARE(frame.getFrameRate(), 50.0);
    QVERIFY(frame.getBuffer() != nullptr);
    QCOMPARE(frame.getBuffer()->stride(), 32);
}

void TestRgbaFrame::defaultsTheStrideToFourBytesPerPixel()
{
    const RgbaFrame frame(13, 3);

    QCOMPARE(frame.getFrameRate(), 0.0);
    QCOMPARE(frame.stride(), 52);
    QCOMPARE(frame.getBuffer()->stride(), 52);
}

void TestRgbaFrame::keepsALargerStride()
{
    const RgbaFrame frame(10, 3, 25.0, 64);

    QCOMPARE(frame.stride(), 64);
    QCOMPARE(frame.getBuffer()->stride(), 64);
}

void TestRgbaFrame::raisesASmallerStride_data()
{
    QTest::addColumn<int>("stride");

    QTest::newRow("one byte") << 1;
    QTest::newRow("one byte short") << 39;
    QTest::newRow("negative") << -64;
}

void TestRgbaFrame::raisesASmallerStride()
{
    QFETCH(int, stride);

    const RgbaFrame frame(10, 3, 25.0, stride);

    QCOMPARE(frame.stride(), 40);
    QCOMPARE(frame.getBuffer()->stride(), 40);
}

void TestRgbaFrame::startsBlackAndTransparent()
{
    const RgbaFrame frame(17, 9, 25.0, 80);

    const std::vector<uint8_t> bytes = bytesOf(frame);

    QCOMPARE(bytes.size(), std::size_t{9 * 80});
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != 0) {
            QFAIL(qPrintable(QStringLiteral("byte %1 is %2").arg(i).arg(bytes[i])));
        }
    }
}

void TestRgbaFrame::fillsEveryPixel()
{
    RgbaFrame frame(7, 5);

    frame.fill(10, 20, 30, 40);

    const std::vector<uint8_t> bytes = bytesOf(frame);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            const std::size_t at = offsetOf(frame, x, y);
            QCOMPARE(bytes[at + 0], uint8_t{10});
            QCOMPARE(bytes[at + 1], uint8_t{20});
            QCOMPARE(bytes[at + 2], uint8_t{30});
            QCOMPARE(bytes[at + 3], uint8_t{40});
        }
    }

    frame.fill(1, 2, 3);
    QCOMPARE(bytesOf(frame)[offsetOf(frame, 6, 4) + 3], uint8_t{255});
}

void TestRgbaFrame::fillLeavesLinePaddingAlone()
{
    RgbaFrame frame(3, 4, 25.0, 20);

    frame.fill(200, 150, 100);

    const std::vector<uint8_t> bytes = bytesOf(frame);
    for (int y = 0; y < 4; ++y) {
        const std::size_t lineStart = static_cast<std::size_t>(y) * 20;
        QCOMPARE(bytes[lineStart + 0], uint8_t{200});
        QCOMPARE(bytes[lineStart + 11], uint8_t{255});
        for (std::size_t i = 12; i < 20; ++i) {
            QCOMPARE(bytes[lineStart + i], uint8_t{0});
        }
    }
}

void TestRgbaFrame::setsOnePixel()
{
    RgbaFrame frame(6, 4, 25.0, 32);

    frame.setPixel(5, 2, 11, 22, 33, 44);

    const std::vector<uint8_t> bytes = bytesOf(frame);
    const std::size_t at = 2 * 32 + 4 * 5;
    QCOMPARE(bytes[at + 0], uint8_t{11});
    QCOMPARE(bytes[at + 1], uint8_t{22});
    QCOMPARE(bytes[at + 2], uint8_t{33});
    QCOMPARE(bytes[at + 3], uint8_t{44});
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i < at || i >= at + 4) {
            QCOMPARE(bytes[i], uint8_t{0});
        }
    }
}

void TestRgbaFrame::setPixelDefaultsToOpaque()
{
    RgbaFrame frame(2, 2);

    frame.setPixel(0, 1, 1, 2, 3);

    QCOMPARE(bytesOf(frame)[offsetOf(frame, 0, 1) + 3], uint8_t{255});
}

void TestRgbaFrame::ignoresPixelsOutsideTheFrame_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");

    QTest::newRow("left") << -1 << 0;
    QTest::newRow("right") << 4 << 0;
    QTest::newRow("above") << 0 << -1;
    QTest::newRow("below") << 0 << 3;
    QTest::newRow("in the padding") << 5 << 1;
    QTest::newRow("far away") << INT_MAX << INT_MAX;
    QTest::newRow("far before") << INT_MIN << INT_MIN;
}

void TestRgbaFrame::ignoresPixelsOutsideTheFrame()
{
    QFETCH(int, x);
    QFETCH(int, y);
    RgbaFrame frame(4, 3, 25.0, 24);
    frame.fill(9, 8, 7, 6);
    const std::vector<uint8_t> before = bytesOf(frame);

    frame.setPixel(x, y, 255, 255, 255, 255);

    QVERIFY(bytesOf(frame) == before);
}

void TestRgbaFrame::givesLinesInsideTheFrameOnly()
{
    RgbaFrame frame(5, 3, 25.0, 24);
    const uint8_t* const data = frame.getBuffer()->data();

    QCOMPARE(static_cast<const uint8_t*>(frame.line(0)), data);
    QCOMPARE(static_cast<const uint8_t*>(frame.line(1)), data + 24);
    QCOMPARE(static_cast<const uint8_t*>(frame.line(2)), data + 48);
    QVERIFY(frame.line(-1) == nullptr);
    QVERIFY(frame.line(3) == nullptr);
    QVERIFY(frame.line(INT_MIN) == nullptr);
    QVERIFY(frame.line(INT_MAX) == nullptr);

    frame.line(2)[4] = 0xab;
    QCOMPARE(bytesOf(frame)[offsetOf(frame, 1, 2)], uint8_t{0xab});
}

void TestRgbaFrame::alwaysHandsOutTheSameBuffer()
{
    RgbaFrame frame(4, 4);
    const std::shared_ptr<IFrameBuffer> first = frame.getBuffer();
    const uint8_t* const data = first->data();

    frame.fill(1, 2, 3);
    frame.setPixel(1, 1, 4, 5, 6);
    frame.setFrameRate(60.0);

    const std::shared_ptr<IFrameBuffer> second = frame.getBuffer();
    QCOMPARE(second.get(), first.get());
    QCOMPARE(second->data(), data);
    QCOMPARE(static_cast<const uint8_t*>(frame.line(0)), data);
}

void TestRgbaFrame::bufferOutlivesTheFrame()
{
    std::shared_ptr<IFrameBuffer> kept;
    {
        auto frame = std::make_unique<RgbaFrame>(3, 2);
        frame->fill(12, 34, 56, 78);
        kept = frame->getBuffer();
    }

    QCOMPARE(kept->stride(), 12);
    const uint8_t* const data = kept->data();
    for (std::size_t i = 0; i < 2 * 12; i += 4) {
        QCOMPARE(data[i + 0], uint8_t{12});
        QCOMPARE(data[i + 1], uint8_t{34});
        QCOMPARE(data[i + 2], uint8_t{56});
        QCOMPARE(data[i + 3], uint8_t{78});
    }
    QCOMPARE(kept.use_count(), 1L);
}

void TestRgbaFrame::changesItsFrameRate()
{
    RgbaFrame frame(2, 2, 25.0);

    frame.setFrameRate(59.94);
    QCOMPARE(frame.getFrameRate(), 59.94);

    frame.setFrameRate(0.0);
    QCOMPARE(frame.getFrameRate(), 0.0);
}

void TestRgbaFrame::frameRateCanBeReadWhileItIsSet()
{
    RgbaFrame frame(2, 2, 25.0);
    constexpr int iterations = 20000;
    std::atomic<bool> go{false};
    std::atomic<int> unexpected{0};

    std::thread writer([&] {
        while (!go.load()) {
            std::this_thread::yield();
        }
        for (int i = 0; i < iterations; ++i) {
            frame.setFrameRate(i % 2 == 0 ? 50.0 : 30.0);
        }
    });
    std::thread reader([&] {
        while (!go.load()) {
            std::this_thread::yield();
        }
        for (int i = 0; i < iterations; ++i) {
            const double rate = frame.getFrameRate();
            if (rate != 25.0 && rate != 50.0 && rate != 30.0) {
                ++unexpected;
            }
        }
    });
    go = true;
    writer.join();
    reader.join();

    QCOMPARE(unexpected.load(), 0);
    QCOMPARE(frame.getFrameRate(), 30.0);
}

void TestRgbaFrame::treatsNegativeSizesAsZero()
{
    RgbaFrame frame(-5, -3, 25.0, -8);

    QCOMPARE(frame.getWidth(), 0);
    QCOMPARE(frame.getHeight(), 0);
    QCOMPARE(frame.stride(), 0);
    QVERIFY(frame.getBuffer() != nullptr);
    QCOMPARE(frame.getBuffer()->stride(), 0);
    QVERIFY(frame.getBuffer()->data() == nullptr);
    QVERIFY(frame.line(0) == nullptr);

    frame.fill(1, 2, 3);
    frame.setPixel(0, 0, 1, 2, 3);
    QVERIFY(frame.getBuffer()->data() == nullptr);
}

void TestRgbaFrame::zeroHeightOwnsNoMemory()
{
    // The widest line whose stride still fits in an int: no bytes, so nothing is allocated.
    const int widest = INT_MAX / 4;
    RgbaFrame frame(widest, 0);

    QCOMPARE(frame.getWidth(), widest);
    QCOMPARE(frame.stride(), widest * 4);
    QVERIFY(frame.getBuffer()->data() == nullptr);
    QVERIFY(frame.line(0) == nullptr);
    frame.fill(1, 2, 3);
}

void TestRgbaFrame::zeroWidthOwnsOnlyItsPadding()
{
    RgbaFrame empty(0, 4);
    QCOMPARE(empty.stride(), 0);
    QVERIFY(empty.getBuffer()->data() == nullptr);
    QVERIFY(empty.line(1) == nullptr);
    empty.fill(1, 2, 3);

    const RgbaFrame padded(0, 4, 25.0, 16);
    QCOMPARE(padded.stride(), 16);
    const std::vector<uint8_t> bytes = bytesOf(padded);
    QCOMPARE(bytes.size(), std::size_t{64});
    QVERIFY(bytes == std::vector<uint8_t>(64, 0));
}

void TestRgbaFrame::refusesALineTooLongForAnInt()
{
    QVERIFY_EXCEPTION_THROWN(RgbaFrame(INT_MAX / 4 + 1, 1), std::length_error);
    QVERIFY_EXCEPTION_THROWN(RgbaFrame(INT_MAX, 0), std::length_error);
}

QTEST_GUILESS_MAIN(TestRgbaFrame)
#include "tst_rgbaframe.moc"
