// SPDX-License-Identifier: MIT
#pragma once

#include "support/ratiocheck.h"

#include <vector>

namespace vexa::bench {

/// The body of a benchmark program's main(): reads Google Benchmark's flags from the command
/// line, runs the registered benchmarks through a RatioReporter for `checks` and prints the
/// ratio lines after the table. Returns 1 for an unknown argument, or when a check could not
/// be evaluated while every benchmark was selected (a mistyped run name); 0 otherwise, also
/// when a target is missed: the ratios are figures to read, not a pass or fail. Call it from
/// the main thread, after any object the benchmarks need (such as a QApplication) exists.
int runWithRatios(int argc, char** argv, std::vector<RatioCheck> checks);

} // namespace vexa::bench
