// SPDX-License-Identifier: MIT
#include "support/ratiocheck.h"

#include <utility>

namespace vexa::bench {

RatioCheck RatioCheck::versus(std::string measured, std::string baseline, double maxRatio,
                              Clock clock)
{
    RatioCheck check;
    check.measured = std::move(measured);
    check.baseline = std::move(baseline);
    check.maxRatio = maxRatio;
    check.clock = clock;
    return check;
}

RatioCheck RatioCheck::scaling(std::string large, std::string small, double maxRatio, Clock clock,
                               std::string itemsCounter)
{
    RatioCheck check = versus(std::move(large), std::move(small), maxRatio, clock);
    check.perItem = true;
    check.itemsCounter = std::move(itemsCounter);
    return check;
}

} // namespace vexa::bench
