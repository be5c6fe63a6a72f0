#!/usr/bin/env bash
# Installs what is missing, builds Brawlforge in Debug with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs every test through CTest. With CI=true
# warnings are errors, and tests fail where the sample content is missing.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/tools/setup-deps.sh"
export CCACHE_BASEDIR="$top"
build="$top/build/debug-asan"
werror=OFF
if [ "${CI:-}" = true ]; then werror=ON; fi
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DBF_SANITIZE=ON -DBF_WERROR=$werror >/dev/null
cmake --build "$build"
cd "$build"
ctest --output-on-failure -j"$(nproc)" "$@"
