#!/usr/bin/env bash
# Makes the CAdES examples in examples/cades/ with the openssl command line
# (OpenSSL 3) and adestool, from the test PKI of tests/data/ (certificates,
# keys, CRLs, OCSP response and time-stamping authority of make-fixtures.sh):
#
#   BES            openssl cms -sign -cades
#   T              adestool imprint --for t -> openssl ts -query -digest
#                  -> openssl ts -reply -> adestool extend --to t
#   X Long Type 1  adestool imprint --for esc -> openssl ts -query/-reply
#                  -> adestool extend --to x-long-1
#
# and checks every result with openssl cms -verify and openssl ts -verify.
#
#   make-examples.sh --adestool PATH [--out DIR] [--stream] [--keyid]
#
#   --adestool PATH  the built adestool (or the ADESTOOL environment variable)
#   --out DIR        where to write (default: examples/cades beside this script)
#   --stream         sign with -stream: the BES has indefinite lengths (BER)
#   --keyid          sign with -keyid: the signer is named by subject key identifier
#
# Prints one summary line on success; on failure the failing command and the
# tail of its output, and exits non-zero.
set -Eeuo pipefail
umask 022
export LC_ALL=C.UTF-8

HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
DATA=$HERE/../tests/data
OUT=$HERE/cades
STREAM=()
KEYID=()
ADESTOOL=${ADESTOOL:-}
while [ $# -gt 0 ]; do
  case $1 in
    --adestool) ADESTOOL=${2:?--adestool needs a path}; shift ;;
    --out) OUT=${2:?--out needs a directory}; shift ;;
    --stream) STREAM=(-stream) ;;
    --keyid) KEYID=(-keyid) ;;
    -h|--help) sed -n '2,22p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "make-examples.sh: unknown option $1" >&2; exit 2 ;;
  esac
  shift
done
[ -n "$ADESTOOL" ] && [ -x "$ADESTOOL" ] || {
  echo "make-examples.sh: give the built adestool with --adestool PATH" >&2; exit 2; }
command -v openssl >/dev/null || { echo "make-examples.sh: no openssl command" >&2; exit 2; }

WORK=$(mktemp -d "${TMPDIR:-/tmp}/korvex-examples.XXXXXX")
LOG=$WORK/log
: >"$LOG"
trap 'rm -rf "$WORK"' EXIT
trap 'echo "make-examples.sh: failed at line $LINENO: $BASH_COMMAND" >&2; tail -n 20 "$LOG" >&2' ERR

run() {
  echo "+ $*" >>"$LOG"
  "$@" >>"$LOG" 2>&1
}

mkdir -p "$OUT"
E=$(cd "$OUT" && pwd)

# Inputs, copied so that the folder stands on its own.
cp "$DATA/cms/content.txt" "$E/content.txt"
for f in ee-rsa intermediate-ca root-ca tsa; do cp "$DATA/pki/$f.der" "$E/$f.der"; done
cp "$DATA/crl/intermediate-ca.crl" "$DATA/crl/root-ca.crl" "$E/"
cp "$DATA/ocsp/resp-good.der" "$E/ocsp-ee-rsa.der"
for f in ee-rsa intermediate-ca root-ca tsa; do
  run openssl x509 -inform DER -in "$E/$f.der" -out "$WORK/$f.pem"
done

# The test TSA of tests/data/conf/tsa.cnf; its serial numbers start at 0x3001.
mkdir -p "$WORK/tsa"
echo 3000 >"$WORK/tsa/tsaserial"
# stamp DIGEST NAME: NAME.tsq (SHA-256 imprint DIGEST) and the TSA's NAME.tsr.
stamp() {
  run openssl ts -query -digest "$1" -sha256 -cert -out "$E/$2.tsq"
  KX_TSADIR=$WORK/tsa run openssl ts -reply -config "$DATA/conf/tsa.cnf" -section kx_tsa \
    -queryfile "$E/$2.tsq" -signer "$WORK/tsa.pem" -inkey "$DATA/keys/tsa.key.pem" \
    -chain "$WORK/intermediate-ca.pem" -out "$E/$2.tsr"
}

# 1. BES: RSA signer ee-rsa, SHA-256, the content encapsulated.
run openssl cms -sign -cades -binary -nodetach "${STREAM[@]}" "${KEYID[@]}" -md sha256 -in "$E/content.txt" \
  -signer "$WORK/ee-rsa.pem" -inkey "$DATA/keys/ee-rsa.key.pem" \
  -certfile "$WORK/intermediate-ca.pem" -outform DER -out "$E/bes.p7s"

# 2. T: a signature time-stamp over the signature value.
T_IMPRINT=$("$ADESTOOL" imprint "$E/bes.p7s" --for t)
echo "$T_IMPRINT" >"$E/t.imprint.txt"
stamp "$T_IMPRINT" t
run "$ADESTOOL" extend "$E/bes.p7s" --to t --token "$E/t.tsr" -o "$E/t.p7s"

# 3. X Long Type 1: references and values of the path ee-rsa -> intermediate
#    -> root, and a CAdES-C time-stamp over signature, signature time-stamp
#    and references.
VALIDATION=(--cert "$E/intermediate-ca.der" --cert "$E/root-ca.der"
            --crl "$E/intermediate-ca.crl" --crl "$E/root-ca.crl" --ocsp "$E/ocsp-ee-rsa.der")
ESC_IMPRINT=$("$ADESTOOL" imprint "$E/t.p7s" --for esc "${VALIDATION[@]}")
echo "$ESC_IMPRINT" >"$E/esc.imprint.txt"
stamp "$ESC_IMPRINT" esc
run "$ADESTOOL" extend "$E/t.p7s" --to x-long-1 "${VALIDATION[@]}" --token "$E/esc.tsr" \
  -o "$E/x-long-1.p7s"

# Checks: each signature still verifies and gives the content back; the
# tokens verify against what they cover.
for f in bes t x-long-1; do
  run openssl cms -verify -binary -inform DER -in "$E/$f.p7s" -CAfile "$WORK/root-ca.pem" \
    -out "$WORK/$f.content"
  cmp -s "$E/content.txt" "$WORK/$f.content" || { echo "make-examples.sh: $f.p7s: content differs" >&2; exit 1; }
done
python3 - "$E/t.p7s" "$WORK/signature-value.bin" <<'PY'
# The contents octets of the first SignerInfo's signature (RFC 5652 5.3);
# BER indefinite lengths (X.690 8.1.3.6) are followed to their end.
import sys
def tlv(b, i):  # -> (tag, contents start, contents end, element end)
    tag = b[i]; n = b[i + 1]; i += 2
    if n == 0x80:
        j = i
        while b[j:j + 2] != b"\0\0":
            j = tlv(b, j)[3]
        return tag, i, j, j + 2
    if n & 0x80:
        k = n & 0x7F; n = int.from_bytes(b[i:i + k], "big"); i += k
    return tag, i, i + n, i + n
def children(b, s, e):
    out = []
    while s < e:
        t = tlv(b, s); out.append(t); s = t[3]
    return out
b = open(sys.argv[1], "rb").read()
_, s, e, _ = tlv(b, 0)
_, content = children(b, s, e)
_, s, e, _ = tlv(b, content[1])
signer_infos = children(b, s, e)[-1]
first = children(b, signer_infos[1], signer_infos[2])[0]
sig = [f for f in children(b, first[1], first[2])[3:] if f[0] == 0x04][0]
open(sys.argv[2], "wb").write(b[sig[1]:sig[2]])
PY
run openssl ts -verify -data "$WORK/signature-value.bin" -in "$E/t.tsr" \
  -CAfile "$WORK/root-ca.pem" -untrusted "$WORK/intermediate-ca.pem"
run openssl ts -verify -digest "$ESC_IMPRINT" -in "$E/esc.tsr" \
  -CAfile "$WORK/root-ca.pem" -untrusted "$WORK/intermediate-ca.pem"

echo "make-examples.sh: bes.p7s, t.p7s, x-long-1.p7s in $E verified"
