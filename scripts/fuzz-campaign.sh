#!/usr/bin/env bash
# A fuzzing campaign over every libFuzzer target (docs/fuzzing.md).
#
#   scripts/fuzz-campaign.sh [SECONDS_PER_TARGET] [BUILD_DIR]
#
# Builds (or reuses) the clang AddressSanitizer + UndefinedBehaviorSanitizer
# fuzz build in BUILD_DIR (default build/asan, the folder of the asan preset),
# runs each target listed in BUILD_DIR/fuzzers.txt for SECONDS_PER_TARGET
# seconds (default 65), one process at a time, seeded from
# fuzz/corpus/<target>/ (or from the fixtures in tests/data when a target has
# no seeds), then minimises what it found together with the committed seeds
# back into fuzz/corpus/<target>/ with -merge=1. A SECONDS_PER_TARGET of 0
# only minimises again, from the inputs the last run left in the build folder.
# Crashes, leaks, UBSan reports, timeouts and OOMs are kept in
# BUILD_DIR/fuzz-campaign/artifacts/<target>/ and counted as findings; after a
# finding the target is restarted for the rest of its time (at most three
# times). Prints a table: target, seconds, executions, corpus files and bytes,
# findings (also in BUILD_DIR/fuzz-campaign/summary.tsv).
#
# Environment: KORVEX_FUZZ_TARGETS (space-separated subset of the targets),
# KORVEX_FUZZ_MERGE_MAX_LEN (longest input kept in a committed corpus, bytes,
# default 4096), KORVEX_FUZZ_NO_MERGE=1 (fuzz only, leave fuzz/corpus alone),
# KORVEX_FUZZ_JOBS (build parallelism, default 2).
# Exit status: 0 when no target had a finding, 1 otherwise, 2 on usage errors.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1
root=$(pwd)

seconds=${1:-65}
build=${2:-build/asan}
case "$seconds" in
  '' | *[!0-9]*) echo "usage: $0 [SECONDS_PER_TARGET] [BUILD_DIR]" >&2; exit 2 ;;
esac
case "$build" in /*) ;; *) build="$root/$build" ;; esac
merge_max_len=${KORVEX_FUZZ_MERGE_MAX_LEN:-4096}
jobs=${KORVEX_FUZZ_JOBS:-2}

# -- build -------------------------------------------------------------------
if [ ! -f "$build/CMakeCache.txt" ]; then
  launcher=()
  if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DKORVEX_SANITIZE=address,undefined -DKORVEX_FUZZ=ON -DKORVEX_BUILD_BENCH=OFF \
    "${launcher[@]}" >/dev/null || exit 1
else
  cmake "$build" >/dev/null || exit 1
fi
[ -s "$build/fuzzers.txt" ] || { echo "no fuzz targets in $build (KORVEX_FUZZ off?)" >&2; exit 1; }
mapfile -t all_targets < <(grep -v '^$' "$build/fuzzers.txt")
targets=("${all_targets[@]}")
if [ -n "${KORVEX_FUZZ_TARGETS:-}" ]; then
  read -r -a targets <<<"$KORVEX_FUZZ_TARGETS"
fi
cmake --build "$build" -j "$jobs" --target "${targets[@]}" >/dev/null || {
  echo "fuzz build failed; rerun: cmake --build $build --target ${targets[*]}" >&2
  exit 1
}

# -- seeds -------------------------------------------------------------------
# Fixtures for a target without seeds of its own: text for the text parsers,
# DER/BER/PEM files for everything else.
fixture_seeds() {
  local target=$1 out=$2
  local -a names
  case "$target" in
    fuzz_config_parse) names=(-name '*.cnf') ;;
    fuzz_dn_text | fuzz_datetime_text | fuzz_span_text | fuzz_codepage_utf8 | \
      fuzz_asn1types_oidtext | fuzz_blob_hex | asn1rt_utf8_fuzz | asn1rt_time_fuzz | \
      asn1rt_bigint_fuzz) names=(-name '*.txt' -o -name '*.pem') ;;
    *) names=(-name '*.der' -o -name '*.ber' -o -name '*.bin' -o -name '*.crl' -o \
      -name '*.tsq' -o -name '*.tsr' -o -name '*.pem') ;;
  esac
  # Named by their SHA-1 like found inputs, so that the merge keeps only those
  # that add coverage.
  local f
  while IFS= read -r f; do
    cp "$f" "$out/$(sha1sum <"$f" | cut -c1-40)"
  done < <(find "$root/tests/data" -type f \( "${names[@]}" \) -size -65k)
}

# -- run ---------------------------------------------------------------------
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
campaign="$build/fuzz-campaign"
mkdir -p "$campaign"
summary="$campaign/summary.tsv"
printf 'target\tseconds\texecutions\tcorpus_files\tcorpus_bytes\tfindings\n' >"$summary"
total_findings=0
total_seconds=0
total_execs=0

for target in "${targets[@]}"; do
  exe=$(find "$build/fuzz" -type f -name "$target" -perm -u+x | head -n 1)
  [ -n "$exe" ] || { echo "no executable for $target" >&2; exit 1; }
  work="$campaign/work/$target"
  artifacts="$campaign/artifacts/$target"
  seeds="$campaign/seeds/$target"
  rm -rf "$seeds"
  [ "$seconds" -eq 0 ] || rm -rf "$work"
  mkdir -p "$work" "$artifacts" "$seeds"
  committed="$root/fuzz/corpus/$target"
  if [ -d "$committed" ] && [ -n "$(ls -A "$committed")" ]; then
    cp "$committed"/* "$seeds/"
  else
    fixture_seeds "$target" "$seeds"
  fi
  before=$(find "$artifacts" -type f | wc -l)
  log="$campaign/$target.log"
  : >"$log"
  start=$(date +%s)
  execs=0
  restarts=0
  echo "-- $target (${seconds}s)" >&2
  while [ "$seconds" -gt 0 ]; do
    left=$((seconds - ($(date +%s) - start)))
    [ "$left" -ge 2 ] || break
    "$exe" -max_total_time="$left" -rss_limit_mb=2048 -timeout=10 \
      -print_final_stats=1 -artifact_prefix="$artifacts/" \
      "$work" "$seeds" >"$log.run" 2>&1
    status=$?
    cat "$log.run" >>"$log"
    run_execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log.run" | tail -n 1)
    [ -n "$run_execs" ] || run_execs=$(grep -oE '^#[0-9]+' "$log.run" | tail -n 1 | tr -d '#')
    execs=$((execs + ${run_execs:-0}))
    [ "$status" -ne 0 ] || break
    grep -E '^(==[0-9]+==ERROR|SUMMARY|.*runtime error)' "$log.run" | head -n 3 >&2
    restarts=$((restarts + 1))
    [ "$restarts" -lt 4 ] || break
  done
  rm -f "$log.run"
  elapsed=$(($(date +%s) - start))
  findings=$(($(find "$artifacts" -type f | wc -l) - before))

  if [ "${KORVEX_FUZZ_NO_MERGE:-0}" != 1 ]; then
    # Seeds written by hand (any name but a 40-digit SHA-1, which is how
    # libFuzzer names what it finds) stay as they are; merge adds, from the
    # found inputs and the earlier generated seeds, only those that reach
    # coverage the hand-written seeds do not. Edges alone count (no hit
    # counters), which keeps the committed corpus a small seed set; the next
    # run finds the counter-level variety again in minutes.
    merged="$campaign/merged/$target"
    generated="$campaign/generated/$target"
    rm -rf "$merged" "$generated"
    mkdir -p "$merged" "$generated"
    for f in "$seeds"/*; do
      [ -f "$f" ] || continue
      if [[ $(basename "$f") =~ ^[0-9a-f]{40}$ ]]; then
        cp "$f" "$generated/"
      else
        cp "$f" "$merged/"
      fi
    done
    if "$exe" -merge=1 -use_counters=0 -max_len="$merge_max_len" -rss_limit_mb=2048 \
      -timeout=10 -artifact_prefix="$artifacts/" "$merged" "$work" "$generated" \
      >"$campaign/$target.merge.log" 2>&1 && [ -n "$(ls -A "$merged")" ]; then
      rm -rf "$committed"
      mkdir -p "$committed"
      cp "$merged"/* "$committed/"
    else
      echo "merge of $target failed, corpus left as it was ($campaign/$target.merge.log)" >&2
    fi
  fi
  files=0
  bytes=0
  if [ -d "$committed" ]; then
    files=$(find "$committed" -type f | wc -l)
    bytes=$(find "$committed" -type f -printf '%s\n' | awk '{s += $1} END {print s + 0}')
  fi
  printf '%s\t%s\t%s\t%s\t%s\t%s\n' "$target" "$elapsed" "$execs" "$files" "$bytes" \
    "$findings" >>"$summary"
  total_findings=$((total_findings + findings))
  total_seconds=$((total_seconds + elapsed))
  total_execs=$((total_execs + execs))
done

corpus_bytes=$(find "$root/fuzz/corpus" -type f -printf '%s\n' | awk '{s += $1} END {print s + 0}')
{
  printf '%-28s %8s %12s %7s %10s %9s\n' target seconds executions files bytes findings
  tail -n +2 "$summary" | while IFS=$'\t' read -r t s e f b n; do
    printf '%-28s %8s %12s %7s %10s %9s\n' "$t" "$s" "$e" "$f" "$b" "$n"
  done
  printf '%-28s %8s %12s %7s %10s %9s\n' total "$total_seconds" "$total_execs" \
    "$(find "$root/fuzz/corpus" -type f | wc -l)" "$corpus_bytes" "$total_findings"
  printf 'fuzzing time: %d min %d s; artifacts: %s\n' $((total_seconds / 60)) \
    $((total_seconds % 60)) "$campaign/artifacts"
}
[ "$total_findings" -eq 0 ]
