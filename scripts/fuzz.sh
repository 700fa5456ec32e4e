#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the fuzz harnesses with clang and libFuzzer (address and undefined-behaviour
# sanitizers, coverage of the project's own libraries) in build/fuzz and runs each for a while,
# starting from the seed corpus. New inputs that reach new code are kept in
# build/fuzz/corpus/<harness>/ and used again by the next run; crashes are written to
# build/fuzz/artifacts/<harness>/. See docs/fuzzing.md.
#   scripts/fuzz.sh                         every harness, 180 s each
#   scripts/fuzz.sh 60                      every harness, 60 s each
#   scripts/fuzz.sh 60 fuzz_framepath       one harness
#   FUZZ_BUILD_DIR=build/other scripts/fuzz.sh
# Further libFuzzer flags go in FUZZ_FLAGS, e.g. FUZZ_FLAGS="-jobs=2 -workers=2".
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-180}"
shift || true
harnesses=("$@")
if [ ${#harnesses[@]} -eq 0 ]; then
    harnesses=(fuzz_languagefile fuzz_framepath fuzz_notifications)
fi

scripts/setup-deps.sh
if ! command -v clang++ >/dev/null 2>&1; then
    echo "error: clang++ is needed for libFuzzer (apt-get install clang)" >&2
    exit 1
fi

build_dir="${FUZZ_BUILD_DIR:-build/fuzz}"
launcher=()
if command -v ccache >/dev/null 2>&1; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
sanitizers="-fsanitize=address,undefined -fno-sanitize-recover=undefined"
CC=clang CXX=clang++ cmake -S . -B "$build_dir" -G Ninja "${launcher[@]}" \
    -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-O1 -g -fno-omit-frame-pointer -fsanitize=fuzzer-no-link $sanitizers" \
    -DCMAKE_EXE_LINKER_FLAGS="$sanitizers" \
    -DCMAKE_SHARED_LINKER_FLAGS="$sanitizers" \
    -DVEXA_FUZZ_ENGINE=libfuzzer \
    -DVEXA_BUILD_FUZZERS=ON \
    -DVEXA_BUILD_TESTS=OFF \
    -DVEXA_BUILD_EXAMPLES=OFF \
    -DVEXA_BUILD_BENCHMARKS=OFF \
    -DVEXA_WERROR=OFF
jobs="$(nproc 2>/dev/null || echo 2)"
cmake --build "$build_dir" -j "$jobs" --target "${harnesses[@]}"

export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$PWD/tests/sanitizers/lsan.supp:print_suppressions=0}"

summary=()
failed=()
for harness in "${harnesses[@]}"; do
    corpus="$build_dir/corpus/$harness"
    artifacts="$build_dir/artifacts/$harness"
    mkdir -p "$corpus" "$artifacts"
    log="$build_dir/$harness.log"
    echo "=== $harness: $seconds s"
    # The first directory receives the new inputs; the seeds are only read.
    # shellcheck disable=SC2086
    if ! "$build_dir/fuzz/$harness" -max_total_time="$seconds" -print_final_stats=1 \
        -timeout=30 -rss_limit_mb=4096 -artifact_prefix="$artifacts/" ${FUZZ_FLAGS:-} \
        "$corpus" "$build_dir/fuzz/seeds/$harness" 2>&1 | tee "$log" | grep -E '^#[0-9]+ +(DONE|INITED)|^stat::|ERROR|SUMMARY'; then
        :
    fi
    if grep -q -E '^(==[0-9]+==ERROR|SUMMARY: |.*deadly signal|.*Test unit written)' "$log"; then
        failed+=("$harness")
    fi
    runs="$(grep -E '^stat::number_of_executed_units' "$log" | awk '{print $2}' | tail -1)"
    summary+=("$harness: ${runs:-?} inputs in $seconds s, corpus $(find "$corpus" -type f | wc -l) files")
done

echo
echo "=== summary"
printf '%s\n' "${summary[@]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "error: crashes in ${failed[*]} (inputs in $build_dir/artifacts/)" >&2
    exit 1
fi
