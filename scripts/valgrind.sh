#!/usr/bin/env bash
# valgrind memcheck over every test binary of a gcc build without sanitizers:
# no invalid read or write, no use of uninitialised memory and no leak
# (definite, indirect or possible) may be reported. Builds the tests in
# build/release (the `release` preset) or the folder given as the first
# argument; the binaries run one after the other (memcheck is slow; the
# machine may be shared). KORVEX_JOBS sets the build parallelism (default 2);
# KORVEX_VALGRIND_TESTS limits the run to the named binaries.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
jobs=${KORVEX_JOBS:-2}
command -v valgrind >/dev/null || { echo "valgrind: not installed" >&2; exit 1; }
launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++ -DKORVEX_BUILD_BENCH=OFF \
  "${launcher[@]}" >/dev/null
tests=${KORVEX_VALGRIND_TESTS:-$(cmake --build "$build" --target help |
  sed -n 's/^\([a-z0-9_]*_tests\): .*/\1/p' | sort)}
# shellcheck disable=SC2086
cmake --build "$build" -j "$jobs" --target $tests

# Known false reports of the C library, each explained in the file.
suppressions=$(pwd)/scripts/valgrind.supp
logs="$build/valgrind"
mkdir -p "$logs"
failed=0
for name in $tests; do
  exe=$(find "$build/tests" "$build/tools" -type f -name "$name" -perm -u+x 2>/dev/null | head -n 1)
  [ -n "$exe" ] || { echo "valgrind: $name not built" >&2; exit 1; }
  start=$(date +%s)
  # Child processes (adestool runs, death tests) are not traced: memcheck
  # judges the test binary itself.
  if valgrind --error-exitcode=1 --leak-check=full --show-leak-kinds=definite,indirect,possible \
      --errors-for-leak-kinds=definite,indirect,possible --trace-children=no \
      --suppressions="$suppressions" \
      --log-file="$logs/$name.log" "$exe" --gtest_brief=1 >"$logs/$name.out" 2>&1; then
    result=clean
  else
    result=FAILED
    failed=1
  fi
  tests_run=$(grep -Eo '[0-9]+ tests? from [0-9]+ test suites? ran' "$logs/$name.out" | head -n 1)
  summary=$(grep -E 'ERROR SUMMARY' "$logs/$name.log" | tail -n 1 | sed 's/^==[0-9]*== //')
  echo "$name: $result, $tests_run, $summary ($(($(date +%s) - start)) s)"
  [ "$result" = clean ] || tail -n 40 "$logs/$name.log"
done
exit "$failed"
