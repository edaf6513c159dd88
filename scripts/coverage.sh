#!/usr/bin/env bash
# Line coverage of the ASN.1 runtime (asn1rt/src, the descriptor engine
# included) by its own tests and the generated-type tests.
#
# Builds asn1rt_tests and asn1gen_tests with clang in build/coverage (or the
# folder given as the first argument): the usual AddressSanitizer +
# UndefinedBehaviorSanitizer flags everywhere, and asn1rt/ alone instrumented
# for source-based coverage (scripts/coverage.cmake). Runs both binaries, then
# prints llvm-cov's per-file report of asn1rt/src and the total line coverage.
# KORVEX_COVERAGE_MIN (default 90) is the total line percentage below which
# the script fails. KORVEX_JOBS sets the build parallelism (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build=${1:-build/coverage}
jobs=${KORVEX_JOBS:-2}
minimum=${KORVEX_COVERAGE_MIN:-90}

for tool in clang++ llvm-profdata llvm-cov; do
  command -v "$tool" >/dev/null || { echo "coverage: $tool not found" >&2; exit 1; }
done
launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DKORVEX_SANITIZE=address,undefined -DKORVEX_FUZZ=ON -DKORVEX_BUILD_BENCH=OFF \
  -DCMAKE_PROJECT_INCLUDE="$root/scripts/coverage.cmake" \
  -DCMAKE_EXE_LINKER_FLAGS=-fprofile-instr-generate "${launcher[@]}" >/dev/null
cmake --build "$build" -j "$jobs" --target asn1rt_tests asn1gen_tests

profiles="$build/coverage-profiles"
rm -rf "$profiles"
mkdir -p "$profiles"
export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
binaries=("$build/tests/asn1rt/asn1rt_tests" "$build/tests/asn1gen/asn1gen_tests")
for exe in "${binaries[@]}"; do
  name=$(basename "$exe")
  echo "== $name"
  LLVM_PROFILE_FILE="$profiles/$name.profraw" "$exe" --gtest_brief=1 >"$profiles/$name.log" 2>&1 ||
    { tail -n 40 "$profiles/$name.log"; exit 1; }
  grep -E '^\[  (PASSED|FAILED) ' "$profiles/$name.log" || true
done
llvm-profdata merge -sparse "$profiles"/*.profraw -o "$profiles/merged.profdata"

# llvm-cov reads the mapping of every object linked in; only asn1rt/ is
# instrumented. The rows of asn1rt/src are printed, and their total.
objects=(-object "${binaries[0]}" -object "${binaries[1]}")
report="$profiles/report.txt"
llvm-cov report "${objects[@]:1}" -instr-profile="$profiles/merged.profdata" >"$report"
# Columns of llvm-cov's table: Filename, Regions (3), Functions (3), Lines
# (count, missed, cover), Branches (3).
awk -v src="$root/asn1rt/src/" '
  index($1, src) == 1 || $1 ~ /^src\// {
    name = $1; sub(".*src/", "", name)
    printf "%-28s %6d lines %5d missed %8s\n", name, $8, $9, $10
    lines += $8; missed += $9
  }
  END {
    if (lines == 0) { print "coverage: no asn1rt/src rows in the report" > "/dev/stderr"; exit 1 }
    printf "asn1rt/src total: %d lines, %d missed, %.2f%% line coverage\n", lines, missed,
      100 * (lines - missed) / lines
    printf "%.2f\n", 100 * (lines - missed) / lines > "'"$profiles/total.txt"'"
  }' "$report"
total=$(cat "$profiles/total.txt")
if awk -v t="$total" -v m="$minimum" 'BEGIN { exit !(t + 0 < m + 0) }'; then
  echo "coverage: total below ${minimum}%" >&2
  exit 1
fi
