#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (AddressSanitizer and UBSan) and runs each
# for the given number of seconds (default 60), growing the kept corpus in fuzz/corpus/.
# Usage: tools/fuzz.sh [seconds] [target-name ...]
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/tools/setup-deps.sh"
export CCACHE_BASEDIR="$top"
secs=${1:-60}; shift || true
build="$top/build/fuzz"
CC=clang CXX=clang++ cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DBF_BUILD_FUZZ=ON -DBF_BUILD_TESTS=ON >/dev/null
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for f in "$top"/fuzz/fuzz_*.cpp; do n=$(basename "$f" .cpp); targets+=("${n#fuzz_}"); done
fi
for t in "${targets[@]}"; do cmake --build "$build" --target "fuzz_$t"; done
for t in "${targets[@]}"; do
    corpus="$top/fuzz/corpus/$t"; mkdir -p "$corpus"
    echo "== fuzz_$t for ${secs}s"
    ASAN_OPTIONS=detect_leaks=0 "$build/bin/fuzz_$t" -max_total_time="$secs" -max_len=65536 \
        -artifact_prefix="$build/crash-$t-" "$corpus"
done
