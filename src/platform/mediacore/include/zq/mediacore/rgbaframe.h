// SPDX-License-Identifier: MIT
#pragma once

#include <zq/mediacore/iframe.h>
#include <zq/mediacore/zq_mediacore_export.h>

#include <cstdint>
#include <memory>

namespace zq::mediacore {

/// An RGBA frame over a buffer it owns, for tests, benchmarks and simulated hosts. The buffer
/// is allocated once, zero-filled, and shared with whoever takes it through getBuffer().
/// Writing pixels while another thread reads the frame is the writer's business to order.
class ZQ_MEDIACORE_EXPORT RgbaFrame : public IFrame
{
public:
    /// A black, transparent frame. `stride` is the bytes per line; 0 means 4 x width, and a
    /// smaller positive value is raised to 4 x width. Sizes below 0 count as 0. A frame of 0
    /// bytes owns no memory: its buffer's data() is null. Throws std::length_error when
    /// 4 x width does not fit in an int or height x stride bytes do not fit in std::size_t.
    RgbaFrame(int width, int height, double frameRate = 0.0, int stride = 0);
    ~RgbaFrame() override;

    int getWidth() const override;
    int getHeight() const override;
    double getFrameRate() const override;
    std::shared_ptr<IFrameBuffer> getBuffer() const override;

    /// Bytes from one line to the next.
    int stride() const;

    /// The first byte of line `y`, for writing; null when y is outside the frame.
    uint8_t* line(int y);

    /// Sets every pixel to the given colour.
    void fill(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha = 255);

    /// Sets one pixel; a position outside the frame is ignored.
    void setPixel(int x, int y, uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha = 255);

    /// Changes the frame rate that getFrameRate() reports.
    void setFrameRate(double frameRate);

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace zq::mediacore
