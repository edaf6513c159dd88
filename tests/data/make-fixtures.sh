#!/usr/bin/env bash
# Rebuilds the PKI test data set under tests/data/ with the openssl command line
# (OpenSSL 3.0), coreutils and the Python 3 standard library. See README.md for
# what every file is and what tests may rely on.
#
#   make-fixtures.sh                 rebuild everything (keys in keys/ are reused)
#   make-fixtures.sh --new-keys      also generate fresh keys
#   make-fixtures.sh --large OUTDIR  only write a 100,000-entry CRL into OUTDIR
#                                    (benchmark input; never committed)
#
# Prints one summary line on success; on failure prints the failing command and
# the tail of its output, and exits non-zero.
set -Eeuo pipefail
umask 022
export LC_ALL=C.UTF-8

HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
CONF=$HERE/conf/ca.cnf
TSACONF=$HERE/conf/tsa.cnf
GENCONF=$HERE/genconf
KEYS=$HERE/keys
OUTPUT_DIRS=(pki crl ocsp tsp cms cades req cmp asn1)

NEW_KEYS=0
LARGE_OUT=
while [ $# -gt 0 ]; do
  case $1 in
    --new-keys) NEW_KEYS=1 ;;
    --large) LARGE_OUT=${2:?--large needs an output directory}; shift ;;
    -h|--help) sed -n '2,12p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "make-fixtures.sh: unknown option $1" >&2; exit 2 ;;
  esac
  shift
done

WORK=$(mktemp -d "${TMPDIR:-/tmp}/korvex-fixtures.XXXXXX")
LOG=$WORK/log
: >"$LOG"
trap 'rm -rf "$WORK"' EXIT
trap 'echo "make-fixtures.sh: failed at line $LINENO: $BASH_COMMAND" >&2; tail -n 25 "$LOG" >&2' ERR

# Runs a command with its output sent to the log.
run() {
  echo "+ $*" >>"$LOG"
  "$@" >>"$LOG" 2>&1
}

# Fails the script with a message.
die() {
  echo "make-fixtures.sh: $*" >&2
  tail -n 25 "$LOG" >&2
  exit 1
}

# ---------------------------------------------------------------------------
# Names, serial numbers and dates every test may rely on (README.md lists them)
# ---------------------------------------------------------------------------
ROOT_SUBJ="/C=RU/O=Korvex Test PKI/CN=Korvex Test Root CA"
INT_SUBJ="/C=RU/O=Korvex Test PKI/OU=Certification Authorities/CN=Korvex Test Intermediate CA"
UNTRUSTED_SUBJ="/C=RU/O=Korvex Untrusted PKI/CN=Korvex Untrusted Root CA"
EE_RSA_SUBJ="/C=RU/O=Korvex Test PKI/OU=Signers/CN=Korvex Test RSA Signer/emailAddress=signer@korvex.example"
EE_EC_SUBJ="/C=RU/O=Korvex Test PKI/OU=Signers/CN=Korvex Test EC Signer"
EE_EXPIRED_SUBJ="/C=RU/O=Korvex Test PKI/OU=Signers/CN=Korvex Test Expired Signer"
EE_REVOKED_SUBJ="/C=RU/O=Korvex Test PKI/OU=Signers/CN=Korvex Test Revoked Signer"
EE_UNTRUSTED_SUBJ="/C=RU/O=Korvex Untrusted PKI/CN=Korvex Untrusted Signer"
OCSP_SUBJ="/C=RU/O=Korvex Test PKI/OU=Validation Services/CN=Korvex Test OCSP Responder"
TSA_SUBJ="/C=RU/O=Korvex Test PKI/OU=Validation Services/CN=Korvex Test TSA"
CMP_SUBJ="/C=RU/O=Korvex Test PKI/OU=Signers/CN=Korvex Test CMP Client"
# Many attribute kinds; "SN=...+GN=..." is one multi-valued RDN. Values that fit
# PrintableString are encoded as such, the Cyrillic ones as UTF8String.
EE_DN_ATTRS_SUBJ="/DC=example/DC=korvex/C=RU/ST=Москва/L=Moscow/street=ул. Тверская, д. 1/O=Korvex Test PKI/OU=Quality Assurance/title=Test Engineer/SN=Иванов+GN=Иван/CN=Иван Иванов/serialNumber=KX-0001/UID=ivanov/emailAddress=ivanov@korvex.example"

SERIAL_ROOT=01
SERIAL_INT=02
SERIAL_UNTRUSTED_ROOT=01
SERIAL_EE_RSA=C0FFEE          # high bit set: DER INTEGER 00 C0 FF EE
SERIAL_EE_EC=1002
SERIAL_EE_EXPIRED=1003
SERIAL_EE_REVOKED=1004
SERIAL_OCSP=1005
SERIAL_TSA=1006
SERIAL_EE_DN_ATTRS=4B6F72766578000102030405060708090A0B0C0D   # 20 octets (RFC 5280 4.1.2.2 maximum)
SERIAL_CMP=1008
SERIAL_EE_UNTRUSTED=2001

CA_START=20190101000000Z
ROOT_END=20551231235959Z      # past 2049: GeneralizedTime (RFC 5280 4.1.2.5)
CA_END=20491231235959Z
EE_START=20240101000000Z
EE_END=20491231235959Z
EXPIRED_START=20200101000000Z
EXPIRED_END=20211231235959Z

CRL_LAST=20240601000000Z
CRL_NEXT=20491231235959Z
DELTA_LAST=20240701000000Z
BULK_LAST=20240801000000Z
LARGE_LAST=20241001000000Z

# Secrets used by the symmetric CMS objects and the CMP exchanges (test only).
KEK_HEX=000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F
KEK_ID_HEX=4B4F52564558
ENCRYPTED_DATA_KEY_HEX=00112233445566778899AABBCCDDEEFF
PWRI_PASSWORD=korvex-password
CMP_REF=kx-ref
CMP_SECRET=pass:korvex-cmp-secret

# ---------------------------------------------------------------------------
# Helpers
# ---------------------------------------------------------------------------

# DER slicing and index writing with the Python standard library.
pyhelp() {
  python3 - "$@" <<'PY'
import sys, datetime

def tlv(buf, pos):
    """Returns (tag, start of contents, end of contents) of the TLV at pos (definite lengths)."""
    tag = buf[pos]; pos += 1
    if tag & 0x1F == 0x1F:
        while buf[pos] & 0x80:
            pos += 1
        pos += 1
    n = buf[pos]; pos += 1
    if n & 0x80:
        k = n & 0x7F
        if k == 0:
            raise SystemExit("indefinite length not supported here")
        n = int.from_bytes(buf[pos:pos + k], "big"); pos += k
    return tag, pos, pos + n

def children(buf, start, end):
    out = []
    while start < end:
        t, s, e = tlv(buf, start)
        out.append((t, start, s, e))
        start = e
    return out

cmd = sys.argv[1]
if cmd == "basic-ocsp":          # OCSPResponse -> BasicOCSPResponse DER (RFC 6960 4.2.1)
    buf = open(sys.argv[2], "rb").read()
    _, s, e = tlv(buf, 0)
    kids = children(buf, s, e)
    rb = [k for k in kids if k[0] == 0xA0][0]            # responseBytes [0] EXPLICIT
    _, s, e = tlv(buf, rb[2])                            # ResponseBytes SEQUENCE
    oid, octets = children(buf, s, e)
    open(sys.argv[3], "wb").write(buf[octets[2]:octets[3]])
elif cmd == "cms-signature":     # SignedData -> first SignerInfo's signature value octets
    buf = open(sys.argv[2], "rb").read()
    _, s, e = tlv(buf, 0)                                # ContentInfo
    _, content = children(buf, s, e)                     # contentType, [0] content
    _, s, e = tlv(buf, content[2])                       # SignedData
    signer_infos = children(buf, s, e)[-1]               # signerInfos SET is last
    assert signer_infos[0] == 0x31
    first = children(buf, signer_infos[2], signer_infos[3])[0]
    fields = children(buf, first[2], first[3])
    sig = [f for f in fields[3:] if f[0] == 0x04][0]     # signature OCTET STRING
    open(sys.argv[3], "wb").write(buf[sig[2]:sig[3]])
elif cmd == "bulk-index":        # openssl ca index lines for fabricated revocations
    count, first_serial, start = int(sys.argv[2]), int(sys.argv[3], 16), sys.argv[4]
    t0 = datetime.datetime.strptime(start, "%Y%m%d%H%M%SZ")
    reasons = ["", ",unspecified", ",keyCompromise", ",affiliationChanged", ",superseded",
               ",cessationOfOperation"]
    out = sys.stdout
    for i in range(count):
        when = (t0 + datetime.timedelta(minutes=i)).strftime("%y%m%d%H%M%SZ")
        serial = "%X" % (first_serial + i)
        if len(serial) % 2:
            serial = "0" + serial
        out.write(f"R\t491231235959Z\t{when}{reasons[i % len(reasons)]}\t{serial}\tunknown\t/CN=bulk-{serial}\n")
else:
    raise SystemExit("unknown helper " + cmd)
PY
}

# Writes PEM and DER forms: to_der IN.pem OUT.der
to_der() { run openssl x509 -in "$1" -outform DER -out "$2"; }

# Generates a key unless it exists (or --new-keys): key_rsa NAME / key_ec NAME
key_rsa() {
  local f=$KEYS/$1.key.pem
  if [ "$NEW_KEYS" = 1 ] || [ ! -s "$f" ]; then
    run openssl genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out "$f"
  fi
}
key_ec() {
  local f=$KEYS/$1.key.pem
  if [ "$NEW_KEYS" = 1 ] || [ ! -s "$f" ]; then
    run openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 \
      -pkeyopt ec_param_enc:named_curve -out "$f"
  fi
}

# Creates an empty CA database: new_ca_db DIR
new_ca_db() {
  mkdir -p "$1/new"
  : >"$1/index.txt"
  echo 01 >"$1/crlnumber"
}

# Issues a certificate with openssl ca:
#   issue CADB CACERT CAKEY NAME SUBJECT PROFILE SERIAL START END [REQSECTION]
# Writes $WORK/NAME.pem and pki/NAME.der. The request is kept as $WORK/NAME.csr.
issue() {
  local db=$1 cacert=$2 cakey=$3 name=$4 subj=$5 profile=$6 serial=$7 start=$8 end=$9
  local section=${10:-req}
  run openssl req -new -config "$CONF" -section "$section" -utf8 -key "$KEYS/$name.key.pem" \
    -subj "$subj" -out "$WORK/$name.csr"
  echo "$serial" >"$db/serial"
  KX_CADIR=$db run openssl ca -batch -config "$CONF" -cert "$cacert" -keyfile "$cakey" \
    -in "$WORK/$name.csr" -out "$WORK/$name.pem" -startdate "$start" -enddate "$end" \
    -extensions "$profile" -notext -preserveDN -utf8
  to_der "$WORK/$name.pem" "$HERE/pki/$name.der"
}

# Succeeds when the output of CMD (run regardless of its exit status) holds TEXT:
#   output_has TEXT CMD...
output_has() {
  local text=$1; shift
  "$@" >"$WORK/output.txt" 2>&1 || true
  cat "$WORK/output.txt" >>"$LOG"
  grep -q -- "$text" "$WORK/output.txt"
}

# Number of revoked-certificate entries in a DER CRL.
crl_entries() {
  openssl crl -inform DER -in "$1" -noout -text >"$WORK/crl.txt"
  grep -c 'Serial Number:' "$WORK/crl.txt" || true
}

# Checks that openssl verify fails with the expected message: verify_fails TEXT ARGS...
verify_fails() {
  local expect=$1; shift
  if openssl verify "$@" >"$WORK/verify.out" 2>&1; then
    die "openssl verify $* unexpectedly succeeded"
  fi
  grep -q "$expect" "$WORK/verify.out" || { cat "$WORK/verify.out" >>"$LOG"; die "verify: expected '$expect'"; }
}

# ---------------------------------------------------------------------------
# --large: only the 100,000-entry CRL, signed by the intermediate CA
# ---------------------------------------------------------------------------
if [ -n "$LARGE_OUT" ]; then
  if [ ! -s "$KEYS/intermediate-ca.key.pem" ] || [ ! -s "$HERE/pki/intermediate-ca.der" ]; then
    die "run make-fixtures.sh without --large first (needs keys/ and pki/)"
  fi
  mkdir -p "$LARGE_OUT"
  LARGE_OUT=$(cd "$LARGE_OUT" && pwd)
  db=$WORK/large
  new_ca_db "$db"
  echo 64 >"$db/crlnumber"
  pyhelp bulk-index 100000 01000000 20240701000000Z >"$db/index.txt"
  run openssl x509 -inform DER -in "$HERE/pki/intermediate-ca.der" -out "$WORK/int.pem"
  t0=$(date +%s.%N)
  KX_CADIR=$db run openssl ca -batch -config "$CONF" -gencrl -cert "$WORK/int.pem" \
    -keyfile "$KEYS/intermediate-ca.key.pem" -crlexts crl_intermediate_bulk \
    -crl_lastupdate "$LARGE_LAST" -crl_nextupdate "$CRL_NEXT" -out "$WORK/large.crl"
  t1=$(date +%s.%N)
  run openssl crl -in "$WORK/large.crl" -outform DER -out "$LARGE_OUT/intermediate-ca-100k.crl"
  entries=$(crl_entries "$LARGE_OUT/intermediate-ca-100k.crl")
  [ "$entries" = 100000 ] || die "large CRL has $entries entries"
  printf 'make-fixtures: %s (100000 entries, %s bytes) generated in %.1f s\n' \
    "$LARGE_OUT/intermediate-ca-100k.crl" "$(stat -c %s "$LARGE_OUT/intermediate-ca-100k.crl")" \
    "$(python3 -c "print($t1 - $t0)")"
  exit 0
fi

# ---------------------------------------------------------------------------
# Fresh output folders (inputs conf/, genconf/ and the keys in keys/ stay)
# ---------------------------------------------------------------------------
for d in "${OUTPUT_DIRS[@]}"; do
  rm -rf "${HERE:?}/$d"
  mkdir -p "$HERE/$d"
done
mkdir -p "$KEYS"

# ---------------------------------------------------------------------------
# 1. PKI
# ---------------------------------------------------------------------------
for k in root-ca intermediate-ca untrusted-root-ca ee-rsa ee-rsa-expired ee-rsa-revoked \
         ee-untrusted ocsp-responder tsa ee-dn-attrs; do
  key_rsa "$k"
done
key_ec ee-ec
key_ec cmp-client

ROOTDB=$WORK/db-root
INTDB=$WORK/db-intermediate
UNTDB=$WORK/db-untrusted
new_ca_db "$ROOTDB"; new_ca_db "$INTDB"; new_ca_db "$UNTDB"

ROOT_KEY=$KEYS/root-ca.key.pem
INT_KEY=$KEYS/intermediate-ca.key.pem
UNT_KEY=$KEYS/untrusted-root-ca.key.pem

# Self-signed roots through openssl ca -selfsign, so the dates and serials are fixed.
run openssl req -new -config "$CONF" -utf8 -key "$ROOT_KEY" -subj "$ROOT_SUBJ" -out "$WORK/root-ca.csr"
echo $SERIAL_ROOT >"$ROOTDB/serial"
KX_CADIR=$ROOTDB run openssl ca -batch -config "$CONF" -selfsign -keyfile "$ROOT_KEY" \
  -in "$WORK/root-ca.csr" -out "$WORK/root-ca.pem" -startdate $CA_START -enddate $ROOT_END \
  -extensions v3_root_ca -notext -preserveDN -utf8
to_der "$WORK/root-ca.pem" "$HERE/pki/root-ca.der"

run openssl req -new -config "$CONF" -utf8 -key "$UNT_KEY" -subj "$UNTRUSTED_SUBJ" \
  -out "$WORK/untrusted-root-ca.csr"
echo $SERIAL_UNTRUSTED_ROOT >"$UNTDB/serial"
KX_CADIR=$UNTDB run openssl ca -batch -config "$CONF" -selfsign -keyfile "$UNT_KEY" \
  -in "$WORK/untrusted-root-ca.csr" -out "$WORK/untrusted-root-ca.pem" -startdate $CA_START \
  -enddate $CA_END -extensions v3_untrusted_root_ca -notext -preserveDN -utf8
to_der "$WORK/untrusted-root-ca.pem" "$HERE/pki/untrusted-root-ca.der"

ROOT=$WORK/root-ca.pem
issue "$ROOTDB" "$ROOT" "$ROOT_KEY" intermediate-ca "$INT_SUBJ" v3_intermediate_ca $SERIAL_INT \
  $CA_START $CA_END
INT=$WORK/intermediate-ca.pem

issue "$INTDB" "$INT" "$INT_KEY" ee-rsa "$EE_RSA_SUBJ" v3_ee_rsa $SERIAL_EE_RSA $EE_START $EE_END
issue "$INTDB" "$INT" "$INT_KEY" ee-ec "$EE_EC_SUBJ" v3_ee_ec $SERIAL_EE_EC $EE_START $EE_END
issue "$INTDB" "$INT" "$INT_KEY" ee-rsa-expired "$EE_EXPIRED_SUBJ" v3_ee_plain $SERIAL_EE_EXPIRED \
  $EXPIRED_START $EXPIRED_END
issue "$INTDB" "$INT" "$INT_KEY" ee-rsa-revoked "$EE_REVOKED_SUBJ" v3_ee_plain $SERIAL_EE_REVOKED \
  $EE_START $EE_END
issue "$INTDB" "$INT" "$INT_KEY" ocsp-responder "$OCSP_SUBJ" v3_ocsp_responder $SERIAL_OCSP \
  $EE_START $EE_END
issue "$INTDB" "$INT" "$INT_KEY" tsa "$TSA_SUBJ" v3_tsa $SERIAL_TSA $EE_START $EE_END
issue "$INTDB" "$INT" "$INT_KEY" ee-dn-attrs "$EE_DN_ATTRS_SUBJ" v3_ee_dn_attrs $SERIAL_EE_DN_ATTRS \
  $EE_START $EE_END req_mixed_strings
issue "$INTDB" "$INT" "$INT_KEY" cmp-client "$CMP_SUBJ" v3_cmp_ee $SERIAL_CMP $EE_START $EE_END
issue "$UNTDB" "$WORK/untrusted-root-ca.pem" "$UNT_KEY" ee-untrusted "$EE_UNTRUSTED_SUBJ" \
  v3_ee_untrusted $SERIAL_EE_UNTRUSTED $EE_START $EE_END

# PEM copies for tests and tools that read PEM.
cp "$ROOT" "$HERE/pki/root-ca.pem"
cp "$INT" "$HERE/pki/intermediate-ca.pem"
cp "$WORK/ee-rsa.pem" "$HERE/pki/ee-rsa.pem"
cat "$INT" "$ROOT" >"$HERE/pki/ca-chain.pem"

# ---------------------------------------------------------------------------
# 2. CRLs
# ---------------------------------------------------------------------------
# The intermediate's database: 1004 revoked (keyCompromise with invalidity date),
# plus three revocations of certificates that were never written out.
awk -F'\t' -v OFS='\t' '$4 == "1004" { $1 = "R"; $3 = "240301120000Z,keyTime,20240215000000Z" } { print }' \
  "$INTDB/index.txt" >"$INTDB/index.new"
mv "$INTDB/index.new" "$INTDB/index.txt"
{
  printf 'R\t491231235959Z\t240302120000Z,cessationOfOperation\t1F01\tunknown\t/CN=never-issued-1F01\n'
  printf 'R\t491231235959Z\t240303120000Z,holdInstruction,holdInstructionReject\t1F02\tunknown\t/CN=never-issued-1F02\n'
  printf 'R\t491231235959Z\t240304120000Z\t1F03\tunknown\t/CN=never-issued-1F03\n'
} >>"$INTDB/index.txt"

gencrl() { # gencrl DB CACERT CAKEY EXTSECTION CRLNUMBER LASTUPDATE OUT.der
  echo "$5" >"$1/crlnumber"
  KX_CADIR=$1 run openssl ca -batch -config "$CONF" -gencrl -cert "$2" -keyfile "$3" \
    -crlexts "$4" -crl_lastupdate "$6" -crl_nextupdate "$CRL_NEXT" -out "$WORK/crl.pem"
  run openssl crl -in "$WORK/crl.pem" -outform DER -out "$7"
}

gencrl "$ROOTDB" "$ROOT" "$ROOT_KEY" crl_root 01 $CRL_LAST "$HERE/crl/root-ca.crl"
gencrl "$INTDB" "$INT" "$INT_KEY" crl_intermediate_full 02 $CRL_LAST "$HERE/crl/intermediate-ca.crl"

# Delta CRL against base CRL number 2: 1F02 released from hold, 1F04 revoked.
DELTADB=$WORK/db-delta
new_ca_db "$DELTADB"
printf 'R\t491231235959Z\t240615120000Z,removeFromCRL\t1F02\tunknown\t/CN=never-issued-1F02\n' >"$DELTADB/index.txt"
printf 'R\t491231235959Z\t240620120000Z,superseded\t1F04\tunknown\t/CN=never-issued-1F04\n' >>"$DELTADB/index.txt"
gencrl "$DELTADB" "$INT" "$INT_KEY" crl_intermediate_delta 03 $DELTA_LAST \
  "$HERE/crl/intermediate-ca-delta.crl"

# 1,000 entries: the still-revoked four (1004, 1F01, 1F03, 1F04) and 996 fabricated ones.
BULKDB=$WORK/db-bulk
new_ca_db "$BULKDB"
grep -P '\t(1004|1F01|1F03)\t' "$INTDB/index.txt" >"$BULKDB/index.txt"
grep -P '\t1F04\t' "$DELTADB/index.txt" >>"$BULKDB/index.txt"
pyhelp bulk-index 996 100000 20240701000000Z >>"$BULKDB/index.txt"
gencrl "$BULKDB" "$INT" "$INT_KEY" crl_intermediate_bulk 04 $BULK_LAST \
  "$HERE/crl/intermediate-ca-1000.crl"

run openssl crl -inform DER -in "$HERE/crl/root-ca.crl" -out "$WORK/root-ca.crl.pem"
run openssl crl -inform DER -in "$HERE/crl/intermediate-ca.crl" -out "$WORK/intermediate-ca.crl.pem"
cp "$WORK/intermediate-ca.crl.pem" "$HERE/crl/intermediate-ca.crl.pem"

# ---------------------------------------------------------------------------
# 3. OCSP
# ---------------------------------------------------------------------------
O=$HERE/ocsp
run openssl ocsp -issuer "$INT" -cert "$WORK/ee-rsa.pem" -cert "$WORK/ee-rsa-revoked.pem" \
  -reqout "$O/req-valid-revoked.der"
run openssl ocsp -issuer "$INT" -cert "$WORK/ee-rsa.pem" -reqout "$O/req-valid.der"
run openssl ocsp -issuer "$INT" -cert "$WORK/ee-rsa-revoked.pem" -reqout "$O/req-revoked.der"
run openssl ocsp -issuer "$INT" -serial 0x1FFF -reqout "$O/req-unknown.der"
run openssl ocsp -issuer "$INT" -sha256 -cert "$WORK/ee-rsa.pem" -no_nonce -reqout "$O/req-valid-sha256-nononce.der"
run openssl ocsp -issuer "$INT" -cert "$WORK/ee-rsa.pem" -signer "$WORK/ee-rsa.pem" \
  -signkey "$KEYS/ee-rsa.key.pem" -sign_other "$INT" -reqout "$O/req-valid-signed.der"
run openssl ocsp -issuer "$WORK/untrusted-root-ca.pem" -cert "$WORK/ee-untrusted.pem" \
  -reqout "$WORK/req-untrusted.der"

respond() { # respond REQ OUT [extra responder options]
  local req=$1 out=$2; shift 2
  run openssl ocsp -index "$INTDB/index.txt" -CA "$INT" -reqin "$req" -respout "$out" "$@"
}
RESPONDER=(-rsigner "$WORK/ocsp-responder.pem" -rkey "$KEYS/ocsp-responder.key.pem")
respond "$O/req-valid.der" "$O/resp-good.der" "${RESPONDER[@]}" -ndays 7
respond "$O/req-revoked.der" "$O/resp-revoked.der" "${RESPONDER[@]}"
respond "$O/req-valid-revoked.der" "$O/resp-valid-revoked.der" "${RESPONDER[@]}"
respond "$O/req-unknown.der" "$O/resp-unknown.der" "${RESPONDER[@]}"
respond "$O/req-valid-revoked.der" "$O/resp-ca-signed.der" -rsigner "$INT" -rkey "$INT_KEY" \
  -resp_key_id -resp_no_certs
# A certificate of another CA: the openssl responder answers "unknown".
respond "$WORK/req-untrusted.der" "$O/resp-foreign-issuer.der" "${RESPONDER[@]}"
for r in good revoked ca-signed; do
  pyhelp basic-ocsp "$O/resp-$r.der" "$O/resp-$r.basic.der"
done

# ---------------------------------------------------------------------------
# 4. Time-stamp protocol
# ---------------------------------------------------------------------------
CONTENT=$HERE/cms/content.txt
printf 'Korvex CAdES test content.\n' >"$CONTENT"
TSADIR=$WORK/tsa
mkdir -p "$TSADIR"
echo 1000 >"$TSADIR/tsaserial"   # the replies get serials 0x1001 and 0x1002
ts_reply() { # ts_reply QUERY REPLY TOKEN
  KX_TSADIR=$TSADIR run openssl ts -reply -config "$TSACONF" -section kx_tsa -queryfile "$1" \
    -signer "$WORK/tsa.pem" -inkey "$KEYS/tsa.key.pem" -chain "$INT" -out "$2"
  run openssl ts -reply -in "$2" -token_out -out "$3"
}
T=$HERE/tsp
run openssl ts -query -data "$CONTENT" -sha256 -cert -out "$T/query.tsq"
ts_reply "$T/query.tsq" "$T/reply.tsr" "$T/token.der"

# ---------------------------------------------------------------------------
# 5. CMS
# ---------------------------------------------------------------------------
C=$HERE/cms
SIGN=(openssl cms -sign -cades -binary -md sha256 -in "$CONTENT" -outform DER)
RSA_SIGNER=(-signer "$WORK/ee-rsa.pem" -inkey "$KEYS/ee-rsa.key.pem")
EC_SIGNER=(-signer "$WORK/ee-ec.pem" -inkey "$KEYS/ee-ec.key.pem")
run "${SIGN[@]}" "${RSA_SIGNER[@]}" -certfile "$INT" -nodetach -out "$C/signed-attached.der"
run "${SIGN[@]}" "${RSA_SIGNER[@]}" -certfile "$INT" -out "$C/signed-detached.der"
run "${SIGN[@]}" "${RSA_SIGNER[@]}" -nocerts -nodetach -out "$C/signed-nocerts.der"
run "${SIGN[@]}" "${RSA_SIGNER[@]}" "${EC_SIGNER[@]}" -certfile "$INT" -nodetach \
  -out "$C/signed-two-signers.der"
run openssl cms -sign -cades -binary -md sha1 -in "$CONTENT" -outform DER "${RSA_SIGNER[@]}" -certfile "$INT" \
  -nodetach -out "$C/signed-sha1-cades.der"
run "${SIGN[@]}" "${RSA_SIGNER[@]}" -certfile "$INT" -nodetach -stream -out "$C/signed-indefinite.ber"
run openssl cms -encrypt -binary -aes256 -in "$CONTENT" -recip "$WORK/ee-rsa.pem" -outform DER \
  -out "$C/enveloped-rsa.der"
run openssl cms -encrypt -binary -aes256 -in "$CONTENT" -recip "$WORK/ee-rsa.pem" \
  -recip "$WORK/ee-ec.pem" -secretkey $KEK_HEX -secretkeyid $KEK_ID_HEX \
  -pwri_password $PWRI_PASSWORD -outform DER -out "$C/enveloped-four-recipients.der"
run openssl cms -encrypt -binary -aes-256-gcm -in "$CONTENT" -recip "$WORK/ee-rsa.pem" \
  -outform DER -out "$C/auth-enveloped-gcm.der"
run openssl cms -digest_create -binary -md sha256 -in "$CONTENT" -outform DER -out "$C/digested.der"
run openssl cms -EncryptedData_encrypt -binary -aes128 -secretkey $ENCRYPTED_DATA_KEY_HEX \
  -in "$CONTENT" -outform DER -out "$C/encrypted-data.der"

# ---------------------------------------------------------------------------
# 9. Signature time-stamp material for the attached RSA signature
#    (ETSI EN 319 122-1 5.3: the imprint is the hash of the SignerInfo's
#    signature value, the OCTET STRING contents without tag and length)
# ---------------------------------------------------------------------------
A=$HERE/cades
pyhelp cms-signature "$C/signed-attached.der" "$A/signed-attached.signature-value.bin"
SIGVAL_SHA256=$(sha256sum "$A/signed-attached.signature-value.bin" | cut -d' ' -f1)
run openssl ts -query -digest "$SIGVAL_SHA256" -sha256 -cert -out "$A/signature-timestamp-query.tsq"
ts_reply "$A/signature-timestamp-query.tsq" "$A/signature-timestamp-reply.tsr" \
  "$A/signature-timestamp-token.der"

# ---------------------------------------------------------------------------
# 6. PKCS#10 requests
# ---------------------------------------------------------------------------
R=$HERE/req
run openssl req -new -config "$CONF" -utf8 -key "$KEYS/ee-rsa.key.pem" \
  -subj "/C=RU/O=Korvex Test PKI/CN=Korvex Test RSA Request" -outform DER -out "$R/rsa.der"
run openssl req -new -config "$CONF" -utf8 -key "$KEYS/ee-ec.key.pem" \
  -subj "/C=RU/O=Korvex Test PKI/CN=Korvex Test EC Request" -outform DER -out "$R/ec.der"
run openssl req -new -config "$CONF" -section req_with_attrs -key "$KEYS/ee-rsa.key.pem" \
  -outform DER -out "$R/rsa-with-attributes.der"

# ---------------------------------------------------------------------------
# 7. CMP / CRMF through the built-in mock server
# ---------------------------------------------------------------------------
M=$HERE/cmp
MOCK=(-config "" -verbosity 3 -use_mock_srv -srv_cert "$INT" -srv_key "$INT_KEY"
      -srv_secret "$CMP_SECRET" -srv_trusted "$ROOT" -srv_untrusted "$INT"
      -rsp_cert "$WORK/cmp-client.pem" -recipient "$INT_SUBJ" -trusted "$ROOT" -untrusted "$INT")
SIG_CLIENT=(-cert "$WORK/cmp-client.pem" -key "$KEYS/cmp-client.key.pem")
(
  cd "$WORK"
  run openssl cmp "${MOCK[@]}" -cmd ir -ref "$CMP_REF" -secret "$CMP_SECRET" \
    -newkey "$KEYS/cmp-client.key.pem" -subject "$CMP_SUBJ" \
    -reqout "$M/ir.der,$M/ir-certconf.der" -rspout "$M/ip.der,$M/ir-pkiconf.der" -certout ir-cert.pem
  run openssl cmp "${MOCK[@]}" -cmd cr "${SIG_CLIENT[@]}" -newkey "$KEYS/cmp-client.key.pem" \
    -subject "$CMP_SUBJ" -reqout "$M/cr.der,$M/cr-certconf.der" -rspout "$M/cp.der,$M/cr-pkiconf.der" \
    -certout cr-cert.pem
  run openssl cmp "${MOCK[@]}" -cmd p10cr "${SIG_CLIENT[@]}" -csr "$WORK/cmp-client.csr" \
    -reqout "$M/p10cr.der,$M/p10cr-certconf.der" -rspout "$M/p10cr-cp.der,$M/p10cr-pkiconf.der" \
    -certout p10cr-cert.pem
  run openssl cmp "${MOCK[@]}" -cmd kur "${SIG_CLIENT[@]}" -newkey "$KEYS/cmp-client.key.pem" \
    -reqout "$M/kur.der,$M/kur-certconf.der" -rspout "$M/kup.der,$M/kur-pkiconf.der" \
    -certout kur-cert.pem
  run openssl cmp "${MOCK[@]}" -cmd rr "${SIG_CLIENT[@]}" -oldcert "$WORK/cmp-client.pem" \
    -revreason 1 -reqout "$M/rr.der" -rspout "$M/rp.der"
  run openssl cmp "${MOCK[@]}" -cmd genm "${SIG_CLIENT[@]}" -infotype signKeyPairTypes \
    -reqout "$M/genm.der" -rspout "$M/genp.der"
  # The server answers with an error message: the client fails, the messages remain.
  if openssl cmp "${MOCK[@]}" -cmd genm "${SIG_CLIENT[@]}" -send_error \
       -reqout "$WORK/genm-for-error.der" -rspout "$M/error.der" >>"$LOG" 2>&1; then
    die "cmp -send_error unexpectedly succeeded"
  fi
)
for f in ir cr p10cr kur; do
  run openssl x509 -in "$WORK/$f-cert.pem" -noout  # the enrolled certificate arrived
done

# ---------------------------------------------------------------------------
# 8. Data openssl cannot make: DER from the committed genconf files
# ---------------------------------------------------------------------------
G=$HERE/asn1
for f in "$GENCONF"/*.cnf; do
  base=$(basename "$f" .cnf)
  run openssl asn1parse -genconf "$f" -noout -out "$G/$base.der"
done
# DVCS messages travel inside CMS SignedData (RFC 3029 5.1): id-ct-DVCSRequestData
# and id-ct-DVCSResponseData as eContentType.
run openssl cms -sign -binary -md sha256 -nodetach -in "$G/dvcs-request.der" \
  -econtent_type 1.2.840.113549.1.9.16.1.7 "${RSA_SIGNER[@]}" -outform DER \
  -out "$G/dvcs-request-signed.der"
run openssl cms -sign -binary -md sha256 -nodetach -in "$G/dvcs-response.der" \
  -econtent_type 1.2.840.113549.1.9.16.1.8 "${EC_SIGNER[@]}" -outform DER \
  -out "$G/dvcs-response-signed.der"

# ---------------------------------------------------------------------------
# Checks
# ---------------------------------------------------------------------------
count=0
for f in $(cd "$HERE" && find "${OUTPUT_DIRS[@]}" -type f ! -name '*.pem' ! -name '*.txt' \
           ! -name '*.bin' | sort); do
  run openssl asn1parse -inform DER -in "$HERE/$f" -i -out /dev/null
  count=$((count + 1))
done
[ "$count" -gt 50 ] || die "only $count DER files checked"

for f in "$HERE"/pki/*.der "$G"/gost2012-*.der; do
  run openssl x509 -inform DER -in "$f" -noout
done
for f in "$HERE"/crl/*.crl; do
  run openssl crl -inform DER -in "$f" -noout
done
for f in "$R"/*.der; do
  run openssl req -inform DER -in "$f" -noout -verify
done
output_has challengePassword openssl req -inform DER -in "$R/rsa-with-attributes.der" -noout -text ||
  die "rsa-with-attributes.der has no challengePassword"

# Certificate paths.
CHAIN=(-CAfile "$ROOT" -untrusted "$INT")
for n in ee-rsa ee-ec ee-rsa-revoked ocsp-responder tsa ee-dn-attrs cmp-client; do
  run openssl verify "${CHAIN[@]}" "$WORK/$n.pem"
done
run openssl verify -CAfile "$ROOT" "$INT"
verify_fails "certificate has expired" "${CHAIN[@]}" "$WORK/ee-rsa-expired.pem"
verify_fails "certificate revoked" "${CHAIN[@]}" -crl_check -CRLfile "$WORK/intermediate-ca.crl.pem" \
  "$WORK/ee-rsa-revoked.pem"
verify_fails "unable to get local issuer certificate" -CAfile "$ROOT" "$WORK/ee-untrusted.pem"
run openssl verify "${CHAIN[@]}" -crl_check_all -CRLfile "$WORK/root-ca.crl.pem" \
  -CRLfile "$WORK/intermediate-ca.crl.pem" "$WORK/ee-rsa.pem"
run openssl verify -CAfile "$WORK/untrusted-root-ca.pem" "$WORK/ee-untrusted.pem"
run openssl crl -inform DER -in "$HERE/crl/intermediate-ca.crl" -noout -CAfile "$INT"
run openssl crl -inform DER -in "$HERE/crl/intermediate-ca-delta.crl" -noout -CAfile "$INT"
run openssl crl -inform DER -in "$HERE/crl/intermediate-ca-1000.crl" -noout -CAfile "$INT"
run openssl crl -inform DER -in "$HERE/crl/root-ca.crl" -noout -CAfile "$ROOT"
n=$(crl_entries "$HERE/crl/intermediate-ca-1000.crl")
[ "$n" = 1000 ] || die "intermediate-ca-1000.crl has $n entries"
n=$(crl_entries "$HERE/crl/intermediate-ca.crl")
[ "$n" = 4 ] || die "intermediate-ca.crl has $n entries"
n=$(crl_entries "$HERE/crl/intermediate-ca-delta.crl")
[ "$n" = 2 ] || die "intermediate-ca-delta.crl has $n entries"
n=$(crl_entries "$HERE/crl/root-ca.crl")
[ "$n" = 0 ] || die "root-ca.crl has $n entries"

# OCSP: every response verifies against its request and carries the expected status.
ocsp_check() { # ocsp_check REQ RESP EXPECT...: signature and nonce, then the statuses
  local req=$1 resp=$2; shift 2
  output_has "Response verify OK" openssl ocsp -reqin "$req" -respin "$resp" -issuer "$INT" \
    -CAfile "$WORK/chain.pem" || die "OCSP $resp does not verify against $req"
  for e in "$@"; do
    output_has "$e" openssl ocsp -respin "$resp" -resp_text -noverify || die "OCSP $resp: no '$e'"
  done
}
cat "$INT" "$ROOT" >"$WORK/chain.pem"
ocsp_check "$O/req-valid.der" "$O/resp-good.der" "Cert Status: good" "Responder Id: C = RU"
ocsp_check "$O/req-revoked.der" "$O/resp-revoked.der" "Cert Status: revoked" \
  "Revocation Reason: keyCompromise (0x1)" "Invalidity Date"
ocsp_check "$O/req-valid-revoked.der" "$O/resp-valid-revoked.der" "Cert Status: good" \
  "Cert Status: revoked"
ocsp_check "$O/req-unknown.der" "$O/resp-unknown.der" "Cert Status: unknown"
ocsp_check "$O/req-valid-revoked.der" "$O/resp-ca-signed.der" "Cert Status: good" \
  "Cert Status: revoked" "Responder Id: [0-9A-F]\{40\}"
output_has "Cert Status: unknown" openssl ocsp -respin "$O/resp-foreign-issuer.der" -resp_text \
  -noverify || die "resp-foreign-issuer.der does not say unknown"
output_has "Responder Error: unauthorized (6)" openssl ocsp -respin "$G/ocsp-resp-unauthorized.der" -resp_text \
  -noverify || die "ocsp-resp-unauthorized.der is not an unauthorized response"
for f in "$O"/req-*.der; do run openssl ocsp -reqin "$f" -req_text; done

# Time-stamps.
run openssl ts -verify -queryfile "$T/query.tsq" -in "$T/reply.tsr" -CAfile "$ROOT" -untrusted "$INT"
run openssl ts -verify -data "$CONTENT" -in "$T/token.der" -token_in -CAfile "$ROOT" -untrusted "$INT"
run openssl ts -verify -data "$A/signed-attached.signature-value.bin" \
  -in "$A/signature-timestamp-token.der" -token_in -CAfile "$ROOT" -untrusted "$INT"
run openssl ts -verify -queryfile "$A/signature-timestamp-query.tsq" \
  -in "$A/signature-timestamp-reply.tsr" -CAfile "$ROOT" -untrusted "$INT"
run openssl ts -query -in "$T/query.tsq" -text

# CMS.
VERIFY=(openssl cms -verify -binary -inform DER -CAfile "$ROOT" -out "$WORK/verified.txt")
for f in signed-attached.der signed-two-signers.der signed-sha1-cades.der signed-indefinite.ber; do
  run "${VERIFY[@]}" -cades -in "$C/$f"
  cmp -s "$WORK/verified.txt" "$CONTENT" || die "$f: content differs"
done
run "${VERIFY[@]}" -cades -in "$C/signed-detached.der" -content "$CONTENT"
# openssl cms -verify builds paths only from the store and the message's own
# certificates, so these use the whole chain as trust anchors.
VERIFY_CHAIN=(openssl cms -verify -binary -inform DER -CAfile "$WORK/chain.pem" -out "$WORK/verified.txt")
run "${VERIFY_CHAIN[@]}" -cades -in "$C/signed-nocerts.der" -certfile "$WORK/ee-rsa.pem"
run "${VERIFY_CHAIN[@]}" -in "$G/dvcs-request-signed.der"
cmp -s "$WORK/verified.txt" "$G/dvcs-request.der" || die "dvcs-request-signed.der: content differs"
run "${VERIFY_CHAIN[@]}" -in "$G/dvcs-response-signed.der"
cmp -s "$WORK/verified.txt" "$G/dvcs-response.der" || die "dvcs-response-signed.der: content differs"
output_has signingCertificateV2 openssl cms -cmsout -print -inform DER -in "$C/signed-attached.der" ||
  die "signed-attached.der has no signingCertificateV2"
output_has 'id-smime-aa-signingCertificate (' \
  openssl cms -cmsout -print -inform DER -in "$C/signed-sha1-cades.der" ||
  die "signed-sha1-cades.der has no signingCertificate"
output_has 'l=inf' openssl asn1parse -inform DER -in "$C/signed-indefinite.ber" ||
  die "signed-indefinite.ber has no indefinite length"
decrypt_check() { # decrypt_check FILE ARGS...
  local f=$1; shift
  run openssl cms -decrypt -binary -inform DER -in "$f" -out "$WORK/decrypted.txt" "$@"
  cmp -s "$WORK/decrypted.txt" "$CONTENT" || die "$f: decrypted content differs"
}
decrypt_check "$C/enveloped-rsa.der" -recip "$WORK/ee-rsa.pem" -inkey "$KEYS/ee-rsa.key.pem"
decrypt_check "$C/enveloped-four-recipients.der" -recip "$WORK/ee-rsa.pem" -inkey "$KEYS/ee-rsa.key.pem"
decrypt_check "$C/enveloped-four-recipients.der" -recip "$WORK/ee-ec.pem" -inkey "$KEYS/ee-ec.key.pem"
decrypt_check "$C/enveloped-four-recipients.der" -secretkey $KEK_HEX -secretkeyid $KEK_ID_HEX
decrypt_check "$C/enveloped-four-recipients.der" -pwri_password $PWRI_PASSWORD
decrypt_check "$C/auth-enveloped-gcm.der" -recip "$WORK/ee-rsa.pem" -inkey "$KEYS/ee-rsa.key.pem"
run openssl cms -digest_verify -binary -inform DER -in "$C/digested.der" -out "$WORK/digested.txt"
cmp -s "$WORK/digested.txt" "$CONTENT" || die "digested.der: content differs"
run openssl cms -EncryptedData_decrypt -binary -inform DER -in "$C/encrypted-data.der" \
  -secretkey $ENCRYPTED_DATA_KEY_HEX -out "$WORK/encrypted.txt"
cmp -s "$WORK/encrypted.txt" "$CONTENT" || die "encrypted-data.der: content differs"

total=$(cd "$HERE" && find "${OUTPUT_DIRS[@]}" keys -type f | wc -l)
bytes=$(cd "$HERE" && du -cb "${OUTPUT_DIRS[@]}" keys | tail -n 1 | cut -f1)
echo "make-fixtures: $total files ($bytes bytes) in tests/data, all checks passed"
