#!/usr/bin/env bash
# Installs what is missing, builds Brawlforge in Release and starts it.
# Without a display (a headless box) it starts under a virtual X server.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/tools/setup-deps.sh"
export CCACHE_BASEDIR="$top"
build="$top/build/release"
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBF_BUILD_TESTS=OFF >/dev/null
cmake --build "$build"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "No display found: starting under xvfb-run."
    exec xvfb-run -a -s "-screen 0 1280x1024x24" "$build/bin/brawlforge" "$@"
fi
exec "$build/bin/brawlforge" "$@"
