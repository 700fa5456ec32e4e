// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace zq::mediacore {

/// A small still picture of a source: width x height pixels of 8-bit RGBA, lines packed
/// without padding (4 x width bytes each). A plain value; empty when there is no picture.
struct Thumbnail
{
    std::vector<uint8_t> rgba; ///< 4 x width x height bytes, or empty
    int width = 0;             ///< pixels per line
    int height = 0;            ///< lines

    /// True when the sizes are positive and the pixel bytes are exactly as many as they say.
    bool isValid() const
    {
        return width > 0 && height > 0 &&
               rgba.size() ==
                   static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    }
};

} // namespace zq::mediacore
