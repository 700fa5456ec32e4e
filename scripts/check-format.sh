#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Fails when a C++ source of the project differs from what clang-format makes of it with the
# repository's .clang-format. Prints the files to fix; `--fix` rewrites them in place.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run -Werror)
if [ "${1:-}" = "--fix" ]; then
    mode=(-i)
fi

if ! command -v clang-format >/dev/null 2>&1; then
    echo "error: clang-format is not installed (scripts/setup-deps.sh installs it)" >&2
    exit 1
fi

mapfile -t files < <(find src include testing tests examples bench fuzz \
    \( -name '*.cpp' -o -name '*.h' \) -type f 2>/dev/null | sort)

bad=()
for file in "${files[@]}"; do
    if ! clang-format "${mode[@]}" "$file" >/dev/null 2>&1; then
        bad+=("$file")
    fi
done

if [ "${1:-}" != "--fix" ] && [ ${#bad[@]} -gt 0 ]; then
    echo "Not formatted (run scripts/check-format.sh --fix):"
    printf '  %s\n' "${bad[@]}"
    exit 1
fi
echo "format: ${#files[@]} files checked"
