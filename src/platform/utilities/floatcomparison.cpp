// SPDX-License-Identifier: MIT
#include <zqctuils/floatcomparison.h>

#include <algorithm>
#include <cmath>

namespace zqctuils {

bool FloatComparison::equal(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) {
        return false;
    }
    // The difference of two infinities is NaN or infinite, so they are settled exactly.
    if (std::isinf(a) || std::isinf(b)) {
        return a == b;
    }
    const double difference = std::fabs(a - b);
    const double largest = std::max(std::fabs(a), std::fabs(b));
    return difference <= std::max(absoluteTolerance, relativeTolerance * largest);
}

} // namespace zqctuils
