// SPDX-License-Identifier: MIT
#include "loadwatch.h"

#include <zqctuils/floatcomparison.h>

#include <algorithm>

namespace vexa::inputsource {

namespace {

bool isNoReading(double value)
{
    return zqctuils::FloatComparison::equal(value, LoadWatch::noReading);
}

} // namespace

LoadWatch::LoadWatch()
{
    for (int resource = 0; resource < resourceCount; ++resource) {
        m_readings[resource].store(noReading, std::memory_order_relaxed);
        m_thresholds[resource].store(defaultThreshold, std::memory_order_relaxed);
    }
}

void LoadWatch::setReadings(const std::array<double, resourceCount>& readings)
{
    for (int resource = 0; resource < resourceCount; ++resource) {
        if (!isNoReading(readings[resource])) {
            m_readings[resource].store(readings[resource], std::memory_order_relaxed);
        }
    }
}

void LoadWatch::setThresholds(const std::array<int32_t, resourceCount>& thresholds)
{
    for (int resource = 0; resource < resourceCount; ++resource) {
        m_thresholds[resource].store(static_cast<double>(thresholds[resource]),
                                     std::memory_order_relaxed);
    }
}

double LoadWatch::reading(Resource resource) const
{
    return m_readings[resource].load(std::memory_order_relaxed);
}

double LoadWatch::threshold(Resource resource) const
{
    return m_thresholds[resource].load(std::memory_order_relaxed);
}

std::vector<LoadWatch::Resource> LoadWatch::tick()
{
    std::vector<Resource> exceeded;
    for (const Resource resource : {Cpu, Gpu, Memory}) {
        std::deque<double>& samples = m_samples[resource];
        if (static_cast<int>(samples.size()) == sampleCount) {
            samples.pop_front();
        }
        const double current = reading(resource);
        samples.push_back(isNoReading(current) ? 0.0 : current);
        const double limit = threshold(resource);
        if (static_cast<int>(samples.size()) == sampleCount &&
            std::all_of(samples.begin(), samples.end(),
                        [limit](double sample) { return sample > limit; })) {
            exceeded.push_back(resource);
        }
    }
    return exceeded;
}

std::deque<double> LoadWatch::samples(Resource resource) const
{
    return m_samples[resource];
}

} // namespace vexa::inputsource
