#!/usr/bin/env bash
# The main job: build and install the library, then build the quickstart
# example against the installed package (as a user's project would) and run it
# on a generalized time and a blob of DER.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
korvex_need_packages

prefix=$PWD/build/demo-prefix
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" >/dev/null
cmake --install build/release --prefix "$prefix" >/dev/null
cmake -S examples/quickstart -B build/quickstart -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/quickstart >/dev/null
exec build/quickstart/quickstart "$@"
