#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them (or the named ones).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/tools/setup-deps.sh"
export CCACHE_BASEDIR="$top"
build="$top/build/bench"
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBF_BUILD_BENCH=ON -DBF_BUILD_TESTS=OFF >/dev/null
cmake --build "$build"
names=("$@")
if [ ${#names[@]} -eq 0 ]; then for f in "$build"/bin/bench_*; do names+=("$(basename "$f")"); done; fi
for n in "${names[@]}"; do echo "== $n"; "$build/bin/$n"; done
