// cmd_refs.cpp: `adestool refs` and `adestool values`: the complete
// references and the values of an X Long Type 1 signature as DER.
#include <string>

#include "cades_extension.h"
#include "command.h"
#include "tool_error.h"
#include "validation_data.h"

namespace adestool {

namespace {

enum class Kind { kCert, kRevocation };

Kind SelectKind(const Command& command, const ParsedArgs& args) {
  const std::string name(command.name);
  const std::string hint = " (try 'adestool " + name + " --help')";
  const std::string* kind = args.Value("kind");
  if (!kind) throw UsageError(name + ": missing --kind cert|revocation" + hint);
  if (*kind == "cert") {
    if (args.Has("crl") || args.Has("ocsp")) {
      throw UsageError(name + ": --kind cert takes no --crl or --ocsp" + hint);
    }
    if (!args.Has("cert")) throw UsageError(name + ": --kind cert needs --cert" + hint);
    return Kind::kCert;
  }
  if (*kind == "revocation") {
    if (!args.Has("crl") && !args.Has("ocsp")) {
      throw UsageError(name + ": --kind revocation needs --crl or --ocsp" + hint);
    }
    return Kind::kRevocation;
  }
  throw UsageError(name + ": --kind " + *kind + ": expected cert or revocation" + hint);
}

void WriteDer(CommandContext& context, const std::vector<uint8_t>& der) {
  context.output().Write(std::string_view(reinterpret_cast<const char*>(der.data()), der.size()));
}

int RunRefs(CommandContext& context) {
  const ParsedArgs& args = context.args();
  ExpectPositionals(kRefsCommand, args, 0, "");
  const Kind kind = SelectKind(kRefsCommand, args);
  const HashAlgorithm& hash = SelectHash(args.Value("hash"), "refs");
  const ValidationInputs inputs = LoadValidationInputs(context);
  WriteDer(context, kind == Kind::kCert
                        ? CertificateRefsDer(inputs.certs, hash)
                        : RevocationRefsDer(inputs.certs, inputs.crls, inputs.responses, hash));
  return kExitOk;
}

int RunValues(CommandContext& context) {
  const ParsedArgs& args = context.args();
  ExpectPositionals(kValuesCommand, args, 0, "");
  const Kind kind = SelectKind(kValuesCommand, args);
  if (kind == Kind::kRevocation && args.Has("cert")) {
    throw UsageError("values: --kind revocation takes no --cert (try 'adestool values --help')");
  }
  const ValidationInputs inputs = LoadValidationInputs(context);
  WriteDer(context, kind == Kind::kCert ? CertificateValuesDer(inputs.certs)
                                        : RevocationValuesDer(inputs.crls, inputs.responses));
  return kExitOk;
}

// KindAndItemOptions: the options refs and values share, then more.
std::vector<OptionSpec> KindAndItemOptions(std::vector<OptionSpec> more) {
  std::vector<OptionSpec> options = {
      {"kind", 0, true, "KIND", "cert or revocation", false},
      {"cert", 0, true, "FILE", "certificates (repeatable)", true},
      {"crl", 0, true, "FILE", "CRLs (repeatable)", true},
      {"ocsp", 0, true, "FILE", "OCSP responses (repeatable)", true},
  };
  options.insert(options.end(), more.begin(), more.end());
  return options;
}

}  // namespace

const Command kRefsCommand = {
    "refs",
    "refs --kind cert|revocation [--cert FILE]... [--crl FILE]... [--ocsp FILE]... "
    "[--hash ALG]",
    "the complete certificate or revocation references, as DER",
    "Writes the DER of a CompleteCertificateRefs (--kind cert) or a\n"
    "CompleteRevocationRefs (--kind revocation) value (RFC 5126 6.2.1, 6.2.2).\n"
    "\n"
    "--kind cert: one OtherCertID per certificate of the --cert files, in order:\n"
    "the hash of the certificate and its issuer and serial number.\n"
    "--kind revocation: the CRLs (--crl) and OCSP responses (--ocsp) by hash and\n"
    "identifier. With --cert, one CrlOcspRef per certificate in order, holding\n"
    "the CRLs of its issuer and the responses about it (each CRL and response\n"
    "must serve one of them; self-issued certificates get none); without\n"
    "--cert, one CrlOcspRef holding all of them.\n"
    "Files may hold several PEM blocks; OCSP files may be OCSPResponse or\n"
    "BasicOCSPResponse. The output is the same for the same inputs.\n"
    "\n"
    "Exit status: 0 done; 2 usage and input errors.",
    KindAndItemOptions({
        {"hash", 0, true, "ALG",
         "sha256 (default), sha1, sha384, sha512, gost94, gost2012-256, gost2012-512", false},
    }),
    RunRefs,
};

const Command kValuesCommand = {
    "values",
    "values --kind cert|revocation [--cert FILE]... [--crl FILE]... [--ocsp FILE]...",
    "the certificate or revocation values, as DER",
    "Writes the DER of a CertificateValues (--kind cert: the --cert\n"
    "certificates, each with its bytes as they stand) or a RevocationValues\n"
    "(--kind revocation: the --crl CRLs and the BasicOCSPResponses of the\n"
    "--ocsp files) value (RFC 5126 6.3.3, 6.3.4).\n"
    "\n"
    "Exit status: 0 done; 2 usage and input errors.",
    KindAndItemOptions({}),
    RunValues,
};

}  // namespace adestool
