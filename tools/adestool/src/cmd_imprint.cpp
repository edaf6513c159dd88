// cmd_imprint.cpp: `adestool imprint SIG --for t|esc`: the digest a
// time-stamp token must carry to cover a signer (RFC 5126 6.1.1, 6.3.5).
#include <string>

#include "cades_extension.h"
#include "command.h"
#include "tool_error.h"

namespace adestool {

namespace {

enum class Target { kT, kEsc };

Target ParseTarget(const std::string* value) {
  const std::string hint = " (try 'adestool imprint --help')";
  if (!value) throw UsageError("imprint: missing --for t|esc" + hint);
  if (*value == "t") return Target::kT;
  if (*value == "esc") return Target::kEsc;
  throw UsageError("imprint: --for " + *value + ": expected t or esc" + hint);
}

int RunImprint(CommandContext& context) {
  const ParsedArgs& args = context.args();
  ExpectPositionals(kImprintCommand, args, 1, "SIG");
  const Target target = ParseTarget(args.Value("for"));
  const HashAlgorithm& hash = SelectHash(args.Value("hash"), "imprint");
  const HashAlgorithm& refHash = SelectHash(args.Value("ref-hash"), "imprint");
  if (target == Target::kT &&
      (args.Has("cert") || args.Has("crl") || args.Has("ocsp") || args.Has("ref-hash"))) {
    throw UsageError(
        "imprint: --for t takes no --cert, --crl, --ocsp or --ref-hash (try 'adestool imprint "
        "--help')");
  }
  LoadedSignature sig = LoadSignature(context, args.positionals()[0]);
  const std::vector<size_t> signers = SelectSigners(context, "imprint", sig.layout);
  const ValidationInputs inputs =
      target == Target::kEsc ? LoadValidationInputs(context) : ValidationInputs();
  std::string text;
  for (size_t i : signers) {
    const SignerLayout& signer = sig.layout.signers[i];
    std::vector<uint8_t> data;
    if (target == Target::kT) {
      data = signer.signature;
    } else {
      RequireSignatureTimeStamp(*sig.walker, signer, i);
      if (SignerNeedsReferences(signer)) {
        const ValidationAttributes built =
            BuildValidationAttributes(*sig.walker, sig.layout, i, inputs, refHash);
        data = EscImprintData(*sig.walker, signer, i, &built);
      } else {
        if (!inputs.empty() || args.Has("ref-hash")) {
          throw UsageError("imprint: " + sig.input.name + ": signer " + std::to_string(i + 1) +
                           " already has complete references; give no --cert, --crl, --ocsp "
                           "or --ref-hash");
        }
        data = EscImprintData(*sig.walker, signer, i, nullptr);
      }
    }
    text += HexLower(Digest(hash, data)) + "\n";
  }
  context.output().Write(text);
  return kExitOk;
}

}  // namespace

const Command kImprintCommand = {
    "imprint",
    "imprint SIG --for t|esc [--hash ALG] [--signer N] [--cert FILE]... [--crl FILE]... "
    "[--ocsp FILE]... [--ref-hash ALG]",
    "the digest a signature or CAdES-C time-stamp must cover, in hex",
    "Prints, one line per signer (or for the signer --signer N names), the hex\n"
    "digest to ask a time-stamping authority for, as `openssl ts -query\n"
    "-digest HEX -sha256` takes it (--hash names the algorithm; sha256 by\n"
    "default).\n"
    "\n"
    "--for t: the signature time-stamp (RFC 5126 6.1.1): the hash of the\n"
    "signature value, the contents octets of SignerInfo.signature.\n"
    "--for esc: the CAdES-C time-stamp (RFC 5126 6.3.5): the hash of the\n"
    "signature value followed by the signature-time-stamp,\n"
    "complete-certificate-references and complete-revocation-references\n"
    "attributes, each as its attrType and attrValues encodings (the\n"
    "Attribute SEQUENCE without its own tag and length). A signer without\n"
    "references gets those `extend --to x-long-1` would add from the same\n"
    "--cert, --crl, --ocsp and --ref-hash (sha256 by default).\n"
    "\n"
    "Exit status: 0 done; 1 a signer has no signature time-stamp (esc) or\n"
    "incomplete references; 2 usage and input errors.",
    {
        {"for", 0, true, "WHAT", "t (signature time-stamp) or esc (CAdES-C time-stamp)", false},
        {"hash", 0, true, "ALG", "digest algorithm: sha256 (default), sha1, sha384, sha512, ...",
         false},
        {"signer", 0, true, "N", "only the Nth signer (from 1)", false},
        {"cert", 0, true, "FILE", "esc: certificates for the references (repeatable)", true},
        {"crl", 0, true, "FILE", "esc: CRLs for the references (repeatable)", true},
        {"ocsp", 0, true, "FILE", "esc: OCSP responses for the references (repeatable)", true},
        {"ref-hash", 0, true, "ALG", "esc: hash inside the references (sha256)", false},
    },
    RunImprint,
};

}  // namespace adestool
