#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs the churn soak test of the box (tests/libs/vexainputsourcewidget/tst_inputsourceboxsoak)
# for a long time under the address and undefined-behaviour sanitizers, then under the thread
# sanitizer: a thousand tiles over four boxes, eight frame threads, sources added and deleted
# continuously, online times, and the manager swapped every few seconds. It fails on a warning
# it does not expect and on resident memory that grows after the warm-up.
#   scripts/soak.sh                 600 s in each of asan and tsan
#   scripts/soak.sh 1800            30 minutes each
#   scripts/soak.sh 300 tsan        one preset
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-600}"
shift || true
presets=("$@")
if [ ${#presets[@]} -eq 0 ]; then
    presets=(asan tsan)
fi

scripts/setup-deps.sh
jobs="$(nproc 2>/dev/null || echo 2)"
for preset in "${presets[@]}"; do
    echo "=== $preset: $seconds s"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$jobs" --target tst_inputsourceboxsoak
    VEXA_SOAK_SECONDS="$seconds" ctest --preset "$preset" -R 'tst_inputsourceboxsoak$' \
        --timeout $((seconds + 600)) --verbose 2>&1 | grep -E 'QINFO|FAIL|PASS|Passed|Failed|ERROR|WARNING'
done
