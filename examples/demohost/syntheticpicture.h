// SPDX-License-Identifier: MIT
#pragma once

#include <zq/mediacore/thumbnail.h>

#include <QString>

#include <cstdint>

namespace zq::mediacore {
class RgbaFrame;
} // namespace zq::mediacore

namespace demohost {

/// The pictures the simulated sources deliver: a tinted background with a sweeping light, a
/// bouncing disc, a strip of colour bars crossed by a moving band, the source's name and a
/// timecode. Consecutive sequence numbers differ visibly, so a live preview is seen to move.
///
/// Pure functions; any thread, as long as a QGuiApplication exists (the text needs its fonts).
class SyntheticPicture
{
public:
    /// Frames per second the sequence numbers count in, for the timecode.
    static constexpr int framesPerSecond = 25;

    /// Draws picture number `sequence` of a source tinted by `hue` (any int, wrapped to 0-359)
    /// into `frame`'s own buffer; allocates nothing in the frame.
    static void draw(zq::mediacore::RgbaFrame& frame, uint64_t sequence, int hue,
                     const QString& name);

    /// Picture number 0 as a packed still, for a source's thumbnail; empty when a size is not
    /// positive.
    static zq::mediacore::Thumbnail still(int width, int height, int hue, const QString& name);

    /// A hue that tells the sources `id` apart from their neighbours.
    static int hueOf(uint64_t id);
};

} // namespace demohost
