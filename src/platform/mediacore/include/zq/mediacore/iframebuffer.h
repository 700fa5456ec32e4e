// SPDX-License-Identifier: MIT
#pragma once

#include <zq/mediacore/zq_mediacore_export.h>

#include <cstdint>

namespace zq::mediacore {

/// The pixel memory of one frame: lines of pixels, one after the other, `stride()` bytes
/// apart. The buffer holds at least height x stride bytes of its frame. Shared by the frame and
/// whoever reads it; the memory stays valid while the buffer object lives.
class ZQ_MEDIACORE_EXPORT IFrameBuffer
{
public:
    virtual ~IFrameBuffer();

    /// Address of the first byte of the first line.
    virtual const uint8_t* data() const = 0;

    /// Bytes from the start of one line to the start of the next.
    virtual int stride() const = 0;

protected:
    IFrameBuffer() = default;
    IFrameBuffer(const IFrameBuffer&) = delete;
    IFrameBuffer& operator=(const IFrameBuffer&) = delete;
};

} // namespace zq::mediacore
