// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/framefactory.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace vexa::testing {

namespace {

constexpr int bytesPerPixel = 4;
constexpr int barCount = 8;

struct Rgb
{
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

// The usual 75 % test bars: bright enough to tell apart, and never pure white, so the moving
// band is always visible on top of them.
constexpr std::array<Rgb, barCount> bars = {{{191, 191, 191},
                                             {191, 191, 0},
                                             {0, 191, 191},
                                             {0, 191, 0},
                                             {191, 0, 191},
                                             {191, 0, 0},
                                             {0, 0, 191},
                                             {0, 0, 0}}};

Rgb fullySaturated(int hue)
{
    // Callers may pass any int (a source counter times an offset, say); wrapping keeps every
    // value meaningful instead of making some of them errors.
    const int h = ((hue % 360) + 360) % 360;
    const auto rising = static_cast<uint8_t>((h % 60) * 255 / 60);
    const auto falling = static_cast<uint8_t>(255 - rising);
    switch (h / 60) {
    case 0:
        return {255, rising, 0};
    case 1:
        return {falling, 255, 0};
    case 2:
        return {0, 255, rising};
    case 3:
        return {0, falling, 255};
    case 4:
        return {rising, 0, 255};
    default:
        return {255, 0, falling};
    }
}

uint8_t mix(uint8_t a, uint8_t b)
{
    return static_cast<uint8_t>((a + b) / 2);
}

// Every line of the pattern is the same, so only the first is computed and the others are
// copies of it: a 640x360 frame costs one memcpy per line, cheap enough for several sources at
// full rate.
void drawLines(uint8_t* first, std::size_t stride, int width, int height, uint64_t sequence,
               int hue)
{
    if (first == nullptr || width <= 0 || height <= 0) {
        return;
    }
    const Rgb tint = fullySaturated(hue);
    std::array<Rgb, barCount> tinted{};
    for (std::size_t i = 0; i < barCount; ++i) {
        tinted[i] = {mix(bars[i].red, tint.red), mix(bars[i].green, tint.green),
                     mix(bars[i].blue, tint.blue)};
    }

    // The band moves by a fixed step per sequence number and is narrower than the frame, so
    // two consecutive frames never have it in the same place once the frame is 2 pixels wide.
    const auto w = static_cast<uint64_t>(width);
    const uint64_t bandWidth = std::max<uint64_t>(1, w / 16);
    const uint64_t step = std::max<uint64_t>(1, w / 64);
    const uint64_t bandStart = (sequence % w) * step % w;

    for (uint64_t x = 0; x < w; ++x) {
        uint8_t* const pixel = first + x * bytesPerPixel;
        const bool inBand = (x + w - bandStart) % w < bandWidth;
        const Rgb& colour = tinted[x * barCount / w];
        pixel[0] = inBand ? 255 : colour.red;
        pixel[1] = inBand ? 255 : colour.green;
        pixel[2] = inBand ? 255 : colour.blue;
        pixel[3] = 255;
    }
    const std::size_t lineBytes = static_cast<std::size_t>(width) * bytesPerPixel;
    for (int y = 1; y < height; ++y) {
        std::memcpy(first + static_cast<std::size_t>(y) * stride, first, lineBytes);
    }
}

} // namespace

std::unique_ptr<zq::mediacore::RgbaFrame> FrameFactory::solid(int width, int height, uint8_t red,
                                                              uint8_t green, uint8_t blue,
                                                              double frameRate)
{
    auto frame = std::make_unique<zq::mediacore::RgbaFrame>(width, height, frameRate);
    frame->fill(red, green, blue);
    return frame;
}

std::unique_ptr<zq::mediacore::RgbaFrame>
FrameFactory::pattern(int width, int height, uint64_t sequence, int hue, double frameRate)
{
    auto frame = std::make_unique<zq::mediacore::RgbaFrame>(width, height, frameRate);
    drawPattern(*frame, sequence, hue);
    return frame;
}

void FrameFactory::drawPattern(zq::mediacore::RgbaFrame& frame, uint64_t sequence, int hue)
{
    drawLines(frame.line(0), static_cast<std::size_t>(frame.stride()), frame.getWidth(),
              frame.getHeight(), sequence, hue);
}

zq::mediacore::Thumbnail FrameFactory::thumbnail(int width, int height, int hue)
{
    zq::mediacore::Thumbnail result;
    if (width <= 0 || height <= 0) {
        return result;
    }
    if (static_cast<std::size_t>(width) > std::numeric_limits<std::size_t>::max() / bytesPerPixel /
                                              static_cast<std::size_t>(height)) {
        throw std::length_error("FrameFactory::thumbnail: too many bytes for std::size_t");
    }
    const auto lineBytes = static_cast<std::size_t>(width) * bytesPerPixel;
    result.rgba.resize(lineBytes * static_cast<std::size_t>(height));
    result.width = width;
    result.height = height;
    drawLines(result.rgba.data(), lineBytes, width, height, 0, hue);
    return result;
}

} // namespace vexa::testing
