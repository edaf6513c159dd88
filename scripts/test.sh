#!/usr/bin/env bash
# Builds and runs every test: a release build, the same tests under
# AddressSanitizer + UndefinedBehaviorSanitizer (clang, which also builds the
# libFuzzer targets), a short run of each fuzz target, then the threads test
# under ThreadSanitizer (scripts/tsan.sh). Longer checks have scripts of their
# own (docs/coverage.md): coverage.sh (line coverage of the ASN.1 runtime) and
# valgrind.sh (memcheck over every test binary).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
korvex_need_packages

jobs=$(nproc)
fuzz_seconds=${KORVEX_FUZZ_SECONDS:-5}

echo "== release build"
cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs"
ctest --preset release

sanitizer=asan
command -v clang++ >/dev/null || sanitizer=asan-gcc
echo "== $sanitizer build (AddressSanitizer + UndefinedBehaviorSanitizer)"
cmake --preset "$sanitizer" >/dev/null
cmake --build --preset "$sanitizer" -j "$jobs"
ctest --preset "$sanitizer"

if [ "$sanitizer" = asan ] && [ -s build/asan/fuzzers.txt ]; then
  echo "== fuzz smoke run, ${fuzz_seconds}s per target"
  export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
  while read -r target; do
    [ -n "$target" ] || continue
    exe=$(find build/asan/fuzz -type f -name "$target" -perm -u+x | head -n 1)
    work=$(mktemp -d)
    seeds=()
    [ -d "fuzz/corpus/$target" ] && seeds+=("fuzz/corpus/$target")
    echo "-- $target"
    "$exe" -max_total_time="$fuzz_seconds" -rss_limit_mb=2048 -print_final_stats=0 \
      "$work" "${seeds[@]}" >"$work.log" 2>&1 || { tail -n 60 "$work.log"; exit 1; }
    grep -E '^#[0-9]+.*DONE' "$work.log" | tail -n 1 || true
    rm -rf "$work" "$work.log"
  done < build/asan/fuzzers.txt
fi
if command -v clang++ >/dev/null; then
  echo "== ThreadSanitizer: the threads test"
  KORVEX_JOBS=$jobs scripts/tsan.sh build/tsan
fi
echo "all test stages passed"
