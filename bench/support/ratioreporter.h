// SPDX-License-Identifier: MIT
#pragma once

#include "support/ratiocheck.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace vexa::bench {

/// What became of one RatioCheck.
struct RatioResult
{
    RatioCheck check;       ///< the check evaluated
    bool evaluated = false; ///< false when a run was missing, failed or had no item count
    std::string problem;    ///< why it was not evaluated
    double measuredNs = 0;  ///< time of the measured run (per item for scaling), nanoseconds
    double baselineNs = 0;  ///< time of the baseline run (per item for scaling), nanoseconds
    double ratio = 0;       ///< measuredNs / baselineNs
    bool met = false;       ///< ratio <= check.maxRatio
};

/// Google Benchmark's console table, followed by one line per RatioCheck once every run is
/// done, such as "ratio  BM_A / BM_B = 1.07  (...; target <= 1.15: met)". Every line starts
/// with "ratio  ", so scripts can pick them out. Use from the benchmark program's main thread.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    /// Reports on `checks` in the given order, with the console options `options`.
    explicit RatioReporter(std::vector<RatioCheck> checks, OutputOptions options = OO_Defaults);
    ~RatioReporter() override;

    /// Prints the runs as the console reporter does and keeps their times.
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Evaluates the checks and prints their lines.
    void Finalize() override;

    /// The outcome of every check, in the order given; empty until Finalize() ran.
    const std::vector<RatioResult>& results() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::bench
