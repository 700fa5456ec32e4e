#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds the demo host and runs it.
#   scripts/demo.sh                       opens the demo window on the current display
#   scripts/demo.sh --screenshot out.png  renders the window for a few seconds, saves it, quits
# Without a display (no DISPLAY / WAYLAND_DISPLAY) the demo runs on a virtual X server.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup-deps.sh

jobs="$(nproc 2>/dev/null || echo 2)"
cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs" --target demohost

demo=build/release/examples/demohost/demohost
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "No display found: running the demo on a virtual X server (xvfb-run)."
    exec xvfb-run -a -s "-screen 0 1600x1000x24" "$demo" "$@"
fi
exec "$demo" "$@"
