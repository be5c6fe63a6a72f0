#!/usr/bin/env bash
# Installs what is missing, builds Brawlforge in Debug with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs every test through CTest.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/tools/setup-deps.sh"
export CCACHE_BASEDIR="$top"
build="$top/build/debug-asan"
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DBF_SANITIZE=ON >/dev/null
cmake --build "$build"
cd "$build"
ctest --output-on-failure -j"$(nproc)" "$@"
