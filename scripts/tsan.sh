#!/usr/bin/env bash
# ThreadSanitizer run of the threads test (tests/asn1gen/threads_test.cpp):
# several threads encode and decode at once while reading the load-time
# constants. Builds only that binary, with clang and -fsanitize=thread, in
# build/tsan (the `tsan` preset) or the folder given as the first argument,
# and fails on any report. KORVEX_JOBS sets the build parallelism (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/tsan}
jobs=${KORVEX_JOBS:-2}
launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DKORVEX_SANITIZE=thread -DKORVEX_BUILD_BENCH=OFF "${launcher[@]}" >/dev/null
cmake --build "$build" -j "$jobs" --target asn1gen_threads_tests
export TSAN_OPTIONS=${TSAN_OPTIONS:-halt_on_error=1:second_deadlock_stack=1}
"$build/tests/asn1gen/asn1gen_threads_tests"
echo "tsan: no data race reported"
