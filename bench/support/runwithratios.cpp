// SPDX-License-Identifier: MIT
#include "support/runwithratios.h"

#include "support/ratioreporter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include <unistd.h>

namespace vexa::bench {

namespace {

// A check whose runs are filtered out cannot be evaluated, and that is no mistake.
bool everyBenchmarkSelected()
{
    const std::string filter = benchmark::GetBenchmarkFilter();
    return filter.empty() || filter == "." || filter == "all";
}

} // namespace

int runWithRatios(int argc, char** argv, std::vector<RatioCheck> checks)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    // The console reporter colours its table only for a terminal, as the library's own does
    // by default; a log file gets plain text.
    const auto options =
        isatty(fileno(stdout)) != 0 ? RatioReporter::OO_ColorTabular : RatioReporter::OO_Tabular;
    RatioReporter reporter(std::move(checks), options);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const auto& results = reporter.results();
    const bool unevaluated =
        std::any_of(results.begin(), results.end(),
                    [](const RatioResult& result) { return !result.evaluated; });
    return unevaluated && everyBenchmarkSelected() ? 1 : 0;
}

} // namespace vexa::bench
