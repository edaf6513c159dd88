// cmd_extend.cpp: `adestool extend SIG --to t|x-long-1`: a signature with a
// signature time-stamp, or with complete references, values and a CAdES-C
// time-stamp, added to its signers' unsigned attributes.
#include <string>

#include "cades_extension.h"
#include "command.h"
#include "der_writer.h"
#include "tool_error.h"

namespace adestool {

namespace {

enum class Level { kT, kXLong1 };

Level ParseLevel(const std::string* value) {
  const std::string hint = " (try 'adestool extend --help')";
  if (!value) throw UsageError("extend: missing --to t|x-long-1" + hint);
  if (*value == "t") return Level::kT;
  if (*value == "x-long-1") return Level::kXLong1;
  throw UsageError("extend: --to " + *value + ": expected t or x-long-1" + hint);
}

// Whether token's imprint is the hash of data under the token's own
// algorithm. An algorithm adestool cannot compute is an input error.
bool Covers(const TimeStampItem& token, const std::vector<uint8_t>& data) {
  const HashAlgorithm* hash = FindHashByOid(token.imprintOid);
  if (!hash) {
    throw FileError(token.name, "imprint hash algorithm " + token.imprintOid + " is not supported");
  }
  const ImprintMatch match = MatchImprint(token.imprintOid, token.imprint.data(),
                                          token.imprint.size(), data.data(), data.size());
  if (match == ImprintMatch::kNoHash) {
    throw UsageError("hash " + std::string(hash->name) + " is not available here");
  }
  return match == ImprintMatch::kMatches;
}

int RunExtend(CommandContext& context) {
  const ParsedArgs& args = context.args();
  ExpectPositionals(kExtendCommand, args, 1, "SIG");
  const Level level = ParseLevel(args.Value("to"));
  if (!args.Has("token")) {
    throw UsageError("extend: missing --token FILE (try 'adestool extend --help')");
  }
  if (level == Level::kT &&
      (args.Has("cert") || args.Has("crl") || args.Has("ocsp") || args.Has("ref-hash"))) {
    throw UsageError(
        "extend: --to t takes no --cert, --crl, --ocsp or --ref-hash (try 'adestool extend "
        "--help')");
  }
  const HashAlgorithm& refHash = SelectHash(args.Value("ref-hash"), "extend");
  LoadedSignature sig = LoadSignature(context, args.positionals()[0]);
  const std::vector<size_t> signers = SelectSigners(context, "extend", sig.layout);
  std::vector<TimeStampItem> tokens;
  for (const std::string& path : args.Values("token")) {
    tokens.push_back(ReadTimeStamp(context.LoadInput(path)));
  }
  const ValidationInputs inputs =
      level == Level::kXLong1 ? LoadValidationInputs(context) : ValidationInputs();

  std::vector<std::vector<std::vector<uint8_t>>> additions(sig.layout.signers.size());
  std::vector<bool> used(tokens.size());
  for (size_t i : signers) {
    const SignerLayout& signer = sig.layout.signers[i];
    const std::string who = "signer " + std::to_string(i + 1);
    std::vector<uint8_t> covered;
    ValidationAttributes built;
    if (level == Level::kT) {
      covered = signer.signature;
    } else {
      RequireSignatureTimeStamp(*sig.walker, signer, i);
      if (!SignerNeedsReferences(signer)) {
        throw CheckFailure(sig.input.name, who + " already has complete references");
      }
      built = BuildValidationAttributes(*sig.walker, sig.layout, i, inputs, refHash);
      covered = EscImprintData(*sig.walker, signer, i, &built);
    }
    size_t match = tokens.size();
    for (size_t t = 0; t < tokens.size() && match == tokens.size(); ++t) {
      if (!used[t] && Covers(tokens[t], covered)) match = t;
    }
    if (match == tokens.size()) {
      const std::string what =
          level == Level::kT ? "signature value" : "signature value and references";
      if (tokens.size() == 1) {
        throw CheckFailure(tokens[0].name, "the token's imprint does not match the " + what +
                                               " of " + who + " of " + sig.input.name);
      }
      throw CheckFailure(sig.input.name, who + ": no --token matches its " + what);
    }
    used[match] = true;
    if (level == Level::kT) {
      additions[i].push_back(AttributeDer(oids::kSignatureTimeStamp, tokens[match].token));
    } else {
      additions[i] = {built.certificateRefs, built.revocationRefs, built.certificateValues,
                      built.revocationValues,
                      AttributeDer(oids::kEscTimeStamp, tokens[match].token)};
    }
  }
  for (size_t t = 0; t < tokens.size(); ++t) {
    if (!used[t]) throw CheckFailure(tokens[t].name, "the token is for none of the signers");
  }
  const std::vector<uint8_t> out = AddUnsignedAttributes(*sig.walker, sig.layout, additions);
  context.output().Write(std::string_view(reinterpret_cast<const char*>(out.data()), out.size()));
  return kExitOk;
}

}  // namespace

const Command kExtendCommand = {
    "extend",
    "extend SIG --to t|x-long-1 --token FILE... [--signer N] [--cert FILE]... [--crl FILE]... "
    "[--ocsp FILE]... [--ref-hash ALG]",
    "a signature extended to CAdES-T or X Long Type 1, written atomically",
    "Writes SIG with new unsigned attributes in every signer (or in the signer\n"
    "--signer N names):\n"
    "\n"
    "--to t: the signature time-stamp token (id-aa-signatureTimeStampToken).\n"
    "--to x-long-1 (on a signer that has a signature time-stamp): the complete\n"
    "certificate and revocation references, the certificate and revocation\n"
    "values, made from --cert, --crl and --ocsp as `refs` and `values` make\n"
    "them (references hashed with --ref-hash, sha256 by default), and the\n"
    "CAdES-C time-stamp token (id-aa-ets-escTimeStamp).\n"
    "\n"
    "--token files are TimeStampResp (`openssl ts -reply` output) or bare\n"
    "tokens; give one per signer extended, in any order: each signer gets the\n"
    "token whose imprint covers it (see `adestool imprint`). The signer's\n"
    "certificate is looked up in SIG and among the --cert files.\n"
    "\n"
    "Only the SignerInfos change, and in them only unsignedAttrs (new\n"
    "attributes go after the existing ones); every other byte is copied and\n"
    "the enclosing lengths are rewritten (an indefinite length on the way\n"
    "becomes definite). Give -o OUT: the file appears whole or not at all.\n"
    "\n"
    "Exit status: 0 done; 1 a token does not cover its signer, a token is\n"
    "left over, or a signer lacks the level below (no output is written);\n"
    "2 usage and input errors, a malformed SIG or token.",
    {
        {"to", 0, true, "LEVEL", "t or x-long-1", false},
        {"token", 0, true, "FILE", "time-stamp response or token, one per signer (repeatable)",
         true},
        {"signer", 0, true, "N", "only the Nth signer (from 1)", false},
        {"cert", 0, true, "FILE", "x-long-1: CA certificates of the path (repeatable)", true},
        {"crl", 0, true, "FILE", "x-long-1: CRLs (repeatable)", true},
        {"ocsp", 0, true, "FILE", "x-long-1: OCSP responses (repeatable)", true},
        {"ref-hash", 0, true, "ALG", "x-long-1: hash inside the references (sha256)", false},
    },
    RunExtend,
};

}  // namespace adestool
