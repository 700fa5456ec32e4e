// SPDX-License-Identifier: MIT
#pragma once

#include <zq/mediacore/iframebuffer.h>
#include <zq/mediacore/zq_mediacore_export.h>

#include <memory>

namespace zq::mediacore {

/// One decoded video frame in 8-bit RGBA (bytes red, green, blue, alpha per pixel). A frame
/// is handed to readers as a const pointer valid for the duration of the call; a reader that
/// keeps pixels beyond it copies them. All members are const and safe from any thread.
class ZQ_MEDIACORE_EXPORT IFrame
{
public:
    virtual ~IFrame();

    /// Width in pixels.
    virtual int getWidth() const = 0;

    /// Height in pixels.
    virtual int getHeight() const = 0;

    /// Frames per second of the stream the frame belongs to; 0 when unknown.
    virtual double getFrameRate() const = 0;

    /// The pixel memory; empty when the frame carries none.
    virtual std::shared_ptr<IFrameBuffer> getBuffer() const = 0;

protected:
    IFrame() = default;
    IFrame(const IFrame&) = delete;
    IFrame& operator=(const IFrame&) = delete;
};

} // namespace zq::mediacore
