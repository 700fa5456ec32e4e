// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vexa::bench {

/// One ratio a benchmark program reports: the time of one of its runs over the time of
/// another run of the same program, both measured in the same process, so that the speed of
/// the machine cancels out. Run names are the full names the console prints
/// ("BM_FrameCopy/1920/1080"); times are medians when repetitions are requested. For a scaling
/// ratio each time is first divided by its run's item count: the counter `itemsCounter` when
/// the run reports one, otherwise the first argument of its name.
struct RatioCheck
{
    /// Which per-iteration time of a run the ratio compares.
    enum class Clock
    {
        Real, ///< wall-clock time: for work that waits on other threads
        Cpu,  ///< the benchmark thread's CPU time: for work done on that thread alone
    };

    /// "A against B": `measured` over `baseline`, met when at most `maxRatio`.
    static RatioCheck versus(std::string measured, std::string baseline, double maxRatio,
                             Clock clock = Clock::Real);

    /// Scaling: time per item of `large` over that of `small`, met when at most `maxRatio`.
    static RatioCheck scaling(std::string large, std::string small, double maxRatio,
                              Clock clock = Clock::Real, std::string itemsCounter = "items");

    std::string measured;      ///< run whose time is divided
    std::string baseline;      ///< run it is divided by
    double maxRatio = 1.0;     ///< the largest ratio that meets the target
    Clock clock = Clock::Real; ///< which time is compared
    bool perItem = false;      ///< whether each time is first divided by its run's item count
    std::string itemsCounter;  ///< counter that holds the item count, for perItem
};

} // namespace vexa::bench
