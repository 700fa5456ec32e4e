// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace quandel {

/// One video format that a capture device offers or was asked for. A plain value.
struct CaptResolutionsInfo
{
    int width = 0;       ///< picture width in pixels
    int height = 0;      ///< picture height in pixels
    float frameRate = 0; ///< frames per second, for example 59.94
    std::string text;    ///< the device's own words for the format, for example "NV12"
};

/// Field-wise equality, frame rates compared exactly.
inline bool operator==(const CaptResolutionsInfo& a, const CaptResolutionsInfo& b)
{
    return a.width == b.width && a.height == b.height && a.frameRate == b.frameRate &&
           a.text == b.text;
}

inline bool operator!=(const CaptResolutionsInfo& a, const CaptResolutionsInfo& b)
{
    return !(a == b);
}

} // namespace quandel
