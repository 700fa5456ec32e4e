// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace quandel::resource {

/// Kinds of the host's resources. Only the kinds the input sources panel handles are named;
/// the host uses further values of its own, which convert to and from int unchanged.
enum class EnResourceType : int32_t
{
    NdiSource = 7,          ///< a sender found on the network by NDI discovery
    LocalCaptureDevice = 8, ///< a capture card or camera attached to this machine
    WebPage = 9,            ///< a web page, rendered natively or by screen capture
    NetworkStream = 13,     ///< an RTSP or RTMP stream
    Unassigned = 14         ///< the kind of a freshly made input source record
};

/// The numeric code of a kind, as records and tiles carry it.
constexpr int32_t toCode(EnResourceType type)
{
    return static_cast<int32_t>(type);
}

} // namespace quandel::resource
