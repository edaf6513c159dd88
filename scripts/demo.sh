#!/usr/bin/env bash
# The main job: build and install the library and adestool, then inspect the
# bundled X Long Type 1 example signature with the installed tool: every
# signed and unsigned attribute decoded, the CAdES format it meets, and the
# message digest, signature and certificate chain checked (trust anchor: the
# example's root CA). Extra arguments go to `adestool inspect` (e.g. --json).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
korvex_need_packages

prefix=$PWD/build/demo-prefix
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" >/dev/null
cmake --install build/release --prefix "$prefix" >/dev/null
exec "$prefix/bin/adestool" inspect examples/cades/x-long-1.p7s --verify \
  --trust examples/cades/root-ca.der "$@"
