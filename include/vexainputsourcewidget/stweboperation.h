// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/stwebdescription.h>

#include <array>
#include <cstdint>

namespace vexa::inputsource {

/// An operation on, or a notification about, web page sources. The library sends and handles
/// kind 1 only; notifications say what changed in their code. A plain value.
struct STWebOperation
{
    /// Codes of the notifications the library handles.
    enum Code : int32_t
    {
        WebDescriptionChanged = 14,  ///< the web description of source `id` changed
        LoadReadings = 15,           ///< new CPU, GPU and memory readings
        LoadThresholds = 16,         ///< new CPU, GPU and memory thresholds
        SameNativePageOnPatches = 17 ///< one native web page is open on several patches
    };

    /// The operation's kind; 1 for everything this library sends or handles.
    int32_t kind = 1;
    /// What a notification reports (Code); other codes are ignored.
    int32_t code = 0;
    /// The source concerned.
    uint64_t id = 0;
    /// The web description of the source concerned.
    STWebDescription webDescription;
    /// CPU, GPU and memory use in percent; -1.0 means no new reading.
    std::array<double, 3> loadReadings{{-1.0, -1.0, -1.0}};
    /// CPU, GPU and memory thresholds in percent.
    std::array<int32_t, 3> loadThresholds{{0, 0, 0}};
};

} // namespace vexa::inputsource
