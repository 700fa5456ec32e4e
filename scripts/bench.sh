#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the release preset and runs every benchmark program on the offscreen platform. Each
# program prints Google Benchmark's table and then its ratio lines: a time against a baseline
# measured in the same run, with the target it is held to. The ratio lines of all programs are
# repeated at the end; every program's full output is kept in <build>/bench-results/.
#   scripts/bench.sh                                  five repetitions each, medians compared
#   scripts/bench.sh --benchmark_filter=Relayout      further flags go to every program
#   BENCH_BUILD_DIR=build/other scripts/bench.sh      another build directory
# A missed target does not fail the script; a program that fails to run does.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup-deps.sh

build_dir="${BENCH_BUILD_DIR:-build/release}"
jobs="$(nproc 2>/dev/null || echo 2)"
cmake --preset release -B "$build_dir" -DVEXA_BUILD_BENCHMARKS=ON
cmake --build "$build_dir" -j "$jobs" --target benchmarks

mapfile -t programs < <(find "$build_dir/bench" -maxdepth 1 -type f -name 'bench_*' -perm -u+x | sort)
if [ ${#programs[@]} -eq 0 ]; then
    echo "error: no benchmark program was built in $build_dir/bench" >&2
    exit 1
fi

results_dir="$build_dir/bench-results"
mkdir -p "$results_dir"
flags=(--benchmark_repetitions=5 --benchmark_display_aggregates_only=true "$@")
failed=()
for program in "${programs[@]}"; do
    name="$(basename "$program")"
    echo "=== $name"
    if ! QT_QPA_PLATFORM=offscreen "$program" "${flags[@]}" | tee "$results_dir/$name.txt"; then
        failed+=("$name")
    fi
done

echo
echo "=== ratios"
for program in "${programs[@]}"; do
    name="$(basename "$program")"
    grep -h '^ratio  ' "$results_dir/$name.txt" | sed "s/^/$name: /" || true
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "error: failed to run: ${failed[*]}" >&2
    exit 1
fi
