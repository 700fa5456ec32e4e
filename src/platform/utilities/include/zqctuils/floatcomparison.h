// SPDX-License-Identifier: MIT
#pragma once

#include <zqctuils/zqctuils_export.h>

namespace zqctuils {

/// Comparison of floating-point values that were computed or converted on different paths,
/// such as a frame rate stored as float and one read back as double.
class ZQCTUILS_EXPORT FloatComparison
{
public:
    /// Relative tolerance: values this close in proportion to their size compare equal.
    static constexpr double relativeTolerance = 1e-6;

    /// Absolute tolerance, for values near zero where a relative one means nothing.
    static constexpr double absoluteTolerance = 1e-9;

    /// True when |a - b| <= max(absoluteTolerance, relativeTolerance x max(|a|, |b|)).
    /// Infinities equal only themselves; NaN equals nothing. Pure; any thread.
    static bool equal(double a, double b);
};

} // namespace zqctuils
