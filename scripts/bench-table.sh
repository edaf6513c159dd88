#!/usr/bin/env bash
# Builds the catalogue benchmark in a Release build and runs it: our codecs and
# OpenSSL's (plain templates and public API) on the same bytes in one process,
# then the side-by-side table (MB/s, objects/s, ratios, cost per CRL entry,
# peak memory of a decoded object).
#
#   scripts/bench-table.sh [BUILD_DIR] [benchmark flags...]
#
# BUILD_DIR defaults to build/release (configured with the release preset when
# missing). Extra flags go to the program, e.g. --benchmark_filter='CRL' or
# --benchmark_repetitions=3 --benchmark_report_aggregates_only=true.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/release
if [ $# -gt 0 ] && [ "${1#--}" = "$1" ]; then
  build=$1
  shift
fi

if [ ! -f "$build/CMakeCache.txt" ]; then
  if [ "$build" = build/release ]; then
    cmake --preset release >/dev/null
  else
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
  fi
fi
cmake --build "$build" -j2 --target catalogue_bench
exec "$build/bench/asn1gen/catalogue_bench" --benchmark_min_time=0.5 "$@"
