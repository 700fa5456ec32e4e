// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <vector>

namespace vexa::inputsource {

/// The web dialog's watch over the machine's load: the latest CPU, GPU and memory readings and
/// their thresholds, which the manager sends from its runtime thread, and the last six samples
/// of each, taken by the dialog's timer on the GUI thread. A resource whose six samples are all
/// above its threshold (the load stayed high for six ticks, 30 seconds at the dialog's pace)
/// is reported at every tick until a sample is not above it.
///
/// Each reading and threshold is one atomic value, written and read with relaxed ordering: each
/// stands alone, so the tick needs no lock and no ordering between them.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT LoadWatch
{
public:
    /// The three watched resources, in the order readings and thresholds travel.
    enum Resource
    {
        Cpu = 0,
        Gpu = 1,
        Memory = 2
    };
    static constexpr int resourceCount = 3;
    /// Samples kept per resource; a warning needs all of them above the threshold.
    static constexpr int sampleCount = 6;
    /// A reading that says "nothing new": it leaves the current value; as a current value it
    /// counts as 0.
    static constexpr double noReading = -1.0;
    /// The threshold of each resource until the manager sends its own, in percent.
    static constexpr double defaultThreshold = 85.0;

    LoadWatch();

    /// Takes the readings (percent) that are not noReading as the current ones. Any thread.
    void setReadings(const std::array<double, resourceCount>& readings);
    /// Takes the thresholds (percent). Any thread.
    void setThresholds(const std::array<int32_t, resourceCount>& thresholds);

    /// The current reading of `resource`; noReading until one arrived. Any thread.
    double reading(Resource resource) const;
    /// The threshold of `resource`. Any thread.
    double threshold(Resource resource) const;

    /// Samples every resource (CPU, GPU, memory), dropping the oldest of six, and returns, in
    /// that order, those whose six samples are all above their thresholds. One thread only
    /// (the dialog's timer).
    std::vector<Resource> tick();

    /// The samples of `resource`, oldest first. The ticking thread.
    std::deque<double> samples(Resource resource) const;

private:
    std::array<std::atomic<double>, resourceCount> m_readings;
    std::array<std::atomic<double>, resourceCount> m_thresholds;
    std::array<std::deque<double>, resourceCount> m_samples;
};

} // namespace vexa::inputsource
