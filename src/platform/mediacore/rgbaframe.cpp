// SPDX-License-Identifier: MIT
#include <zq/mediacore/rgbaframe.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace zq::mediacore {

namespace {

constexpr int bytesPerPixel = 4;

class OwnedFrameBuffer final : public IFrameBuffer
{
public:
    OwnedFrameBuffer(std::size_t size, int stride)
        : m_bytes(size > 0 ? new uint8_t[size]() : nullptr)
        , m_stride(stride)
    {}

    const uint8_t* data() const override { return m_bytes.get(); }
    int stride() const override { return m_stride; }

    uint8_t* writableData() { return m_bytes.get(); }

private:
    std::unique_ptr<uint8_t[]> m_bytes;
    const int m_stride;
};

int effectiveStride(int width, int stride)
{
    // The stride is reported as an int, so a line that cannot be measured in one is refused
    // before anything is allocated.
    if (width > std::numeric_limits<int>::max() / bytesPerPixel) {
        throw std::length_error("RgbaFrame: 4 x width does not fit in an int");
    }
    return std::max(stride, width * bytesPerPixel);
}

std::size_t byteCount(int height, int stride)
{
    const auto lines = static_cast<std::size_t>(height);
    const auto lineBytes = static_cast<std::size_t>(stride);
    if (lineBytes != 0 && lines > std::numeric_limits<std::size_t>::max() / lineBytes) {
        throw std::length_error("RgbaFrame: height x stride bytes do not fit in std::size_t");
    }
    return lines * lineBytes;
}

} // namespace

struct RgbaFrame::Impl
{
    Impl(int frameWidth, int frameHeight, double rate, int lineStride)
        : width(frameWidth)
        , height(frameHeight)
        , stride(lineStride)
        , frameRate(rate)
        , buffer(std::make_shared<OwnedFrameBuffer>(byteCount(frameHeight, lineStride), lineStride))
    {}

    const int width;
    const int height;
    const int stride;
    // Readers on other threads ask for the rate while its owner may be changing it.
    std::atomic<double> frameRate;
    const std::shared_ptr<OwnedFrameBuffer> buffer;
};

RgbaFrame::RgbaFrame(int width, int height, double frameRate, int stride)
    : d(std::make_unique<Impl>(std::max(width, 0), std::max(height, 0), frameRate,
                               effectiveStride(std::max(width, 0), std::max(stride, 0))))
{}

RgbaFrame::~RgbaFrame() = default;

int RgbaFrame::getWidth() const
{
    return d->width;
}

int RgbaFrame::getHeight() const
{
    return d->height;
}

double RgbaFrame::getFrameRate() const
{
    return d->frameRate.load(std::memory_order_relaxed);
}

std::shared_ptr<IFrameBuffer> RgbaFrame::getBuffer() const
{
    return d->buffer;
}

int RgbaFrame::stride() const
{
    return d->stride;
}

uint8_t* RgbaFrame::line(int y)
{
    uint8_t* const first = d->buffer->writableData();
    if (first == nullptr || y < 0 || y >= d->height) {
        return nullptr;
    }
    return first + static_cast<std::size_t>(y) * static_cast<std::size_t>(d->stride);
}

void RgbaFrame::fill(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha)
{
    uint8_t* const first = line(0);
    if (first == nullptr || d->width == 0) {
        return;
    }
    const uint8_t pixel[bytesPerPixel] = {red, green, blue, alpha};
    const auto lineBytes = static_cast<std::size_t>(d->width) * bytesPerPixel;
    for (std::size_t offset = 0; offset < lineBytes; offset += bytesPerPixel) {
        std::memcpy(first + offset, pixel, bytesPerPixel);
    }
    // Copying the finished first line is far cheaper than repeating the per-pixel loop, and
    // leaves any padding after the pixels of each line untouched.
    for (int y = 1; y < d->height; ++y) {
        std::memcpy(line(y), first, lineBytes);
    }
}

void RgbaFrame::setPixel(int x, int y, uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha)
{
    if (x < 0 || x >= d->width) {
        return;
    }
    uint8_t* const row = line(y);
    if (row == nullptr) {
        return;
    }
    uint8_t* const pixel = row + static_cast<std::size_t>(x) * bytesPerPixel;
    pixel[0] = red;
    pixel[1] = green;
    pixel[2] = blue;
    pixel[3] = alpha;
}

void RgbaFrame::setFrameRate(double frameRate)
{
    d->frameRate.store(frameRate, std::memory_order_relaxed);
}

} // namespace zq::mediacore
