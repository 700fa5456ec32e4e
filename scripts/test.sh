#!/usr/bin/env bash
# Installs what is missing, builds the project and runs every test, the formatting check
# among them.
#   scripts/test.sh            the dev build (debug)
#   scripts/test.sh asan       the same tests under the address and undefined-behaviour sanitizers
#   scripts/test.sh tsan       the same tests under the thread sanitizer
set -euo pipefail
cd "$(dirname "$0")/.."

preset="${1:-dev}"
case "$preset" in
    dev|release|asan|tsan) ;;
    *) echo "usage: $0 [dev|release|asan|tsan]" >&2; exit 2 ;;
esac

scripts/setup-deps.sh

jobs="$(nproc 2>/dev/null || echo 2)"
cmake --preset "$preset"
cmake --build --preset "$preset" -j "$jobs"
ctest --preset "$preset" -j "$jobs"
