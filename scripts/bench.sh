#!/usr/bin/env bash
# Builds the release preset and runs every benchmark program on the offscreen platform. Each
# program prints Google Benchmark's table and then its ratio lines: a time against a baseline
# measured in the same run, with the target it is held to. The ratio lines of all programs are
# repeated at the end; every program's full output is kept in <build>/bench-results/.
#   scripts/bench.sh                                  five repetitions each, medians compared
#   scripts/bench.sh --benchmark_filter=Relayout      further flags go to every program
#   BENCH_BUILD_DIR=build/other scripts/bench.sh      another build directory
# bench_livepreview runs a second time on a virtual X server when xvfb-run is installed.
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

# The live previews are measured on a display server as well, when one can be started: what a
# frame costs there includes sending the picture to the server.
if [ -x "$build_dir/bench/bench_livepreview" ] && command -v xvfb-run >/dev/null 2>&1; then
    echo "=== bench_livepreview (Xvfb)"
    if ! QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1600x1000x24" \
        "$build_dir/bench/bench_livepreview" "${flags[@]}" |
        tee "$results_dir/bench_livepreview-xvfb.txt"; then
        failed+=("bench_livepreview (Xvfb)")
    fi
    programs+=("bench_livepreview-xvfb")
fi

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
