#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Fails when a source, header, CMake file or script of the project does not open with its
# licence identifier (after the shebang in a script). `--fix` adds the missing lines.
set -euo pipefail
cd "$(dirname "$0")/.."

fix=0
if [ "${1:-}" = "--fix" ]; then
    fix=1
fi

mapfile -t files < <(find . \( -path ./.git -o -path './build*' \) -prune -o -type f \( \
    -name '*.cpp' -o -name '*.h' -o -name '*.h.in' -o -name '*.cmake' -o -name '*.cmake.in' \
    -o -name CMakeLists.txt -o -name '*.sh' -o -name '*.py' -o -path ./.ci/run \) -print |
    sed 's|^\./||' | sort)

bad=()
for file in "${files[@]}"; do
    [ -f "$file" ] || continue
    case "$file" in
        *.cpp|*.h|*.h.in) line='// SPDX-License-Identifier: MIT' ;;
        *) line='# SPDX-License-Identifier: MIT' ;;
    esac
    first="$(head -n 1 "$file")"
    if [ "${first:0:2}" = "#!" ]; then
        expected="$(sed -n 2p "$file")"
    else
        expected="$first"
    fi
    if [ "$expected" = "$line" ]; then
        continue
    fi
    if [ $fix -eq 1 ]; then
        if [ "${first:0:2}" = "#!" ]; then
            sed -i "1a $line" "$file"
        else
            sed -i "1i $line" "$file"
        fi
    else
        bad+=("$file")
    fi
done

if [ ${#bad[@]} -gt 0 ]; then
    echo "No SPDX line (run scripts/check-spdx.sh --fix):"
    printf '  %s\n' "${bad[@]}"
    exit 1
fi
echo "spdx: ${#files[@]} files checked"
