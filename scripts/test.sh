#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds the project and runs every test, the formatting check
# among them.
#   scripts/test.sh            the dev build (debug)
#   scripts/test.sh asan       the same tests under the address and undefined-behaviour sanitizers
#   scripts/test.sh tsan       the same tests under the thread sanitizer
#   scripts/test.sh tsan 'threads|fuzz'
#                              only the tests whose CTest labels match, building just what
#                              they run (CI runs the threaded tests and fuzzers this way)
set -euo pipefail
cd "$(dirname "$0")/.."

preset="${1:-dev}"
labels="${2:-}"
case "$preset" in
    dev|release|asan|tsan) ;;
    *) echo "usage: $0 [dev|release|asan|tsan] [label regex]" >&2; exit 2 ;;
esac

scripts/setup-deps.sh

jobs="$(nproc 2>/dev/null || echo 2)"
cmake --preset "$preset"
if [ -z "$labels" ]; then
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs"
    exit 0
fi

# Every test is named after the executable target it runs ("<folder>/<target>").
mapfile -t targets < <(ctest --preset "$preset" -N -L "$labels" |
    sed -n 's|^ *Test *#[0-9]*: \(.*/\)\{0,1\}\([^/ ]*\)$|\2|p' | sort -u)
if [ ${#targets[@]} -eq 0 ]; then
    echo "error: no test is labelled '$labels'" >&2
    exit 1
fi
cmake --build --preset "$preset" -j "$jobs" --target "${targets[@]}"
ctest --preset "$preset" -j "$jobs" -L "$labels"
