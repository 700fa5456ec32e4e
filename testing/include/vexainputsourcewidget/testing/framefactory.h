// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/testing/vexainputsourcewidget_testing_export.h>

#include <zq/mediacore/rgbaframe.h>
#include <zq/mediacore/thumbnail.h>

#include <cstdint>
#include <memory>

namespace vexa::testing {

/// Makes synthetic RGBA pictures whose content is known, so that tests can check pixels and
/// simulated hosts can show something that moves. Pure functions; any thread.
class VEXAINPUTSOURCEWIDGET_TESTING_EXPORT FrameFactory
{
public:
    /// A frame filled with one colour.
    static std::unique_ptr<zq::mediacore::RgbaFrame>
    solid(int width, int height, uint8_t red, uint8_t green, uint8_t blue, double frameRate = 25.0);

    /// A frame of vertical colour bars with a bright band whose position follows
    /// `sequence`, so that consecutive sequence numbers show motion. `hue` (0 to 359) tints
    /// the bars, so that several sources look different.
    static std::unique_ptr<zq::mediacore::RgbaFrame>
    pattern(int width, int height, uint64_t sequence, int hue = 0, double frameRate = 25.0);

    /// Draws the pattern of the given sequence number into an existing frame, reusing its
    /// buffer: no allocation.
    static void drawPattern(zq::mediacore::RgbaFrame& frame, uint64_t sequence, int hue = 0);

    /// A thumbnail of the pattern (sequence 0), packed without padding; empty when a size is
    /// not positive.
    static zq::mediacore::Thumbnail thumbnail(int width, int height, int hue = 0);
};

} // namespace vexa::testing
