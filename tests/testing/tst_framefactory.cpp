// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/framefactory.h>

#include <QtTest>

#include <cstddef>
#include <cstdint>
#include <vector>

using vexa::testing::FrameFactory;
using zq::mediacore::RgbaFrame;
using zq::mediacore::Thumbnail;

namespace {

// The pixels of a frame without line padding, so frames of any stride compare.
std::vector<uint8_t> pixelsOf(const RgbaFrame& frame)
{
    const auto buffer = frame.getBuffer();
    const auto lineBytes = static_cast<std::size_t>(frame.getWidth()) * 4;
    std::vector<uint8_t> pixels;
    pixels.reserve(lineBytes * static_cast<std::size_t>(frame.getHeight()));
    for (int y = 0; y < frame.getHeight(); ++y) {
        const uint8_t* const line = buffer->data() + static_cast<std::size_t>(y) *
                                                         static_cast<std::size_t>(buffer->stride());
        pixels.insert(pixels.end(), line, line + lineBytes);
    }
    return pixels;
}

bool allOpaque(const std::vector<uint8_t>& pixels)
{
    for (std::size_t i = 3; i < pixels.size(); i += 4) {
        if (pixels[i] != 255) {
            return false;
        }
    }
    return true;
}

} // namespace

class TestFrameFactory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void solidSetsEveryPixel();
    void solidCarriesTheFrameRate();
    void solidOfNoSizeIsEmpty();
    void patternHasTheRequestedGeometry();
    void patternIsOpaque();
    void patternIsReproducible();
    void consecutiveSequencesDiffer_data();
    void consecutiveSequencesDiffer();
    void patternShowsABrightBand();
    void bandKeepsMoving();
    void huesDiffer_data();
    void huesDiffer();
    void drawPatternReusesTheBuffer();
    void drawPatternLeavesLinePaddingAlone();
    void drawPatternIntoAnEmptyFrameDoesNothing();
    void thumbnailIsPackedAndValid_data();
    void thumbnailIsPackedAndValid();
    void thumbnailShowsThePattern();
    void thumbnailOfNoSizeIsEmpty();
};

void TestFrameFactory::solidSetsEveryPixel()
{
    const auto frame = FrameFactory::solid(9, 5, 10, 20, 30);

    QCOMPARE(frame->getWidth(), 9);
    QCOMPARE(frame->getHeight(), 5);
    const auto buffer = frame->getBuffer();
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 9; ++x) {
            const uint8_t* const pixel = buffer->data() +
                                         static_cast<std::size_t>(y) * buffer->stride() +
                                         static_cast<std::size_t>(x) * 4;
            QCOMPARE(pixel[0], uint8_t{10});
            QCOMPARE(pixel[1], uint8_t{20});
            QCOMPARE(pixel[2], uint8_t{30});
            QCOMPARE(pixel[3], uint8_t{255});
        }
    }
}

void TestFrameFactory::solidCarriesTheFrameRate()
{
    QCOMPARE(FrameFactory::solid(2, 2, 0, 0, 0)->getFrameRate(), 25.0);
    QCOMPARE(FrameFactory::solid(2, 2, 0, 0, 0, 59.94)->getFrameRate(), 59.94);
}

void TestFrameFactory::solidOfNoSizeIsEmpty()
{
    const auto frame = FrameFactory::solid(0, -1, 1, 2, 3);

    QCOMPARE(frame->getWidth(), 0);
    QCOMPARE(frame->getHeight(), 0);
    QVERIFY(frame->getBuffer()->data() == nullptr);
}

void TestFrameFactory::patternHasTheRequestedGeometry()
{
    const auto frame = FrameFactory::pattern(640, 360, 0, 0, 30.0);

    QCOMPARE(frame->getWidth(), 640);
    QCOMPARE(frame->getHeight(), 360);
    QCOMPARE(frame->getFrameRate(), 30.0);
    QCOMPARE(FrameFactory::pattern(4, 4, 0)->getFrameRate(), 25.0);
}

void TestFrameFactory::patternIsOpaque()
{
    QVERIFY(allOpaque(pixelsOf(*FrameFactory::pattern(64, 8, 5, 200))));
}

void TestFrameFactory::patternIsReproducible()
{
    const auto first = FrameFactory::pattern(64, 8, 17, 90);
    const auto second = FrameFactory::pattern(64, 8, 17, 90);

    QVERIFY(pixelsOf(*first) == pixelsOf(*second));
}

void TestFrameFactory::consecutiveSequencesDiffer_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<quint64>("sequence");

    QTest::newRow("640 wide, 0 and 1") << 640 << quint64{0};
    QTest::newRow("640 wide, 63 and 64") << 640 << quint64{63};
    QTest::newRow("640 wide, far on") << 640 << quint64{1'000'000'007};
    QTest::newRow("640 wide, at the end") << 640 << quint64{UINT64_MAX - 1};
    QTest::newRow("2 wide") << 2 << quint64{0};
    QTest::newRow("3 wide") << 3 << quint64{2};
    QTest::newRow("100 wide") << 100 << quint64{99};
}

void TestFrameFactory::consecutiveSequencesDiffer()
{
    QFETCH(int, width);
    QFETCH(quint64, sequence);

    const auto current = FrameFactory::pattern(width, 4, sequence);
    const auto next = FrameFactory::pattern(width, 4, sequence + 1);

    QVERIFY(pixelsOf(*current) != pixelsOf(*next));
}

void TestFrameFactory::patternShowsABrightBand()
{
    const auto frame = FrameFactory::pattern(640, 2, 0);
    const std::vector<uint8_t> pixels = pixelsOf(*frame);

    int white = 0;
    for (std::size_t i = 0; i < 640 * 4; i += 4) {
        if (pixels[i] == 255 && pixels[i + 1] == 255 && pixels[i + 2] == 255) {
            ++white;
        }
    }
    QVERIFY(white > 0);
    QVERIFY(white < 640);
}

void TestFrameFactory::bandKeepsMoving()
{
    std::vector<std::vector<uint8_t>> frames;
    for (uint64_t sequence = 0; sequence < 8; ++sequence) {
        frames.push_back(pixelsOf(*FrameFactory::pattern(640, 2, sequence)));
    }

    for (std::size_t a = 0; a < frames.size(); ++a) {
        for (std::size_t b = a + 1; b < frames.size(); ++b) {
            QVERIFY2(frames[a] != frames[b], qPrintable(QStringLiteral("%1 and %2").arg(a).arg(b)));
        }
    }
}

void TestFrameFactory::huesDiffer_data()
{
    QTest::addColumn<int>("hue");
    QTest::addColumn<int>("otherHue");

    QTest::newRow("red and green") << 0 << 120;
    QTest::newRow("green and blue") << 120 << 240;
    QTest::newRow("neighbours") << 200 << 230;
    QTest::newRow("either end") << 0 << 359;
}

void TestFrameFactory::huesDiffer()
{
    QFETCH(int, hue);
    QFETCH(int, otherHue);

    const auto first = FrameFactory::pattern(64, 4, 3, hue);
    const auto second = FrameFactory::pattern(64, 4, 3, otherHue);

    QVERIFY(pixelsOf(*first) != pixelsOf(*second));
}

void TestFrameFactory::drawPatternReusesTheBuffer()
{
    auto frame = FrameFactory::pattern(320, 180, 0, 45);
    const auto buffer = frame->getBuffer();
    const uint8_t* const data = buffer->data();

    FrameFactory::drawPattern(*frame, 1, 45);

    QCOMPARE(frame->getBuffer().get(), buffer.get());
    QCOMPARE(frame->getBuffer()->data(), data);
    QVERIFY(pixelsOf(*frame) == pixelsOf(*FrameFactory::pattern(320, 180, 1, 45)));

    FrameFactory::drawPattern(*frame, 2, 300);
    QCOMPARE(frame->getBuffer()->data(), data);
    QVERIFY(pixelsOf(*frame) == pixelsOf(*FrameFactory::pattern(320, 180, 2, 300)));
}

void TestFrameFactory::drawPatternLeavesLinePaddingAlone()
{
    RgbaFrame frame(16, 3, 25.0, 80);

    FrameFactory::drawPattern(frame, 4, 60);

    QVERIFY(pixelsOf(frame) == pixelsOf(*FrameFactory::pattern(16, 3, 4, 60)));
    const uint8_t* const data = frame.getBuffer()->data();
    for (std::size_t y = 0; y < 3; ++y) {
        for (std::size_t i = 16 * 4; i < 80; ++i) {
            QCOMPARE(data[y * 80 + i], uint8_t{0});
        }
    }
}

void TestFrameFactory::drawPatternIntoAnEmptyFrameDoesNothing()
{
    RgbaFrame empty(0, 0);
    FrameFactory::drawPattern(empty, 1);
    QVERIFY(empty.getBuffer()->data() == nullptr);

    RgbaFrame padded(0, 2, 25.0, 8);
    FrameFactory::drawPattern(padded, 1);
    const uint8_t* const data = padded.getBuffer()->data();
    QVERIFY(std::vector<uint8_t>(data, data + 16) == std::vector<uint8_t>(16, 0));
}

void TestFrameFactory::thumbnailIsPackedAndValid_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");

    QTest::newRow("160x90") << 160 << 90;
    QTest::newRow("1x1") << 1 << 1;
    QTest::newRow("odd") << 17 << 3;
}

void TestFrameFactory::thumbnailIsPackedAndValid()
{
    QFETCH(int, width);
    QFETCH(int, height);

    const Thumbnail thumbnail = FrameFactory::thumbnail(width, height, 210);

    QCOMPARE(thumbnail.width, width);
    QCOMPARE(thumbnail.height, height);
    QCOMPARE(thumbnail.rgba.size(), static_cast<std::size_t>(width * height * 4));
    QVERIFY(thumbnail.isValid());
    QVERIFY(allOpaque(thumbnail.rgba));
}

void TestFrameFactory::thumbnailShowsThePattern()
{
    const Thumbnail thumbnail = FrameFactory::thumbnail(48, 27, 150);

    QVERIFY(thumbnail.rgba == pixelsOf(*FrameFactory::pattern(48, 27, 0, 150)));
    QVERIFY(thumbnail.rgba != FrameFactory::thumbnail(48, 27, 30).rgba);
}

void TestFrameFactory::thumbnailOfNoSizeIsEmpty()
{
    QVERIFY(!FrameFactory::thumbnail(0, 10).isValid());
    QVERIFY(FrameFactory::thumbnail(0, 10).rgba.empty());
    QVERIFY(FrameFactory::thumbnail(10, -1).rgba.empty());
    QCOMPARE(FrameFactory::thumbnail(-3, 10).width, 0);
}

QTEST_GUILESS_MAIN(TestFrameFactory)
#include "tst_framefactory.moc"
