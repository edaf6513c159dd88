// cmd_inspect.cpp: `adestool inspect SIG [--data FILE] [--json] [--verify]
// [--trust FILE|DIR ...]`.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "command.h"
#include "inspect_build.h"
#include "inspect_crypto.h"
#include "pki_items.h"
#include "signed_message.h"
#include "tool_error.h"

namespace adestool {

namespace {

bool IsDirectory(const std::string &path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// TrustFiles: the path itself, or the regular files of a directory (not
// those whose names start with '.'), sorted by name.
std::vector<std::string> TrustFiles(const std::string &path) {
  if (!IsDirectory(path)) return {path};
  std::vector<std::string> files;
  DIR *dir = opendir(path.c_str());
  if (dir == nullptr) throw FileError(path, "cannot read the directory: " + ErrnoText(errno));
  while (const dirent *entry = readdir(dir)) {
    std::string name = entry->d_name;
    if (name.empty() || name[0] == '.') continue;
    std::string full = path + "/" + name;
    struct stat st;
    if (stat(full.c_str(), &st) == 0 && S_ISREG(st.st_mode)) files.push_back(full);
  }
  closedir(dir);
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::vector<uint8_t>> LoadAnchors(CommandContext &context) {
  std::vector<std::vector<uint8_t>> anchors;
  for (const std::string &path : context.args().Values("trust")) {
    std::vector<std::string> files = TrustFiles(path);
    if (files.empty()) throw FileError(path, "no trust anchor files in the directory");
    for (const std::string &file : files) {
      Input input = context.LoadInput(file);
      for (const InputItem &item : input.items) anchors.push_back(item.bytes);
    }
  }
  return anchors;
}

// LoadCrls: the CRLs of --crl (read and checked as `refs` reads them),
// added to those the signature carries for the revocation checks of --trust
// (a BES or T signature carries none).
std::vector<std::vector<uint8_t>> LoadCrls(CommandContext &context,
                                           std::vector<std::vector<uint8_t>> crls) {
  for (const std::string &path : context.args().Values("crl")) {
    for (CrlItem &crl : ReadCrls(context.LoadInput(path))) crls.push_back(std::move(crl.der));
  }
  return crls;
}

int RunInspect(CommandContext &context) {
  const ParsedArgs &args = context.args();
  ExpectPositionals(kInspectCommand, args, 1, "SIG");
  const bool verify = args.Has("verify");
  if (args.Has("trust") && !verify) {
    throw UsageError("inspect: --trust needs --verify (try 'adestool inspect --help')");
  }
  if (args.Has("crl") && !args.Has("trust")) {
    throw UsageError("inspect: --crl needs --trust (try 'adestool inspect --help')");
  }
  Input input = context.LoadInput(args.positionals()[0]);
  if (input.items.size() != 1) {
    throw FileError(input.name, "holds " + std::to_string(input.items.size()) +
                                    " PEM blocks; inspect reads one signature");
  }
  std::unique_ptr<SignedMessage> message =
      SignedMessage::Decode(input.name, std::move(input.items[0].bytes));

  std::vector<uint8_t> data;
  InspectOptions options;
  options.verify = verify;
  if (const std::string *dataPath = args.Value("data")) {
    if (message->attached()) {
      throw FileError(input.name, "carries its content; --data is for detached signatures");
    }
    context.output().RefuseInput(*dataPath);
    data = ReadInputBytes(*dataPath);
    options.detachedContent = &data;
  }
  if (verify && !message->attached() && options.detachedContent == nullptr) {
    throw FileError(input.name, "detached signature: give its content with --data FILE");
  }

  std::unique_ptr<TrustSetup> trust;
  if (args.Has("trust")) {
    std::vector<std::vector<uint8_t>> anchors = LoadAnchors(context);
    trust = std::make_unique<TrustSetup>(anchors, LoadCrls(context, CarriedCrls(*message)));
    options.checkChain = true;
  }

  InspectOutcome outcome = BuildInspectReport(input.name, *message, options);
  context.output().Write(args.Has("json") ? RenderJson(outcome.report)
                                          : RenderText(outcome.report));
  if (outcome.failures.empty()) return kExitOk;
  std::fflush(stdout);
  for (const std::string &failure : outcome.failures) {
    std::fprintf(stderr, "adestool: %s: %s\n", input.name.c_str(), failure.c_str());
  }
  return kExitCheckFailed;
}

}  // namespace

const Command kInspectCommand = {
    "inspect",
    "inspect SIG [--data FILE] [--json] [--verify] [--trust FILE|DIR ...] [--crl FILE ...]",
    "show the signers, attributes and CAdES level of a CMS signature",
    "Shows the CMS SignedData in SIG: its content, and for each signer the\n"
    "identifier, the digest and signature algorithms, every signed and\n"
    "unsigned attribute decoded (signing certificates, policy, time-stamp\n"
    "tokens with their imprints, certificate and revocation references and\n"
    "values), and the CAdES format the signer meets (BES, T, X Long Type 1,\n"
    "A) with the attributes the next format lacks.\n"
    "\n"
    "--verify recomputes the message digest over the content (attached, or\n"
    "FILE of --data for a detached signature) and checks each signature with\n"
    "the signer's certificate from the message; a signature or CAdES-C\n"
    "time-stamp whose imprint does not match what it covers fails it too.\n"
    "--trust adds a check of the signer's certificate chain now, against the\n"
    "anchor certificates in FILE (PEM or DER) or in the files of DIR; CRLs\n"
    "the signature carries, and those of --crl FILE (PEM or DER), are used\n"
    "for revocation.\n"
    "\n"
    "Exit status: 0 when every check passed; 1 when a check failed (each\n"
    "failure is named on standard error); 2 for usage and input errors.",
    {
        {"data", 0, true, "FILE", "the content of a detached signature", false},
        {"json", 0, false, "", "JSON output (schema in the manual)", false},
        {"verify", 0, false, "", "check message digests and signatures", false},
        {"trust", 0, true, "FILE|DIR", "trust anchors for a chain check (with --verify)", true},
        {"crl", 0, true, "FILE", "more CRLs for the chain check (with --trust)", true},
    },
    RunInspect,
};

}  // namespace adestool
