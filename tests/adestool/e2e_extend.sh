#!/usr/bin/env bash
# End-to-end test of adestool imprint/extend with the openssl command line:
# examples/make-examples.sh makes a BES with `openssl cms -sign -cades`,
# extends it to T and to X Long Type 1 with `openssl ts`-made tokens and
# checks each result with `openssl cms -verify` and `openssl ts -verify`
# (the T token against the signature value); once on DER, once on a
# streamed (indefinite-length BER) signature and once on a signature whose
# signer is named by subject key identifier. When adestool has the
# `inspect` command, it must report BES, T and X Long Type 1, and its
# --verify must pass on the X Long Type 1 signatures, time-stamp imprints
# included.
#
#   e2e_extend.sh ADESTOOL MAKE_EXAMPLES
#
# Exit status 77 (skipped) without the openssl or python3 command.
set -euo pipefail
ADESTOOL=$1
MAKE_EXAMPLES=$2
command -v openssl >/dev/null || { echo "skipped: no openssl command"; exit 77; }
command -v python3 >/dev/null || { echo "skipped: no python3 command"; exit 77; }

WORK=$(mktemp -d "${TMPDIR:-/tmp}/adestool-e2e.XXXXXX")
trap 'rm -rf "$WORK"' EXIT

"$MAKE_EXAMPLES" --adestool "$ADESTOOL" --out "$WORK/der"
"$MAKE_EXAMPLES" --adestool "$ADESTOOL" --out "$WORK/ber" --stream
"$MAKE_EXAMPLES" --adestool "$ADESTOOL" --out "$WORK/keyid" --keyid

# The streamed BES really is BER, and extending made its path definite.
[ "$(head -c 2 "$WORK/ber/bes.p7s" | od -An -tx1 | tr -d ' ')" = 3080 ] ||
  { echo "FAIL: the streamed BES does not start with an indefinite length"; exit 1; }
[ "$(head -c 2 "$WORK/ber/t.p7s" | od -An -tx1 | tr -d ' ')" = 3082 ] ||
  { echo "FAIL: the extended streamed signature is not definite at the top"; exit 1; }

if "$ADESTOOL" --help | grep -q '^  inspect '; then
  for dir in der ber keyid; do
    for pair in bes:BES t:T x-long-1:"X Long Type 1"; do
      file=${pair%%:*}
      level=${pair#*:}
      "$ADESTOOL" inspect --json "$WORK/$dir/$file.p7s" >"$WORK/inspect.json" || true
      grep -qF "\"format\": \"$level\"" "$WORK/inspect.json" ||
        { echo "FAIL: inspect does not report $level for $dir/$file.p7s"; exit 1; }
    done
  done
  echo "inspect reports BES, T and X Long Type 1"
  # inspect --verify holds both time-stamps to what they cover: the same
  # octets imprint hashed for the tokens.
  for dir in der ber keyid; do
    "$ADESTOOL" inspect --verify "$WORK/$dir/x-long-1.p7s" >"$WORK/inspect.txt" ||
      { echo "FAIL: inspect --verify fails on $dir/x-long-1.p7s"; exit 1; }
    for line in "imprint matches the signature value: yes" \
                "imprint matches the CAdES-C data: yes"; do
      grep -qF "$line" "$WORK/inspect.txt" ||
        { echo "FAIL: inspect does not show '$line' for $dir/x-long-1.p7s"; exit 1; }
    done
  done
  echo "inspect --verify passes on the three X Long Type 1 signatures"
else
  echo "inspect is not available: its check is left out"
fi
echo "PASS"
